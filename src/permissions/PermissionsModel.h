#pragma once

#include "base/Lease.h"

#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace murmeli {

class Desktop;
class Processes;
struct Paths;

/// Whether the recorder may use the microphone and record the screen. The system ties both to the process
/// that records, so its own script is asked, and never while it records. Main thread only.
class PermissionsModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a pane and handed to it")
    Q_PROPERTY(State microphone READ microphone NOTIFY changed FINAL)
    Q_PROPERTY(State screen READ screen NOTIFY changed FINAL)
    Q_PROPERTY(bool askingMicrophone READ askingMicrophone NOTIFY changed FINAL)
    Q_PROPERTY(bool askingScreen READ askingScreen NOTIFY changed FINAL)
    Q_PROPERTY(bool screenLooksStale READ screenLooksStale NOTIFY changed FINAL)
    Q_PROPERTY(bool settingsMissing READ settingsMissing NOTIFY changed FINAL)
    Q_PROPERTY(bool allGranted READ allGranted NOTIFY changed FINAL)
    Q_PROPERTY(QStringList missingTitleKeys READ missingTitleKeys NOTIFY changed FINAL)

public:
    enum class Kind { Microphone, Screen };
    Q_ENUM(Kind)
    enum class State { Granted, Denied, NotAsked, Unknown };
    Q_ENUM(State)

    /// Asks for the state now and whenever the program becomes the active one. \param background for as long
    /// as it lives, a question that the user is being asked stays open, also when the model has gone with its
    /// pane.
    PermissionsModel(const Paths& paths, Processes& processes, Desktop& desktop, QObject& background);

    [[nodiscard]] State microphone() const { return m_microphone; }
    [[nodiscard]] State screen() const { return m_screen; }
    [[nodiscard]] bool askingMicrophone() const { return m_asking == Asking::Microphone; }
    [[nodiscard]] bool askingScreen() const { return m_asking == Asking::Screen; }
    /// A request for the screen ended without a grant: the system's entry is likely that of an earlier build.
    [[nodiscard]] bool screenLooksStale() const { return m_screenLooksStale; }
    /// The desktop had no page to show.
    [[nodiscard]] bool settingsMissing() const { return m_settingsMissing; }
    [[nodiscard]] bool allGranted() const;
    [[nodiscard]] QStringList missingTitleKeys() const;

    /// The texts of several keys in one line.
    Q_INVOKABLE static QString names(const QStringList& titleKeys, const QString& language);

    Q_INVOKABLE void refresh();

    /// Has the system ask the user; where it would not ask again, or after a refusal, shows its settings.
    Q_INVOKABLE void request(murmeli::PermissionsModel::Kind kind);

    Q_INVOKABLE void openSettings(murmeli::PermissionsModel::Kind kind);

signals:
    void changed();

private:
    enum class Asking { Nothing, Microphone, Screen };

    void run(const QString& flag, bool userDecides, std::function<void(const QByteArray&)> done);
    void apply(const QByteArray& output);
    [[nodiscard]] bool recordingNow() const;
    [[nodiscard]] State stateOf(Kind kind) const;

    QString m_python;
    QString m_script;
    QString m_stateFile;
    Processes& m_processes;
    Desktop& m_desktop;
    QObject& m_background;
    State m_microphone = State::Unknown; ///< also before the first answer
    State m_screen = State::Unknown;
    Asking m_asking = Asking::Nothing;
    Lease m_look; ///< at the state, on its way
    bool m_screenLooksStale = false;
    bool m_settingsMissing = false;
};

} // namespace murmeli
