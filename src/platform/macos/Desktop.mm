#include "NativeWindow.h"
#include "QtDesktop.h"
#include "base/Files.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <tuple>

#import <AuthenticationServices/AuthenticationServices.h>

using namespace Qt::StringLiterals;

@interface MurmeliSignInAnchor : NSObject <ASWebAuthenticationPresentationContextProviding>
@end

@implementation MurmeliSignInAnchor
- (ASPresentationAnchor)presentationAnchorForWebAuthenticationSession:(ASWebAuthenticationSession*)session
{
    if ([NSApp keyWindow]) return [NSApp keyWindow];
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible] && [window level] == NSNormalWindowLevel) return window;
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
        NSView* view = nativeView(window);
        NSURL* file = [NSURL fileURLWithPath:path.toNSString()];
        NSSharingServicePicker* picker = [[NSSharingServicePicker alloc] initWithItems:@[ file ]];
        const NSRect place = NSMakeRect(at.x(), at.y(), 1, 1);
        [picker showRelativeToRect:place ofView:view preferredEdge:[view isFlipped] ? NSRectEdgeMaxY : NSRectEdgeMinY];
        return true;
    }
    void mail(const Letter& letter) override
    {
        NSSharingService* service = [NSSharingService sharingServiceNamed:NSSharingServiceNameComposeEmail];
        service.subject = letter.subject.toNSString();
        if (letter.file.isEmpty()) {
            [service performWithItems:@[ letter.text.toNSString() ]];
        } else {
            [service performWithItems:@[ letter.text.toNSString(), [NSURL fileURLWithPath:letter.file.toNSString()] ]];
        }
    }
    void askForMailProgram(QObject*, std::function<void(bool)> answer) override
    {
        NSSharingService* service = [NSSharingService sharingServiceNamed:NSSharingServiceNameComposeEmail];
        answer(service && [service canPerformWithItems:@[ @"" ]]);
    }

    bool openSettings(SettingsPage page) override
    {
        const QString anchor =
            page == SettingsPage::Microphone ? u"Privacy_Microphone"_s : u"Privacy_ScreenCapture"_s;
        openUrl(QUrl{u"x-apple.systempreferences:com.apple.preference.security?"_s + anchor});
        return true;
    }

    // The settings load and unload the agent. Whoever moved the program has another place for it than an installer.
    void setLoginItem(bool on, const QString& agentFile) override
    {
        if (!on || QFileInfo::exists(agentFile)) return;
        QDir{}.mkpath(QFileInfo{agentFile}.path());
        const QString agent = uR"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
    <key>Label</key><string>%1</string>
    <key>ProgramArguments</key><array><string>%2</string></array>
    <key>RunAtLoad</key><true/>
    <key>LimitLoadToSessionType</key><string>Aqua</string>
    <key>ProcessType</key><string>Interactive</string>
</dict>
</plist>
)"_s.arg(QFileInfo{agentFile}.completeBaseName(), QCoreApplication::applicationFilePath().toHtmlEscaped());
        std::ignore = files::writeAtomic(agentFile, agent.toUtf8());
    }
    [[nodiscard]] bool startedByAgent(const QString& label) const override
    {
        return qEnvironmentVariable("XPC_SERVICE_NAME") == label;
    }

    void signIn(const QUrl& page, const QString& scheme, CameBack cameBack) override
    {
        const std::weak_ptr<int> alive = m_alive;
        const quint64 attempt = ++m_attempt;
        [m_session cancel];
        m_session = [[ASWebAuthenticationSession alloc]
              initWithURL:page.toNSURL()
        callbackURLScheme:scheme.toNSString()
        completionHandler:^(NSURL* callback, NSError* error) {
            const bool given = !error && callback;
            const QString address = given ? QString::fromNSString([callback absoluteString]) : QString{};
            dispatch_async(dispatch_get_main_queue(), ^{
                // A session that a later one has cancelled says so when it is nobody's any more.
                if (!alive.expired() && attempt == m_attempt) cameBack(address);
            });
        }];
        [m_session setPresentationContextProvider:m_anchor];
        if (![m_session start]) cameBack({});
    }
    [[nodiscard]] bool signsInThroughBrowser() const override { return false; }

    // The system tells only its own notifications of it.
    void askForPeace(QObject*, std::function<void(bool)> answer) override { answer(false); }

    [[nodiscard]] QString computerName() const override
    {
        return QString::fromNSString([[NSHost currentHost] localizedName]);
    }
    [[nodiscard]] QString stateFolder() const override { return m_home + u"/Library/Application Support/Murmeli"_s; }
    [[nodiscard]] OwnFolders ownFolders() const override
    {
        return {.data = stateFolder(),
                .cache = m_home + u"/Library/Caches/Murmeli"_s,
                .config = m_home + u"/Library/Preferences/Murmeli"_s};
    }

private:
    QString m_home;
    ASWebAuthenticationSession* m_session = nil;
    quint64 m_attempt = 0;
    MurmeliSignInAnchor* m_anchor = [[MurmeliSignInAnchor alloc] init];
    std::shared_ptr<int> m_alive = std::make_shared<int>();
};

} // namespace

std::unique_ptr<Desktop> makeDesktop(const QString& home) { return std::make_unique<MacDesktop>(home); }

} // namespace murmeli
