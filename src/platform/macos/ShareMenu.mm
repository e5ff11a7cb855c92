#include "ShareMenu.h"

#include <QWindow>

#import <AppKit/AppKit.h>

namespace murmeli::shareMenu {

void present(const QString& path, const Texts&, QWindow* window, const QPoint& at)
{
    if (!window) return;
    NSView* view = reinterpret_cast<NSView*>(window->winId());
    NSURL* file = [NSURL fileURLWithPath:path.toNSString()];
    NSSharingServicePicker* picker = [[NSSharingServicePicker alloc] initWithItems:@[ file ]];
    const NSRect place = NSMakeRect(at.x(), at.y(), 1, 1);
    [picker showRelativeToRect:place ofView:view preferredEdge:NSRectEdgeMinY];
}

} // namespace murmeli::shareMenu
