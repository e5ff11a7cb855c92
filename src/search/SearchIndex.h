#pragma once

#include "Indexer.h"
#include "base/Lease.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QThreadPool>

#include <memory>

namespace murmeli {

class AppState;
class Scheduler;

/// Keeps the index of meetings as their files are, beside the main thread and with what the processor has to
/// spare. Its own functions are for the main thread only.
class SearchIndex final : public QObject {
    Q_OBJECT

public:
    enum class State {
        Asleep, ///< nobody has asked for it yet, or a recording keeps it from being built
        Building,
        Ready,
        NoSpace,
        Failed,
    };

    SearchIndex(const Paths& paths, const AppState& state, Scheduler& scheduler, Indexer::FreeBytes freeBytes,
                QObject* parent = nullptr);
    ~SearchIndex() override;
    Q_DISABLE_COPY_MOVE(SearchIndex)

    /// Looks at the files of some meetings, and of all when none has been done or long ago. \param meetings
    /// all there are, the newest first; the same as before when there are none given.
    void follow(const QList<ListedMeeting>& meetings, const QStringList& touched);

    /// Throws the index away and makes it anew, once the meetings are known.
    void makeAnew();

    /// Makes it anew since a search found it missing or damaged, though not again and again.
    void mend();

    /// Counts what there is; measured() tells.
    void measure();
    [[nodiscard]] qint64 bytes() const { return m_size.bytes; }
    [[nodiscard]] qint64 meetings() const { return m_size.meetings; }

    [[nodiscard]] State state() const { return m_state; }
    /// Whether meetings are missing in it because it is being built.
    [[nodiscard]] bool isIncomplete() const { return m_state == State::Building && m_all > 0; }
    [[nodiscard]] qint64 done() const { return m_done; } ///< of all(), while it is being built
    [[nodiscard]] qint64 all() const { return m_all; }

    [[nodiscard]] const QString& path() const { return m_path; }
    [[nodiscard]] const MeetingFiles& files() const { return m_files; }

signals:
    void changed(); ///< state, progress, or what is found
    void measured();

private:
    struct Progress {
        std::atomic<qint64> done = 0, all = 0;
        std::atomic<bool> pause = false;
    };
    struct Size {
        qint64 bytes = 0;
        qint64 meetings = 0;
    };
    void start();
    void take(Indexer::Outcome outcome);
    void followService();
    void watch();
    void tellProgress();

    const AppState& m_service;
    Scheduler& m_scheduler;
    QString m_path;
    QString m_vault;
    MeetingFiles m_files;
    std::shared_ptr<Indexer> m_indexer; ///< used by one look at a time
    std::shared_ptr<Progress> m_progress = std::make_shared<Progress>();
    QList<ListedMeeting> m_meetings;
    QSet<QString> m_touched;             ///< to be looked at next
    std::optional<double> m_lookedAtAll; ///< when, in seconds since 1970 UTC
    std::optional<double> m_mended;      ///< the same
    bool m_built = false;                ///< it has held all meetings once
    bool m_running = false;
    bool m_again = false;
    bool m_made = false; ///< anew, by wish
    State m_state = State::Asleep;
    qint64 m_done = 0, m_all = 0;
    Size m_size;
    QFileSystemWatcher m_watcher;
    Lease m_soon;
    Lease m_telling;
    QThreadPool m_writer; ///< one thread
};

} // namespace murmeli
