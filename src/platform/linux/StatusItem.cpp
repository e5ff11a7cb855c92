#include "TrayIcon.h"
#include "WindowSystem.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

/// Desktops with a StatusNotifier host recolour symbolic icons that they find by name; an XEmbed tray shows
/// the very pixels that it is given, so there a symbolic icon could be dark on dark.
class LinuxStatusItem final : public TrayIcon {
public:
    LinuxStatusItem()
    {
        handOverMenu();
        QDBusConnection bus = QDBusConnection::sessionBus();
        if (!bus.isConnected()) return;
        QDBusMessage call =
            QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                           u"org.freedesktop.DBus"_s, u"NameHasOwner"_s);
        call.setArguments({u"org.kde.StatusNotifierWatcher"_s});
        auto* watcher = new QDBusPendingCallWatcher{bus.asyncCall(call), this};
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
            const QDBusPendingReply<bool> reply = *watcher;
            m_recolours = !reply.isError() && reply.value();
            watcher->deleteLater();
            if (m_recolours) emit groundChanged();
        });
    }

    [[nodiscard]] Ground ground() const override
    {
        if (m_recolours || !qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
            return Ground::OfTheTheme;
        const auto dark = windowSystem::trayIsDark();
        if (!dark) return Ground::Unknown;
        return *dark ? Ground::Dark : Ground::Light;
    }

    void setLook(const Look& look) override
    {
        m_look = look;
        Look shown = look;
        if (m_recolours && !look.symbolName.isEmpty() && QIcon::hasThemeIcon(look.symbolName)) {
            shown.icon = QIcon::fromTheme(look.symbolName);
        }
        TrayIcon::setLook(shown);
    }

private:
    Look m_look;
    bool m_recolours = false;
};

} // namespace

std::unique_ptr<StatusItem> makeStatusItem() { return std::make_unique<LinuxStatusItem>(); }

} // namespace murmeli
