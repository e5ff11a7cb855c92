#include "TrayIcon.h"

namespace murmeli {

TrayIcon::TrayIcon()
{
    m_state = m_menu.addAction(QString{});
    m_state->setEnabled(false);
    m_menu.addSeparator();
    m_record = m_menu.addAction(QString{}, this, &StatusItem::recordChosen);
    m_open = m_menu.addAction(QString{}, this, &StatusItem::openChosen);
    m_window = m_menu.addAction(QString{}, this, &StatusItem::windowChosen);
    m_settings = m_menu.addAction(QString{}, this, &StatusItem::settingsChosen);
    m_menu.addSeparator();
    m_quit = m_menu.addAction(QString{}, this, &StatusItem::quitChosen);
}

void TrayIcon::show()
{
    m_icon = std::make_unique<QSystemTrayIcon>(m_look);
    m_icon->setToolTip(m_name);
    // A quick second press comes as a double click; taken for nothing, it would be lost.
    connect(m_icon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                    emit pressed();
                if (reason == QSystemTrayIcon::Context && !m_icon->contextMenu())
                    m_menu.popup(geometry().bottomLeft());
            });
    m_icon->show();
}

void TrayIcon::setName(const QString& name)
{
    m_name = name;
    if (m_icon) m_icon->setToolTip(name);
}

void TrayIcon::setLook(const Look& look)
{
    m_look = look.icon;
    m_look.setIsMask(look.isTemplate);
    if (m_icon) m_icon->setIcon(m_look);
}

void TrayIcon::setMenu(const MenuTexts& texts)
{
    m_state->setText(texts.state);
    m_record->setText(texts.record);
    m_open->setText(texts.open);
    m_window->setText(texts.window);
    m_settings->setText(texts.settings);
    m_settings->setVisible(!texts.settings.isEmpty());
    m_quit->setText(texts.quit);
}

} // namespace murmeli
