#pragma once

#include "IndexFile.h"
#include "MeetingText.h"
#include "base/Files.h"
#include "meetings/MeetingScanner.h"

#include <QSet>

#include <atomic>
#include <functional>

namespace murmeli {

/// Brings the index up to what the meetings' files say. One thread at a time; waits for the disk.
class Indexer {
public:
    enum class Outcome {
        Done,
        Restless, ///< but files were being written, so that it has to look again
        Stopped,
        Elsewhere, ///< another process writes
        NoSpace,
        Failed,
    };
    /// Told of every step; \return false to stop.
    using Progress = std::function<bool(qsizetype done, qsizetype all)>;

    using FreeBytes = std::function<std::optional<qint64>(const QString& folder)>;

    Indexer(const Paths& paths, MeetingFiles files, FreeBytes freeBytes = files::freeBytes);

    struct Scope {
        bool all = false;      ///< every meeting's files are looked at; else those of
        QSet<QString> touched; ///< these ids, and of the newest when one of the folders has changed
    };
    /// \param meetings all there are, the newest first.
    Outcome bringUp(const QList<ListedMeeting>& meetings, const Scope& scope, const Progress& progress);

    /// Ends bringUp() before its next meeting. Any thread.
    void stop() { m_stop = true; }
    /// The next look makes the index anew. Any thread.
    void discard() { m_discarded = true; }

    [[nodiscard]] const QString& path() const { return m_path; }

    static constexpr qint64 leastSpace = 200 * 1024 * 1024; ///< bytes that the disk must have free

private:
    QSet<QString> withNewest(const QList<ListedMeeting>& meetings, QSet<QString> touched);
    Outcome update(IndexFile& index, const QList<Meeting>& meetings, const Scope& scope,
                   const Progress& progress);
    /// A meeting, and the state in which its files were before they are read.
    struct Changed {
        Meeting meeting;
        QByteArray state;
    };
    Outcome fill(IndexFile& index, const QList<Changed>& meetings, const Progress& progress);
    [[nodiscard]] bool isWorthMakingAnew(IndexFile& index) const;
    Outcome makeAnew(const QList<Meeting>& meetings, const Progress& progress);

    QString m_folder;
    QString m_path;
    QStringList m_watched;            ///< folders in which protocols, analyses and marks come
    QList<files::Identity> m_folders; ///< as they were at the last look
    MeetingFiles m_files;
    FreeBytes m_freeBytes;
    QSet<QString> m_restless; ///< whose files were being written at the last look
    int m_broken = 0;         ///< times that the file was damaged
    std::atomic<bool> m_stop = false;
    std::atomic<bool> m_discarded = false;
};

} // namespace murmeli
