#include "base/Files.h"
#include "receipts/SentModel.h"
#include "receipts/WatchedHttp.h"
#include "registeredTests.h"
#include "support/Cases.h"
#include "support/TestProgram.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace murmeli;
using Failure = HttpAnswer::Failure;

// A request says what it is for, or it is none.
static_assert(!std::is_default_constructible_v<Purpose> && !std::is_convertible_v<QString, Purpose>);

class ReceiptsTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m = std::make_unique<TestProgram>();
        http = std::make_unique<WatchedHttp>(m->http, m->program.receipts,
                                             [this](const QString&) { return locked; });
        locked = false;
    }
    void cleanup()
    {
        http.reset();
        m.reset();
    }

    void everyRequestHasItsReceipt()
    {
        const Cases<QByteArray, QString> cases{
            // what the server answers, and what is noted
            {"an answer", Server::answer(200, "{}"), u"answered 200 "_s},
            {"an error", Server::answer(503, "no"), u"failed 503 status"_s},
            {"no HTTP", "what?\r\n\r\n", u"failed 0 broken"_s},
            {"another place", "HTTP/1.1 302 F\r\nLocation: http://127.0.0.1:1/\r\nContent-Length: 0\r\n\r\n",
             u"failed 302 status"_s},
        };
        for (const auto& [name, answer, told] : cases) {
            CASE(name);
            QList<Receipt> whileSent;
            m->server.reply = [&, answer = answer](QTcpSocket* socket, const Server::Request&) {
                whileSent = receipts();
                socket->write(answer);
                socket->disconnectFromHost();
            };
            ask(u"secret words"_s.toUtf8());
            const Receipt receipt = receipts().first();
            QCOMPARE(receipt.result + u' ' + QString::number(receipt.status) + u' ' + receipt.reason, told);
            QCOMPARE(whileSent.first().id, receipt.id); // before a byte was sent
            QCOMPARE(whileSent.first().result, u"begun"_s);
            QCOMPARE(receipt.bytes, 12);
            QCOMPARE(receipt.to, m->server.origin());
            m->scheduler.advance(1min);
        }
        QCOMPARE(receipts().size(), 4);
        const QByteArray file = files::readWhole(monthFile(), 100'000).value_or("");
        QVERIFY(!file.contains("secret") && !file.contains("token") && !file.contains("/secret-path"));
        QVERIFY(files::isPrivate(monthFile()));
    }

    void whoeverGoesLeavesAReceipt()
    {
        m->server.reply = [](QTcpSocket*, const Server::Request&) {};
        auto context = std::make_unique<QObject>();
        http->send(purpose(), request("x"), context.get(), [](const HttpAnswer&) { QFAIL("nobody waits"); });
        QTRY_COMPARE(m->server.requests.size(), 1);
        context.reset();
        QTRY_COMPARE(receipts().first().reason, u"cancelled"_s);
    }

    void nothingOfALockedMeetingIsSent()
    {
        m->server.says(Server::answer(200, "{}"));
        locked = true;
        QCOMPARE(ask("x").failure, Failure::Refused);
        QTRY_COMPARE(receipts().first().result, u"refused"_s);
        // Closed after it was asked for and before it went.
        locked = false;
        std::optional<HttpAnswer> answer;
        http->send(purpose(), request("x"), this, [&](const HttpAnswer& a) { answer = a; });
        locked = true;
        QTRY_VERIFY(answer.has_value());
        QCOMPARE(answer->failure, Failure::Refused);
        QVERIFY(m->server.requests.isEmpty());

        // Through the whole program: not known, unreadable, closed, by the switch for all, and open again.
        MeetingLocks& locks = m->program.locks;
        QTRY_VERIFY(m->program.own.isKnown());
        QVERIFY(locks.isLocked(u"a"_s));
        const auto looked = [&](const QByteArray& margin) {
            m->write(m->paths.ownData + u"/margin/a.json"_s, margin);
            QSignalSpy changed{&locks, &MeetingLocks::changed};
            locks.look(u"a"_s);
            locks.look(u"b"_s);
            [&] { QTRY_VERIFY(!changed.isEmpty() && locks.wasRead(u"b"_s)); }();
            return locks.isLocked(u"a"_s);
        };
        QVERIFY(!looked("{}"));
        QVERIFY(looked(R"({"lock":true})"));
        QVERIFY(looked(R"({"lock":fal)"));
        QVERIFY(!looked(R"({"lock":"yes"})"));
        m->program.own.set(u"lock_all"_s, true);
        QVERIFY(locks.isLocked(u"a"_s) && locks.isLocked(u"b"_s));
        QVERIFY(!looked(R"({"lock":false,"marks":[]})"));
        m->server.says(Server::answer(200, "{}"));
        std::optional<HttpAnswer> all;
        for (const QString& meeting : {u"b"_s, u"c"_s, u"a"_s}) {
            all.reset();
            m->program.http.send(Purpose{u"remark"_s, meeting, {u"remark"_s}}, request("x"), this,
                                 [&](const HttpAnswer& a) { all = a; });
            QTRY_VERIFY(all.has_value());
            QCOMPARE(all->failure, meeting == "a"_L1 ? Failure::None : Failure::Refused);
        }
        QCOMPARE(m->server.requests.size(), 1);
        locks.set(u"a"_s, true);
        QVERIFY(locks.isLocked(u"a"_s));
        QTRY_COMPARE(files::readWhole(m->paths.ownData + u"/margin/a.json"_s, 1000).value_or(""),
                     R"({"lock":true,"marks":[],"v":1})"_ba);
    }

    void theListIsInWords()
    {
        m->server.says(Server::answer(200, "{}"));
        http->send(Purpose{u"remark"_s, u"a"_s, {u"remark"_s, u"items"_s}, 14},
                   request(QByteArray(3902, 'x')), this, [](const HttpAnswer&) {});
        QTRY_COMPARE(receipts().value(0).result, u"answered"_s);
        for (int i = 0; i < 3; ++i) {
            m->scheduler.advance(1min);
            std::optional<HttpAnswer> answer;
            http->send(Purpose{u"version"_s}, request({}), this, [&](const HttpAnswer& a) { answer = a; });
            QTRY_VERIFY(answer.has_value());
        }
        m->write(m->home.filePath(u"x.pdf"_s), QByteArray(24'048, 'x'));
        Receipt saved = m->program.receipts.begun();
        saved.stem = u"b"_s;
        saved.kind = u"file"_s;
        saved.to = u"Загрузки"_s;
        m->program.receipts.noteFile(saved, m->home.filePath(u"x.pdf"_s));
        QTRY_COMPARE(receipts().size(), 3);
        m->write(m->paths.ownData + u"/sent/2024-10.jsonl"_s,
                 R"({"id":"1","t":"2024-10-02T10:00:00Z","kind":"teleport","bytes":-5,"to":7})"
                 "\n"
                 "{torn");

        SentModel of{m->program.receipts, m->language, m->scheduler, u"a"_s};
        SentModel all{m->program.receipts, m->language, m->scheduler, {}};
        of.load();
        all.load();
        QTRY_COMPARE(of.total(), 1);
        QTRY_COMPARE(all.total(), 4);
        const QString when = u"Сегодня, "_s + m->scheduler.moment().addSecs(-180).toString(u"HH:mm"_s);
        QCOMPARE(row(of, 0).spoken.replace(QChar::Nbsp, u' '),
                 u"Замечание и 14 пунктов протокола, %1 → 127.0.0.1:%2, 3 902 байта, ответ получен"_s.arg(
                     when, m->server.origin().section(u':', -1)));
        QCOMPARE(all.rowCount(), 6);
        QVERIFY(row(all, 0).heading && row(all, 0).line.startsWith(u"3 отправки"_s));
        QVERIFY(row(all, 1).spoken.contains(u"→ Загрузки"_s) && row(all, 1).result.isEmpty());
        QCOMPARE(row(all, 2).title, u"Вопрос о новой версии"_s); // once that day
        QCOMPARE(row(all, 5).title, u"teleport"_s);
        QVERIFY(row(all, 3).last && row(all, 5).first);
    }

private:
    static Purpose purpose() { return Purpose{u"analysis"_s, u"a"_s, {u"transcript"_s}}; }
    [[nodiscard]] HttpRequest request(const QByteArray& body) const
    {
        return {.method = "POST", .url = m->server.url(u"/secret-path"_s), .body = body, .bearer = "token"};
    }
    HttpAnswer ask(const QByteArray& body)
    {
        std::optional<HttpAnswer> answer;
        QSignalSpy written{&m->program.receipts, &Receipts::changed};
        http->send(purpose(), request(body), this, [&](const HttpAnswer& a) { answer = a; });
        const qsizetype lines = locked ? 1 : 2;
        [&] { QTRY_VERIFY(answer && written.size() >= lines); }();
        return answer.value_or(HttpAnswer{});
    }
    [[nodiscard]] QString monthFile() const
    {
        return m->paths.ownData + u"/sent/"_s + m->scheduler.moment().toUTC().toString(u"yyyy-MM"_s) +
               u".jsonl"_s;
    }
    [[nodiscard]] QList<Receipt> receipts() const { return ReceiptFiles{m->paths}.of({}).receipts; }
    static SentRow row(const SentModel& model, int index)
    {
        return model.data(model.index(index), Qt::UserRole).value<SentRow>();
    }

    std::unique_ptr<TestProgram> m;
    std::unique_ptr<WatchedHttp> http;
    bool locked = false;
};

MURMELI_TEST(ReceiptsTest)
#include "ReceiptsTest.moc"
