#include "Pulse.h"

#include "base/Background.h"
#include "base/Json.h"
#include "base/Scheduler.h"
#include "service/Paths.h"

#include <QFileInfo>
#include <QJsonObject>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr double longestPause = 10; // seconds between two looks; after more the computer has slept
constexpr double rememberEvery = 3600;
constexpr double longestQuiet = 1e9; // seconds; a time before that is a damaged figure
constexpr auto firstMemory = 10s;
constexpr auto diskInterval = 30s;
constexpr qint64 sizeLimit = 1024 * 1024; // bytes

} // namespace

Pulse::Pulse(const Ground& ground, QObject* parent)
    : QObject(parent), m_ground(ground), m_file(file(ground.paths))
{
    connect(&ground.state, &AppState::statusRead, this, &Pulse::look);
    connect(&ground.record, &RecordControl::pendingChanged, this, &Pulse::followRequest);
    connect(&ground.record, &RecordControl::unanswered, this, &Pulse::check);
    if (ground.paths.ownCache.isEmpty()) return;
    ground.scheduler.after(firstMemory, this, [this] { // nothing is missed without it so far
        inBackground(
            this, [file = m_file] { return file.read(); },
            [this](const OwnFile::Content& known) {
                m_rhythm.remember(known.object[u"rhythm"_s].toObject());
                m_takesRequests = m_takesRequests || known.object[u"takes_requests"_s].toBool();
            });
    });
}

Pulse::~Pulse() = default;

OwnFile Pulse::file(const Paths& paths) { return OwnFile{{paths.ownCache, u"pulse.json"_s, sizeLimit}}; }

void Pulse::look(const QString& from, const QString& to)
{
    const Trouble before = trouble();
    const double now = m_ground.scheduler.now();
    const double gap = now - std::exchange(m_lastLook, now);
    if (gap < 0 || gap > longestPause) {
        m_quietSince = now;
        m_seen = {}; // a pause in which nobody looked is no interval
    }
    listen(from == to ? to : QString{});
    if (m_waitingToBeTaken && !m_ground.record.requestLies()) {
        m_waitingToBeTaken = false;
        m_takesRequests = true;
    }
    if (from != to) {
        m_unanswered = RecordControl::Pending::None;
        watchDisk(to == "recording"_L1);
    }
    m_silent = isSilent();
    const qint64 quiet = m_silent ? secondsQuiet() : 0;
    const bool longer = std::exchange(m_quiet, quiet) != quiet;
    if (trouble() != before || from != to || longer) emit changed();
    if (trouble() == Trouble::None) m_permissions.reset();
}

void Pulse::listen(const QString& status)
{
    const AppState::Reading& now = m_ground.state.reading();
    if (now.file == m_seen.file) return;
    const double seconds = double(now.file.modifiedNs - m_seen.file.modifiedNs) / 1e9;
    if (now.file.size >= 0 && m_seen.file.size >= 0 && now.content == m_seen.content)
        m_rhythm.heard(status, seconds);
    m_seen = now;
    m_quietSince = m_ground.scheduler.now();
    if (now.file.size >= 0) m_lastWritten = double(now.file.modifiedNs) / 1e9;
    remember();
}

bool Pulse::isSilent() const
{
    return m_lastWritten > 0 &&
           m_rhythm.isSilence(m_ground.state.status(), m_ground.scheduler.now() - m_quietSince);
}

qint64 Pulse::secondsQuiet() const
{
    const auto seconds = qint64(std::clamp(m_ground.scheduler.now() - m_lastWritten, 0.0, longestQuiet));
    return seconds < 60 ? seconds - seconds % 10 : seconds - seconds % 60;
}

void Pulse::remember()
{
    const auto learned = m_rhythm.learned();
    const double now = m_ground.scheduler.now();
    if (learned.isEmpty() || m_ground.paths.ownCache.isEmpty()) return;
    if (m_remembered > 0 && std::abs(now - m_remembered) < rememberEvery) return;
    m_remembered = now;
    QJsonObject rhythm;
    for (auto it = learned.begin(); it != learned.end(); ++it)
        rhythm[it.key()] = *it;
    const QJsonObject members{{u"rhythm"_s, rhythm}, {u"takes_requests"_s, m_takesRequests}};
    std::ignore = startOn(*QThreadPool::globalInstance(), [file = m_file, members] {
        return file.change([&](const QJsonObject&) { return members; });
    });
}

void Pulse::followRequest()
{
    if (!m_ground.record.waiting()) return;
    m_waitingToBeTaken = true;
    if (m_unanswered == RecordControl::Pending::None && !m_silent) return;
    m_unanswered = RecordControl::Pending::None;
    emit changed();
}

void Pulse::check(RecordControl::Pending request)
{
    m_ground.state.load(); // it may have answered since the last reading
    m_ground.scheduler.after(0ms, this, [this, request] {
        const bool recording = request == RecordControl::Pending::Starting;
        if (m_ground.state.isRecording() != recording && !m_ground.record.waiting()) blame(request);
    });
}

void Pulse::blame(RecordControl::Pending request)
{
    m_unanswered = request;
    m_requestLies = m_ground.record.requestLies();
    m_free.reset();
    askDisk();
    if (!m_ground.state.isRecording()) {
        m_permissions =
            std::make_unique<PermissionsModel>(m_ground.paths, m_ground.processes, m_ground.desktop, *this);
        connect(m_permissions.get(), &PermissionsModel::changed, this, &Pulse::changed);
    }
    emit changed();
    if (trouble() != Trouble::None) emit unanswered();
}

Pulse::Trouble Pulse::trouble() const
{
    if (m_ground.settingUp()) return Trouble::None;
    if (m_unanswered == RecordControl::Pending::Starting) return Trouble::NotStarted;
    if (m_unanswered == RecordControl::Pending::Stopping) return Trouble::NotStopped;
    const bool said = m_silent && !m_ground.record.waiting() && QFileInfo::exists(m_ground.paths.python);
    return said ? Trouble::Silent : Trouble::None;
}

Pulse::Reason Pulse::reason() const
{
    if (!QFileInfo::exists(m_ground.paths.python)) return Reason::NotInstalled;
    if (!deniedKeys().isEmpty()) return Reason::Denied;
    if (m_free && *m_free < leastFree) return Reason::DiskFull;
    if (m_silent) return Reason::Silent;
    if (m_ground.state.isProcessing()) return Reason::Busy;
    return m_requestLies && m_takesRequests ? Reason::NotTaken : Reason::NoAnswer;
}

QStringList Pulse::deniedKeys() const
{
    QStringList keys;
    if (!m_permissions) return keys;
    if (m_permissions->microphone() == PermissionsModel::State::Denied)
        keys.append(u"perm.microphone.title"_s);
    if (m_permissions->screen() == PermissionsModel::State::Denied) keys.append(u"perm.screen.title"_s);
    return keys;
}

void Pulse::dismissTrouble()
{
    m_unanswered = RecordControl::Pending::None;
    m_permissions.reset();
    emit changed();
}

void Pulse::watchDisk(bool recording)
{
    m_diskWatch.end();
    m_diskSeen = false;
    m_diskSaid = false;
    if (!recording) return;
    m_free.reset();
    m_ground.scheduler.every(diskInterval, m_diskWatch.renew(), [this] { askDisk(); });
    askDisk();
}

void Pulse::askDisk()
{
    if (std::exchange(m_asking, true)) return;
    inBackground(
        this, [ask = m_ground.freeBytes, folder = m_ground.paths.recordings] { return ask(folder); },
        [this](const std::optional<qint64>& bytes) {
            m_asking = false;
            m_free = bytes;
            emit changed();
            if (diskRunsOut() && !std::exchange(m_diskSaid, true)) emit diskRanLow();
        });
}

bool Pulse::diskRunsOut() const { return m_diskWatch && !m_diskSeen && m_free && *m_free < leastFree; }

void Pulse::dismissDisk()
{
    m_diskSeen = true;
    emit changed();
}

} // namespace murmeli
