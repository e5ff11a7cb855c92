#pragma once

#include "StatusItem.h"

#include <QMenu>
#include <QSystemTrayIcon>

namespace murmeli {

/// The part of a status item that Qt does alike on all systems.
class TrayIcon : public StatusItem {
public:
    TrayIcon();

    void setLook(const Look& look) override;
    void setName(const QString& name) override { m_icon.setToolTip(name); }
    void setMenu(const MenuTexts& texts) override;
    void show() override { m_icon.show(); }
    [[nodiscard]] QRect geometry() const override { return m_icon.geometry(); }
    [[nodiscard]] bool hasTray() const override { return QSystemTrayIcon::isSystemTrayAvailable(); }

protected:
    /// To a tray that opens it for the right button alone.
    void handOverMenu() { m_icon.setContextMenu(&m_menu); }

private:
    QMenu m_menu;
    QAction* m_state;
    QAction* m_record;
    QAction* m_open;
    QAction* m_window;
    QAction* m_settings;
    QAction* m_quit;
    QSystemTrayIcon m_icon;
};

} // namespace murmeli
