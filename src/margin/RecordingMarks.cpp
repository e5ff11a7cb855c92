#include "RecordingMarks.h"

#include "base/Background.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "meetings/Meeting.h"
#include "service/AppState.h"

#include <utility>

namespace murmeli {

namespace {

constexpr qsizetype shown = 3;
constexpr int idleThread = 1000; // milliseconds for which the thread waits for more

} // namespace

RecordingMarks::RecordingMarks(const Paths& paths, const AppState& state, const Scheduler& scheduler,
                               QObject* parent)
    : QObject(parent), m_files(paths), m_state(state), m_scheduler(scheduler)
{
    m_disk.setMaxThreadCount(1);
    m_disk.setExpiryTimeout(idleThread);
    connect(&state, &AppState::changed, this, &RecordingMarks::look);
}

RecordingMarks::~RecordingMarks() = default;

void RecordingMarks::look()
{
    double begin = 0;
    if (m_state.isRecording()) // of one whose begin nobody tells, it is when we met it
        begin = m_state.since() > 0 ? m_state.since() : m_begin > 0 ? m_begin : m_scheduler.now();
    if (std::exchange(m_begin, begin) == begin) return;
    m_marks.clear();
    emit changed();
    if (begin <= 0) return;
    whenFinished(startOn(m_disk, [files = m_files] { return files.waiting(); }), this,
                 [this, begin](const MarkFiles::Read& read) {
                     if (begin != m_begin) return;
                     QList<Mark> marks = read.marks; // of an earlier run of the program
                     marks.removeIf(
                         [&](const Mark& mark) { return mark.begin != begin || m_marks.contains(mark); });
                     m_marks = marks + m_marks;
                     emit changed();
                 });
}

void RecordingMarks::setDraft(const QString& draft)
{
    const QString line = text::first(text::oneLine(draft), Mark::longest);
    if (line == m_draft) {
        if (line != draft) emit draftChanged(); // the field holds more than a mark may
        return;
    }
    if (m_draft.isEmpty()) m_begun = m_scheduler.now();
    m_draft = line;
    emit draftChanged();
}

QList<Mark> RecordingMarks::latest() const
{
    QList<Mark> latest;
    for (auto mark = m_marks.crbegin(); mark != m_marks.crend() && latest.size() < shown; ++mark)
        latest.append(*mark);
    return latest;
}

void RecordingMarks::add()
{
    Mark mark;
    mark.text = text::trimmed(m_draft);
    if (mark.text.isEmpty() || m_begin <= 0) return;
    mark.time = m_begun;
    mark.begin = m_begin;
    setDraft({});
    m_marks.append(mark);
    emit changed();
    whenFinished(startOn(m_disk, [files = m_files, mark] { return files.add(mark); }), this,
                 [this, mark](OwnWritten written) {
                     if (written == OwnWritten::Yes) return;
                     m_marks.removeOne(mark);
                     emit changed();
                     if (m_draft.isEmpty()) {
                         setDraft(mark.text);
                         m_begun = mark.time;
                     }
                     emit notWritten(written);
                 });
}

void RecordingMarks::settle(const QList<Meeting>& meetings)
{
    whenFinished(startOn(m_disk, [files = m_files, meetings] { return files.settle(meetings); }), this,
                 [this](OwnWritten) { emit settled(); });
}

} // namespace murmeli
