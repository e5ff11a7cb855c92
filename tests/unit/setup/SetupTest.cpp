#include "base/Processes.h"
#include "registeredTests.h"
#include "service/Paths.h"
#include "setup/SetupRunner.h"
#include "support/ManualScheduler.h"
#include "support/RecordingDesktop.h"
#include "support/Server.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

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

    void strips_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("plain");
        QTest::newRow("colours") << u"\x1b[1;32m==>\x1b[0m Готово\r"_s << u"==> Готово"_s;
        QTest::newRow("cursor") << u"\x1b[2K\x1b[Gline"_s << u"line"_s;
        QTest::newRow("codes alone") << u"\x1b[0m\r \t"_s << QString{};
        QTest::newRow("what is none") << u"[0m \x1b(B"_s << u"[0m \x1b(B"_s;
        QTest::newRow("white space") << u"\u00a0 text\u2003"_s << u"text"_s;
    }
    void strips()
    {
        QFETCH(QString, line);
        QTEST(SetupRunner::strip(line), "plain");
    }

    void markers_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<StepState>("models");
        const auto running = [](std::optional<int> percent) {
            return StepState{StepState::Running, percent};
        };
        const auto row = [](const char* lines, const StepState& state) {
            QTest::newRow(lines) << QByteArray{lines} << state;
        };
        row("@@start|models", running({}));
        row("@@progress|models|42", running(42));
        row("@@progress|models|+7", running(7));
        row("@@progress|models|-3|and|more", running(-3));
        row("@@progress|models|x", running({}));
        row("@@progress|models|4 2", running({}));
        row("@@progress|models| 42", running({}));
        row("@@progress|models|", running({}));
        row("@@progress|models", running({}));
        row("@@done|models", {StepState::Done});
        row("@@fail|models", {StepState::Failed});
        row("@@done", {});
        row("@@", {});
        row("@@done|unknown", {});
        row("@@done|Models", {});
        row("@@done||models", {});
        row("@@shrug|models", {});
        row(" @@done|models", {});
        row("@@progress|models|99999999999", running({}));
    }
    void markers()
    {
        QFETCH(QByteArray, lines);
        m->install("printf '%s\\n' '" + lines + "'; read -r < '" + m->gate() + "'");
        m->runner->start();
        QTRY_VERIFY(m->log().contains(lines));
        QTEST(m->runner->state(SetupStep::Models), "models");
        m->openGate();
        QTRY_VERIFY(!m->runner->isRunning());
    }

    void ends_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<bool>("finished");
        QTest::addColumn<QString>("failedStep");
        const auto row = [](const char* name, const char* script, bool finished, const char* step) {
            QTest::newRow(name) << QByteArray{script} << finished << QString::fromLatin1(step);
        };
        row("success needs no markers", "true", true, "");
        row("the first step that is not done",
            "printf '@@done|system\\n@@done|app\\n@@start|venv\\n'; exit 1", false, "venv");
        row("the step that the script blames", "echo '@@fail|models'; exit 1", false, "models");
        row("all done and yet no success",
            "for s in system app venv engine asr models service; do echo \"@@done|$s\"; done; exit 3", false,
            "");
        row("killed", "kill -9 $$", false, "system");
    }
    void ends()
    {
        QFETCH(QByteArray, script);
        m->install(script);
        m->runner->start();
        QTRY_VERIFY(!m->runner->isRunning());
        QTEST(m->runner->isFinished(), "finished");
        QCOMPARE(m->runner->hasFailed(), !m->runner->isFinished());
        const auto step = m->runner->failedStep();
        QTEST(step ? setupSteps::rawValue(*step) : QString{}, "failedStep");
        if (m->runner->isFinished()) QCOMPARE(m->runner->overallPercent(), 1.0);
    }

    void aFailedDownloadIsNoSuccess_data()
    {
        QTest::addColumn<QByteArray>("wire");
        QTest::newRow("status") << Server::answer(404, "not here");
        QTest::newRow("cut after a whole line")
            << "HTTP/1.1 200 X\r\nContent-Length: 1000\r\nConnection: close\r\n\r\ntrue\n"_ba;
        QTest::newRow("hangs up") << QByteArray{};
    }
    void aFailedDownloadIsNoSuccess()
    {
        QFETCH(QByteArray, wire);
        m->serve(wire);
        m->runner->start();
        QTRY_VERIFY(m->runner->hasFailed());
        QCOMPARE(m->runner->failedStep(), SetupStep::System);
        QVERIFY(m->runner->tail().startsWith(u"curl: ("_s));
    }

    void theScriptKnowsWhoReads()
    {
        m->install("printf '%s|%s\\n' \"$MURMELI_UI\" \"$#\"; echo err >&2");
        m->runner->start();
        QTRY_VERIFY(m->runner->isFinished());
        QTRY_COMPARE(m->log(), "1|0\nerr\n"_ba); // both streams, whole
        QCOMPARE(m->server.requests.size(), 1);
        QCOMPARE(m->server.requests[0].path, "/app/install.sh"_ba);
    }

    void theTailIsTheLastPlainLine()
    {
        m->install("printf 'first\\n%0200d\\n\\033[0m\\r\\n@@start|app\\n' 7");
        m->runner->start();
        QTRY_VERIFY(m->runner->isFinished());
        QCOMPARE(m->runner->tail(), QString(90, u'0'));
    }

    void aCutCharacterLosesItsReadOnly()
    {
        // Each piece is read before the next is written.
        m->install("printf 'one\\n\\320'; read -r < '" + m->gate(1) + "'; printf '\\226\\n'; read -r < '" +
                   m->gate(2) + "'; printf '@@start|app\\nhalf'; read -r < '" + m->gate(3) +
                   "'; printf '@@done|app\\n'; exit 1");
        m->runner->start();
        QTRY_COMPARE(m->log(), "one\n\320"_ba);
        QCOMPARE(m->runner->tail(), QString{});
        m->openGate(1);
        QTRY_COMPARE(m->log(), "one\n\320\226\n"_ba);
        m->openGate(2);
        QTRY_COMPARE(m->runner->tail(), u"half"_s);
        m->openGate(3);
        QTRY_VERIFY(m->runner->hasFailed());
        QCOMPARE(m->runner->state(SetupStep::App).kind, StepState::Done); // a cut line is two lines
    }

    void overall()
    {
        m->install(
            "printf '@@done|system\\n@@done|app\\n@@done|venv\\n@@progress|engine|50\\n@@start|asr\\n'; exit "
            "1");
        m->runner->start();
        QTRY_VERIFY(m->runner->hasFailed());
        QCOMPARE(m->runner->overallPercent(), 0.5);
        m->install("for s in system app venv engine asr models service; do echo \"@@progress|$s|200\"; done; "
                   "exit 1");
        m->runner->start();
        QTRY_VERIFY(m->runner->hasFailed());
        QCOMPARE(m->runner->overallPercent(), 1.0);
    }

    void viewsSeeWhichStepFailed()
    {
        m->install("printf '@@start|system\\n@@start|app\\n'; exit 1");
        m->runner->start();
        QTRY_VERIFY(m->runner->hasFailed());
        QCOMPARE(m->kinds(),
                 (QList<int>{StepState::Failed, StepState::Waiting, StepState::Waiting, StepState::Waiting,
                             StepState::Waiting, StepState::Waiting, StepState::Waiting}));
    }

    void retryBeginsAnew()
    {
        m->install("echo '@@fail|app'; read -r < '" + m->gate() + "'; exit 1");
        m->runner->start();
        QTRY_VERIFY(m->runner->hasFailed()); // although the script still puts things in order
        QVERIFY(m->runner->isRunning());
        m->openGate();
        QTRY_VERIFY(!m->runner->isRunning());
        QVERIFY(m->runner->hasFailed());
        m->install("echo waiting; read -r < '" + m->gate() + "'");
        m->runner->start();
        QVERIFY(m->runner->isRunning());
        QVERIFY(!m->runner->hasFailed() && !m->runner->failedStep());
        QCOMPARE(m->runner->state(SetupStep::App), StepState{});
        m->runner->start();     // does nothing
        m->runner->markReady(); // neither
        QVERIFY(!m->runner->isFinished());
        QTRY_COMPARE(m->runner->tail(), u"waiting"_s);
        m->openGate();
        QTRY_VERIFY(m->runner->isFinished());
        QCOMPARE(m->server.requests.size(), 2);
    }

    void cancelEndsAllThatWasStarted()
    {
        m->install("echo '@@done|system'; sleep 60 & echo $!; wait");
        m->runner->start();
        QTRY_VERIFY(m->runner->tail().toInt() > 0);
        m->runner->cancel();
        QVERIFY(!m->runner->isRunning());
        QCOMPARE(m->runner->failedStep(), SetupStep::App);
        QTRY_COMPARE(::kill(m->runner->tail().toInt(), 0), -1);
        m->runner->markReady();
        QVERIFY(m->runner->isFinished());
    }

    void viewsAreNotFlooded()
    {
        QSignalSpy changed{m->runner.get(), &SetupRunner::changed};
        m->install(
            "for i in {1..10000}; do echo \"@@progress|models|$((i % 100))\"; done; echo '@@done|models'");
        m->runner->start();
        QTRY_VERIFY_WITH_TIMEOUT(m->runner->isFinished(), 20'000);
        QVERIFY(changed.count() < 10); // the clock stands still, so the first wait never ends
        QTRY_COMPARE(m->log().count('\n'), 10'001);
    }

private:
    struct Fixture {
        Fixture()
        {
            runner = std::make_unique<SetupRunner>(
                SetupRunner::Place{.webOrigin = server.origin(),
                                   .logFile = home.filePath(u"state/murmeli/setup.log"_s)},
                processes, desktop, scheduler);
        }
        void install(const QByteArray& script) { serve(Server::answer(200, script)); }
        void serve(const QByteArray& wire)
        {
            server.reply = [wire](QTcpSocket* socket, const Server::Request&) {
                socket->write(wire);
                if (wire.isEmpty() || wire.contains("Connection: close")) socket->disconnectFromHost();
            };
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
            QFile file{runner->logFile()};
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
        }
        [[nodiscard]] QList<int> kinds() const
        {
            QList<int> kinds;
            for (int row = 0; row < runner->rowCount(); ++row)
                kinds.append(runner->data(runner->index(row), SetupRunner::KindRole).toInt());
            return kinds;
        }

        QTemporaryDir home;
        Server server;
        ManualScheduler scheduler;
        SystemProcesses processes;
        RecordingDesktop desktop;
        std::unique_ptr<SetupRunner> runner;
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(SetupTest)
#include "SetupTest.moc"
