#include "base/Http.h"

#include "registeredTests.h"
#include "support/Cases.h"
#include "support/Server.h"

#include <QLibraryInfo>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QTimer>
#include <QTranslator>

#include <optional>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;
using Failure = HttpAnswer::Failure;

class HttpTest : public QObject {
    Q_OBJECT

private slots:
    void sendsWhatItIsGivenAndNothingElse()
    {
        Server server;
        server.says(Server::answer(200, "{}", "Set-Cookie: a=b\r\n"));
        const HttpAnswer answer = ask({.method = "PATCH",
                                       .url = server.url(u"/x?y=1"_s),
                                       .headers = {{"Prefer", "return=minimal"}},
                                       .body = "{\"a\":1}",
                                       .bearer = "token"});
        QVERIFY(answer.ok());
        QCOMPARE(answer.body, "{}"_ba);
        const Server::Request request = server.requests.takeFirst();
        QCOMPARE(request.method, "PATCH"_ba);
        QCOMPARE(request.path, "/x?y=1"_ba);
        QCOMPARE(request.header("Prefer"), "return=minimal"_ba);
        QCOMPARE(request.header("Authorization"), "Bearer token"_ba);
        QCOMPARE(request.body, "{\"a\":1}"_ba);

        server.says(Server::answer(500, "{\"why\":1}"));
        const HttpAnswer error = ask({.url = server.url()});
        QCOMPARE(error.failure, Failure::None); // an error status is an answer
        QCOMPARE(error.status, 500);
        QCOMPARE(error.body, "{\"why\":1}"_ba);
        QVERIFY(!error.ok());
        QVERIFY(!server.requests[0].head.contains("Cookie"));
        QVERIFY(!server.requests[0].head.contains("Authorization"));
    }

    void aTokenNeverLeavesItsOrigin()
    {
        Server other;
        other.says(Server::answer(200, "{}"));
        Server server;
        server.says(Server::answer(302, "", "Location: " + other.url().toEncoded() + "\r\n"));
        const HttpAnswer answer = ask({.url = server.url(), .bearer = "token"});
        QCOMPARE(answer.failure, Failure::Redirect);
        QVERIFY(other.requests.isEmpty());
        QVERIFY(!answer.errorText.contains(u"token"_s));
        QVERIFY(ask({.url = server.url()}).ok()); // without a token there is nothing to lose
    }

    void givesUp()
    {
        const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 10000000000\r\n\r\n";
        const auto feed = [&head](QTcpSocket* socket, int bytes, std::chrono::milliseconds pause) {
            socket->write(head);
            auto* timer = new QTimer{socket};
            connect(timer, &QTimer::timeout, socket, [=] { socket->write(QByteArray(bytes, 'x')); });
            connect(socket, &QTcpSocket::disconnected, timer, &QTimer::stop);
            timer->start(pause);
        };
        const auto breakOff = [&head](QTcpSocket* socket, const QByteArray& status = "200",
                                      const QByteArray& body = "[]") {
            socket->write(QByteArray{head}.replace("200", status) + body);
            socket->disconnectFromHost();
        };
        const auto breakOffInPieces = [](QTcpSocket* socket) {
            socket->write("HTTP/1.1 500 X\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n[]\r\n");
            socket->disconnectFromHost();
        };
        const Cases<std::function<void(QTcpSocket*)>, std::chrono::milliseconds, Failure> cases{
            {"never answers", [](QTcpSocket*) {}, 300ms, Failure::Timeout},
            {"a byte now and then", [&](QTcpSocket* s) { feed(s, 1, 20ms); }, 300ms, Failure::Timeout},
            {"a head of megabytes",
             [](QTcpSocket* s) {
                 s->write("HTTP/1.1 200 X\r\n" + QByteArray{"X-A: b\r\n"}.repeated(1'000'000));
             },
             300ms, Failure::Timeout},
            {"without an end", [&](QTcpSocket* s) { feed(s, 65'536, 0ms); }, 20s, Failure::TooLarge},
            {"breaks off", [&](QTcpSocket* s) { breakOff(s); }, 20s, Failure::Transport},
            {"breaks off an error", [&](QTcpSocket* s) { breakOff(s, "500"); }, 20s, Failure::Transport},
            {"breaks off after the head", [&](QTcpSocket* s) { breakOff(s, "404", {}); }, 20s,
             Failure::Transport},
            {"breaks off an error in pieces", breakOffInPieces, 20s, Failure::Transport},
            {"hangs up", [](QTcpSocket* s) { s->abort(); }, 20s, Failure::Transport},
            {"nobody is there", {}, 20s, Failure::Transport},
        };
        for (const auto& [name, reply, timeout, failure] : cases) {
            CASE(name);
            Server server;
            server.reply = [&reply = reply](QTcpSocket* s, const auto&) { reply(s); };
            const QUrl url = server.url();
            if (!reply) server.close();
            const HttpAnswer answer = ask({.url = url, .timeout = timeout, .answerLimit = 1'000'000});
            QCOMPARE(answer.failure, failure);
            QCOMPARE(answer.body, QByteArray{});
            // The platform has words for what happens on the way.
            QCOMPARE(answer.errorText.isEmpty(), failure == Failure::TooLarge);
        }
    }

    void aRequestIsSentOnceWhateverHappensToItsConnection()
    {
        Server server;
        QTranslator russian;
        QVERIFY(russian.load(u"qtbase_ru"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)));
        QVERIFY(QCoreApplication::installTranslator(&russian));
        server.reply = [](QTcpSocket* s, const auto&) { s->disconnectFromHost(); };
        for (const QByteArray& body : {QByteArray{}, "{}"_ba, QByteArray(300'000, 'x')}) {
            server.requests.clear();
            const HttpAnswer answer =
                ask({.method = body.isEmpty() ? "GET" : "POST", .url = server.url(), .body = body});
            QCOMPARE(answer.failure, Failure::Transport);
            QCOMPARE(server.requests.size(), 1);
            QCOMPARE(server.requests[0].body, body);
            QVERIFY2(answer.errorText.contains(QRegularExpression{u"[а-я]{5}"_s}),
                     qPrintable(answer.errorText));
        }
    }

    void aConnectionThatWasKeptIsNotReliedOn()
    {
        Server server;
        QSet<QTcpSocket*> used;
        server.reply = [&](QTcpSocket* s, const auto&) {
            if (used.contains(s)) return s->abort();
            used.insert(s);
            s->write(Server::answer(200, "{}", "Connection: keep-alive\r\n"));
        };
        for (const QByteArray& body : {QByteArray{}, "{}"_ba, "{}"_ba})
            QVERIFY(ask({.method = "POST", .url = server.url(), .body = body}).ok());
        QCOMPARE(server.requests.size(), 3);
    }

    void noHeaderBreaksOutOfItsLine()
    {
        Server server;
        const QByteArray smuggled = "a\r\nX-Smuggled: b\r\n\r\nGET /second HTTP/1.1\r\n";
        QCOMPARE(ask({.url = server.url(), .bearer = smuggled}).failure, Failure::Transport);
        QCOMPARE(ask({.url = server.url(), .headers = {{"X-Name", smuggled}}}).failure, Failure::Transport);
        QVERIFY(server.requests.isEmpty());
    }

    void anAnswerForNobodyIsDropped()
    {
        Server server;
        auto context = std::make_unique<QObject>();
        bool gone = false;
        bool wrong = false;
        server.reply = [&](QTcpSocket* s, const auto&) {
            connect(s, &QTcpSocket::disconnected, this, [&] { gone = true; });
            context.reset();
        };
        m_http.send(Purpose{u"test"_s}, {.url = server.url()}, context.get(),
                    [&](const HttpAnswer&) { wrong = true; });
        QTRY_VERIFY(gone);
        QVERIFY(!wrong);
    }

private:
    /// What comes of it; the test fails when nothing does.
    HttpAnswer ask(const HttpRequest& request)
    {
        std::optional<HttpAnswer> answer;
        QObject context;
        m_http.send(Purpose{u"test"_s}, request, &context, [&](const HttpAnswer& a) { answer = a; });
        if (!QTest::qWaitFor([&] { return answer.has_value(); }))
            QTest::qFail("Nothing came of a request", __FILE__, __LINE__);
        return answer.value_or(HttpAnswer{});
    }

    NetworkHttp m_http;
};

MURMELI_TEST(HttpTest)
#include "HttpTest.moc"
