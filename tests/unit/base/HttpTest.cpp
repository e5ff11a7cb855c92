#include "base/Http.h"

#include "registeredTests.h"
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

class HttpTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m_answer.reset(); }

    void sendsWhatItIsGivenAndNothingElse()
    {
        Server server;
        server.reply = [](QTcpSocket* s, const auto&) {
            s->write(Server::answer(200, "{}", "Set-Cookie: a=b\r\n"));
        };
        send({.method = "PATCH",
              .url = server.url(u"/x?y=1"_s),
              .headers = {{"Prefer", "return=minimal"}},
              .body = "{\"a\":1}",
              .bearer = "token"});
        QTRY_VERIFY(m_answer);
        QVERIFY(m_answer->ok());
        QCOMPARE(m_answer->body, "{}"_ba);
        const Server::Request request = server.requests.takeFirst();
        QCOMPARE(request.method, "PATCH"_ba);
        QCOMPARE(request.path, "/x?y=1"_ba);
        QCOMPARE(request.header("Prefer"), "return=minimal"_ba);
        QCOMPARE(request.header("Authorization"), "Bearer token"_ba);
        QCOMPARE(request.body, "{\"a\":1}"_ba);

        m_answer.reset();
        send({.url = server.url()});
        QTRY_VERIFY(m_answer);
        QVERIFY(!server.requests.constFirst().head.contains("Cookie"));
        QVERIFY(!server.requests.constFirst().head.contains("Authorization"));
    }

    void errorStatusesAreAnswers()
    {
        Server server;
        server.reply = [](QTcpSocket* s, const auto&) { s->write(Server::answer(500, "{\"why\":1}")); };
        send({.url = server.url()});
        QTRY_VERIFY(m_answer);
        QCOMPARE(m_answer->failure, HttpAnswer::Failure::None);
        QCOMPARE(m_answer->status, 500);
        QCOMPARE(m_answer->body, "{\"why\":1}"_ba);
        QVERIFY(!m_answer->ok());
    }

    void aTokenNeverLeavesItsOrigin()
    {
        Server other;
        other.reply = [](QTcpSocket* s, const auto&) { s->write(Server::answer(200, "{}")); };
        Server server;
        server.reply = [&](QTcpSocket* s, const auto&) {
            s->write(Server::answer(302, "", "Location: " + other.url().toEncoded() + "\r\n"));
        };
        send({.url = server.url(), .bearer = "token"});
        QTRY_VERIFY(m_answer);
        QCOMPARE(m_answer->failure, HttpAnswer::Failure::Redirect);
        QVERIFY(other.requests.isEmpty());
        QVERIFY(!m_answer->errorText.contains(u"token"_s));

        m_answer.reset();
        send({.url = server.url()}); // without a token there is nothing to lose
        QTRY_VERIFY(m_answer);
        QVERIFY(m_answer->ok());
    }

    void giveUp_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<HttpAnswer::Failure>("failure");
        QTest::newRow("never answers") << u"silent"_s << HttpAnswer::Failure::Timeout;
        QTest::newRow("a byte now and then") << u"trickle"_s << HttpAnswer::Failure::Timeout;
        QTest::newRow("endless") << u"endless"_s << HttpAnswer::Failure::TooLarge;
        QTest::newRow("breaks off") << u"cut"_s << HttpAnswer::Failure::Transport;
        QTest::newRow("hangs up") << u"reset"_s << HttpAnswer::Failure::Transport;
        QTest::newRow("nobody there") << u"refused"_s << HttpAnswer::Failure::Transport;
    }
    void giveUp()
    {
        QFETCH(QString, fault);
        Server server;
        QTimer feed;
        server.reply = [&](QTcpSocket* s, const auto&) {
            if (fault == u"reset"_s) s->abort();
            if (fault == u"cut"_s) {
                s->write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n[]");
                s->disconnectFromHost();
            }
            if (fault != u"trickle"_s && fault != u"endless"_s) return;
            s->write("HTTP/1.1 200 OK\r\nContent-Length: 10000000000\r\n\r\n");
            connect(&feed, &QTimer::timeout, s,
                    [s, fault] { s->write(QByteArray(fault == u"endless"_s ? 65536 : 1, 'x')); });
            feed.start(fault == u"endless"_s ? 0 : 20);
        };
        const QUrl url = server.url();
        if (fault == u"refused"_s) server.close();
        send({.url = url,
              .timeout = fault == u"endless"_s || fault == u"cut"_s ? 20'000ms : 300ms,
              .answerLimit = 1'000'000});
        QTRY_VERIFY(m_answer);
        QTEST(m_answer->failure, "failure");
        QCOMPARE(m_answer->body, QByteArray{});
        const bool inThePlatformsWords = m_answer->failure == HttpAnswer::Failure::Transport ||
                                         m_answer->failure == HttpAnswer::Failure::Timeout;
        QCOMPARE(!m_answer->errorText.isEmpty(), inThePlatformsWords);
    }

    void aRequestIsSentOnceWhateverHappensToItsConnection()
    {
        Server server;
        QTranslator russian;
        QVERIFY(russian.load(u"qtbase_ru"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)));
        QVERIFY(QCoreApplication::installTranslator(&russian));
        server.reply = [](QTcpSocket* s, const auto&) { s->disconnectFromHost(); };
        for (const QByteArray& body : {QByteArray{}, "{}"_ba, QByteArray(300'000, 'x')}) {
            m_answer.reset();
            server.requests.clear();
            send({.method = body.isEmpty() ? "GET" : "POST", .url = server.url(), .body = body});
            QTRY_VERIFY(m_answer);
            QCOMPARE(m_answer->failure, HttpAnswer::Failure::Transport);
            QCOMPARE(server.requests.size(), 1);
            QCOMPARE(server.requests[0].body, body);
            QVERIFY2(m_answer->errorText.contains(QRegularExpression{u"[а-я]{5}"_s}),
                     qPrintable(m_answer->errorText));
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
        for (const QByteArray& body : {QByteArray{}, "{}"_ba, "{}"_ba}) {
            m_answer.reset();
            send({.method = "POST", .url = server.url(), .body = body});
            QTRY_VERIFY(m_answer);
            QVERIFY(m_answer->ok());
        }
        QCOMPARE(server.requests.size(), 3);
    }

    void noHeaderBreaksOutOfItsLine()
    {
        Server server;
        const QByteArray smuggled = "a\r\nX-Smuggled: b\r\n\r\nGET /second HTTP/1.1\r\n";
        for (const HttpRequest& request :
             {HttpRequest{.url = server.url(), .bearer = smuggled},
              HttpRequest{.url = server.url(), .headers = {{"X-Name", smuggled}}}}) {
            m_answer.reset();
            send(request);
            QTRY_VERIFY(m_answer);
            QCOMPARE(m_answer->failure, HttpAnswer::Failure::Transport);
        }
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
        m_http.send({.url = server.url()}, context.get(), [&](const HttpAnswer&) { wrong = true; });
        QTRY_VERIFY(gone);
        QVERIFY(!wrong);
    }

private:
    void send(const HttpRequest& request)
    {
        m_http.send(request, this, [this](const HttpAnswer& a) { m_answer = a; });
    }

    NetworkHttp m_http;
    std::optional<HttpAnswer> m_answer;
};

MURMELI_TEST(HttpTest)
#include "HttpTest.moc"
