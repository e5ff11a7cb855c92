#pragma once

#include <QObject>

#include <optional>

namespace murmeli {

class AppState;
class OwnSettings;
class Prefs;
class Scheduler;

/// Asks after a recording that runs longer than meetings do. Never ends one. Main thread only.
class LongRecording final : public QObject {
    Q_OBJECT

public:
    LongRecording(const AppState& state, const Prefs& prefs, const OwnSettings& settings,
                  const Scheduler& scheduler, QObject* parent = nullptr);

    [[nodiscard]] bool isAsking() const { return m_asking; }
    [[nodiscard]] qint64 seconds() const; ///< since the recording began, in whole minutes
    /// Until the service ends it by itself; nothing when that is not to be expected.
    [[nodiscard]] std::optional<qint64> secondsLeft() const;

    /// The meeting goes on: asks again in 45 minutes.
    void goOn();

signals:
    void changed();
    void asked(); ///< the question has just come up

private:
    void look();

    const AppState& m_state;
    const Prefs& m_prefs;
    const OwnSettings& m_settings;
    const Scheduler& m_scheduler;
    double m_since = 0; ///< of the recording that is looked at; seconds since 1970 UTC, as the next
    double m_next = 0;  ///< when to ask
    qint64 m_told = 0;  ///< seconds() as they were told last
    bool m_asking = false;
};

} // namespace murmeli
