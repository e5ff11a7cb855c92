#include "update/Updater.h"

#include "registeredTests.h"
#include "support/Cases.h"
#include "support/Faults.h"
#include "support/TestProgram.h"

#include <QProcess>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

class UpdaterTest : public QObject {
    Q_OBJECT

private slots:
    void init() { begin(Installation{.bundlePath = u"/opt/murmeli"_s}); }
    void cleanup() { m.reset(); }

    void versions()
    {
        const std::initializer_list<std::tuple<QString, QString, bool>> cases{
            // whether it is newer than that
            {u"0.8.1"_s, u"0.8.0"_s, true},
            {u"0.8"_s, u"0.8.0"_s, false},
            {u"0.8.0"_s, u"0.8"_s, false},
            {u"0.10.0"_s, u"0.9.9"_s, true},
            {u"1"_s, u"0.99.99"_s, true},
            {u"x.9"_s, u"0.8"_s, true},
            {u"1.0-beta"_s, u"1.0"_s, false},
            {u"1.0.1"_s, u"1.0-beta"_s, true},
            {u""_s, u"0"_s, false},
            {u"..1.."_s, u"0.9"_s, true},
            {u"99999999999999999999"_s, u"1"_s, false},
            {u"0. 9"_s, u"0.8"_s, false},
            {u"-1"_s, u"0"_s, false},
        };
        for (const auto& [a, b, newer] : cases)
            QVERIFY2(Updater::isNewer(a, b) == newer, qPrintable(a + u" over "_s + b));
    }

    void answers()
    {
        const Cases<int, QByteArray, Updater::Phase> cases{
            {"newer", 200, R"({"version":"0.9.0"})", Updater::Phase::Available},
            {"newer, with an error status", 500, R"({"version":"0.9.0"})", Updater::Phase::Available},
            {"the same", 200, R"({"version":"0.8"})", Updater::Phase::UpToDate},
            {"older", 200, R"({"version":"0.7.9","notes":7,"released":[]})", Updater::Phase::UpToDate},
            {"no version", 200, R"({"notes":"x"})", Updater::Phase::Failed},
            {"version is a number", 200, R"({"version":0.9})", Updater::Phase::Failed},
        };
        for (const auto& [name, status, record, phase] : cases) {
            CASE(name);
            init();
            m->serviceSays("recording"); // so that nothing is installed
            m->server.says(Server::answer(status, record));
            m->check();
            QCOMPARE(m->updater.phase(), phase);
            QCOMPARE(m->updater.available(), phase == Updater::Phase::Available);
            QCOMPARE(m->updater.lastChecked().isValid(), phase != Updater::Phase::Failed);
        }
    }

    void whatIsNoAnswer()
    {
        for (const Fault& fault : faultsAround(R"({"version":"0.9.0"})")) {
            CASE(fault.name);
            init();
            m->server.reply = fault;
            m->check();
            QCOMPARE(m->updater.phase(), Updater::Phase::Failed);
            QVERIFY(!m->updater.available());
        }
    }

    void aFailedCheckKeepsWhatWasKnown()
    {
        m->serviceSays("recording");
        check(R"({"version":"0.9.0","notes":"Один\n\n  Два  \n","released":"вчера"})");
        check("nonsense");
        QCOMPARE(m->updater.phase(), Updater::Phase::Failed);
        QVERIFY(m->updater.available());
        QCOMPARE(m->updater.latest(), u"0.9.0"_s);
        QCOMPARE(m->updater.paragraphs(), (QStringList{u"Один"_s, u"Два"_s}));
        QCOMPARE(m->updater.released(), u"вчера"_s);
        QVERIFY(m->updater.lastChecked().isValid());
    }

    void aRecordingIsNotInterrupted()
    {
        m->serviceSays("recording");
        check(R"({"version":"0.9.0"})");
        QCOMPARE(m->updater.phase(), Updater::Phase::Available);
        QVERIFY(!m->updater.busy());
        m->serviceSays("processing");
        check(R"({"version":"0.9.0"})");
        QCOMPARE(m->updater.phase(), Updater::Phase::Installing);
        QTRY_COMPARE(runs(), "run\n"_ba);
    }

    void theScriptRunsOnceAndIsGivenUp()
    {
        m->updater.runUpdate();
        m->updater.runUpdate();
        check(R"({"version":"0.9.0"})"); // neither a check nor what it finds starts another one
        QCOMPARE(m->updater.phase(), Updater::Phase::Installing);
        QCOMPARE(m->updater.latest(), u"0.9.0"_s);
        QTRY_COMPARE(runs(), "run\n"_ba);
        m->scheduler.advance(89'999ms);
        QVERIFY(m->updater.busy());
        m->scheduler.advance(1ms);
        QVERIFY(!m->updater.busy());
        QVERIFY(!m->updater.available());
        QCOMPARE(m->updater.phase(), Updater::Phase::UpToDate);
        QCOMPARE(runs(), "run\n"_ba);
        check(R"({"version":"0.9.0"})"); // still older: offered and tried again
        QTRY_COMPARE(runs(), "run\nrun\n"_ba);
    }

    void theLogStopsNoUpdateAndEmptiesNoFile()
    {
        const Cases<QByteArray, bool> cases{
            // how the log's place is prepared, and whether it is ours to write to
            {"nothing there", "true", true},
            {"our own", "echo old > log", true},
            {"a link to a precious file", "ln -s precious log", false},
            {"a link to nothing", "ln -s nothing log", false},
            {"another's", "echo old > log; chown 12345 log", false},
            {"a folder", "mkdir log", false},
            {"a pipe", "mkfifo log", false},
        };
        for (const auto& [name, prepare, ours] : cases) {
            CASE(name);
            begin(Installation{.bundlePath = u"/opt/murmeli"_s});
            if (QByteArray{prepare}.contains("chown") && ::geteuid() != 0)
                continue; // only root gives files away
            const auto at = [&](const char* file) { return m->home.filePath(QString::fromLatin1(file)); };
            m->write(at("precious"), "words");
            QProcess shell;
            shell.setWorkingDirectory(m->home.path());
            shell.start(u"/bin/sh"_s, {u"-c"_s, QString::fromLatin1(prepare)});
            QVERIFY(shell.waitForFinished());
            m->write(m->paths.updateScript, "echo told; echo run >> '" + at("runs").toUtf8() + "'\n");
            m->desktop.states = at("state/murmeli");
            Updater updater{{.script = m->paths.updateScript,
                             .installation = {.bundlePath = u"/opt/murmeli"_s},
                             .log = at("log")},
                            m->http,
                            m->processes,
                            m->desktop,
                            m->scheduler,
                            [] { return true; }};
            updater.runUpdate();
            QTRY_COMPARE(runs(), "run\n"_ba);
            const QString log = ours ? at("log") : at("state/murmeli/update.log");
            QTRY_COMPARE(files::readWhole(log, 100).value_or(""), "told\n"_ba);
            QCOMPARE(files::readWhole(at("precious"), 100), "words"_ba);
            QVERIFY(!QFile::exists(at("nothing")));
        }
    }

    void whatIsNotOursToReplaceIsNot()
    {
        const Cases<Installation> cases{
            {"disk image", {.bundlePath = u"/Volumes/M/M.app"_s, .fromDiskImage = true}},
            {"package", {.bundlePath = u"/usr/bin/murmeli"_s, .packageManaged = true}},
        };
        for (const auto& [name, installation] : cases) {
            CASE(name);
            begin(installation);
            check(R"({"version":"0.9.0"})");
            QVERIFY(m->updater.available());
            QVERIFY(!m->updater.canInstall());
            m->updater.runUpdate();
            QVERIFY(!m->updater.busy());
            QCOMPARE(m->updater.phase(), Updater::Phase::Available);
        }
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
    void begin(const Installation& installation)
    {
        m = std::make_unique<TestProgram>(installation, u"a $(touch x) \"home"_s); // which nobody may execute
        m->write(m->paths.updateScript, "echo run >> '" + m->home.filePath(u"runs"_s).toUtf8() + "'\n");
    }
    void check(const QByteArray& record)
    {
        m->publish(record);
        m->check();
    }
    [[nodiscard]] QByteArray runs() const
    {
        return files::readWhole(m->home.filePath(u"runs"_s), 1000).value_or("");
    }

    std::unique_ptr<TestProgram> m;
};

MURMELI_TEST(UpdaterTest)
#include "UpdaterTest.moc"
