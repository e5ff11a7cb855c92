#include "base/Processes.h"

#include "registeredTests.h"
#include "support/Cases.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

class ProcessesTest : public QObject {
    Q_OBJECT

private slots:
    void outcomes()
    {
        using Outcome = ProcessResult::Outcome;
        const Cases<QString, Outcome, int, QByteArray> cases{
            {"fine", u"printf 'два\\n'; echo err >&2"_s, Outcome::Exited, 0, "два\n"},
            {"fails", u"exit 3"_s, Outcome::Exited, 3, ""},
            {"killed", u"kill -9 $$"_s, Outcome::Crashed, 9, ""},
            {"hangs", u"exec sleep 60"_s, Outcome::TimedOut, 9, ""},
            {"waits for input", u"read line; echo done"_s, Outcome::Exited, 0, "done\n"},
            {"talks without end", u"head -c 300000 /dev/zero | tr '\\0' x"_s, Outcome::Exited, 0,
             QByteArray(1000, 'x')},
        };
        for (const auto& [name, script, outcome, code, output] : cases) {
            CASE(name);
            std::optional<ProcessResult> result;
            m_processes.run({.program = u"/bin/bash"_s,
                             .arguments = {u"-c"_s, script},
                             .timeout = outcome == Outcome::TimedOut ? 200ms : 20'000ms,
                             .outputLimit = 1000},
                            this, [&](const ProcessResult& r) { result = r; });
            QTRY_VERIFY_WITH_TIMEOUT(result, 10'000);
            QCOMPARE(result->outcome, outcome);
            QCOMPARE(result->exitCode, code);
            QCOMPARE(result->output, output);
        }
    }

    void piecesArriveAsTheyCome()
    {
        QByteArray pieces;
        bool seenEarly = false;
        std::optional<ProcessResult> result;
        const QTemporaryDir dir;
        const QString go = dir.filePath(u"go"_s);
        m_processes.run(
            {.program = u"/bin/bash"_s,
             .arguments = {u"-c"_s,
                           u"echo one; until [ -e '%1' ]; do sleep 0.01; done; echo two >&2"_s.arg(go)},
             .onOutput =
                 [&](const QByteArray& piece) {
                     pieces += piece;
                     seenEarly = seenEarly || (pieces == "one\n" && !result);
                     QFile{go}.open(QIODevice::WriteOnly);
                 }},
            this, [&](const ProcessResult& r) { result = r; });
        QTRY_VERIFY_WITH_TIMEOUT(result, 10'000);
        QVERIFY(seenEarly);
        QCOMPARE(pieces, "one\ntwo\n"_ba);
    }

    void aMissingProgramIsToldFromTheEventLoop()
    {
        std::optional<ProcessResult> result;
        m_processes.run({.program = u"/no/such/program"_s}, this,
                        [&](const ProcessResult& r) { result = r; });
        QVERIFY(!result);
        QTRY_VERIFY(result);
        QCOMPARE(result->outcome, ProcessResult::Outcome::NotStarted);
        QVERIFY(!m_processes.startDetached(u"/no/such/program"_s, {}));
    }

    void aChildAndAllItStartedEndWithTheContext()
    {
        const Cases<QString> cases{
            // each tells of a process that has to end
            {"itself", u"echo $$; exec sleep 60"_s},
            {"a pipeline", u"(echo $BASHPID; exec sleep 60) | cat"_s},
            {"deaf to the polite signal",
             u"trap '' TERM; (trap '' TERM; echo $BASHPID; while true; do sleep 0.1; done) & wait"_s},
        };
        for (const auto& [name, script] : cases) {
            CASE(name);
            auto context = std::make_unique<QObject>();
            QByteArray pid;
            bool wrong = false;
            m_processes.run({.program = u"/bin/bash"_s,
                             .arguments = {u"-c"_s, script},
                             .onOutput = [&](const QByteArray& piece) { pid += piece; }},
                            context.get(), [&](const ProcessResult&) { wrong = true; });
            QTRY_VERIFY(pid.endsWith('\n'));
            context.reset();
            QTRY_COMPARE(::kill(pid.trimmed().toInt(), 0), -1);
            QVERIFY(!wrong);
        }
    }

private:
    SystemProcesses m_processes;
};

MURMELI_TEST(ProcessesTest)
#include "ProcessesTest.moc"
