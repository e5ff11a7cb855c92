#include "Appearance.h"

#include <QGuiApplication>
#include <QPalette>

#import <AppKit/AppKit.h>

namespace murmeli {

namespace {

/// Follows the effective appearance (Qt announces its change as a new palette) and the accessibility settings.
class MacAppearance final : public Appearance {
public:
    MacAppearance()
    {
        refresh();
        connect(qGuiApp, &QGuiApplication::paletteChanged, this, [this] { refresh(); });
        m_observer = [[[NSWorkspace sharedWorkspace] notificationCenter]
            addObserverForName:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                        object:nil
                         queue:[NSOperationQueue mainQueue]
                    usingBlock:^(NSNotification*) {
                      refresh();
                    }];
    }
    ~MacAppearance() override { [[[NSWorkspace sharedWorkspace] notificationCenter] removeObserver:m_observer]; }
    Q_DISABLE_COPY_MOVE(MacAppearance)

private:
    void refresh()
    {
        NSAppearanceName name = [[NSApp effectiveAppearance]
            bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
        setDark([name isEqualToString:NSAppearanceNameDarkAqua]);
        setReducedMotion([[NSWorkspace sharedWorkspace] accessibilityDisplayShouldReduceMotion]);
        setHighContrast([[NSWorkspace sharedWorkspace] accessibilityDisplayShouldIncreaseContrast]);
    }

    id m_observer;
};

} // namespace

std::unique_ptr<Appearance> makeAppearance() { return std::make_unique<MacAppearance>(); }

} // namespace murmeli
