#include "MeetingMarks.h"

#include "base/Background.h"
#include "base/Scheduler.h"
#include "base/Text.h"

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto regretTime = 8s;
constexpr int idleThread = 1000; // milliseconds for which the thread waits for more

} // namespace

MeetingMarks::MeetingMarks(const Paths& paths, QString meeting, Scheduler& scheduler, QObject* parent)
    : QObject(parent), m_files(paths), m_meeting(std::move(meeting)), m_scheduler(scheduler)
{
    m_disk.setMaxThreadCount(1);
    m_disk.setExpiryTimeout(idleThread);
    load();
}

MeetingMarks::~MeetingMarks() = default;

void MeetingMarks::load()
{
    const auto read = [files = m_files, meeting = m_meeting] { return files.of(meeting); };
    whenFinished(startOn(m_disk, read), this, [this](const MarkFiles::Read& read) {
        if (std::exchange(m_marks, read.marks) != read.marks) emit changed();
    });
}

void MeetingMarks::add(const Mark& mark)
{
    if (m_marks.contains(mark)) return;
    m_marks.insert(std::ranges::upper_bound(m_marks, mark.time, {}, &Mark::time), mark);
    emit changed();
    write([files = m_files, meeting = m_meeting, mark] { return files.addTo(meeting, mark); });
}

void MeetingMarks::edit(int index, const QString& text)
{
    if (index < 0 || index >= m_marks.size()) return;
    const Mark before = m_marks[index];
    Mark now = before;
    now.text = text::first(text::trimmed(text::oneLine(text)), Mark::longest);
    if (now == before) return;
    if (now.text.isEmpty()) {
        m_marks.removeAt(index);
        m_removed = before;
        m_scheduler.after(regretTime, m_regret.renew(), [this] {
            m_removed.reset();
            emit changed();
        });
    } else {
        m_marks[index] = now;
    }
    emit changed();
    write([files = m_files, meeting = m_meeting, before, now] { return files.change(meeting, before, now); });
}

void MeetingMarks::bringBack()
{
    if (!m_removed) return;
    m_regret.end();
    add(*std::exchange(m_removed, std::nullopt));
}

void MeetingMarks::write(std::function<OwnWritten()> work)
{
    whenFinished(startOn(m_disk, std::move(work)), this, [this](OwnWritten written) {
        const bool failed = written != OwnWritten::Yes;
        if (std::exchange(m_failed, failed) != failed) emit changed();
        if (failed) load(); // what is shown is what there is
    });
}

} // namespace murmeli
