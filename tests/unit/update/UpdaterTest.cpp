#include "update/Updater.h"

#include "base/Http.h"
#include "base/Processes.h"
#include "registeredTests.h"
#include "support/ManualScheduler.h"
#include "support/RecordingDesktop.h"
#include "support/Server.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

class UpdaterTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void versions_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<bool>("newer");
        const auto row = [](const char* a, const char* b, bool newer) {
            QTest::addRow("%s over %s", a, b) << QString::fromLatin1(a) << QString::fromLatin1(b) << newer;
        };
        row("0.8.1", "0.8.0", true);
        row("0.8", "0.8.0", false);
        row("0.8.0", "0.8", false);
        row("0.10.0", "0.9.9", true);
        row("1", "0.99.99", true);
        row("x.9", "0.8", true);
        row("1.0-beta", "1.0", false);
        row("1.0.1", "1.0-beta", true);
        row("", "0", false);
        row("..1..", "0.9", true);
        row("99999999999999999999", "1", false);
        row("0. 9", "0.8", false);
        row("-1", "0", false);
    }
    void versions()
    {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QTEST(Updater::isNewer(a, b), "newer");
    }

    void answers_data()
    {
        using Phase = Updater::Phase;
        QTest::addColumn<QByteArray>("wire");
        QTest::addColumn<Phase>("phase");
        const auto ok = [](const QByteArray& body) { return Server::answer(200, body); };
        QTest::newRow("newer") << ok(R"({"version":"0.9.0"})") << Phase::Available;
        QTest::newRow("the same") << ok(R"({"version":"0.8"})") << Phase::UpToDate;
        QTest::newRow("older") << ok(R"({"version":"0.7.9","notes":7,"released":[]})") << Phase::UpToDate;
        QTest::newRow("error status with a record")
            << Server::answer(500, R"({"version":"0.9.0"})") << Phase::Available;
        QTest::newRow("no version") << ok(R"({"notes":"x"})") << Phase::Failed;
        QTest::newRow("version is a number") << ok(R"({"version":0.9})") << Phase::Failed;
        QTest::newRow("list") << ok(R"([{"version":"0.9.0"}])") << Phase::Failed;
        QTest::newRow("page") << ok("<!doctype html>") << Phase::Failed;
        QTest::newRow("empty") << ok("") << Phase::Failed;
        QTest::newRow("invalid UTF-8") << ok("{\"version\":\"0.9.0\xff\"}") << Phase::Failed;
        QTest::newRow("cut")
            << "HTTP/1.1 200 X\r\nContent-Length: 100\r\nConnection: close\r\n\r\n{\"version\":\"0"_ba
            << Phase::Failed;
        QTest::newRow("10 GB") << "HTTP/1.1 200 X\r\nContent-Length: 10000000000\r\n\r\n" +
                                      QByteArray(2'000'000, ' ')
                               << Phase::Failed;
        QTest::newRow("hangs up") << QByteArray{} << Phase::Failed;
    }
    void answers()
    {
        QFETCH(QByteArray, wire);
        m->status = u"recording"_s; // so that nothing is installed
        m->server.reply = [&](QTcpSocket* socket, const Server::Request&) {
            if (wire.isEmpty()) {
                socket->abort();
                return;
            }
            socket->write(wire);
            if (wire.contains("Connection: close")) socket->disconnectFromHost();
        };
        m->updater.check();
        m->scheduler.advance(0ms);
        QCOMPARE(m->updater.phase(), Updater::Phase::Checking);
        QTRY_VERIFY(m->updater.phase() != Updater::Phase::Checking);
        QTEST(m->updater.phase(), "phase");
        QCOMPARE(m->updater.available(), m->updater.phase() == Updater::Phase::Available);
        QCOMPARE(m->updater.lastChecked().isValid(), m->updater.phase() != Updater::Phase::Failed);
    }

    void aFailedCheckKeepsWhatWasKnown()
    {
        m->status = u"recording"_s;
        m->check(R"({"version":"0.9.0","notes":"Один\n\n  Два  \n","released":"вчера"})");
        m->check("nonsense");
        QCOMPARE(m->updater.phase(), Updater::Phase::Failed);
        QVERIFY(m->updater.available());
        QCOMPARE(m->updater.latest(), u"0.9.0"_s);
        QCOMPARE(m->updater.paragraphs(), (QStringList{u"Один"_s, u"Два"_s}));
        QCOMPARE(m->updater.released(), u"вчера"_s);
        QVERIFY(m->updater.lastChecked().isValid());
    }

    void aRecordingIsNotInterrupted()
    {
        m->status = u"recording"_s;
        m->check(R"({"version":"0.9.0"})");
        QCOMPARE(m->updater.phase(), Updater::Phase::Available);
        QVERIFY(!m->updater.busy());
        m->status = u"processing"_s;
        m->check(R"({"version":"0.9.0"})");
        QCOMPARE(m->updater.phase(), Updater::Phase::Installing);
        QTRY_COMPARE(m->runs(), "run\n"_ba);
    }

    void theScriptRunsOnceAndIsGivenUp()
    {
        m->updater.runUpdate();
        m->updater.runUpdate();
        m->check(R"({"version":"0.9.0"})"); // neither a check nor what it finds starts another one
        QCOMPARE(m->updater.phase(), Updater::Phase::Installing);
        QCOMPARE(m->updater.latest(), u"0.9.0"_s);
        QTRY_COMPARE(m->runs(), "run\n"_ba);
        m->scheduler.advance(89'999ms);
        QVERIFY(m->updater.busy());
        m->scheduler.advance(1ms);
        QVERIFY(!m->updater.busy());
        QVERIFY(!m->updater.available());
        QCOMPARE(m->updater.phase(), Updater::Phase::UpToDate);
        QCOMPARE(m->runs(), "run\n"_ba);
        m->check(R"({"version":"0.9.0"})"); // still older: offered and tried again
        QTRY_COMPARE(m->runs(), "run\nrun\n"_ba);
    }

    void whatIsNotOursToReplaceIsNot_data()
    {
        QTest::addColumn<Installation>("installation");
        QTest::newRow("disk image") << Installation{.bundlePath = u"/Volumes/M/M.app"_s,
                                                    .fromDiskImage = true};
        QTest::newRow("package") << Installation{.bundlePath = u"/usr/bin/murmeli"_s, .packageManaged = true};
    }
    void whatIsNotOursToReplaceIsNot()
    {
        QFETCH(Installation, installation);
        m = std::make_unique<Fixture>(installation);
        m->check(R"({"version":"0.9.0"})");
        QVERIFY(m->updater.available());
        QVERIFY(!m->updater.canInstall());
        m->updater.runUpdate();
        QVERIFY(!m->updater.busy());
        QCOMPARE(m->updater.phase(), Updater::Phase::Available);
    }

    void checksByItself()
    {
        m->updater.startAutoCheck();
        m->scheduler.advance(29'999ms);
        QTest::qWait(0);
        QVERIFY(m->server.requests.isEmpty());
        m->scheduler.advance(1ms);
        QTRY_COMPARE(m->server.requests.size(), 1);
        m->scheduler.advance(2h);
        QTRY_COMPARE(m->server.requests.size(), 3);
        QCOMPARE(m->server.requests[0].path, "/app/version.json"_ba);
        QVERIFY(m->server.requests[0].header("Authorization").isEmpty());
    }

private:
    struct Fixture {
        explicit Fixture(const Installation& installation = {.bundlePath = u"/opt/murmeli"_s})
            : updater({.versionUrl = server.origin() + u"/app/version.json"_s,
                       .script = script,
                       .current = u"0.8.0"_s,
                       .installation = installation},
                      http, processes, desktop, scheduler, [this] { return status; })
        {
            QFile file{script};
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("echo run >> '" + QFile::encodeName(home.filePath(u"runs"_s)) + "'\n");
        }
        void check(const QByteArray& record)
        {
            server.reply = [record](QTcpSocket* socket, const Server::Request&) {
                socket->write(Server::answer(200, record));
            };
            QSignalSpy changed{&updater, &Updater::changed};
            updater.check();
            scheduler.advance(0ms);
            QCOMPARE(changed.count(), 1); // the phase
            QTRY_VERIFY(changed.count() > 1);
        }
        [[nodiscard]] QByteArray runs() const
        {
            QFile file{home.filePath(u"runs"_s)};
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
        }

        QTemporaryDir home;
        QString script = home.filePath(u"update it.sh"_s);
        QString status = u"idle"_s;
        ManualScheduler scheduler;
        NetworkHttp http;
        SystemProcesses processes;
        RecordingDesktop desktop;
        Server server;
        Updater updater;
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(UpdaterTest)
#include "UpdaterTest.moc"
