#include "MeetingScanner.h"

#include "SummaryFile.h"
#include "base/Background.h"

#include <QFile>
#include <QTimeZone>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <utility>
#include <vector>

namespace murmeli {

namespace {

constexpr qint64 writingTime = 2'000'000'000; // nanoseconds in which a file's writer may still be at work
constexpr size_t few = 100;                   // files for which help is not worth its start

} // namespace

MeetingScanner::MeetingScanner(const QString& folder) : m_folder(QFile::encodeName(folder)) {}

void MeetingScanner::look(Look& look) const
{
    Known& known = *look.known;
    const QByteArray path = m_folder + '/' + look.name;
    if (known.settled && files::identity(path) == known.identity) return;

    files::Identity identity;
    std::optional<Meeting> meeting;
    if (const auto bytes = files::readWhole(path, summaryFile::sizeLimit, &identity)) {
        const QString stem = QFile::decodeName(look.name.chopped(summaryFile::suffix.size()));
        meeting =
            summaryFile::meeting(*bytes, QFile::decodeName(path), stem, identity.modifiedNs / 1'000'000);
    } else {
        identity = files::identity(path);
    }
    look.touched = std::exchange(known.identity, identity) != identity;
    known.settled = files::isSettled(identity);
    if (!meeting && known.listed && identity.size >= 0 &&
        std::abs(files::nsSinceChange(identity)) < writingTime) {
        known.settled = false; // being written: what was known stays until the writer has come to its end
        look.restless = true;
        return;
    }
    std::optional<ListedMeeting> listed;
    if (meeting) listed = {*meeting, (meeting->title + u'\n' + meeting->tldr).toLower()};
    look.changed = std::exchange(known.listed, std::move(listed)) != known.listed;
}

MeetingScanner::Result MeetingScanner::scan()
{
    Result result;
    result.changed = m_scan++ == 0;
    // Starts are kept in local time.
    const QByteArray zone = QTimeZone::systemTimeZoneId();
    if (std::exchange(m_zone, zone) != zone) {
        ::tzset();
        m_known.clear();
    }
    std::vector<Look> looks;
    for (const QByteArray& name : files::namesIn(m_folder).value_or(QList<QByteArray>{})) {
        if (!name.endsWith(summaryFile::suffix.data())) continue;
        Known& known = m_known[name.toStdString()];
        known.seen = m_scan;
        known.position = looks.size();
        looks.push_back({name, &known});
    }
    std::atomic<size_t> next = 0;
    const HandOver done;
    const auto work = [&] {
        for (size_t at = next++; at < looks.size(); at = next++)
            look(looks[at]);
        done.give();
    };
    QList<QFuture<void>> helpers;
    for (int i = 1; i < QThread::idealThreadCount() && looks.size() > few; ++i)
        helpers.append(startOn(m_helpers, work));
    work();
    for (QFuture<void>& helper : helpers)
        helper.waitForFinished();
    done.take();
    for (const Look& one : looks) {
        result.changed = one.changed || result.changed;
        result.restless = one.restless || result.restless;
        if (one.touched)
            result.touched.append(QFile::decodeName(one.name.chopped(summaryFile::suffix.size())));
    }
    for (auto it = m_known.begin(); it != m_known.end();) {
        if (it->second.seen == m_scan) {
            ++it;
            continue;
        }
        result.changed = it->second.listed.has_value() || result.changed;
        it = m_known.erase(it);
    }
    if (result.changed) m_sorted = sorted();
    result.meetings = m_sorted;
    return result;
}

QList<ListedMeeting> MeetingScanner::sorted() const
{
    std::vector<const Known*> order;
    order.reserve(m_known.size());
    for (const auto& [name, known] : m_known) {
        if (known.listed) order.push_back(&known);
    }
    std::ranges::sort(order, [](const Known* a, const Known* b) {
        const QDateTime& left = a->listed->meeting.startedAt;
        const QDateTime& right = b->listed->meeting.startedAt;
        return left != right ? left > right : a->position < b->position;
    });
    QList<ListedMeeting> meetings;
    meetings.reserve(qsizetype(order.size()));
    for (const Known* known : order)
        meetings.append(*known->listed);
    return meetings;
}

} // namespace murmeli
