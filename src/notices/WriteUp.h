#pragma once

#include "base/Lease.h"
#include "meetings/Meeting.h"
#include "meetings/SummaryWatch.h"
#include "service/OwnFile.h"

#include <QList>
#include <QObject>

#include <optional>

namespace murmeli {

/// How long the service writes up a meeting, what is ready, and what takes longer than usual. Main thread
/// only.
class WriteUp final : public QObject {
    Q_OBJECT

public:
    WriteUp(const Paths& paths, SummaryWatch& summaries, Scheduler& scheduler, QObject* parent = nullptr);

    /// From a recording's end to its summary, in whole minutes for the meeting that is written up; nothing
    /// while that is not known.
    [[nodiscard]] std::optional<qint64> usualMinutes() const;
    [[nodiscard]] bool isSlow() const { return m_slow; }
    /// The latest meeting that has become ready; nothing when it was seen, or that is long ago.
    [[nodiscard]] const std::optional<Meeting>& ready() const { return m_ready; }

    void dismissSlow();
    void dismissReady();

signals:
    void changed();
    void becameReady();
    void becameSlow();

private:
    void take(const Meeting& meeting, std::optional<double> took);
    void watch();
    void look();
    [[nodiscard]] std::optional<double> usual(const SummaryWatch::Awaited& recording) const; ///< seconds

    OwnFile m_file;
    SummaryWatch& m_summaries;
    Scheduler& m_scheduler;
    QList<double> m_ratios; ///< of the time it took to the meeting's length; the latest last
    std::optional<Meeting> m_ready;
    bool m_slow = false;
    double m_slowSeen = 0; ///< end of the recording whose slowness was dismissed
    Lease m_regularly;
    Lease m_forget;
};

} // namespace murmeli
