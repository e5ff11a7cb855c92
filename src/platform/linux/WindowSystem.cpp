#include "WindowSystem.h"

#include "SessionBus.h"
#include "X11.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDir>
#include <QFont>
#include <QGuiApplication>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace murmeli::windowSystem {

void prepare()
{
    if (!sessionBus::answers()) sessionBus::giveUp();
    // Wayland lets no program place its windows, and the panel belongs under the icon.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && qEnvironmentVariableIsSet("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "xcb;wayland");
    }
}

bool drawsInSoftware()
{
    const bool named = qEnvironmentVariableIsSet("QT_QUICK_BACKEND") ||
                       qEnvironmentVariableIsSet("QSG_RHI_BACKEND") ||
                       qEnvironmentVariableIsSet("QMLSCENE_DEVICE");
    return !named && QDir{u"/dev/dri"_s}.entryList({u"renderD*"_s}, QDir::System).isEmpty();
}

// On Wayland screens come after the application's font, from which every font of a view takes the resolution.
void settle()
{
    const QFont early = QGuiApplication::font();
    QFont font{early.families(), early.pointSize()};
    font.setPointSizeF(early.pointSizeF());
    QGuiApplication::setFont(font);
}

bool placesWindows() { return !QGuiApplication::platformName().startsWith("wayland"_L1); }

bool knowsPointer() { return placesWindows() && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY"); }

void notify(const QString& title, const QString& message)
{
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.Notifications"_s,
                                                       u"/org/freedesktop/Notifications"_s,
                                                       u"org.freedesktop.Notifications"_s, u"Notify"_s);
    constexpr int shownFor = 4500; // milliseconds
    call.setArguments(
        {QGuiApplication::applicationDisplayName(), 0U, QGuiApplication::applicationName(), title,
         message.toHtmlEscaped(), QStringList{},
         QVariantMap{{u"desktop-entry"_s, QGuiApplication::desktopFileName()}, {u"transient"_s, true}},
         shownFor});
    QDBusConnection::sessionBus().asyncCall(call);
}

bool compositing()
{
    if (!placesWindows()) return true; // Wayland always composes
    return x11::ownerOf("_NET_WM_CM_S0") != XCB_NONE;
}

void floatEverywhere(QWindow*) {} // the window types of the panel and the toasts say it already

void bringForward(QWindow* window, bool withKeyboard)
{
    window->raise();
    if (withKeyboard) window->requestActivate();
}

void extendUnderTitle(QWindow*) {} // titles are the window manager's

} // namespace murmeli::windowSystem
