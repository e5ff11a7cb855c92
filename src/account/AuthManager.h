#pragma once

#include "AccountFile.h"
#include "Backend.h"
#include "base/Lease.h"

#include <QObject>
#include <QThreadPool>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

class Desktop;
class Http;
class Scheduler;
class SecretStore;

/// The one account session: signs in through the account site, keeps the tokens in the secret store, and
/// hands them on to the recording service in account.json. Failures are silent; what was known stays. Tokens
/// are renewed by the service alone. Main thread only.
class AuthManager final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to each view")
    Q_PROPERTY(bool isAuthed READ isAuthed NOTIFY changed FINAL)
    Q_PROPERTY(QString email READ email NOTIFY changed FINAL)
    Q_PROPERTY(bool signingIn READ signingIn NOTIFY changed FINAL) ///< the browser has been sent to the site
    Q_PROPERTY(bool takesAddress READ takesAddress NOTIFY changed FINAL) ///< an address may be pasted
    Q_PROPERTY(bool addressRefused READ addressRefused NOTIFY changed FINAL)
    /// What was typed for an address so far; in memory alone, since it may hold tokens, and gone with the
    /// attempt.
    Q_PROPERTY(QString typedAddress MEMBER m_typedAddress FINAL)

public:
    struct Place {
        QString accountSite; ///< address of the account site
        QString accountFile; ///< path of account.json
    };

    /// Restores the last session from the event loop: from the secret store, else from account.json, also
    /// when the store does not answer within three seconds.
    AuthManager(Place place, Backend backend, Http& http, Desktop& desktop, SecretStore& secrets,
                Scheduler& scheduler, QObject* parent = nullptr);
    ~AuthManager() override;
    Q_DISABLE_COPY_MOVE(AuthManager)

    [[nodiscard]] bool isAuthed() const { return !m_session.accessToken.isEmpty(); }
    [[nodiscard]] QString email() const { return m_session.email; }
    [[nodiscard]] bool signingIn() const { return bool(m_attempt); }
    [[nodiscard]] bool takesAddress() const;
    [[nodiscard]] bool addressRefused() const { return m_addressRefused; }

    /// For requests to the backend; empty when signed out. Never for a log, an argument or an error text.
    [[nodiscard]] QString accessToken() const { return m_session.accessToken; }
    /// The same, but as account.json has it when it has the same person's: the service may have renewed it
    /// there. Until a sign-in has reached the file, what stands there is not asked; nor after signing out.
    [[nodiscard]] QString freshToken() const;
    [[nodiscard]] const Backend& backend() const { return m_backend; }

    /// Opens the sign-in page. The attempt ends with the address that comes back, or after a quarter of an
    /// hour.
    Q_INVOKABLE void login();
    Q_INVOKABLE void cancelLogin();

    /// Takes the address that ends a sign-in. \return false, with nothing changed, when no sign-in is under
    /// way (any web page may send such an address) or when it carries no access token.
    bool handle(const QString& address);

    /// The same for an address that the user pastes; says when it is refused.
    Q_INVOKABLE void paste(const QString& text);

    /// Writes account.json once more, for when its folder was not there at the sign-in or at the start.
    void handOver();

    /// Forgets the session here. account.json stays, so that the service can still deliver.
    Q_INVOKABLE void logout();

    /// The account site in the default browser.
    Q_INVOKABLE void openAccount() const;

signals:
    void changed();
    void didLogin(); ///< after a completed sign-in, not after a restored one

private:
    void restore();
    void importFromFile();
    void adopt(const accountFile::Session& session, accountFile::Tokens tokens);
    void keep(const accountFile::Session& session);
    void registerDevice();
    void syncAccount();
    void writeFile(const QString& accountId, const accountFile::Chat& chat, QObject* sync);

    Place m_place;
    Backend m_backend;
    Http& m_http;
    Desktop& m_desktop;
    SecretStore& m_secrets;
    Scheduler& m_scheduler;
    accountFile::Session m_session;
    Lease m_attempt; ///< the sign-in under way
    Lease m_sync;
    bool m_addressRefused = false;
    QString m_typedAddress;
    bool m_fileIsBehind = false; ///< account.json has not got this sign-in's session yet
    bool m_decided = false;      ///< the user has signed in or out, or a session was restored
    QThreadPool m_writer;        ///< one thread, so that files are written in the order of the calls
};

} // namespace murmeli
