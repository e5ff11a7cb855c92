#pragma once

#include "Ledger.h"

#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <optional>

namespace murmeli {

struct Meeting;
class Processes;
class Scheduler;

/// Changes items of protocols in their summary files, one after the other: notes each change in the ledger,
/// writes the file as it is now and has the protocol rendered anew. Main thread only, works beside it.
class ProtocolWriter final : public QObject {
    Q_OBJECT

public:
    enum class Written {
        Yes,
        Unlisted, ///< written, but the ledger could not be: it cannot be taken back
        Changed,  ///< no item reads as the change expects; nothing was written
        NotFound, ///< none that can be written
        Failed,
    };
    /// Where the item stands that a change means: at the very place, or wherever one item of its section
    /// reads so.
    enum class Where { There, Anywhere };
    /// The item that a change means, in a protocol as it is now. Any thread.
    static std::optional<ProtocolItem> meant(const QList<ProtocolItem>& items, const ProtocolChange& change,
                                             Where where);

    using Done = std::function<void(Written written, const ProtocolChange& change)>;

    ProtocolWriter(const Paths& paths, Processes& processes, Scheduler& scheduler, QObject* parent = nullptr);
    ~ProtocolWriter() override;
    Q_DISABLE_COPY_MOVE(ProtocolWriter)

    /// Puts `after` in the place of `before`. Id, time and field of the change are made here, and its index
    /// is where it was written. `done` runs unless `context` has gone; the work goes on without it.
    void write(const Meeting& meeting, ProtocolChange change, Where where, QObject* context, Done done);

    /// Ends in the ledger what an earlier run of the program has only begun.
    void settle(const Meeting& meeting);

private:
    struct Attempt;
    void go(const std::shared_ptr<Attempt>& attempt);

    const Paths& m_paths;
    Processes& m_processes;
    Scheduler& m_scheduler;
    double m_start;     ///< of this run, in seconds since 1970 UTC
    QThreadPool m_disk; ///< one thread: who writes the same file twice must not overtake himself
};

} // namespace murmeli
