#pragma once

#include "ui/WindowActions.h"

#include <QQuickView>

#include <memory>

namespace murmeli {

class AppState;
class AuthManager;
class ClickOutside;
class NoticeBoard;
class PanelModel;
class RecordControl;
class RecordingMarks;
class Updater;

/// A window that holds the panel view: floating under the status item, or an ordinary window where the
/// desktop has no tray. Takes the keyboard although the program is not the active one. Main thread only.
class KeyPanel final : public QQuickView {
    Q_OBJECT

public:
    enum class Kind { Floating, Ordinary };

    /// What the panel shows; all of it outlives the panel.
    struct Parts {
        AppState& state;
        RecordControl& record;
        PanelModel& panel;
        AuthManager& account;
        Updater& updater;
        NoticeBoard& board;
        RecordingMarks& marks;
    };

    KeyPanel(QQmlEngine& engine, Kind kind, const Parts& parts);
    ~KeyPanel() override;
    Q_DISABLE_COPY_MOVE(KeyPanel)

    /// Open from the moment it is asked to, closed from the moment it is asked to, however it fades.
    [[nodiscard]] bool isOpen() const { return m_open; }

    /// Without the shadow around it, in device-independent pixels.
    [[nodiscard]] QSize contentSize() const;

    /// Shows the panel so that its body and arrow cover `place`, below or above the `icon`, to which it
    /// leaves its presses; called again it moves the panel there.
    void openAt(const QRect& place, const QRect& icon = {}, bool above = false);
    /// Shows it as an ordinary window, or brings it forward.
    /// \param escapeCloses for a window that an icon brings back
    void openOrdinary(bool escapeCloses);
    void closePanel();

signals:
    void contentSizeChanged();
    void pressedOutside();

protected:
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void setOpen(bool open);
    void fitScreen();

    WindowActions m_actions;
    PanelModel& m_panel;
    Kind m_kind;
    bool m_open = false;
    bool m_escapeCloses;
    std::unique_ptr<ClickOutside> m_clickOutside;
};

} // namespace murmeli
