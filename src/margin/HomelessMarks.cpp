#include "HomelessMarks.h"

#include "base/Background.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "localisation/Language.h"
#include "meetings/MeetingCaptions.h"
#include "meetings/MeetingListModel.h"
#include "service/AppState.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr double patience = 10 * 60;         // seconds from the end of processing
constexpr double longestPatience = 6 * 3600; // and from the mark, whatever the service does
constexpr auto regretTime = 8s;
constexpr int idleThread = 1000; // milliseconds for which the thread waits for more
constexpr qsizetype offered = 8;
constexpr qsizetype titleLength = 60;

double secondsOf(const QDateTime& moment) { return double(moment.toMSecsSinceEpoch()) / 1000; }

} // namespace

HomelessMarks::HomelessMarks(const Ground& ground, QObject* parent)
    : QObject(parent), m_ground(ground), m_files(ground.paths)
{
    m_disk.setMaxThreadCount(1);
    m_disk.setExpiryTimeout(idleThread);
    // When it fell silent before anybody listened, its file may tell.
    if (!ground.state.isRecording() && !ground.state.isProcessing())
        m_doneSince = double(ground.state.reading().file.modifiedNs) / 1e9;
    connect(&ground.state, &AppState::statusRead, this, &HomelessMarks::followService);
}

HomelessMarks::~HomelessMarks() = default;

void HomelessMarks::followService()
{
    if (m_ground.state.isRecording() || m_ground.state.isProcessing()) {
        m_doneSince.reset();
    } else if (!m_doneSince) {
        m_doneSince = m_ground.scheduler.now();
    }
}

void HomelessMarks::look()
{
    whenFinished(startOn(m_disk, [files = m_files] { return files.waiting().marks; }), this,
                 [this, changes = m_changes](const QList<Mark>& waiting) {
                     // What was read before a change would undo it on the screen.
                     changes == m_changes ? take(waiting) : look();
                 });
}

void HomelessMarks::take(const QList<Mark>& waiting)
{
    QList<Meeting> homes;
    QList<Mark> homeless;
    const double now = m_ground.scheduler.now();
    for (const Mark& mark : waiting) {
        const auto& all = m_ground.meetings.all();
        const auto home = std::ranges::find_if(
            all, [&](const ListedMeeting& listed) { return belongs(mark, listed.meeting); });
        if (home != all.end()) {
            homes.append(home->meeting);
        } else if ((m_doneSince && now - *m_doneSince >= patience) || now - mark.time >= longestPatience) {
            homeless.append(mark);
        }
    }
    if (std::exchange(m_marks, homeless) != homeless) emit changed();
    if (homes.isEmpty()) return;
    whenFinished(startOn(m_disk, [files = m_files, homes] { return files.settle(homes); }), this,
                 [this](OwnWritten) { emit settled(); });
}

QString HomelessMarks::when(const Mark& mark) const
{
    const Meeting moment{.startedAt = QDateTime::fromMSecsSinceEpoch(qint64(mark.time * 1000))};
    return captions::dateLine(moment, m_ground.scheduler.moment().date(), m_ground.language.current());
}

QStringList HomelessMarks::nearest(const Mark& mark) const
{
    const auto distance = [&mark](const ListedMeeting* listed) {
        return std::abs(secondsOf(listed->meeting.startedAt) - mark.time);
    };
    std::vector<const ListedMeeting*> order;
    for (const ListedMeeting& listed : m_ground.meetings.all())
        order.push_back(&listed);
    const auto end = order.begin() + std::min<qsizetype>(offered, qsizetype(order.size()));
    std::ranges::partial_sort(order, end, {}, distance);
    QStringList ids;
    for (auto one = order.begin(); one != end; ++one)
        ids.append((*one)->meeting.id);
    return ids;
}

QString HomelessMarks::line(const QString& meeting) const
{
    const Meeting* found = m_ground.meetings.find(meeting);
    if (!found) return {};
    const QString& language = m_ground.language.current();
    const QDate today = m_ground.scheduler.moment().date();
    return captions::dateLine(*found, today, language) + Language::text(language, u"common.dot"_s) +
           text::shortened(text::oneLine(found->title), titleLength);
}

void HomelessMarks::put(const Mark& mark, const QString& meeting)
{
    const Meeting* home = m_ground.meetings.find(meeting);
    if (!home) return;
    Mark settled = mark;
    settled.begin = secondsOf(home->startedAt);
    m_marks.removeOne(mark);
    emit changed();
    write([files = m_files, meeting, mark, settled] {
        const OwnWritten written = files.addTo(meeting, settled);
        return written == OwnWritten::Yes ? files.removeWaiting(mark) : written;
    });
}

void HomelessMarks::remove(const Mark& mark)
{
    m_marks.removeOne(mark);
    m_removed = mark;
    m_ground.scheduler.after(regretTime, m_regret.renew(), [this] {
        m_removed.reset();
        emit changed();
    });
    emit changed();
    write([files = m_files, mark] { return files.removeWaiting(mark); });
}

void HomelessMarks::bringBack()
{
    if (!m_removed) return;
    m_regret.end();
    const Mark mark = *std::exchange(m_removed, std::nullopt);
    m_marks.insert(std::ranges::upper_bound(m_marks, mark.time, {}, &Mark::time), mark);
    emit changed();
    write([files = m_files, mark] { return files.add(mark); });
}

void HomelessMarks::write(std::function<OwnWritten()> work)
{
    ++m_changes;
    whenFinished(startOn(m_disk, std::move(work)), this, [this](OwnWritten written) {
        const bool failed = written != OwnWritten::Yes;
        if (std::exchange(m_failed, failed) != failed) emit changed();
        if (failed) look(); // what is shown is what there is
        emit settled();
    });
}

} // namespace murmeli
