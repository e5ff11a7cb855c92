#include "account/AccountFile.h"
#include "account/AuthManager.h"
#include "account/SignInAddress.h"
#include "account/Tokens.h"
#include "base/Files.h"
#include "base/Http.h"
#include "registeredTests.h"
#include "support/Cases.h"
#include "support/Faults.h"
#include "support/ManualScheduler.h"
#include "support/MemorySecrets.h"
#include "support/RecordingDesktop.h"
#include "support/Token.h"

#include <QDir>
#include <QJsonDocument>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

const QString annasToken = token(R"({"sub":"anna-id","note":"ключ"})");
const QString callback = u"murmeli://auth#access_token=%1&refresh_token=r%2B1&email=anna%40example.org"_s;

QByteArray compact(const QJsonObject& object) { return QJsonDocument{object}.toJson(QJsonDocument::Compact); }

QStringList everythingSaid;
QtMessageHandler printer = nullptr;
void listen(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    everythingSaid.append(text);
    printer(type, context, text);
}

} // namespace

class AccountTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void addresses()
    {
        const Cases<QString, QString> cases{
            // sorted key=value pieces; "-" when it is no address of ours
            {"escapes", u"murmeli://auth#access_token=a%2Bb&email=Anna%20K"_s,
             u"access_token=a+b email=Anna K"_s},
            {"empty value", u"murmeli://auth#access_token=&email=x"_s, u"email=x"_s},
            {"pieces that are none", u"murmeli:#state&=v&k=v=w&&"_s, u"k=v=w"_s},
            {"the last of equals", u"murmeli:#k=1&k=2"_s, u"k=2"_s},
            {"a plus is a plus", u"murmeli:#k=a+b"_s, u"k=a+b"_s},
            {"cut escape", u"murmeli:#k=a%2&m=%zz&n=%"_s, u"k=a%2 m=%zz n=%"_s},
            {"escape with a sign", u"murmeli:#k=%+1&m=%%20"_s, u"k=%+1 m=%%20"_s},
            {"no UTF-8", u"murmeli:#k=%ff%fe&m=%D0%96"_s, u"k=%ff%fe m=Ж"_s},
            {"the key stays as it is", u"murmeli:#a%62=1"_s, u"a%62=1"_s},
            {"scheme in capitals", u"MURMELI://x#k=1"_s, u"k=1"_s},
            {"a line break in a value", u"murmeli:#k=a%0D%0Ab"_s, u"k=a\r\nb"_s},
            {"no fragment", u"murmeli://auth?access_token=a"_s, u""_s},
            {"another scheme", u"https://example.org/#access_token=a"_s, u"-"_s},
            {"a scheme that begins alike", u"murmelix:#access_token=a"_s, u"-"_s},
        };
        for (const auto& [name, address, expected] : cases) {
            CASE(name);
            const auto values = signIn::values(address);
            QStringList pieces;
            if (values) {
                for (auto it = values->cbegin(); it != values->cend(); ++it)
                    pieces.append(it.key() + u'=' + it.value());
            }
            pieces.sort();
            QCOMPARE(values ? pieces.join(u' ') : u"-"_s, expected);
        }
    }

    void subjects()
    {
        const Cases<QString, QString> cases{
            {"plain", annasToken, u"anna-id"_s},
            {"letters of the URL alphabet", token(R"({"a":"???>>>~~","sub":"x"})"), u"x"_s},
            {"empty pieces do not count", u"..h."_s + annasToken.section(u'.', 1), u"anna-id"_s},
            {"one part", u"abc"_s, {}},
            {"no base64", u"a.$$$.c"_s, {}},
            {"no JSON", u"a."_s + QString::fromLatin1("hello"_ba.toBase64()), {}},
            {"no object", token("[1]"), {}},
            {"no subject", token(R"({"id":"x"})"), {}},
            {"subject of another type", token(R"({"sub":7})"), {}},
        };
        for (const auto& [name, token, subject] : cases) {
            CASE(name);
            QCOMPARE(tokens::subject(token).value_or(QString{}), subject);
        }
    }

    void chats()
    {
        const Cases<QByteArray, QString> cases{
            // "-" when the answer tells nothing
            {"number", R"([{"chat_id": 123456789}])", u"123456789"_s},
            {"large number", R"([{"chat_id":-1001234567890123}])", u"-1001234567890123"_s},
            {"number beyond all", R"([{"chat_id":1e30}])", u"1000000000000000019884624838656"_s},
            {"text", R"([{"chat_id":"77"},{"chat_id":"78"}])", u"77"_s},
            {"a fraction", R"([{"chat_id":12.5}])", u"-"_s},
            {"null", R"([{"chat_id":null}])", {}},
            {"no link", "[]", {}},
            {"link without chat", "[{}]", {}},
            {"error object", R"({"message":"no"})", u"-"_s},
        };
        for (const auto& [name, answer, id] : cases) {
            CASE(name);
            const accountFile::Chat chat = accountFile::chatIn(answer);
            QCOMPARE(chat.known ? chat.id : u"-"_s, id);
        }
    }

    void contents()
    {
        using accountFile::Chat;
        using accountFile::Tokens;
        const auto written = [](const QString& access, const QString& refresh, const QString& chat) {
            return compact({{u"access_token"_s, access},
                            {u"refresh_token"_s, refresh},
                            {u"email"_s, u"mail"_s},
                            {u"account_id"_s, u"id"_s},
                            {u"chat_id"_s, chat}});
        };
        const QString fa = u"fa"_s, fr = u"fr"_s; // of the file
        const QString sa = u"sa"_s, sr = u"sr"_s; // of the session
        const Chat seven{true, u"7"_s}, none{true, {}}, unknown;
        const QByteArray old = R"({"access_token":"fa","refresh_token":"fr","email":"e","chat_id":"5"})";
        const Cases<QByteArray, Tokens, Chat, QByteArray> cases{
            {"the file's tokens win", old, Tokens::FromFile, seven, written(fa, fr, u"7"_s)},
            {"new tokens win", old, Tokens::FromSession, seven, written(sa, sr, u"7"_s)},
            {"link removed", old, Tokens::FromFile, none, written(fa, fr, {})},
            {"nothing known", old, Tokens::FromFile, unknown, written(fa, fr, u"5"_s)},
            {"a member at a time", R"({"refresh_token":"fr"})", Tokens::FromFile, unknown,
             written(sa, fr, {})},
            {"of any type", R"({"access_token":7,"chat_id":5})", Tokens::FromFile, unknown,
             written(sa, sr, {}).replace("\"sa\"", "7")},
            {"a token that would break out", R"({"refresh_token":"a\nb"})", Tokens::FromFile, unknown,
             written(sa, sr, {})},
            {"damaged", "{", Tokens::FromFile, unknown, written(sa, sr, {})},
            {"another account's chat", R"({"account_id":"someone","chat_id":"5"})", Tokens::FromSession,
             unknown, written(sa, sr, {})},
            {"the same account's chat", R"({"account_id":"id","chat_id":"5"})", Tokens::FromSession, unknown,
             written(sa, sr, u"5"_s)},
        };
        for (const auto& [name, file, tokens, chat, expected] : cases) {
            CASE(name);
            m->write(file);
            QVERIFY(accountFile::update(m->file, {sa, sr, u"mail"_s}, u"id"_s, chat, tokens));
            QCOMPARE(m->written(), expected);
        }
    }

    void signingInTellsBackendAndService()
    {
        m->server.says(Server::answer(200, R"([{"chat_id":42}])"));
        const auto auth = m->make();
        QSignalSpy done{auth.get(), &AuthManager::didLogin};
        auth->login();
        QCOMPARE(m->desktop.opened, QList{QUrl{m->server.origin() + u"/account?flow=app"_s}});
        QVERIFY(auth->takesAddress());
        QVERIFY(auth->handle(callback.arg(annasToken)));
        QCOMPARE(done.count(), 1);
        QVERIFY(auth->isAuthed());
        QVERIFY(!auth->signingIn());
        QCOMPARE(auth->email(), u"anna@example.org"_s);
        QTRY_VERIFY(m->written().contains("\"chat_id\":\"42\""));
        QCOMPARE(m->written(), compact({{u"access_token"_s, annasToken},
                                        {u"refresh_token"_s, u"r+1"_s},
                                        {u"email"_s, u"anna@example.org"_s},
                                        {u"account_id"_s, u"anna-id"_s},
                                        {u"chat_id"_s, u"42"_s}}));
        QCOMPARE(QFile::permissions(m->file) & ~(QFile::ReadUser | QFile::WriteUser),
                 QFile::ReadOwner | QFile::WriteOwner);

        QTRY_COMPARE(m->server.requests.size(), 2);
        const auto devices = m->server.requestsTo("/rest/v1/rpc/register_device");
        QCOMPARE(devices.size(), 1);
        QCOMPARE(devices[0].method, "POST"_ba);
        QCOMPARE(devices[0].body, R"({"p_name":"Mac"})"_ba);
        QCOMPARE(devices[0].header("Content-Type"), "application/json"_ba);
        const auto links = m->server.requestsTo("/rest/v1/telegram_links?select=chat_id");
        QCOMPARE(links.size(), 1);
        for (const Server::Request& request : m->server.requests) {
            QCOMPARE(request.header("apikey"), "anonymous"_ba);
            QCOMPARE(request.header("Authorization"), "Bearer " + annasToken.toLatin1());
        }
    }

    void aTokenThatTellsNothingReachesNobody()
    {
        const auto auth = m->make();
        auth->login();
        QVERIFY(auth->handle(callback.arg(u"opaque"_s)));
        QVERIFY(auth->isAuthed());
        QTRY_COMPARE(m->server.requests.size(), 1); // the registration
        QVERIFY(m->server.requestsTo("/rest/v1/telegram_links").isEmpty());
        QVERIFY(m->written().isEmpty());
    }

    void onlyWhatTheUserBeganCounts()
    {
        const auto auth = m->make();
        QVERIFY(!auth->handle(callback.arg(annasToken))); // any web page could send it
        auth->login();
        m->scheduler.advance(15min);
        QVERIFY(!auth->signingIn());
        QVERIFY(!auth->handle(callback.arg(annasToken)));
        auth->login();
        auth->cancelLogin();
        QVERIFY(!auth->handle(callback.arg(annasToken)));
        auth->login();
        QVERIFY(!auth->handle(u"murmeli://auth#access_token="_s));
        QVERIFY(auth->signingIn());
        QVERIFY(!auth->addressRefused()); // nothing was pasted
        auth->setProperty("typedAddress", u"https"_s);
        auth->paste(u"https://example.org/account"_s);
        QVERIFY(auth->addressRefused());
        QCOMPARE(auth->property("typedAddress"), u"https"_s);
        auth->paste(u"  \n"_s + callback.arg(annasToken) + u'\n');
        QVERIFY(auth->isAuthed());
        QVERIFY(!auth->addressRefused());
        QCOMPARE(auth->property("typedAddress"), QString{});               // which may hold tokens
        QVERIFY(!auth->handle(callback.arg(token(R"({"sub":"other"})")))); // once
        QCOMPARE(auth->accessToken(), annasToken);
    }

    void theFileRestoresASessionAndKeepsItsTokens()
    {
        const QByteArray file = compact({{u"access_token"_s, annasToken},
                                         {u"refresh_token"_s, u"fr"_s},
                                         {u"email"_s, u"m"_s},
                                         {u"chat_id"_s, u"9"_s}});
        m->write(file);
        m->server.says(Server::answer(200, R"({"message":"JWT expired"})"));
        const auto auth = m->make();
        QSignalSpy done{auth.get(), &AuthManager::didLogin};
        m->scheduler.advance(0ms);
        QTRY_VERIFY(auth->isAuthed());
        QCOMPARE(auth->email(), u"m"_s);
        QTRY_VERIFY(m->written().contains("anna-id"));
        QVERIFY(m->written().contains("\"chat_id\":\"9\""));
        QVERIFY(m->written().contains("\"refresh_token\":\"fr\""));
        QCOMPARE(done.count(), 0);
    }

    void theFilesTokensWinWhereTheyAreTheSamePersons()
    {
        const QString renewed = token(R"({"sub":"anna-id","renewed":1})");
        const QString other = token(R"({"sub":"other"})");
        for (const QString& there : {renewed, other}) {
            CASE(there == renewed ? "renewed" : "another person's");
            init();
            const QString leftover = m->file + u".murmeli-1a2b"_s; // of a write that was killed
            QVERIFY(files::writeAtomic(leftover, "tokens") && files::writeAtomic(m->file + u".bak"_s, "x"));
            m->secrets.values = {{u"murmeli_access_token"_s, annasToken}};
            m->write(compact({{u"access_token"_s, there}, {u"refresh_token"_s, u"fr"_s}}));
            m->server.says(Server::answer(200, "[]"));
            const auto auth = m->make();
            m->scheduler.advance(0ms);
            const QString used = there == renewed ? renewed : annasToken;
            QTRY_VERIFY(m->written().contains("anna-id"));
            QVERIFY(m->written().contains("\"" + used.toUtf8() + "\""));
            for (const Server::Request& request : m->server.requests)
                QCOMPARE(request.header("Authorization"), "Bearer " + used.toUtf8());
            QVERIFY(!QFile::exists(leftover) && QFile::exists(m->file + u".bak"_s));
        }
    }

    void whatIsNoSessionRestoresNone()
    {
        const Cases<QByteArray> cases{
            {"no object", "[]"},
            {"no token", R"({"email":"m"})"},
            {"empty token", R"({"access_token":""})"},
            {"token of another type", R"({"access_token":{"a":1}})"},
            {"token that breaks its line", R"({"access_token":"a\r\nX-Smuggled: 1","refresh_token":"a"})"},
            {"token for renewing that does", R"({"access_token":"a","refresh_token":"a\nb"})"},
            {"too large", QByteArray(2'000'000, ' ') + R"({"access_token":"a"})"},
        };
        for (const auto& [name, file] : cases) {
            CASE(name);
            m->write(file);
            QVERIFY(!accountFile::session(accountFile::read(m->file)));
        }
        const auto auth = m->make();
        m->scheduler.advance(3s);
        QThreadPool::globalInstance()->waitForDone(); // the file has been read
        QCoreApplication::processEvents();
        QVERIFY(!auth->isAuthed() && auth->email().isEmpty());
    }

    void thePersonWhoSignsInIsAskedForAtOnce()
    {
        const auto file = [](const QString& token) {
            return compact({{u"access_token"_s, token}, {u"account_id"_s, u"boris-id"_s}});
        };
        m->write(file(u"boris"_s));
        const auto auth = m->make();
        QCOMPARE(auth->freshToken(), u"boris"_s);
        signInAs(*auth, annasToken);
        QCOMPARE(auth->freshToken(), annasToken);
        QTRY_VERIFY(m->written().contains("anna-id"));
        // From then on the service may renew it.
        QTRY_COMPARE((m->write(file(u"renewed"_s)), auth->freshToken()), u"renewed"_s);
        const QString other = token(R"({"sub":"other"})");
        m->write(file(other)); // nobody renews a token to another person's
        QCOMPARE(auth->freshToken(), annasToken);
        auth->logout();
        QCOMPARE(auth->freshToken(), QString{});
        signInAs(*auth, u"opaque"_s); // never reaches the file
        QCOMPARE(auth->freshToken(), u"opaque"_s);
    }

    void renewedTokensAreNotPutBack()
    {
        QTcpSocket* waiting = nullptr;
        m->server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.method == "GET") waiting = socket;
        };
        const auto auth = m->make();
        signInAs(*auth, annasToken);
        QTRY_VERIFY(waiting);
        const QByteArray renewed = R"({"access_token":"new","refresh_token":"new","account_id":"anna-id"})";
        QTRY_COMPARE((m->write(renewed), auth->freshToken()), u"new"_s);
        waiting->write(Server::answer(200, R"([{"chat_id":1}])"));
        QTRY_COMPARE(m->writtenChat(), u"1"_s);
        QVERIFY(m->written().contains(R"("access_token":"new")"));
        QVERIFY(m->written().contains(R"("refresh_token":"new")"));
    }

    void aSessionIsHandedOverOnceThereIsAFolder()
    {
        m->file = m->home.filePath(u"later/account.json"_s);
        m->server.says(Server::answer(200, "[]"));
        const auto auth = m->make();
        signInAs(*auth, annasToken);
        QTRY_COMPARE(m->links(), 1);
        QVERIFY(QDir{}.mkpath(m->home.filePath(u"later"_s)));
        auth->handOver();
        QTRY_VERIFY(m->written().contains("anna-id"));
    }

    void aTokenWithControlCharactersIsRefused()
    {
        m->write(compact({{u"access_token"_s, annasToken}, {u"refresh_token"_s, u"a\nb"_s}}));
        const auto auth = m->make();
        auth->login();
        QVERIFY(!auth->handle(u"murmeli:#access_token=a%0D%0Ab"_s));
        QVERIFY(!auth->handle(u"murmeli:#access_token=a&refresh_token=b%00"_s));
        QVERIFY(!auth->isAuthed());
        QVERIFY(auth->handle(callback.arg(annasToken)));
        QTRY_COMPARE(accountFile::read(m->file)->value(u"refresh_token"_s).toString(), u"r+1"_s);
    }

    void whatSaysItAllIsNotWrittenAgain()
    {
        const accountFile::Session session{annasToken, u"r"_s, u"a@b"_s};
        const auto update = [&](const QString& chat) {
            QVERIFY(accountFile::update(m->file, session, u"anna-id"_s, {true, chat},
                                        accountFile::Tokens::FromSession));
        };
        update(u"1"_s);
        const auto before = files::identity(m->file);
        update(u"1"_s);
        QCOMPARE(files::identity(m->file), before);
        QFile::setPermissions(m->file, QFile::Permissions{0x6644});
        update(u"1"_s);
        QVERIFY(files::isPrivate(m->file));
        update(u"2"_s);
        QCOMPARE(m->writtenChat(), u"2"_s);
    }

    // The service renews its tokens as soon as it sees that we are about to replace the file.
    void tokensThatAreRenewedMeanwhileStay()
    {
        const auto renewed = [&](int count) {
            return compact({{u"access_token"_s, annasToken}, {u"refresh_token"_s, QString::number(count)}});
        };
        const QString large(400'000, u'7'); // so that writing takes longer than renewing
        int putBack = 0;
        for (int round = 0; round < 20; ++round) { // on a busy machine it may come too late once
            m->write(renewed(0));
            std::atomic<bool> stop = false;
            int count = 0;
            std::thread service{[&] {
                const QStringList ours{u"account.json.*"_s};
                while (!stop) {
                    if (QDir{m->home.path()}.entryList(ours, QDir::Files).isEmpty()) continue;
                    if (count < 5) QVERIFY(files::writeAtomic(m->file, renewed(++count), files::Durable::No));
                }
            }};
            const bool updated = accountFile::update(m->file, {annasToken, u"old"_s, {}}, u"anna-id"_s,
                                                     {true, large}, accountFile::Tokens::FromFile);
            stop = true;
            service.join();
            QVERIFY(updated);
            const auto session =
                accountFile::session(accountFile::read(m->file)); // who came last may be either
            putBack += session->refreshToken != QString::number(count) ? 1 : 0;
        }
        QVERIFY2(putBack <= 4, "what a look just before the move cannot see is a matter of microseconds");
    }

    void aLookupThatAnotherSessionAskedIsDropped()
    {
        const Cases<QString> cases{{"nobody follows", {}}, {"whom the file never tells of", u"opaque"_s}};
        for (const auto& [name, next] : cases) {
            CASE(name);
            init();
            QTcpSocket* waiting = nullptr;
            m->server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
                if (request.path.startsWith("/rest/v1/telegram_links")) waiting = socket;
                if (request.path == "/later") socket->write(Server::answer(200, ""));
            };
            auto auth = m->make();
            signInAs(*auth, annasToken);
            QTRY_VERIFY(waiting);
            QTRY_VERIFY(!m->written().isEmpty()); // the service need not wait for the backend
            const QByteArray before = m->written();
            if (next.isEmpty()) {
                auth->logout();
                QVERIFY(!auth->isAuthed() && auth->email().isEmpty());
            } else {
                signInAs(*auth, next);
            }
            QCOMPARE(auth->accessToken(), next);
            m->answerAndWait(waiting, R"([{"chat_id":1}])");
            auth.reset(); // once it has written what it had to
            QCOMPARE(m->written(), before);
        }
    }

    void aBrokenAnswerLosesNothing()
    {
        printer = qInstallMessageHandler(listen);
        const auto listened = qScopeGuard([] { qInstallMessageHandler(printer); });
        for (const Fault& fault : faultsAround(R"([{"chat_id":1}])")) {
            CASE(fault.name);
            init();
            everythingSaid.clear();
            m->write(compact({{u"access_token"_s, annasToken}, {u"chat_id"_s, u"9"_s}}));
            m->server.reply = fault;
            const auto auth = m->make();
            m->scheduler.advance(3s); // with a session from the file nothing is written before the answer
            QTRY_VERIFY(m->written().contains("anna-id"));
            QCOMPARE(m->writtenChat(), u"9"_s);
            QVERIFY(auth->isAuthed());
            QVERIFY2(!everythingSaid.join(u'\n').contains(annasToken), "the token is in what was logged");
        }
    }

private:
    static void signInAs(AuthManager& auth, const QString& token)
    {
        auth.login();
        auth.handle(callback.arg(token));
    }

    struct Fixture {
        RecordingDesktop desktop;
        MemorySecrets secrets;
        QTemporaryDir home;
        QString file = home.filePath(u"account.json"_s);
        ManualScheduler scheduler;
        NetworkHttp http;
        Server server;

        [[nodiscard]] std::unique_ptr<AuthManager> make()
        {
            return std::make_unique<AuthManager>(
                AuthManager::Place{.accountSite = server.origin() + u"/account"_s, .accountFile = file},
                Backend{.base = server.origin(), .anonymousKey = "anonymous"}, http, desktop, secrets,
                scheduler);
        }
        void write(const QByteArray& bytes) const { QVERIFY(files::writeAtomic(file, bytes)); }
        [[nodiscard]] QByteArray written() const
        {
            return files::readWhole(file, 100'000).value_or(QByteArray{});
        }
        [[nodiscard]] QString writtenChat() const
        {
            return QJsonDocument::fromJson(written())[u"chat_id"_s].toString(u"?"_s);
        }
        /// Until what became of the answer has been decided: answers are delivered in the order of their end.
        void answerAndWait(QTcpSocket* socket, const QByteArray& body)
        {
            socket->write(Server::answer(200, body));
            QTRY_COMPARE(socket->bytesToWrite(), 0);
            QObject context;
            bool ended = false;
            http.send(Purpose{u"test"_s}, {.url = server.url(u"/later"_s)}, &context,
                      [&](const HttpAnswer&) { ended = true; });
            QTRY_VERIFY(ended);
        }
        [[nodiscard]] qsizetype links() const { return server.requestsTo("/rest/v1/telegram_links").size(); }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(AccountTest)
#include "AccountTest.moc"
