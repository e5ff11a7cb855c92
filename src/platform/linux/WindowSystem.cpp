#include "WindowSystem.h"

#include "SessionBus.h"
#include "X11.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QGuiApplication>
#include <QWindow>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli::windowSystem {

namespace {

/// Of a render node. Drivers without any hardware have one too, and that of a virtual machine has one also
/// where its host draws nothing for it: bit 0 of what host and guest have agreed on tells.
bool hasHardware(const QDir& device)
{
    const QString driver = QFileInfo{QFile::symLinkTarget(device.filePath(u"driver"_s))}.fileName();
    const QString name = QFileInfo{device.canonicalPath()}.fileName();
    if (name == "vgem"_L1 || name == "vkms"_L1 || driver == "vgem"_L1 || driver == "vkms"_L1) return false;
    QStringList places{device.filePath(u"features"_s)};
    for (const QString& part : device.entryList({u"virtio*"_s}, QDir::Dirs))
        places.append(device.filePath(part + u"/features"_s));
    return std::ranges::none_of(places, [](const QString& place) {
        QFile features{place};
        return features.open(QIODevice::ReadOnly) && features.read(1) == "0";
    });
}

} // namespace

void prepare()
{
    if (!sessionBus::answers()) sessionBus::giveUp();
    // Wayland lets no program place its windows, and the panel belongs under the icon.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && qEnvironmentVariableIsSet("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "xcb;wayland");
    }
}

bool drawsInSoftware(const QString& root)
{
    const bool named = qEnvironmentVariableIsSet("QT_QUICK_BACKEND") ||
                       qEnvironmentVariableIsSet("QSG_RHI_BACKEND") ||
                       qEnvironmentVariableIsSet("QMLSCENE_DEVICE");
    const QStringList nodes =
        QDir{root + u"/dev/dri"_s}.entryList({u"renderD*"_s}, QDir::System | QDir::Files);
    return !named && std::ranges::none_of(nodes, [&](const QString& node) {
        return hasHardware(root + u"/sys/class/drm/"_s + node + u"/device"_s);
    });
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
