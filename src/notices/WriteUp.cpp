#include "WriteUp.h"

#include "base/Background.h"
#include "base/Scheduler.h"
#include "service/Paths.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr qsizetype enough = 3; // meetings from which the usual time is known
constexpr qsizetype kept = 8;
constexpr double slowFactor = 3;
constexpr double leastSlow = 10 * 60; // seconds
constexpr auto interval = 30s;
constexpr auto forgotten = 24h;
constexpr qint64 sizeLimit = 1024 * 1024; // bytes
constexpr auto member = "write_up"_L1;

bool isRatio(double ratio) { return std::isfinite(ratio) && ratio >= 0 && ratio < 1000; }

} // namespace

WriteUp::WriteUp(const Paths& paths, SummaryWatch& summaries, Scheduler& scheduler, QObject* parent)
    : QObject(parent),
      m_file({paths.ownCache, u"pulse.json"_s, sizeLimit}),
      m_summaries(summaries),
      m_scheduler(scheduler)
{
    connect(&summaries, &SummaryWatch::appeared, this, &WriteUp::take);
    connect(&summaries, &SummaryWatch::waitingChanged, this, &WriteUp::watch);
    watch();
}

void WriteUp::watch()
{
    if (!m_summaries.isWaiting()) {
        m_regularly.end();
        look();
        emit changed();
        return;
    }
    if (m_regularly) return;
    emit changed();
    m_scheduler.every(interval, m_regularly.renew(), [this] { look(); });
    if (!m_ratios.isEmpty()) return;
    inBackground(
        this, [file = m_file] { return file.read(); },
        [this](const OwnFile::Content& known) {
            if (!m_ratios.isEmpty()) return;
            for (const auto& value : known.object[member].toArray()) {
                if (isRatio(value.toDouble(-1))) m_ratios.append(value.toDouble());
            }
            emit changed();
        });
}

std::optional<double> WriteUp::usual(const SummaryWatch::Awaited& recording) const
{
    const double length = recording.end - recording.begin;
    if (m_ratios.size() < enough || recording.begin <= 0 || length <= 0) return std::nullopt;
    QList<double> sorted = m_ratios;
    std::ranges::sort(sorted);
    return sorted[sorted.size() / 2] * length;
}

std::optional<qint64> WriteUp::usualMinutes() const
{
    if (!m_summaries.isWaiting()) return std::nullopt;
    const auto seconds = usual(m_summaries.awaited().first());
    return seconds ? std::optional{std::max<qint64>(1, std::llround(*seconds / 60))} : std::nullopt;
}

void WriteUp::look()
{
    bool slow = false;
    if (m_summaries.isWaiting()) {
        const SummaryWatch::Awaited& first = m_summaries.awaited().first();
        const auto seconds = usual(first);
        slow = seconds && first.end > m_slowSeen &&
               m_scheduler.now() - first.end > std::max(leastSlow, slowFactor * *seconds);
    }
    if (std::exchange(m_slow, slow) == slow) return;
    emit changed();
    if (slow) emit becameSlow();
}

void WriteUp::take(const Meeting& meeting, std::optional<double> took)
{
    m_ready = meeting;
    m_scheduler.after(forgotten, m_forget.renew(), [this] { dismissReady(); });
    const double length = meeting.durationMin.value_or(0) * 60;
    if (took && length > 0 && isRatio(*took / length)) {
        m_ratios.append(*took / length);
        if (m_ratios.size() > kept) m_ratios.removeFirst();
        QJsonArray ratios;
        for (const double ratio : std::as_const(m_ratios))
            ratios.append(ratio);
        std::ignore = startOn(*QThreadPool::globalInstance(), [file = m_file, ratios] {
            return file.change([&](const QJsonObject&) { return QJsonObject{{member, ratios}}; });
        });
    }
    emit changed();
    emit becameReady();
}

void WriteUp::dismissSlow()
{
    m_slowSeen = m_scheduler.now();
    look();
}

void WriteUp::dismissReady()
{
    m_ready.reset();
    m_forget.end();
    emit changed();
}

} // namespace murmeli
