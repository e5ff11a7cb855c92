#pragma once

#include "Program.h"
#include "TrayFace.h"
#include "notices/ToastCenter.h"
#include "panel/PanelHost.h"
#include "ui/ViewEngine.h"
#include "windows/OnDemandWindow.h"

#include <QObject>
#include <QTranslator>

#include <memory>

namespace murmeli {

class Look;
class StatusItem;

/// Ties the program to the tray, the panel and the windows, and does nothing else. Main thread only.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    AppDelegate(Program& program, Desktop& desktop, Scheduler& scheduler, Look& look, StatusItem& statusItem);
    ~AppDelegate() override;
    Q_DISABLE_COPY_MOVE(AppDelegate)

    /// Shows the icon at once; the rest is made when somebody looks.
    void start(bool forceSetup);

private:
    void connectTray();
    void connectWindows();
    void translateQt(); ///< dialogs and network errors speak the interface's language too
    void showMain();
    void showSetup();
    void endSetup();
    void showToast(const ToastText& toast);

    Program& m_program;
    Scheduler& m_scheduler;
    Look& m_look;
    StatusItem& m_statusItem;
    QString m_placeFile; ///< remembers the main window's size and place
    QTranslator m_qtTexts;
    ViewEngine m_views;
    ToastCenter m_toasts;
    TrayFace m_face;
    PanelHost m_panel;
    OnDemandWindow m_settings;
    OnDemandWindow m_update;
    OnDemandWindow m_quit;
    bool m_trayDecided = false; ///< whether there is one
    bool m_panelWanted = false; ///< before that
    std::unique_ptr<AppWindow> m_main;
    std::unique_ptr<AppWindow> m_setup;
};

} // namespace murmeli
