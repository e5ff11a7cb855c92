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
    void setName(const QString& name) override;
    void setMenu(const MenuTexts& texts) override;
    void show() override;
    [[nodiscard]] QRect geometry() const override { return m_icon ? m_icon->geometry() : QRect{}; }
    [[nodiscard]] bool hasTray() const override { return true; }

protected:
    /// To a tray that opens it for the right button alone.
    void handOverMenu() { m_icon->setContextMenu(&m_menu); }

private:
    QMenu m_menu;
    QAction* m_state;
    QAction* m_record;
    QAction* m_open;
    QAction* m_window;
    QAction* m_settings;
    QAction* m_quit;
    QIcon m_look;
    QString m_name;
    std::unique_ptr<QSystemTrayIcon> m_icon; ///< from show() on
};

} // namespace murmeli
