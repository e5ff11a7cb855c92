#include "WindowSystem.h"

#include "NativeWindow.h"

#include <QVariant>

namespace murmeli::windowSystem {

// At log-in nothing of us may come to the front: Qt would make the program active as soon as it runs.
void prepare() { qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1"); }

void settle() { [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory]; }

bool drawsInSoftware(const QString&) { return false; }

bool placesWindows() { return true; }

bool knowsPointer() { return true; }

void notify(const QString&, const QString&) {} // the toasts are windows of ours

bool compositing() { return true; }

void floatEverywhere(QWindow* window)
{
    window->setProperty("_q_macAlwaysShowToolWindow", true); // read when the native window is made
    NSWindow* native = nativeWindow(window);
    [native setStyleMask:[native styleMask] | NSWindowStyleMaskNonactivatingPanel];
    [native setLevel:NSStatusWindowLevel];
    [native setHidesOnDeactivate:NO];
    [native setCollectionBehavior:NSWindowCollectionBehaviorCanJoinAllSpaces |
                                  NSWindowCollectionBehaviorFullScreenAuxiliary];
}

void bringForward(QWindow* window, bool withKeyboard)
{
    NSWindow* native = nativeWindow(window);
    [native orderFrontRegardless];
    if (withKeyboard) [native makeKeyWindow];
}

void extendUnderTitle(QWindow* window)
{
    NSWindow* native = nativeWindow(window);
    [native setTitlebarAppearsTransparent:YES];
    [native setTitleVisibility:NSWindowTitleHidden];
    [native setStyleMask:[native styleMask] | NSWindowStyleMaskFullSizeContentView];
}

} // namespace murmeli::windowSystem
