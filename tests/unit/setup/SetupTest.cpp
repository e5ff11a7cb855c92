#include "base/Files.h"
#include "base/Processes.h"
#include "registeredTests.h"
#include "service/Paths.h"
#include "setup/SetupRunner.h"
#include "support/Cases.h"
#include "support/Faults.h"
#include "support/ManualScheduler.h"
#include "support/RecordingDesktop.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

const QByteArray forEachStep = "for s in system app venv engine asr models service; do ";

} // namespace

class SetupTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void needed()
    {
        const QTemporaryDir home;
        const Paths paths{home.path()};
        QVERIFY(SetupRunner::needed(paths));
        QDir{}.mkpath(QFileInfo{paths.python}.path());
        QVERIFY(QFile::link(u"/bin/sh"_s, paths.python));
        QVERIFY(SetupRunner::needed(paths));
        QDir{}.mkpath(paths.modelsMarker);
        QVERIFY(!SetupRunner::needed(paths));
    }

    void strips()
    {
        const Cases<QString, QString> cases{
            {"colours", u"\x1b[1;32m==>\x1b[0m Готово\r"_s, u"==> Готово"_s},
            {"cursor", u"\x1b[2K\x1b[Gline"_s, u"line"_s},
            {"codes alone", u"\x1b[0m\r \t"_s, {}},
            {"what is none", u"[0m \x1b(B"_s, u"[0m \x1b(B"_s},
            {"white space", u"\u00a0 text\u2003"_s, u"text"_s},
        };
        for (const auto& [name, line, plain] : cases) {
            CASE(name);
            QCOMPARE(SetupRunner::strip(line), plain);
        }
    }

    void markers()
    {
        const StepState untouched, running{StepState::Running};
        const Cases<StepState> cases{
            {"@@start|models", running},
            {"@@progress|models|42", {StepState::Running, 42}},
            {"@@progress|models|+7", {StepState::Running, 7}},
            {"@@progress|models|-3|and|more", {StepState::Running, -3}},
            {"@@progress|models|x", running},
            {"@@progress|models|4 2", running},
            {"@@progress|models| 42", running},
            {"@@progress|models|", running},
            {"@@progress|models", running},
            {"@@progress|models|99999999999", running},
            {"@@done|models", {StepState::Done}},
            {"@@fail|models", {StepState::Failed}},
            {"@@done", untouched},
            {"@@", untouched},
            {"@@done|unknown", untouched},
            {"@@done|Models", untouched},
            {"@@done||models", untouched},
            {"@@shrug|models", untouched},
            {" @@done|models", untouched},
        };
        for (const auto& [line, models] : cases) {
            CASE(line);
            init();
            m->install("printf '%s\\n' '" + QByteArray{line} + "'; read -r < '" + m->gate() + "'");
            m->runner.start();
            QTRY_VERIFY(m->log().contains(line));
            QCOMPARE(m->runner.state(SetupStep::Models), models);
            m->openGate();
            QTRY_VERIFY(!m->runner.isRunning());
        }
    }

    void ends()
    {
        const Cases<QByteArray, bool, QString> cases{
            // whether it is finished; else the step that failed
            {"success needs no markers", "true", true, {}},
            {"the first step that is not done",
             "printf '@@done|system\\n@@done|app\\n@@start|venv\\n'; exit 1", false, u"venv"_s},
            {"the step that the script blames", "echo '@@fail|models'; exit 1", false, u"models"_s},
            {"all done and yet no success", forEachStep + "echo \"@@done|$s\"; done; exit 3", false, {}},
            {"killed", "kill -9 $$", false, u"system"_s},
            {"success before the last byte came", "exit 0\n" + QByteArray(1'000'000, '#'), true, {}},
            {"failure before the last byte came", "exit 1\n" + QByteArray(1'000'000, '#'), false,
             u"system"_s},
        };
        for (const auto& [name, script, finished, failedStep] : cases) {
            CASE(name);
            init();
            m->run(script);
            QCOMPARE(m->runner.isFinished(), finished);
            QCOMPARE(m->runner.hasFailed(), !finished);
            const auto step = m->runner.failedStep();
            QCOMPARE(step ? setupSteps::rawValue(*step) : QString{}, failedStep);
            if (finished) QCOMPARE(m->runner.overallPercent(), 1.0);
        }
    }

    void aFailedDownloadIsNoSuccess()
    {
        const QList<Fault> faults{
            {"an error status", Server::answer(404, "true\n")},
            {"a break after a whole line", "HTTP/1.1 200 X\r\nContent-Length: 1000\r\n\r\ntrue\n", true},
            {"a hang-up", {}, true},
        };
        for (const Fault& fault : faults) {
            CASE(fault.name);
            init();
            m->server.reply = fault;
            m->runner.start();
            QTRY_VERIFY(m->runner.hasFailed());
            QCOMPARE(m->runner.failedStep(), SetupStep::System);
            QVERIFY(m->runner.tail().startsWith(u"curl: ("_s));
        }
    }

    void theScriptKnowsWhoReads()
    {
        m->run("printf '%s|%s\\n' \"$MURMELI_UI\" \"$#\"; echo err >&2");
        QVERIFY(m->runner.isFinished());
        QTRY_COMPARE(m->log(), "1|0\nerr\n"_ba); // both streams, whole
        QCOMPARE(m->server.requests.size(), 1);
        QCOMPARE(m->server.requests[0].path, "/app/install.sh"_ba);
    }

    void theLogIsPrivateAndHasAnEnd()
    {
        m->run("head -c 20000000 /dev/zero | tr '\\0' '\\n'");
        QVERIFY(m->runner.isFinished());
        const auto size = [this] { return QFileInfo{m->runner.logFile()}.size(); };
        QTRY_VERIFY(size() > 10'000'000);
        QVERIFY(size() < 11'000'000);
        QVERIFY(files::isPrivate(m->runner.logFile()));
    }

    void theTailIsTheLastPlainLine()
    {
        m->run("printf 'first\\n%0200d\\n\\033[0m\\r\\n@@start|app\\n' 7");
        QVERIFY(m->runner.isFinished());
        QCOMPARE(m->runner.tail(), QString(90, u'0'));
    }

    void aCutCharacterLosesItsReadOnly()
    {
        // Each piece is read before the next is written.
        m->install("printf 'one\\n\\320'; read -r < '" + m->gate(1) + "'; printf '\\226\\n'; read -r < '" +
                   m->gate(2) + "'; printf '@@start|app\\nhalf'; read -r < '" + m->gate(3) +
                   "'; printf '@@done|app\\n'; exit 1");
        m->runner.start();
        QTRY_COMPARE(m->log(), "one\n\320"_ba);
        QCOMPARE(m->runner.tail(), QString{});
        m->openGate(1);
        QTRY_COMPARE(m->log(), "one\n\320\226\n"_ba);
        m->openGate(2);
        QTRY_COMPARE(m->runner.tail(), u"half"_s);
        m->openGate(3);
        QTRY_VERIFY(m->runner.hasFailed());
        QCOMPARE(m->runner.state(SetupStep::App).kind, StepState::Done); // a cut line is two lines
    }

    void overall()
    {
        m->run("printf '@@done|system\\n@@done|app\\n@@done|venv\\n@@progress|engine|50\\n@@start|asr\\n'; "
               "exit 1");
        QCOMPARE(m->runner.overallPercent(), 0.5);
        m->run(forEachStep + "echo \"@@progress|$s|200\"; done; exit 1");
        QCOMPARE(m->runner.overallPercent(), 1.0);
    }

    void viewsSeeWhichStepFailed()
    {
        m->run("printf '@@start|system\\n@@start|app\\n'; exit 1");
        QVERIFY(m->runner.hasFailed());
        for (int row = 0; row < m->runner.rowCount(); ++row)
            QCOMPARE(m->runner.data(m->runner.index(row), SetupRunner::KindRole).toInt(),
                     int(row == 0 ? StepState::Failed : StepState::Waiting));
    }

    void retryBeginsAnew()
    {
        m->install("echo '@@fail|app'; read -r < '" + m->gate() + "'; exit 1");
        m->runner.start();
        QTRY_VERIFY(m->runner.hasFailed()); // although the script still puts things in order
        QVERIFY(m->runner.isRunning());
        m->openGate();
        QTRY_VERIFY(!m->runner.isRunning());
        QVERIFY(m->runner.hasFailed());
        m->install("echo '@@start|app'; echo waiting; read -r < '" + m->gate() + "'");
        m->runner.start();
        QVERIFY(m->runner.isRunning());
        QVERIFY(!m->runner.hasFailed() && !m->runner.failedStep());
        QCOMPARE(m->runner.state(SetupStep::App), StepState{});
        QTRY_COMPARE(m->runner.tail(), u"waiting"_s);
        m->runner.start();     // does nothing
        m->runner.markReady(); // neither
        QCOMPARE(m->runner.state(SetupStep::App), StepState{StepState::Running});
        QVERIFY(!m->runner.isFinished());
        m->openGate();
        QTRY_VERIFY(m->runner.isFinished());
        QCOMPARE(m->server.requests.size(), 2);
    }

    void cancelEndsAllThatWasStarted()
    {
        m->install("echo '@@done|system'; sleep 60 & echo $!; wait");
        m->runner.start();
        QTRY_VERIFY(m->runner.tail().toInt() > 0);
        m->runner.cancel();
        QVERIFY(!m->runner.isRunning());
        QCOMPARE(m->runner.failedStep(), SetupStep::App);
        QTRY_COMPARE(::kill(m->runner.tail().toInt(), 0), -1);
        m->runner.markReady();
        QVERIFY(m->runner.isFinished());
    }

    void viewsAreNotFlooded()
    {
        QSignalSpy changed{&m->runner, &SetupRunner::changed};
        m->install(
            "for i in {1..10000}; do echo \"@@progress|models|$((i % 100))\"; done; echo '@@done|models'");
        m->runner.start();
        QTRY_VERIFY_WITH_TIMEOUT(m->runner.isFinished(), 20'000);
        QVERIFY(changed.count() < 10); // the clock stands still, so the first wait never ends
        QTRY_COMPARE(m->log().count('\n'), 10'001);
    }

private:
    struct Fixture {
        void install(const QByteArray& script) { server.says(Server::answer(200, script)); }
        void run(const QByteArray& script)
        {
            install(script);
            runner.start();
            QTRY_VERIFY(!runner.isRunning());
        }
        /// A pipe at which a script waits, once.
        [[nodiscard]] QByteArray gate(int number = 0) const
        {
            const QByteArray path = QFile::encodeName(home.filePath(u"gate%1"_s.arg(number)));
            ::mkfifo(path.constData(), 0600);
            return path;
        }
        void openGate(int number = 0) const
        {
            QFile file{QFile::decodeName(gate(number))};
            QVERIFY(file.open(QIODevice::WriteOnly)); // waits for the script
            file.write("\n");
        }
        [[nodiscard]] QByteArray log() const
        {
            return files::readWhole(runner.logFile(), 1'000'000).value_or("");
        }

        QTemporaryDir home;
        Server server;
        ManualScheduler scheduler;
        SystemProcesses processes;
        RecordingDesktop desktop;
        SetupRunner runner{
            {.webOrigin = server.origin(), .logFile = home.filePath(u"state/murmeli/setup.log"_s)},
            processes,
            desktop,
            scheduler};
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(SetupTest)
#include "SetupTest.moc"
