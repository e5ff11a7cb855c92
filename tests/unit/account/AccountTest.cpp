#include "account/AccountFile.h"
#include "account/AuthManager.h"
#include "account/SignInAddress.h"
#include "base/Files.h"
#include "base/Http.h"
#include "registeredTests.h"
#include "support/ManualScheduler.h"
#include "support/MemorySecrets.h"
#include "support/RecordingDesktop.h"
#include "support/Server.h"
#include "support/Token.h"

#include <QDir>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

#include <atomic>
#include <sys/stat.h>
#include <thread>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

const QString annasToken = token(R"({"sub":"anna-id","note":"ключ"})");
const QString callback = u"murmeli://auth#access_token=%1&refresh_token=r%2B1&email=anna%40example.org"_s;

QByteArray compact(const QJsonObject& object) { return QJsonDocument{object}.toJson(QJsonDocument::Compact); }

QStringList everythingSaid;
void listen(QtMsgType, const QMessageLogContext&, const QString& text) { everythingSaid.append(text); }

} // namespace

class AccountTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void addresses_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("values"); ///< sorted key=value pieces; "-" when it is no address of ours
        const auto row = [](const char* name, const char* address, const char* values) {
            QTest::newRow(name) << QString::fromUtf8(address) << QString::fromUtf8(values);
        };
        row("escapes", "murmeli://auth#access_token=a%2Bb&email=Anna%20K", "access_token=a+b email=Anna K");
        row("empty value", "murmeli://auth#access_token=&email=x", "email=x");
        row("pieces that are none", "murmeli:#state&=v&k=v=w&&", "k=v=w");
        row("the last of equals", "murmeli:#k=1&k=2", "k=2");
        row("a plus is a plus", "murmeli:#k=a+b", "k=a+b");
        row("cut escape", "murmeli:#k=a%2&m=%zz&n=%", "k=a%2 m=%zz n=%");
        row("escape with a sign", "murmeli:#k=%+1&m=%%20", "k=%+1 m=%%20");
        row("no UTF-8", "murmeli:#k=%ff%fe&m=%D0%96", "k=%ff%fe m=Ж");
        row("the key stays as it is", "murmeli:#a%62=1", "a%62=1");
        row("scheme in capitals", "MURMELI://x#k=1", "k=1");
        row("a line break in a value", "murmeli:#k=a%0D%0Ab", "k=a\r\nb");
        row("no fragment", "murmeli://auth?access_token=a", "");
        row("another scheme", "https://example.org/#access_token=a", "-");
        row("a scheme that begins alike", "murmelix:#access_token=a", "-");
    }
    void addresses()
    {
        QFETCH(QString, address);
        const auto values = signIn::values(address);
        QStringList pieces;
        if (values) {
            for (auto it = values->cbegin(); it != values->cend(); ++it)
                pieces.append(it.key() + u'=' + it.value());
        }
        pieces.sort();
        QTEST(values ? pieces.join(u' ') : u"-"_s, "values");
    }

    void subjects_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<QString>("subject");
        QTest::newRow("plain") << annasToken << u"anna-id"_s;
        QTest::newRow("letters of the URL alphabet") << token(R"({"a":"???>>>~~","sub":"x"})") << u"x"_s;
        QTest::newRow("empty pieces do not count") << u"..h."_s + annasToken.section(u'.', 1) << u"anna-id"_s;
        QTest::newRow("one part") << u"abc"_s << QString{};
        QTest::newRow("no base64") << u"a.$$$.c"_s << QString{};
        QTest::newRow("no JSON") << u"a."_s + QString::fromLatin1("hello"_ba.toBase64()) << QString{};
        QTest::newRow("no object") << token("[1]") << QString{};
        QTest::newRow("no subject") << token(R"({"id":"x"})") << QString{};
        QTest::newRow("subject of another type") << token(R"({"sub":7})") << QString{};
    }
    void subjects()
    {
        QFETCH(QString, token);
        QTEST(signIn::subject(token).value_or(QString{}), "subject");
    }

    void chats_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("chat"); ///< "-" when the answer tells nothing
        QTest::newRow("number") << R"([{"chat_id": 123456789}])"_ba << u"123456789"_s;
        QTest::newRow("large number") << R"([{"chat_id":-1001234567890123}])"_ba << u"-1001234567890123"_s;
        QTest::newRow("number beyond all")
            << R"([{"chat_id":1e30}])"_ba << u"1000000000000000019884624838656"_s;
        QTest::newRow("text") << R"([{"chat_id":"77"},{"chat_id":"78"}])"_ba << u"77"_s;
        QTest::newRow("null") << R"([{"chat_id":null}])"_ba << QString{};
        QTest::newRow("no link") << "[]"_ba << QString{};
        QTest::newRow("link without chat") << "[{}]"_ba << QString{};
        QTest::newRow("error object") << R"({"message":"no"})"_ba << u"-"_s;
        QTest::newRow("list of others") << "[1]"_ba << u"-"_s;
        QTest::newRow("page") << "<html></html>"_ba << u"-"_s;
        QTest::newRow("nothing") << ""_ba << u"-"_s;
    }
    void chats()
    {
        QFETCH(QByteArray, answer);
        const accountFile::Chat chat = accountFile::chatIn(answer);
        QTEST(chat.known ? chat.id : u"-"_s, "chat");
    }

    void contents_data()
    {
        using accountFile::Chat;
        using accountFile::Tokens;
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<Tokens>("tokens");
        QTest::addColumn<QString>("chat"); ///< "-": not known
        QTest::addColumn<QByteArray>("written");
        const auto written = [](const char* access, const char* refresh, const char* chat) {
            return compact({{u"access_token"_s, QString::fromLatin1(access)},
                            {u"refresh_token"_s, QString::fromLatin1(refresh)},
                            {u"email"_s, u"mail"_s},
                            {u"account_id"_s, u"id"_s},
                            {u"chat_id"_s, QString::fromLatin1(chat)}});
        };
        const QByteArray old = R"({"access_token":"fa","refresh_token":"fr","email":"e","chat_id":"5"})";
        QTest::newRow("the file's tokens win")
            << old << Tokens::FromFile << u"7"_s << written("fa", "fr", "7");
        QTest::newRow("new tokens win") << old << Tokens::FromSession << u"7"_s << written("sa", "sr", "7");
        QTest::newRow("link removed") << old << Tokens::FromFile << QString{} << written("fa", "fr", "");
        QTest::newRow("nothing known") << old << Tokens::FromFile << u"-"_s << written("fa", "fr", "5");
        QTest::newRow("a member at a time")
            << R"({"refresh_token":"fr"})"_ba << Tokens::FromFile << u"-"_s << written("sa", "fr", "");
        QTest::newRow("of any type") << R"({"access_token":7,"chat_id":5})"_ba << Tokens::FromFile << u"-"_s
                                     << written("sa", "sr", "").replace("\"sa\"", "7");
        QTest::newRow("a token that would break out")
            << R"({"refresh_token":"a\nb"})"_ba << Tokens::FromFile << u"-"_s << written("sa", "sr", "");
        QTest::newRow("damaged") << "{"_ba << Tokens::FromFile << u"-"_s << written("sa", "sr", "");
        QTest::newRow("another account's chat") << R"({"account_id":"someone","chat_id":"5"})"_ba
                                                << Tokens::FromSession << u"-"_s << written("sa", "sr", "");
        QTest::newRow("the same account's chat") << R"({"account_id":"id","chat_id":"5"})"_ba
                                                 << Tokens::FromSession << u"-"_s << written("sa", "sr", "5");
    }
    void contents()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, chat);
        QFETCH(accountFile::Tokens, tokens);
        m->write(file);
        const accountFile::Chat found = chat == "-"_L1 ? accountFile::Chat{} : accountFile::Chat{true, chat};
        QVERIFY(accountFile::update(m->file, {u"sa"_s, u"sr"_s, u"mail"_s}, u"id"_s, found, tokens));
        QTEST(m->written(), "written");
    }

    void nobodyElseEverReadsTheFile()
    {
        // Looks at the folder all the while that the file is made, replaced and given back its rights.
        std::atomic<bool> stop = false;
        std::atomic<int> looks = 0;
        std::atomic<int> readable = 0;
        std::thread watcher{[&, folder = QFile::encodeName(m->home.path())] {
            while (!stop) {
                for (const QString& name :
                     QDir{QFile::decodeName(folder)}.entryList(QDir::Files | QDir::Hidden)) {
                    struct stat status {};
                    if (::stat((folder + '/' + QFile::encodeName(name)).constData(), &status) != 0) continue;
                    ++looks;
                    if ((status.st_mode & 077) != 0) ++readable;
                }
            }
        }};
        const ::mode_t before = ::umask(0);
        for (int i = 0; i < 300; ++i) {
            QVERIFY(accountFile::update(m->file, {u"a"_s, {}, {}}, u"id"_s, {},
                                        accountFile::Tokens::FromSession));
            if (i % 3 == 0) QFile::remove(m->file);
        }
        ::umask(before);
        stop = true;
        watcher.join();
        QVERIFY(looks > 0);
        QCOMPARE(readable.load(), 0);
    }

    void signingInTellsBackendAndService()
    {
        m->answerLinks(R"([{"chat_id":42}])");
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

    void theServiceHasTheSessionBeforeTheBackendAnswers()
    {
        const auto auth = m->make(); // the server takes requests and stays silent
        auth->login();
        auth->handle(callback.arg(annasToken));
        QTRY_VERIFY(m->written().contains("anna-id"));
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
        auth->paste(u"https://example.org/account"_s);
        QVERIFY(auth->addressRefused());
        auth->paste(u"  \n"_s + callback.arg(annasToken) + u'\n');
        QVERIFY(auth->isAuthed());
        QVERIFY(!auth->addressRefused());
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
        m->answerLinks(R"({"message":"JWT expired"})");
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

    void whatIsNoSessionRestoresNone_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("missing") << QByteArray{};
        QTest::newRow("no object") << "[]"_ba;
        QTest::newRow("no token") << R"({"email":"m"})"_ba;
        QTest::newRow("empty token") << R"({"access_token":""})"_ba;
        QTest::newRow("token of another type") << R"({"access_token":{"a":1}})"_ba;
        QTest::newRow("too large") << QByteArray(2'000'000, ' ') + R"({"access_token":"a"})";
    }
    void whatIsNoSessionRestoresNone()
    {
        QFETCH(QByteArray, file);
        if (!file.isEmpty()) m->write(file);
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
        auth->login();
        auth->handle(callback.arg(annasToken));
        QCOMPARE(auth->freshToken(), annasToken);
        QTRY_VERIFY(m->written().contains("anna-id"));
        // From then on the service may renew it.
        QTRY_COMPARE((m->write(file(u"renewed"_s)), auth->freshToken()), u"renewed"_s);
        auth->logout();
        auth->login();
        auth->handle(callback.arg(u"opaque"_s)); // never reaches the file
        QCOMPARE(auth->freshToken(), u"opaque"_s);
    }

    void renewedTokensAreNotPutBack()
    {
        QTcpSocket* waiting = nullptr;
        m->server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.method == "GET") waiting = socket;
        };
        const auto auth = m->make();
        auth->login();
        auth->handle(callback.arg(annasToken));
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
        m->answerLinks("[]");
        const auto auth = m->make();
        auth->login();
        auth->handle(callback.arg(annasToken));
        QTRY_COMPARE(m->links(), 1);
        QVERIFY(QDir{}.mkpath(m->home.filePath(u"later"_s)));
        auth->handOver();
        QTRY_VERIFY(m->written().contains("anna-id"));
    }

    void aTokenWithControlCharactersIsRefused()
    {
        const QString smuggled = annasToken + u"\r\nX-Smuggled: 1"_s;
        m->write(compact({{u"access_token"_s, smuggled}, {u"refresh_token"_s, u"a"_s}}));
        QVERIFY(!accountFile::session(accountFile::read(m->file)));
        m->write(compact({{u"access_token"_s, annasToken}, {u"refresh_token"_s, u"a\nb"_s}}));
        QVERIFY(!accountFile::session(accountFile::read(m->file)));
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
        const QString large(400'000, u'7'); // so that writing takes longer than renewing
        const accountFile::Session session{annasToken, u"old"_s, {}};
        const bool updated =
            accountFile::update(m->file, session, u"anna-id"_s, {true, large}, accountFile::Tokens::FromFile);
        stop = true;
        service.join();
        QVERIFY(updated);
        QVERIFY(count > 0);
        const auto file = accountFile::read(m->file);
        QCOMPARE(accountFile::session(file)->refreshToken, QString::number(count));
        QCOMPARE(file->value(u"chat_id"_s).toString().size(), large.size());
    }

    void aLookupThatAnotherSessionAskedIsDropped_data()
    {
        QTest::addColumn<QString>("next"); ///< who signs in; empty: nobody, after a sign-out
        QTest::newRow("signed out") << QString{};
        QTest::newRow("somebody whom the file never tells of") << u"opaque"_s;
    }
    void aLookupThatAnotherSessionAskedIsDropped()
    {
        QFETCH(QString, next);
        QTcpSocket* waiting = nullptr;
        m->server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.path.startsWith("/rest/v1/telegram_links")) waiting = socket;
            if (request.path == "/later") socket->write(Server::answer(200, ""));
        };
        auto auth = m->make();
        auth->login();
        auth->handle(callback.arg(annasToken));
        QTRY_VERIFY(waiting);
        QTRY_VERIFY(!m->written().isEmpty());
        const QByteArray before = m->written();
        if (next.isEmpty()) {
            auth->logout();
            QVERIFY(!auth->isAuthed());
            QVERIFY(auth->email().isEmpty());
        } else {
            auth->login();
            auth->handle(callback.arg(next));
        }
        QCOMPARE(auth->accessToken(), next);
        m->answerAndWait(waiting, R"([{"chat_id":1}])");
        auth.reset(); // once it has written what it had to
        QCOMPARE(m->written(), before);
    }

    void faultyBackends_data()
    {
        QTest::addColumn<QByteArray>("wire");
        QTest::addColumn<QString>("chat");
        QTest::newRow("page") << Server::answer(200, "<html>") << u"9"_s;
        QTest::newRow("empty") << Server::answer(200, "") << u"9"_s;
        QTest::newRow("error object") << Server::answer(500, R"({"m":1})") << u"9"_s;
        QTest::newRow("empty list") << Server::answer(200, "[]") << QString{};
        QTest::newRow("invalid UTF-8") << Server::answer(200, "[{\"chat_id\":\"\xff\"}]") << u"9"_s;
        QTest::newRow("endless") << "HTTP/1.1 200 X\r\nContent-Length: 10000000000\r\n\r\n" +
                                        QByteArray(3'000'000, '[')
                                 << u"9"_s;
        QTest::newRow("elsewhere") << "HTTP/1.1 302 X\r\nLocation: ELSEWHERE\r\nContent-Length: 0\r\n\r\n"_ba
                                   << u"9"_s;
        QTest::newRow("hangs up") << QByteArray{} << u"9"_s;
        QTest::newRow("breaks off after a whole list")
            << "BREAK HTTP/1.1 200 X\r\nContent-Length: 9\r\n\r\n[]"_ba << u"9"_s;
    }
    void faultyBackends()
    {
        QFETCH(QByteArray, wire);
        QFETCH(QString, chat);
        everythingSaid.clear();
        const auto previous = qInstallMessageHandler(listen);
        Server other;
        m->write(compact({{u"access_token"_s, annasToken}, {u"chat_id"_s, u"9"_s}}));
        m->server.reply = [&](QTcpSocket* socket, const Server::Request&) {
            if (wire.isEmpty()) {
                socket->abort();
            } else {
                QByteArray bytes = wire;
                const bool breaks = bytes.startsWith("BREAK ");
                socket->write(
                    bytes.replace("BREAK ", "").replace("ELSEWHERE", other.url(u"/rest"_s).toEncoded()));
                if (breaks) socket->disconnectFromHost();
            }
        };
        const auto auth = m->make();
        m->scheduler.advance(3s); // with a session from the file nothing is written before the answer
        QTRY_VERIFY(m->written().contains("anna-id"));
        QCOMPARE(m->writtenChat(), chat);
        QVERIFY(auth->isAuthed());
        QVERIFY(other.requests.isEmpty());
        qInstallMessageHandler(previous);
        for (const QString& line : everythingSaid)
            QVERIFY2(!line.contains(annasToken), qPrintable(line));
    }

private:
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
        void answerLinks(const QByteArray& body)
        {
            server.reply = [body](QTcpSocket* socket, const Server::Request& request) {
                socket->write(Server::answer(200, request.method == "GET" ? body : "{}"_ba));
            };
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
            http.send({.url = server.url(u"/later"_s)}, &context, [&](const HttpAnswer&) { ended = true; });
            QTRY_VERIFY(ended);
        }
        [[nodiscard]] qsizetype links() const { return server.requestsTo("/rest/v1/telegram_links").size(); }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(AccountTest)
#include "AccountTest.moc"
