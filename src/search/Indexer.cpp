#include "Indexer.h"

#include "base/Files.h"
#include "localisation/Language.h"
#include "service/Paths.h"

#include <QSet>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr qsizetype batch = 50;              // meetings a transaction
constexpr qint64 fewDead = 200;              // rows that may be dead in any index
constexpr qsizetype newest = 200;            // meetings whose protocol or analysis may well have just come
constexpr int mostBroken = 2;                // then something else is wrong
constexpr qint64 deadTooLong = 24 * 60 * 60; // seconds for which words of what is gone may stay

} // namespace

Indexer::Indexer(const Paths& paths, MeetingFiles files, FreeBytes freeBytes)
    : m_folder(paths.ownCache),
      m_path(paths.ownCache + u"/index-1.db"_s),
      m_watched{paths.logs, paths.vaultDir, paths.ownData + u"/margin"_s},
      m_files(std::move(files)),
      m_freeBytes(std::move(freeBytes))
{
}

QSet<QString> Indexer::withNewest(const QList<ListedMeeting>& meetings, QSet<QString> touched)
{
    QList<files::Identity> folders;
    for (const QString& folder : std::as_const(m_watched))
        folders.append(files::identityOfFolder(folder));
    if (std::exchange(m_folders, folders) == folders) return touched;
    for (const ListedMeeting& one : meetings.first(std::min(newest, meetings.size())))
        touched.insert(one.meeting.id);
    return touched;
}

Indexer::Outcome Indexer::bringUp(const QList<ListedMeeting>& listed, const Scope& scope,
                                  const Progress& progress)
{
    const Scope wanted{scope.all || m_discarded,
                       withNewest(listed, QSet<QString>{scope.touched}.unite(std::exchange(m_restless, {})))};
    if (!wanted.all && wanted.touched.isEmpty()) return Outcome::Done;
    if (!files::makePrivateFolder(m_folder)) return Outcome::Failed;
    const files::Lock lock{m_folder + u"/index.lock"_s, 0ms};
    if (!lock.held()) return Outcome::Elsewhere;
    if (m_freeBytes(m_folder).value_or(leastSpace) < leastSpace) return Outcome::NoSpace;
    if (m_discarded.exchange(false)) IndexFile::remove(m_path);
    QList<Meeting> meetings;
    meetings.reserve(listed.size());
    for (const ListedMeeting& one : listed)
        meetings.append(one.meeting);
    while (true) {
        Outcome outcome = Outcome::Failed;
        bool broken = false;
        bool anew = false;
        {
            IndexFile index{m_path, IndexFile::Mode::Write};
            if (index.isOpen()) outcome = update(index, meetings, wanted, progress);
            broken = index.broken();
            anew = outcome == Outcome::Done && isWorthMakingAnew(index);
        }
        if (anew) return makeAnew(meetings, progress);
        if (outcome != Outcome::Failed || !broken || ++m_broken >= mostBroken) return outcome;
        IndexFile::remove(m_path);
    }
}

Indexer::Outcome Indexer::update(IndexFile& index, const QList<Meeting>& meetings, const Scope& scope,
                                 const Progress& progress)
{
    QHash<QString, QByteArray> known = index.known();
    QList<Changed> changed;
    for (const Meeting& meeting : meetings) {
        if (m_stop) return Outcome::Stopped;
        const auto before = known.constFind(meeting.id);
        const bool looks = scope.all || before == known.cend() || scope.touched.contains(meeting.id);
        if (looks) {
            const QByteArray state = m_files.state(meeting);
            const bool settled = MeetingFiles::isSettled(state);
            if (!settled) m_restless.insert(meeting.id);
            if (before == known.cend() || *before != state || !settled) changed.append({meeting, state});
        }
        if (before != known.cend()) known.erase(before);
    }
    if (!known.isEmpty() && !index.forget(known.keys())) return Outcome::Failed;
    const Outcome outcome = fill(index, changed, progress);
    return outcome == Outcome::Done && !m_restless.isEmpty() ? Outcome::Restless : outcome;
}

Indexer::Outcome Indexer::fill(IndexFile& index, const QList<Changed>& meetings, const Progress& progress)
{
    words::Keys keys;
    const bool few = meetings.size() <= batch && index.hasCounted();
    for (qsizetype done = 0; done < meetings.size();) {
        if (!progress(done, meetings.size())) return Outcome::Stopped;
        if (m_freeBytes(m_folder).value_or(leastSpace) < leastSpace) return Outcome::NoSpace;
        QList<IndexDocument> documents;
        for (const auto& [meeting, state] : meetings.sliced(done, std::min(batch, meetings.size() - done))) {
            auto document = documentOf(meeting, m_files.read(meeting, Language::fallback), keys, m_stop);
            if (m_stop || !document) return Outcome::Stopped;
            document->files = state;
            documents.append(*document);
        }
        if (!index.put(documents) || (few && !index.countWords(documents))) return Outcome::Failed;
        done += documents.size();
    }
    if (!few && !index.countWords()) return Outcome::Failed;
    progress(meetings.size(), meetings.size());
    return Outcome::Done;
}

bool Indexer::isWorthMakingAnew(IndexFile& index) const
{
    const IndexFile::Size size = index.size();
    if (size.dead >= fewDead && size.dead * 10 > size.alive + size.dead) return true;
    return size.oldestGone && *size.oldestGone > deadTooLong;
}

Indexer::Outcome Indexer::makeAnew(const QList<Meeting>& meetings, const Progress& progress)
{
    const QString beside = m_path + u".new"_s;
    IndexFile::remove(beside);
    {
        IndexFile index{beside, IndexFile::Mode::Write};
        QList<Changed> all;
        for (const Meeting& meeting : meetings)
            all.append({meeting, m_files.state(meeting)});
        const Outcome outcome = fill(index, all, progress);
        if (outcome != Outcome::Done || !index.settle()) {
            IndexFile::remove(beside);
            return outcome == Outcome::Done ? Outcome::Failed : outcome;
        }
    }
    // What stands in the old file's log would otherwise be taken for the new one's.
    if (IndexFile old{m_path, IndexFile::Mode::Write}; old.isOpen() && !old.settle()) {
        IndexFile::remove(beside);
        return Outcome::Done; // somebody reads; another time
    }
    IndexFile::removeLog(m_path);
    return files::moveOver(beside, m_path) ? Outcome::Done : Outcome::Failed;
}

} // namespace murmeli
