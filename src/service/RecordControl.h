#pragma once

#include "AppState.h"
#include "base/Lease.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

class Scheduler;

/// The one way to start or stop a recording: writes the request and remembers that it waits for the service's
/// answer. Main thread only.
class RecordControl final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to each view")
    Q_PROPERTY(Pending pending READ pending NOTIFY pendingChanged FINAL)
    Q_PROPERTY(bool waiting READ waiting NOTIFY pendingChanged FINAL)
    Q_PROPERTY(
        bool refused READ refused NOTIFY pendingChanged FINAL) ///< the last request could not be written

public:
    enum class Pending { None, Starting, Stopping };
    Q_ENUM(Pending)

    RecordControl(const Paths& paths, const AppState& state, Scheduler& scheduler, QObject* parent = nullptr);

    [[nodiscard]] Pending pending() const { return m_pending; }
    [[nodiscard]] bool waiting() const { return m_pending != Pending::None; }
    [[nodiscard]] bool refused() const { return m_refused; }

    /// Asks for a stop while recording, else for a start; does nothing while an answer is awaited, which is
    /// given up after 12 s. For as long a request counts as refused that could not be written.
    Q_INVOKABLE void toggle();

    /// Whether the last request that was written still lies where the service takes requests from.
    [[nodiscard]] bool requestLies() const;

signals:
    void pendingChanged();
    /// The service has not done in time what it was asked for; nothing is awaited any more.
    void unanswered(murmeli::RecordControl::Pending request);

private:
    void set(Pending pending, bool refused = false);

    QString m_commandFile;
    const AppState& m_state;
    Scheduler& m_scheduler;
    Pending m_pending = Pending::None;
    bool m_refused = false;
    files::Identity m_request; ///< the file of the latest one
    Lease m_patience;          ///< with it
};

} // namespace murmeli
