#include "WindowSystem.h"

#include "SessionBus.h"

#include <QDir>
#include <QGuiApplication>
#include <QScopeGuard>

#include <cstdlib>
#include <xcb/xcb.h>

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

void becomeAccessory() {}

bool compositing()
{
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11) return true; // Wayland always composes
    xcb_connection_t* connection = x11->connection();
    constexpr char name[] = "_NET_WM_CM_S0";
    auto* atom =
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, sizeof name - 1, name), nullptr);
    const auto freeAtom = qScopeGuard([&] { std::free(atom); });
    if (!atom) return false;
    auto* owner =
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr);
    const auto freeOwner = qScopeGuard([&] { std::free(owner); });
    return owner && owner->owner != XCB_NONE;
}

void floatEverywhere(QWindow*) {} // the window types of the panel and the toasts say it already

} // namespace murmeli::windowSystem
