#include "WindowSystem.h"

#include "SessionBus.h"
#include "X11.h"

#include <QDir>
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

void becomeAccessory() {}

bool compositing()
{
    if (!x11::connection()) return true; // Wayland always composes
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
