#include "base/Processes.h"

#include "registeredTests.h"

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
    void outcomes_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<ProcessResult::Outcome>("outcome");
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("output");
        using Outcome = ProcessResult::Outcome;
        QTest::newRow("fine") << u"printf 'два\\n'; echo err >&2"_s << Outcome::Exited << 0 << "два\n"_ba;
        QTest::newRow("fails") << u"exit 3"_s << Outcome::Exited << 3 << ""_ba;
        QTest::newRow("killed") << u"kill -9 $$"_s << Outcome::Crashed << 9 << ""_ba;
        QTest::newRow("hangs") << u"exec sleep 60"_s << Outcome::TimedOut << 9 << ""_ba;
        QTest::newRow("waits for input") << u"read line; echo done"_s << Outcome::Exited << 0 << "done\n"_ba;
        QTest::newRow("talks without end")
            << u"head -c 300000 /dev/zero | tr '\\0' x"_s << Outcome::Exited << 0 << QByteArray(1000, 'x');
    }
    void outcomes()
    {
        QFETCH(QString, script);
        std::optional<ProcessResult> result;
        m_processes.run(
            {.program = u"/bin/bash"_s,
             .arguments = {u"-c"_s, script},
             .timeout = QLatin1StringView{QTest::currentDataTag()} == "hangs"_L1 ? 200ms : 20'000ms,
             .outputLimit = 1000},
            this, [&](const ProcessResult& r) { result = r; });
        QTRY_VERIFY_WITH_TIMEOUT(result, 10'000);
        QTEST(result->outcome, "outcome");
        QTEST(result->exitCode, "code");
        QTEST(result->output, "output");
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

    void aChildEndsWithItsContext()
    {
        auto context = std::make_unique<QObject>();
        QByteArray pid;
        bool wrong = false;
        m_processes.run({.program = u"/bin/bash"_s,
                         .arguments = {u"-c"_s, u"echo $$; exec sleep 60"_s},
                         .onOutput = [&](const QByteArray& piece) { pid += piece; }},
                        context.get(), [&](const ProcessResult&) { wrong = true; });
        QTRY_VERIFY(pid.endsWith('\n'));
        context.reset();
        QTRY_COMPARE(::kill(pid.trimmed().toInt(), 0), -1);
        QVERIFY(!wrong);
    }

    void whatAChildStartedEndsWithIt_data()
    {
        QTest::addColumn<QString>("script");
        QTest::newRow("a pipeline") << u"(echo $BASHPID; exec sleep 60) | cat"_s;
        QTest::newRow("deaf to the polite signal")
            << u"trap '' TERM; (trap '' TERM; echo $BASHPID; while true; do sleep 0.1; done) & wait"_s;
    }
    void whatAChildStartedEndsWithIt()
    {
        QFETCH(QString, script);
        auto context = std::make_unique<QObject>();
        QByteArray grandchild;
        m_processes.run({.program = u"/bin/bash"_s,
                         .arguments = {u"-c"_s, script},
                         .onOutput = [&](const QByteArray& piece) { grandchild += piece; }},
                        context.get(), [](const ProcessResult&) {});
        QTRY_VERIFY(grandchild.endsWith('\n'));
        context.reset();
        QTRY_COMPARE(::kill(grandchild.trimmed().toInt(), 0), -1);
    }

private:
    SystemProcesses m_processes;
};

MURMELI_TEST(ProcessesTest)
#include "ProcessesTest.moc"
