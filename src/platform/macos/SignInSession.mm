#include "SignInSession.h"

#import <AppKit/AppKit.h>
#import <AuthenticationServices/AuthenticationServices.h>

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

class SheetSession final : public SignInSession {
public:
    void start(const QUrl& page, const QString& scheme, CameBack cameBack) override
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
    [[nodiscard]] bool usesBrowser() const override { return false; }

private:
    ASWebAuthenticationSession* m_session = nil;
    MurmeliSignInAnchor* m_anchor = [[MurmeliSignInAnchor alloc] init];
    std::shared_ptr<int> m_alive = std::make_shared<int>();
};

} // namespace

std::unique_ptr<SignInSession> makeSignInSession() { return std::make_unique<SheetSession>(); }

} // namespace murmeli
