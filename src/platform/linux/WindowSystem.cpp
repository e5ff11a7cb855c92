#include "WindowSystem.h"

#include "SessionBus.h"

#include <QDir>
#include <QGuiApplication>
#include <QWindow>

#include <cstdlib>
#include <memory>
#include <numeric>
#include <xcb/xcb.h>

using namespace Qt::StringLiterals;

namespace murmeli::windowSystem {

namespace {

xcb_atom_t atom(xcb_connection_t* connection, const QByteArray& name)
{
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply{
        xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, uint16_t(name.size()), name.constData()), nullptr),
        &std::free};
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// The window that owns a selection, by which its owner says what it does for the desktop.
xcb_window_t ownerOf(xcb_connection_t* connection, const QByteArray& selection)
{
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> reply{
        xcb_get_selection_owner_reply(
            connection, xcb_get_selection_owner(connection, atom(connection, selection)), nullptr),
        &std::free};
    return reply ? reply->owner : xcb_window_t{XCB_NONE};
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

bool drawsInSoftware()
{
    const bool named = qEnvironmentVariableIsSet("QT_QUICK_BACKEND") ||
                       qEnvironmentVariableIsSet("QSG_RHI_BACKEND") ||
                       qEnvironmentVariableIsSet("QMLSCENE_DEVICE");
    return !named && QDir{u"/dev/dri"_s}.entryList({u"renderD*"_s}, QDir::System).isEmpty();
}

void becomeAccessory() {}

bool compositing()
{
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11) return true; // Wayland always composes
    return ownerOf(x11->connection(), "_NET_WM_CM_S0") != XCB_NONE;
}

std::optional<bool> trayIsDark()
{
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11) return std::nullopt;
    xcb_connection_t* connection = x11->connection();
    const xcb_window_t tray = ownerOf(connection, "_NET_SYSTEM_TRAY_S0");
    if (tray == XCB_NONE) return std::nullopt;
    constexpr uint32_t channels = 3; // of the first of four colours, which is that of the icons
    const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> colours{
        xcb_get_property_reply(connection,
                               xcb_get_property(connection, 0, tray,
                                                atom(connection, "_NET_SYSTEM_TRAY_COLORS"),
                                                XCB_ATOM_CARDINAL, 0, channels),
                               nullptr),
        &std::free};
    if (!colours || colours->format != 32 || colours->value_len != channels) return std::nullopt;
    const auto* rgb = static_cast<const uint32_t*>(xcb_get_property_value(colours.get()));
    constexpr uint32_t middle = 0x7fff; // of a channel
    return std::accumulate(rgb, rgb + channels, 0U) > channels * middle;
}

void floatEverywhere(QWindow*) {} // the window types of the panel and the toasts say it already

void bringForward(QWindow* window, bool withKeyboard)
{
    window->raise();
    if (withKeyboard) window->requestActivate();
}

void extendUnderTitle(QWindow*) {} // titles are the window manager's

} // namespace murmeli::windowSystem
