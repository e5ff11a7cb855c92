#include "SignInSession.h"

#include "Workspace.h"

namespace murmeli {

namespace {

/// The default browser, which starts the handler of the scheme: us, as a second instance.
class BrowserSession final : public SignInSession {
public:
    void start(const QUrl& page, const QString&, CameBack) override { workspace::openUrl(page); }
    [[nodiscard]] bool usesBrowser() const override { return true; }
};

} // namespace

std::unique_ptr<SignInSession> makeSignInSession() { return std::make_unique<BrowserSession>(); }

} // namespace murmeli
