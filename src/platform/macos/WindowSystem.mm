#include "WindowSystem.h"

#include <QWindow>

#import <AppKit/AppKit.h>

namespace murmeli::windowSystem {

void prepare() {}

void becomeAccessory() { [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory]; }

bool drawsInSoftware() { return false; }

bool compositing() { return true; }

std::optional<bool> trayIsDark() { return std::nullopt; } // the menu bar inks template images by itself

void floatEverywhere(QWindow* window)
{
    NSView* view = reinterpret_cast<NSView*>(window->winId());
    NSWindow* native = [view window];
    [native setLevel:NSStatusWindowLevel];
    [native setHidesOnDeactivate:NO];
    [native setCollectionBehavior:NSWindowCollectionBehaviorCanJoinAllSpaces |
                                  NSWindowCollectionBehaviorFullScreenAuxiliary];
}

} // namespace murmeli::windowSystem
