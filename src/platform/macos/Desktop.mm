#include "QtDesktop.h"

#include <QWindow>

#import <AppKit/AppKit.h>
#import <AuthenticationServices/AuthenticationServices.h>

using namespace Qt::StringLiterals;

@interface MurmeliSignInAnchor : NSObject <ASWebAuthenticationPresentationContextProviding>
@end

@implementation MurmeliSignInAnchor
- (ASPresentationAnchor)presentationAnchorForWebAuthenticationSession:(ASWebAuthenticationSession*)session
{
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible]) return window;
    }
    return [[NSWindow alloc] init];
}
@end

namespace murmeli {

namespace {

class MacDesktop final : public QtDesktop {
public:
    explicit MacDesktop(QString home) : m_home(std::move(home)) {}

    void reveal(const QString& path, const QString& root) override
    {
        [[NSWorkspace sharedWorkspace] selectFile:path.toNSString() inFileViewerRootedAtPath:root.toNSString()];
    }

    bool share(const QString& path, QWindow* window, const QPoint& at) override
    {
        if (!window) return false;
        NSView* view = (__bridge NSView*)reinterpret_cast<void*>(window->winId());
        NSURL* file = [NSURL fileURLWithPath:path.toNSString()];
        NSSharingServicePicker* picker = [[NSSharingServicePicker alloc] initWithItems:@[ file ]];
        const NSRect place = NSMakeRect(at.x(), at.y(), 1, 1);
        [picker showRelativeToRect:place ofView:view preferredEdge:NSRectEdgeMinY];
        return true;
    }
    void mail(const QString&) override {}

    bool openSettings(SettingsPage page) override
    {
        const QString anchor =
            page == SettingsPage::Microphone ? u"Privacy_Microphone"_s : u"Privacy_ScreenCapture"_s;
        openUrl(QUrl{u"x-apple.systempreferences:com.apple.preference.security?"_s + anchor});
        return true;
    }

    // The login agent, which the settings load and unload, is all that this system needs.
    void setLoginItem(bool) override {}

    void signIn(const QUrl& page, const QString& scheme, CameBack cameBack) override
    {
        const std::weak_ptr<int> alive = m_alive;
        m_session = [[ASWebAuthenticationSession alloc]
              initWithURL:page.toNSURL()
        callbackURLScheme:scheme.toNSString()
        completionHandler:^(NSURL* callback, NSError* error) {
            if (error || !callback) return;
            const QString address = QString::fromNSString([callback absoluteString]);
            dispatch_async(dispatch_get_main_queue(), ^{
                if (!alive.expired()) cameBack(address);
            });
        }];
        [m_session setPresentationContextProvider:m_anchor];
        [m_session start];
    }
    [[nodiscard]] bool signsInThroughBrowser() const override { return false; }

    [[nodiscard]] QString computerName() const override
    {
        return QString::fromNSString([[NSHost currentHost] localizedName]);
    }
    [[nodiscard]] QString stateFolder() const override { return m_home + u"/Library/Logs/Murmeli"_s; }

private:
    QString m_home;
    ASWebAuthenticationSession* m_session = nil;
    MurmeliSignInAnchor* m_anchor = [[MurmeliSignInAnchor alloc] init];
    std::shared_ptr<int> m_alive = std::make_shared<int>();
};

} // namespace

std::unique_ptr<Desktop> makeDesktop(const QString& home) { return std::make_unique<MacDesktop>(home); }

} // namespace murmeli
