#pragma once

#include <QWindow>

#import <AppKit/AppKit.h>

namespace murmeli {

inline NSView* nativeView(const QWindow* window)
{
    return (__bridge NSView*)reinterpret_cast<void*>(window->winId());
}

inline NSWindow* nativeWindow(const QWindow* window) { return [nativeView(window) window]; }

} // namespace murmeli
