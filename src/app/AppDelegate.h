#pragma once

#include "Notifier.h"
#include "PanelModel.h"
#include "RecordControl.h"
#include "ToastCenter.h"
#include "service/AppState.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QQmlEngine>

#include <memory>

namespace murmeli {

class KeyPanel;
class Language;
class Look;
class Prefs;
class Scheduler;
class StatusItem;

/// Ties the status item, the panel, the toasts and the state together. Lives as long as the program.
/// Main thread only.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    AppDelegate(const Paths& paths, Prefs& prefs, Language& language, Look& look, Scheduler& scheduler,
                StatusItem& statusItem, QObject* parent = nullptr);
    ~AppDelegate() override;
    Q_DISABLE_COPY_MOVE(AppDelegate)

    /// Shows the icon at once, and makes the panel as soon as the icon stands.
    void start();

    void toggle();
    void openPanel();
    void closePanel();

    /// A later start of the program handed over a line: an address of ours, or a wish to be seen.
    void told(const QString& line);

    AppState& state() { return m_state; }
    PanelModel& panel() { return m_panel; }
    RecordControl& record() { return m_record; }

private:
    void connectPanel();
    void followStatus();
    void updateIcon();
    void updateTexts();
    void placePanel();
    void showWindow();
    KeyPanel* floatingPanel();
    [[nodiscard]] QRect anchor() const;

    const Paths& m_paths;
    Language& m_language;
    Look& m_look;
    Scheduler& m_scheduler;
    StatusItem& m_statusItem;
    AppState m_state;
    RecordControl m_record;
    PanelModel m_panel;
    QQmlEngine m_engine;
    ToastCenter m_toasts;
    Notifier m_notifier;
    std::unique_ptr<KeyPanel> m_floating;
    std::unique_ptr<KeyPanel> m_window;  ///< the panel in an ordinary window
    std::unique_ptr<QObject> m_blinking; ///< while it lives, the icon blinks
    bool m_blinkBright = true;
    QElapsedTimer m_closedFromOutside;
    QPoint m_pressedAt; ///< where the pointer last pressed the icon, on desktops that keep its place to
                        ///< themselves
};

} // namespace murmeli
