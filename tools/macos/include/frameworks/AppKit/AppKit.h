// Stand-in for a syntax check, written for this check from the public documentation: only what Murmeli uses, is
// about to use, or must not use before a later system.
#pragma once
#include <Foundation/Foundation.h>
#pragma clang assume_nonnull begin

@class NSWindow, NSView, NSEvent, NSImage, NSMenu, NSStatusBarButton, NSRunningApplication;

typedef NSString* NSAppearanceName;
extern NSAppearanceName const NSAppearanceNameAqua SINCE(10.9);
extern NSAppearanceName const NSAppearanceNameDarkAqua SINCE(10.14);
@interface NSAppearance : NSObject
@property (readonly, copy) NSAppearanceName name;
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName>*)names SINCE(10.14);
@end

typedef CHECK_ENUM(NSApplicationActivationPolicy, NSInteger) {
    NSApplicationActivationPolicyRegular,
    NSApplicationActivationPolicyAccessory,
    NSApplicationActivationPolicyProhibited
};

@interface NSResponder : NSObject
@end

@interface NSApplication : NSResponder
@property (class, readonly, strong) NSApplication* sharedApplication;
@property (readonly, copy) NSArray<NSWindow*>* windows;
@property (nullable, readonly, weak) NSWindow* keyWindow;
@property (nullable, readonly, weak) NSWindow* mainWindow;
@property (readonly, strong) NSAppearance* effectiveAppearance SINCE(10.14);
@property (readonly, getter=isActive) BOOL active;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy SINCE(10.6);
- (void)activateIgnoringOtherApps:(BOOL)ignore SINCE_UNTIL(10.0, 14.0, "use activate");
- (void)activate SINCE(14.0);
@end
extern NSApplication* _Null_unspecified NSApp;

typedef NSInteger NSWindowLevel;
static const NSWindowLevel NSNormalWindowLevel = 0;
static const NSWindowLevel NSFloatingWindowLevel = 3;
static const NSWindowLevel NSModalPanelWindowLevel = 8;
static const NSWindowLevel NSStatusWindowLevel = 25;
static const NSWindowLevel NSPopUpMenuWindowLevel = 101;

typedef CHECK_OPTIONS(NSWindowCollectionBehavior, NSUInteger) {
    NSWindowCollectionBehaviorDefault = 0,
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorMoveToActiveSpace = 1 << 1,
    NSWindowCollectionBehaviorTransient = 1 << 3,
    NSWindowCollectionBehaviorStationary = 1 << 4,
    NSWindowCollectionBehaviorIgnoresCycle = 1 << 6,
    NSWindowCollectionBehaviorFullScreenPrimary = 1 << 7,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
    NSWindowCollectionBehaviorCanJoinAllApplications SINCE(13.0) = 1 << 18
};

typedef CHECK_OPTIONS(NSWindowStyleMask, NSUInteger) {
    NSWindowStyleMaskBorderless = 0,
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskClosable = 1 << 1,
    NSWindowStyleMaskMiniaturizable = 1 << 2,
    NSWindowStyleMaskResizable = 1 << 3,
    NSWindowStyleMaskUtilityWindow = 1 << 4,
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
    NSWindowStyleMaskFullScreen = 1 << 14,
    NSWindowStyleMaskFullSizeContentView = 1 << 15
};

typedef CHECK_ENUM(NSWindowTitleVisibility, NSInteger) { NSWindowTitleVisible = 0, NSWindowTitleHidden = 1 };

@interface NSWindow : NSResponder
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property NSWindowStyleMask styleMask;
@property BOOL hidesOnDeactivate;
@property BOOL titlebarAppearsTransparent;
@property NSWindowTitleVisibility titleVisibility;
@property (readonly, getter=isVisible) BOOL visible;
@property (readonly) NSRect frame;
- (void)orderFrontRegardless;
- (void)makeKeyWindow;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)orderOut:(nullable id)sender;
@end

@interface NSPanel : NSWindow
@property (getter=isFloatingPanel) BOOL floatingPanel;
@property BOOL becomesKeyOnlyIfNeeded;
@end

@interface NSView : NSResponder
@property (nullable, readonly, unsafe_unretained) NSWindow* window;
@property (readonly, getter=isFlipped) BOOL flipped;
@property NSRect bounds;
@end

typedef CHECK_OPTIONS(NSEventMask, unsigned long long) {
    NSEventMaskLeftMouseDown = 1ULL << 1,
    NSEventMaskLeftMouseUp = 1ULL << 2,
    NSEventMaskRightMouseDown = 1ULL << 3,
    NSEventMaskOtherMouseDown = 1ULL << 25
};

@interface NSEvent : NSObject <NSCopying>
@property (class, readonly) NSPoint mouseLocation;
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent* event))block SINCE(10.6);
+ (nullable id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                            handler:(NSEvent* _Nullable (^)(NSEvent* event))block SINCE(10.6);
+ (void)removeMonitor:(id)monitor SINCE(10.6);
@end

extern NSNotificationName const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification SINCE(10.10);
@interface NSWorkspace : NSObject
@property (class, readonly, strong) NSWorkspace* sharedWorkspace;
@property (readonly, strong) NSNotificationCenter* notificationCenter;
@property (readonly) BOOL accessibilityDisplayShouldIncreaseContrast SINCE(10.10);
@property (readonly) BOOL accessibilityDisplayShouldReduceMotion SINCE(10.12);
- (BOOL)openURL:(NSURL*)url;
- (BOOL)selectFile:(nullable NSString*)path inFileViewerRootedAtPath:(NSString*)root;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)urls SINCE(10.6);
@end

typedef NSString *NSSharingServiceName;
extern NSSharingServiceName const NSSharingServiceNameComposeEmail;

@interface NSSharingService : NSObject
+ (nullable NSSharingService *)sharingServiceNamed:(NSSharingServiceName)serviceName;
@property (nullable, copy) NSString *subject;
- (BOOL)canPerformWithItems:(nullable NSArray *)items;
- (void)performWithItems:(NSArray *)items;
@end

@class NSSharingServicePicker;
@protocol NSSharingServicePickerDelegate <NSObject>
@end
@interface NSSharingServicePicker : NSObject
@property (nullable, weak) id<NSSharingServicePickerDelegate> delegate;
- (instancetype)initWithItems:(NSArray*)items __attribute__((objc_designated_initializer));
- (instancetype)init __attribute__((unavailable));
- (void)showRelativeToRect:(NSRect)rect ofView:(NSView*)view preferredEdge:(NSRectEdge)edge;
- (void)close SINCE(14.0);
@end

#pragma clang assume_nonnull end
