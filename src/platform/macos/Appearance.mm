#include "Appearance.h"

#include <QEvent>
#include <QGuiApplication>

#import <AppKit/AppKit.h>

namespace murmeli {

namespace {

/// Follows the effective appearance (Qt tells the application of its change) and the accessibility settings.
class MacAppearance final : public Appearance {
public:
    MacAppearance()
    {
        refresh();
        qGuiApp->installEventFilter(this);
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

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == qGuiApp && event->type() == QEvent::ApplicationPaletteChange) refresh();
        return false;
    }

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
