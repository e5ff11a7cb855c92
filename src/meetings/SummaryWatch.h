#pragma once

#include "Meeting.h"
#include "base/Lease.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QSet>

#include <optional>

namespace murmeli {

class AppState;
class Scheduler;
struct Paths;

/// Waits for the summaries of recordings that have ended, and reads each one that comes: from a recording's
/// end until its own stands, at most six hours. At rest it does nothing. Main thread only; reads beside it.
class SummaryWatch final : public QObject {
    Q_OBJECT

public:
    SummaryWatch(const Paths& paths, const AppState& state, Scheduler& scheduler, QObject* parent = nullptr);

    struct Awaited {
        double begin = 0; ///< of the recording, in seconds since 1970 UTC; 0 when nobody knows it
        double end = 0;
        bool operator==(const Awaited&) const = default;
    };
    /// Recordings whose summaries have not come, the oldest first.
    [[nodiscard]] const QList<Awaited>& awaited() const { return m_awaited; }
    [[nodiscard]] bool isWaiting() const { return !m_awaited.isEmpty(); }

signals:
    /// A summary has come. \param took seconds from its recording's end, when that was awaited.
    void appeared(const murmeli::Meeting& meeting, std::optional<double> took);
    void waitingChanged();

private:
    struct Found {
        QSet<QByteArray> names;  ///< of all summaries
        QList<Meeting> meetings; ///< that are new
        bool torn = false;       ///< one is still being written
    };
    void follow(const QString& from, const QString& to);
    void await(const Awaited& recording);
    void look();
    void take(const Found& found);

    QString m_folder;
    const AppState& m_state;
    Scheduler& m_scheduler;
    QFileSystemWatcher m_watcher;
    QList<Awaited> m_awaited;
    std::optional<QSet<QByteArray>> m_known; ///< names; nothing until the first look
    double m_begin = 0;                      ///< of the recording that runs
    bool m_first = true;                     ///< nothing was heard of the service yet
    bool m_looking = false;
    bool m_again = false;
    Lease m_soon;
    Lease m_regularly;
};

} // namespace murmeli
