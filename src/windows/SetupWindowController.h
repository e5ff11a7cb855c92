#pragma once

#include "permissions/PermissionsModel.h"
#include "setup/SetupRunner.h"

#include <QObject>

#include <memory>

class QQmlEngine;

namespace murmeli {

class AppWindow;
class Language;
class Updater;

/// The first-run setup: the window, the installation in it and the permissions. Closing the window does not
/// end the installation; the window comes back when it has ended. Main thread only.
class SetupWindowController final : public QObject {
    Q_OBJECT

public:
    /// \param background as PermissionsModel takes it.
    SetupWindowController(const Paths& paths, SetupRunner::Place place, Processes& processes,
                          Scheduler& scheduler, QQmlEngine& engine, Language& language, Updater& updater,
                          QObject& background);
    ~SetupWindowController() override;
    Q_DISABLE_COPY_MOVE(SetupWindowController)

    /// Shows the window and starts what is to be installed, unless the program runs from a disk image.
    void show();

    /// Brings the window back, as it is.
    void present();

    void close();

signals:
    void installed();
    void done(); ///< the user has pressed the last button; the window is still there

private:
    SetupRunner m_runner;
    PermissionsModel m_permissions;
    Updater& m_updater;
    bool m_needed;
    std::unique_ptr<AppWindow> m_window;
};

} // namespace murmeli
