#include "ManualScheduler.h"

#include <QObject>

#include <algorithm>
#include <utility>

namespace murmeli {

ManualScheduler::ManualScheduler(double now) : m_start(now) {}

double ManualScheduler::now() const { return m_start + std::chrono::duration<double>{m_elapsed}.count(); }

void ManualScheduler::after(Milliseconds delay, QObject* context, std::function<void()> action)
{
    m_entries.push_back({m_elapsed + delay, Milliseconds{0}, context, std::move(action)});
}

void ManualScheduler::every(Milliseconds interval, QObject* context, std::function<void()> action)
{
    m_entries.push_back({m_elapsed + interval, interval, context, std::move(action)});
}

void ManualScheduler::advance(Milliseconds time)
{
    const Milliseconds target = m_elapsed + time;
    for (;;) {
        std::erase_if(m_entries, [](const Entry& entry) { return entry.context.isNull(); });
        const auto next = std::min_element(m_entries.begin(), m_entries.end(),
                                           [](const Entry& a, const Entry& b) { return a.due < b.due; });
        if (next == m_entries.end() || next->due > target) break;
        m_elapsed = std::max(m_elapsed, next->due);
        const auto action = next->action; // a copy: the action may add entries
        if (next->interval > Milliseconds{0}) {
            next->due += next->interval;
        } else {
            m_entries.erase(next);
        }
        action();
    }
    m_elapsed = target;
}

int ManualScheduler::wakeUpsWithin(Milliseconds time) const
{
    int count = 0;
    for (const Entry& entry : m_entries) {
        if (entry.context.isNull() || entry.due > m_elapsed + time) continue;
        count += 1 + (entry.interval.count() > 0 ? int((m_elapsed + time - entry.due) / entry.interval) : 0);
    }
    return count;
}

} // namespace murmeli
