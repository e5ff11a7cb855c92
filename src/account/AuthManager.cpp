#include "AuthManager.h"

#include "SignInAddress.h"
#include "Tokens.h"
#include "base/Background.h"
#include "base/Files.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "platform/Desktop.h"
#include "platform/SecretStore.h"

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

const QString accessKey = u"murmeli_access_token"_s;
const QString refreshKey = u"murmeli_refresh_token"_s;
const QString emailKey = u"murmeli_email"_s;

constexpr auto storePatience = 3s;
constexpr auto attemptTime = 15min;

} // namespace

AuthManager::AuthManager(Place place, Backend backend, Http& http, Desktop& desktop, SecretStore& secrets,
                         Scheduler& scheduler, QObject* parent)
    : QObject(parent),
      m_place(std::move(place)),
      m_backend(std::move(backend)),
      m_http(http),
      m_desktop(desktop),
      m_secrets(secrets),
      m_scheduler(scheduler)
{
    m_writer.setMaxThreadCount(1);
    // A kill while it was written leaves tokens behind.
    startOn(m_writer, [file = m_place.accountFile] { files::removeUnfinished(file); });
    m_scheduler.after(0ms, this, [this] { restore(); });
}

AuthManager::~AuthManager() = default;

bool AuthManager::takesAddress() const { return signingIn() && m_desktop.signsInThroughBrowser(); }

QString AuthManager::freshToken() const
{
    const bool signedOut = m_decided && !isAuthed();
    if (m_fileIsBehind || signedOut) return m_session.accessToken;
    const auto session = accountFile::session(accountFile::read(m_place.accountFile));
    const auto person = tokens::subject(m_session.accessToken);
    return session && !accountFile::isOthers(session->accessToken, person) ? session->accessToken
                                                                           : m_session.accessToken;
}

void AuthManager::restore()
{
    const auto found = std::make_shared<accountFile::Session>();
    m_secrets.load(refreshKey, this,
                   [found](const auto& value) { found->refreshToken = value.value_or(QString{}); });
    m_secrets.load(emailKey, this, [found](const auto& value) { found->email = value.value_or(QString{}); });
    m_secrets.load(accessKey, this, [this, found](const auto& value) {
        // Also when a locked store was opened long after the start.
        if (m_decided) return;
        found->accessToken = value.value_or(QString{});
        if (found->isUsable()) {
            adopt(*found, accountFile::Tokens::FromFile);
        } else {
            importFromFile();
        }
    });
    m_scheduler.after(storePatience, this, [this] { importFromFile(); });
}

void AuthManager::importFromFile()
{
    const auto read = [path = m_place.accountFile] { return accountFile::session(accountFile::read(path)); };
    inBackground(this, read, [this](const std::optional<accountFile::Session>& session) {
        if (m_decided || !session) return;
        keep(*session);
        adopt(*session, accountFile::Tokens::FromFile);
    });
}

void AuthManager::keep(const accountFile::Session& session)
{
    m_secrets.save(accessKey, session.accessToken);
    m_secrets.save(refreshKey, session.refreshToken);
    m_secrets.save(emailKey, session.email);
}

void AuthManager::adopt(const accountFile::Session& session, accountFile::Tokens tokens)
{
    m_decided = true;
    m_session = session;
    m_fileIsBehind = tokens == accountFile::Tokens::FromSession;
    registerDevice();
    syncAccount();
    emit changed();
}

void AuthManager::login()
{
    const QUrl page{m_place.accountSite + u"?flow=app"_s};
    if (!page.isValid()) return;
    m_addressRefused = false;
    m_scheduler.after(attemptTime, m_attempt.renew(), [this] { cancelLogin(); });
    m_desktop.signIn(page, signIn::scheme, [this](const QString& address) {
        if (address.isEmpty()) {
            cancelLogin();
        } else {
            handle(address);
        }
    });
    emit changed();
}

void AuthManager::cancelLogin()
{
    m_attempt.end();
    m_addressRefused = false;
    m_typedAddress.clear();
    emit changed();
}

bool AuthManager::handle(const QString& address)
{
    if (!signingIn()) return false;
    const auto values = signIn::values(address);
    const accountFile::Session session =
        values ? accountFile::Session{values->value(u"access_token"_s), values->value(u"refresh_token"_s),
                                      values->value(u"email"_s)}
               : accountFile::Session{};
    if (!session.isUsable()) return false;
    m_attempt.end();
    m_addressRefused = false;
    m_typedAddress.clear();
    keep(session);
    adopt(session, accountFile::Tokens::FromSession);
    emit didLogin();
    return true;
}

void AuthManager::paste(const QString& text)
{
    if (handle(text::trimmed(text))) return;
    m_addressRefused = signingIn();
    emit changed();
}

void AuthManager::logout()
{
    m_secrets.remove(accessKey);
    m_secrets.remove(refreshKey);
    m_secrets.remove(emailKey);
    m_decided = true;
    m_session = {};
    m_fileIsBehind = false;
    m_sync.end(); // an answer that is still on its way belongs to nobody now
    emit changed();
}

void AuthManager::openAccount() const { m_desktop.openUrl(QUrl{m_place.accountSite}); }

void AuthManager::registerDevice()
{
    QString name = m_desktop.computerName();
    if (name.isEmpty()) name = u"Mac"_s;
    m_http.send(
        Purpose{u"device"_s},
        m_backend.request("POST", u"/rest/v1/rpc/register_device"_s, freshToken(), {{u"p_name"_s, name}}),
        this, [](const HttpAnswer&) {}); // tried again at the next start
}

void AuthManager::syncAccount()
{
    QObject* sync = m_sync.renew();
    const auto accountId = tokens::subject(m_session.accessToken);
    if (!accountId) return;
    // A new session reaches the service at once: the answer may take a minute, and the store may be missing.
    if (m_fileIsBehind) writeFile(*accountId, {}, sync);
    m_http.send(Purpose{u"account"_s},
                m_backend.request("GET", u"/rest/v1/telegram_links?select=chat_id"_s, freshToken()), sync,
                [this, sync, id = *accountId](const HttpAnswer& answer) {
                    writeFile(id, accountFile::chatIn(answer.body), sync);
                });
}

void AuthManager::handOver()
{
    if (isAuthed()) syncAccount();
}

void AuthManager::writeFile(const QString& accountId, const accountFile::Chat& chat, QObject* sync)
{
    // Once the service has the tokens it may renew them, and then those in the file are the newer ones.
    const auto tokens = m_fileIsBehind ? accountFile::Tokens::FromSession : accountFile::Tokens::FromFile;
    const auto write = [=, path = m_place.accountFile, session = m_session] {
        return accountFile::update(path, session, accountId, chat, tokens);
    };
    whenFinished(startOn(m_writer, write), sync, [this](bool written) {
        if (written) m_fileIsBehind = false;
    });
}

} // namespace murmeli
