#include "SummaryWatch.h"

#include "SummaryFile.h"
#include "base/Background.h"
#include "base/Files.h"
#include "base/Scheduler.h"
#include "service/AppState.h"
#include "service/Paths.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto calmTime = 150ms; // a folder that changes mostly does so several times in a row
constexpr auto interval = 60s;   // for folders of which the system tells no change
constexpr auto tornTime = 1s;
constexpr double longestWait = 6 * 3600; // seconds
constexpr double nearBegin = 120;

} // namespace

SummaryWatch::SummaryWatch(const Paths& paths, const AppState& state, Scheduler& scheduler, QObject* parent)
    : QObject(parent), m_folder(paths.logs), m_state(state), m_scheduler(scheduler)
{
    connect(&state, &AppState::statusRead, this, &SummaryWatch::follow);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (!m_soon) m_scheduler.after(calmTime, m_soon.renew(), [this] { look(); });
    });
}

void SummaryWatch::follow(const QString& from, const QString& to)
{
    const bool recording = m_state.isRecording();
    const double now = m_scheduler.now();
    if (from != to && from == QLatin1StringView{"recording"}) {
        await({m_begin, now});
    } else if (m_first && m_state.isProcessing()) {
        await({0, now}); // it had begun before us
    }
    m_first = false;
    // What is there while it records cannot be its summary, which may come as soon as it has ended.
    if (recording && from != to && !isWaiting()) {
        m_known.reset();
        look();
    }
    m_begin = recording ? m_state.since() : 0;
}

void SummaryWatch::await(const Awaited& recording)
{
    m_awaited.append(recording);
    emit waitingChanged();
    if (m_regularly) return;
    if (QFileInfo::exists(m_folder)) m_watcher.addPath(m_folder);
    m_scheduler.every(interval, m_regularly.renew(), [this] { look(); });
    look();
}

void SummaryWatch::look()
{
    m_soon.end();
    if (m_looking) {
        m_again = true;
        return;
    }
    m_looking = true;
    const auto read = [folder = m_folder, known = m_known] {
        Found found;
        const QByteArray path = QFile::encodeName(folder);
        for (const QByteArray& name : files::namesIn(path).value_or(QList<QByteArray>{})) {
            if (!name.endsWith(summaryFile::suffix.data())) continue;
            found.names.insert(name);
            if (!known || known->contains(name)) continue;
            files::Identity identity;
            const QByteArray file = path + '/' + name;
            const auto bytes = files::readWhole(file, summaryFile::sizeLimit, &identity);
            const QString stem = QFile::decodeName(name.chopped(summaryFile::suffix.size()));
            const auto meeting = bytes ? summaryFile::meeting(*bytes, QFile::decodeName(file), stem,
                                                              identity.modifiedNs / 1'000'000)
                                       : std::nullopt;
            if (meeting) {
                found.meetings.append(*meeting);
            } else {
                found.names.remove(name);
                found.torn = true;
            }
        }
        return found;
    };
    inBackground(this, read, [this](const Found& found) { take(found); });
}

void SummaryWatch::take(const Found& found)
{
    m_looking = false;
    m_known = found.names;
    const double now = m_scheduler.now();
    for (const Meeting& meeting : found.meetings) {
        const double begin = double(meeting.startedAt.toMSecsSinceEpoch()) / 1000;
        const auto own = std::ranges::find_if(m_awaited, [&](const Awaited& one) {
            return one.begin <= 0 || std::abs(one.begin - begin) <= nearBegin;
        });
        std::optional<double> took;
        if (own != m_awaited.end()) {
            if (own->begin > 0) took = now - own->end;
            m_awaited.erase(own);
        }
        emit appeared(meeting, took);
    }
    const auto before = m_awaited.size();
    m_awaited.removeIf([&](const Awaited& one) { return now - one.end > longestWait; });
    if (!found.meetings.isEmpty() || m_awaited.size() != before) emit waitingChanged();
    if (!isWaiting()) {
        m_regularly.end();
        m_soon.end();
        if (!m_watcher.directories().isEmpty()) m_watcher.removePaths(m_watcher.directories());
        if (std::exchange(m_again, false)) look();
        return;
    }
    if (m_watcher.directories().isEmpty() && QFileInfo::exists(m_folder)) m_watcher.addPath(m_folder);
    if (found.torn) m_scheduler.after(tornTime, m_soon.renew(), [this] { look(); });
    if (std::exchange(m_again, false)) look();
}

} // namespace murmeli
