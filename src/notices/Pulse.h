#pragma once

#include "Rhythm.h"
#include "base/Lease.h"
#include "permissions/PermissionsModel.h"
#include "service/AppState.h"
#include "service/OwnFile.h"
#include "service/RecordControl.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace murmeli {

/// Whether the recording service lives and does what it is asked for, as far as its files tell. Main thread
/// only; asks the disk beside it.
class Pulse final : public QObject {
    Q_OBJECT

public:
    enum class Trouble { None, Silent, NotStarted, NotStopped };
    /// Why it did not do what it was asked for: the first of these that holds.
    enum class Reason { NotInstalled, Denied, DiskFull, Silent, Busy, NotTaken, NoAnswer };

    /// What it stands among; all of it outlives the object.
    struct Ground {
        const Paths& paths;
        AppState& state;
        const RecordControl& record;
        Processes& processes;
        Desktop& desktop;
        Scheduler& scheduler;
        std::function<bool()> settingUp; ///< there is nothing to be said yet
        /// Bytes that the user may still write on the disk of a folder. Called on another thread, where a
        /// dead disk may keep it beyond the end of everything else.
        std::function<std::optional<qint64>(const QString& folder)> freeBytes;
    };
    static constexpr qint64 leastFree = 500'000'000; ///< bytes

    /// What is known of the service from one run to the next: "rhythm".
    static OwnFile file(const Paths& paths);

    explicit Pulse(const Ground& ground, QObject* parent = nullptr);
    ~Pulse() override;
    Q_DISABLE_COPY_MOVE(Pulse)

    [[nodiscard]] Trouble trouble() const;
    [[nodiscard]] Reason reason() const;          ///< of a recording that did not start or stop
    [[nodiscard]] QStringList deniedKeys() const; ///< titles of the permissions that were refused
    [[nodiscard]] std::optional<qint64> freeBytes() const { return m_free; } ///< when it was asked last
    [[nodiscard]] bool diskRunsOut() const;                                  ///< during a recording

    /// When the service wrote its state last, in seconds since 1970 UTC.
    [[nodiscard]] double lastWritten() const { return m_lastWritten; }
    /// How long that was ago, in whole minutes after the first, and in tens of seconds before.
    [[nodiscard]] qint64 secondsQuiet() const;

    /// The user has seen that it did not do what it was asked for.
    void dismissTrouble();
    void dismissDisk(); ///< for this recording

signals:
    void changed();
    void unanswered(); ///< trouble() has just become NotStarted or NotStopped
    void diskRanLow(); ///< once a recording

private:
    void look(const QString& from, const QString& to);
    void listen(const QString& status);
    void followRequest();
    void check(RecordControl::Pending request);
    void blame(RecordControl::Pending request);
    void watchDisk(bool recording);
    void askDisk();
    void remember();
    [[nodiscard]] bool isSilent() const;

    Ground m_ground;
    OwnFile m_file;
    Rhythm m_rhythm;
    bool m_silent = false;
    double m_lastLook = 0; ///< seconds since 1970 UTC, as the following two
    double m_quietSince = 0;
    double m_lastWritten = 0;
    qint64 m_quiet = 0;      ///< as it was told last
    double m_remembered = 0; ///< when the file was written, or not at all
    AppState::Reading m_seen;
    RecordControl::Pending m_unanswered = RecordControl::Pending::None;
    bool m_requestLies = false;   ///< at that time
    bool m_takesRequests = false; ///< it has taken one
    bool m_waitingToBeTaken = false;
    std::unique_ptr<PermissionsModel> m_permissions; ///< while the reason is shown
    std::optional<qint64> m_free;
    bool m_diskSeen = false; ///< what it said was dismissed
    bool m_diskSaid = false;
    bool m_asking = false; ///< the disk, which may be dead
    Lease m_diskWatch;
};

} // namespace murmeli
