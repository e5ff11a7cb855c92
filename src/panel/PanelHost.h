#pragma once

#include "KeyPanel.h"

#include <QObject>
#include <QPoint>
#include <QRect>

#include <memory>

namespace murmeli {

class Look;
class Scheduler;
class StatusItem;
class ViewEngine;

/// Opens the panel under the status item, places, closes and toggles it; where the desktop has no tray,
/// or lets no program place its windows, it is an ordinary window. Main thread only.
class PanelHost final : public QObject {
    Q_OBJECT

public:
    PanelHost(ViewEngine& views, Look& look, Scheduler& scheduler, StatusItem& statusItem,
              const KeyPanel::Parts& parts, QObject* parent = nullptr);
    ~PanelHost() override;
    Q_DISABLE_COPY_MOVE(PanelHost)

    /// Makes the panel ahead of a press that is likely to come.
    void prepare();

    void toggle(); ///< a press on the status item
    void open();
    void close();
    /// In a window of its own, until it can stand under the icon.
    void openOrdinary();
    void raise(); ///< over what has come meanwhile
    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] QRect shape() const; ///< of the open floating panel on the screen; empty when there is none

signals:
    void activated(); ///< the floating panel has the keyboard

private:
    KeyPanel* floating();
    void dropWindows();
    void place();
    void pressedOutside();
    [[nodiscard]] QRect anchor() const;

    ViewEngine& m_views;
    Look& m_look;
    Scheduler& m_scheduler;
    StatusItem& m_statusItem;
    KeyPanel::Parts m_parts;
    std::unique_ptr<KeyPanel> m_floating;
    std::unique_ptr<KeyPanel> m_window; ///< where there is no tray
    double m_closedFromOutside = 0;     ///< when, in seconds since 1970
    QRect m_shape;
    QPoint m_pressedAt; ///< where the pointer last pressed the icon, on desktops that keep its place to
                        ///< themselves
};

} // namespace murmeli
