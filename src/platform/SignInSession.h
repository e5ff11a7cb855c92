#pragma once

#include <QUrl>

#include <functional>
#include <memory>

namespace murmeli {

/// The system's way to let a person sign in on a web page. Main thread only.
class SignInSession {
public:
    using CameBack = std::function<void(const QString& address)>;

    virtual ~SignInSession() = default;

    /// Shows `page`. Where the system itself hands the address of `scheme` back, `cameBack` gets it;
    /// elsewhere the browser starts the program with it. An earlier session is dropped.
    virtual void start(const QUrl& page, const QString& scheme, CameBack cameBack) = 0;

    /// Whether a browser that the user knows is used, which may fail to hand the address back.
    [[nodiscard]] virtual bool usesBrowser() const = 0;
};

std::unique_ptr<SignInSession> makeSignInSession();

} // namespace murmeli
