#include "SearchIndex.h"

#include "base/Background.h"
#include "base/Scheduler.h"
#include "meetings/ProtocolFinder.h"
#include "service/AppState.h"
#include "service/Paths.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr double comparison = 10 * 60; // seconds between two looks at the files of all meetings
constexpr auto calmTime = 150ms;       // a folder that changes mostly does so several times in a row
constexpr auto restlessTime = 1s;
constexpr auto tellingTime = 500ms;
constexpr int idleThread = 1000; // milliseconds for which the thread waits for more

} // namespace

SearchIndex::SearchIndex(const Paths& paths, const AppState& state, Scheduler& scheduler,
                         Indexer::FreeBytes freeBytes, QObject* parent)
    : QObject(parent),
      m_service(state),
      m_scheduler(scheduler),
      m_vault(paths.vaultDir),
      m_files(paths, std::make_shared<ProtocolFinder>(paths.vaultDir)),
      m_indexer(std::make_shared<Indexer>(paths, m_files, std::move(freeBytes)))
{
    m_path = m_indexer->path();
    m_writer.setMaxThreadCount(1);
    m_writer.setExpiryTimeout(idleThread);
    m_writer.setThreadPriority(QThread::IdlePriority);
    connect(&state, &AppState::statusRead, this, &SearchIndex::followService);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (m_soon) return;
        m_scheduler.after(calmTime, m_soon.renew(), [this] {
            m_soon.end();
            start();
        });
    });
}

SearchIndex::~SearchIndex() { m_indexer->stop(); }

void SearchIndex::follow(const QList<ListedMeeting>& meetings, const QStringList& touched)
{
    m_meetings = meetings;
    m_touched.unite({touched.begin(), touched.end()});
    watch();
    start();
}

// Whether the folder's disk answers is asked beside the main thread, which would wait for it.
void SearchIndex::watch()
{
    if (!m_watcher.directories().isEmpty()) return;
    inBackground(
        this, [vault = m_vault] { return QFileInfo{vault}.isDir(); },
        [this](bool there) {
            if (there && m_watcher.directories().isEmpty()) m_watcher.addPath(m_vault);
        });
}

void SearchIndex::start()
{
    if (m_running) {
        m_again = true;
        return;
    }
    if (!m_built && m_service.isRecording()) return; // who records has the computer for it
    const double now = m_scheduler.now();
    if (m_state == State::Failed && m_lookedAtAll && std::abs(now - *m_lookedAtAll) < comparison) return;
    const bool all = !m_built || !m_lookedAtAll || now - *m_lookedAtAll >= comparison || now < *m_lookedAtAll;
    if (all) m_lookedAtAll = now;
    const Indexer::Scope scope{all, std::exchange(m_touched, {})};
    m_running = true;
    m_progress->done = m_progress->all = 0;
    const auto work = [indexer = m_indexer, progress = m_progress, meetings = m_meetings, scope] {
        return indexer->bringUp(meetings, scope, [progress](qsizetype done, qsizetype all) {
            progress->done = done;
            progress->all = all;
            return !progress->pause;
        });
    };
    if (!m_built) {
        m_state = State::Building;
        m_scheduler.every(tellingTime, m_telling.renew(), [this] { tellProgress(); });
    }
    whenFinished(startOn(m_writer, work), this, [this](Indexer::Outcome outcome) { take(outcome); });
}

void SearchIndex::tellProgress()
{
    const qint64 done = m_progress->done, all = m_progress->all;
    // Of a few meetings nobody has to hear.
    if (done == m_done && all == m_all) return;
    m_done = done;
    m_all = all;
    emit changed();
}

void SearchIndex::take(Indexer::Outcome outcome)
{
    using Outcome = Indexer::Outcome;
    m_running = false;
    m_telling.end();
    m_done = m_all = 0;
    switch (outcome) {
    case Outcome::Done:
    case Outcome::Restless:
    case Outcome::Elsewhere: // what the other one writes is found too
        m_built = true;
        m_state = State::Ready;
        break;
    case Outcome::Stopped:
        m_lookedAtAll.reset();
        m_state = State::Asleep;
        break;
    case Outcome::NoSpace:
        m_lookedAtAll.reset();
        m_state = State::NoSpace;
        break;
    case Outcome::Failed:
        m_state = State::Failed;
        break;
    }
    if (m_size.meetings > 0 || m_made) measure();
    m_made = false;
    emit changed();
    if (std::exchange(m_again, false)) {
        start();
    } else if (outcome == Outcome::Restless) {
        m_scheduler.after(restlessTime, m_soon.renew(), [this] {
            m_soon.end();
            start();
        });
    }
}

void SearchIndex::followService()
{
    const bool recording = m_service.isRecording();
    m_progress->pause = recording && !m_built;
    if (!recording && !m_built && !m_running && !m_meetings.isEmpty()) start();
}

void SearchIndex::makeAnew()
{
    m_indexer->discard();
    m_built = false;
    m_made = true;
    m_lookedAtAll.reset();
    m_size = {};
    emit measured();
    if (!m_meetings.isEmpty()) return start();
    whenFinished(startOn(m_writer,
                         [indexer = m_indexer] {
                             return indexer->bringUp({}, {.all = true, .touched = {}},
                                                     [](auto, auto) { return true; });
                         }),
                 this, [this](Indexer::Outcome) { measure(); });
}

void SearchIndex::mend()
{
    const double now = m_scheduler.now();
    if (!m_built || m_running || (m_mended && std::abs(now - *m_mended) < comparison)) return;
    m_mended = now;
    m_indexer->discard();
    m_built = false;
    m_lookedAtAll.reset();
    start();
}

void SearchIndex::measure()
{
    const auto count = [path = m_path] {
        Size size;
        size.bytes = QFileInfo{path}.size() + QFileInfo{path + u"-wal"_s}.size();
        IndexFile index{path, IndexFile::Mode::Read};
        size.meetings = index.size().alive;
        return size;
    };
    inBackground(this, count, [this](const Size& size) {
        m_size = size;
        emit measured();
    });
}

} // namespace murmeli
