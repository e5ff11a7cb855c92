#pragma once

#include "account/AuthManager.h"
#include "glossary/GlossaryStore.h"
#include "notices/Notifier.h"
#include "notices/ToastCenter.h"
#include "panel/KeyPanel.h"
#include "panel/PanelModel.h"
#include "platform/Installation.h"
#include "service/AppState.h"
#include "service/RecordControl.h"
#include "settings/SettingsModel.h"
#include "update/Updater.h"
#include "windows/MainWindowController.h"
#include "windows/SettingsWindowController.h"
#include "windows/SetupWindowController.h"
#include "windows/UpdateWindowController.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QQmlEngine>
#include <QTranslator>

#include <memory>

namespace murmeli {

class Http;
class Language;
class Look;
class Prefs;
class Processes;
class Scheduler;
class SignInSession;
class StatusItem;

/// Ties the status item, the panel, the toasts and the state together. Lives as long as the program.
/// Main thread only.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    /// What the program stands on, made by main() and outliving it.
    struct Ground {
        const Paths& paths;
        Prefs& prefs;
        Language& language;
        Look& look;
        Scheduler& scheduler;
        Http& http;
        Processes& processes;
        SignInSession& signInSession;
        StatusItem& statusItem;
        Installation installation;
    };

    explicit AppDelegate(const Ground& ground, QObject* parent = nullptr);
    ~AppDelegate() override;
    Q_DISABLE_COPY_MOVE(AppDelegate)

    /// Shows the icon at once, and makes the panel as soon as the icon stands; the setup window too where the
    /// engine is missing or `forceSetup` asks for it.
    void start(bool forceSetup);

    void toggle();
    void openPanel();
    void closePanel();

    /// A later start of the program handed over a line: an address of ours, or a wish to be seen.
    void told(const QString& line);

private:
    void connectPanel();
    void connectAccount();
    void showToast(const ToastText& toast);
    void showSetup();
    void afterSetup();
    void followStatus();
    void updateIcon();
    void updateTexts();
    void translateQt(); ///< dialogs and network errors speak the interface's language too
    void placePanel();
    void showWindow();
    KeyPanel* floatingPanel();
    KeyPanel::Parts panelParts() { return {m_state, m_record, m_panel, m_account, m_updater}; }
    [[nodiscard]] bool panelIsOpen() const;
    [[nodiscard]] QRect anchor() const;

    Ground m_ground;
    QTranslator m_qtTexts;
    AppState m_state;
    RecordControl m_record;
    PanelModel m_panel;
    AuthManager m_account;
    Updater m_updater;
    SettingsModel m_settings;
    GlossaryStore m_glossary;
    QQmlEngine m_engine;
    ToastCenter m_toasts;
    Notifier m_notifier;
    UpdateWindowController m_updateWindow;
    SettingsWindowController m_settingsWindow;
    MainWindowController m_mainWindow;
    std::unique_ptr<SetupWindowController> m_setupWindow;
    std::unique_ptr<KeyPanel> m_floating;
    std::unique_ptr<KeyPanel> m_window;  ///< the panel in an ordinary window
    std::unique_ptr<QObject> m_blinking; ///< while it lives, the icon blinks
    bool m_blinkBright = true;
    QElapsedTimer m_closedFromOutside;
    QPoint m_pressedAt; ///< where the pointer last pressed the icon, on desktops that keep its place to
                        ///< themselves
};

} // namespace murmeli
