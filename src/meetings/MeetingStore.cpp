#include "MeetingStore.h"

#include "base/Background.h"
#include "base/Scheduler.h"
#include "service/Paths.h"

#include <QFileInfo>

#include <utility>

using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto scanInterval = 20s;
constexpr auto calmTime = 150ms;  // a folder that changes mostly does so several times in a row
constexpr auto restlessTime = 1s; // after meeting a file that was being written

} // namespace

MeetingStore::MeetingStore(const Paths& paths, const Language& language, Scheduler& scheduler,
                           QObject* parent)
    : QObject(parent),
      m_folder(paths.logs),
      m_scheduler(scheduler),
      m_list(language),
      m_protocols(std::make_shared<ProtocolFinder>(paths.vaultDir)),
      m_scanner(std::make_shared<MeetingScanner>(paths.logs)),
      m_hearing(std::make_shared<Hearing>())
{
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &MeetingStore::reloadSoon);
    setWatching(true);
}

void MeetingStore::setWatching(bool on)
{
    if (on == bool(m_watching)) return;
    m_watching.end();
    if (!on) return;
    m_scheduler.every(scanInterval, m_watching.renew(), [this] { reload(); });
    reload();
}

void MeetingStore::reloadSoon()
{
    if (!m_watching || std::exchange(m_soon, true)) return;
    m_scheduler.after(calmTime, this, [this] {
        m_soon = false;
        reload();
    });
}

void MeetingStore::watchFolder()
{
    if (m_watcher.directories().isEmpty() && QFileInfo::exists(m_folder)) m_watcher.addPath(m_folder);
}

void MeetingStore::reload()
{
    if (m_loading) {
        m_again = true;
        return;
    }
    watchFolder();
    m_loading = true;
    emit loadingChanged();
    inBackground(
        this, [scanner = m_scanner] { return scanner->scan(); },
        [this](const MeetingScanner::Result& result) { take(result); });
}

void MeetingStore::take(const MeetingScanner::Result& result)
{
    const QDate today = m_scheduler.moment().date();
    if (result.changed) {
        m_found = result.meetings;
        listen();
    }
    if (result.changed || today != m_list.today()) show(today);
    m_loading = false;
    m_loaded = true;
    emit loadingChanged();
    if (!result.touched.isEmpty()) emit touched(result.touched);
    emit scanned();
    if (result.restless) m_scheduler.after(restlessTime, this, [this] { reload(); });
    if (std::exchange(m_again, false)) reload();
}

void MeetingStore::show(const QDate& today)
{
    QList<ListedMeeting> meetings = m_found;
    for (qsizetype i = 0; !m_tooShort.isEmpty() && i < meetings.size(); ++i) {
        if (m_tooShort.contains(meetings.at(i).meeting.id)) meetings[i].meeting.heard = Heard::Little;
    }
    m_list.setMeetings(meetings, today);
}

// Apart from the scan, since the protocols may lie on a disk that does not answer.
void MeetingStore::listen()
{
    if (m_listening) {
        m_listenAgain = true;
        return;
    }
    m_listening = true;
    QList<Meeting> meetings;
    meetings.reserve(m_found.size());
    for (const ListedMeeting& one : std::as_const(m_found))
        meetings.append(one.meeting);
    inBackground(
        this, [hearing = m_hearing, meetings] { return hearing->tooShort(meetings); },
        [this](const QSet<QString>& tooShort) {
            m_listening = false;
            if (std::exchange(m_tooShort, tooShort) != tooShort) {
                show(m_scheduler.moment().date());
                emit scanned();
            }
            if (std::exchange(m_listenAgain, false)) listen();
        });
}

} // namespace murmeli
