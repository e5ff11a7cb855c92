#include "notices/Pulse.h"

#include "registeredTests.h"
#include "support/TestProgram.h"

#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

using Trouble = Pulse::Trouble;
using Reason = Pulse::Reason;

/// What the service's files tell of its life.
class PulseTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m = std::make_unique<TestProgram>();
        m->installScript(m->paths.recorderScript, "echo '{}'");
        m->serviceSays("idle");
    }
    void cleanup() { m.reset(); }

    void silence_data()
    {
        QTest::addColumn<int>("beats");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<double>("quietUntil"); // after the last beat; 0: for ever
        QTest::newRow("no rhythm yet") << 8 << 2.0 << 0.0;
        QTest::newRow("a quick one") << 9 << 0.5 << 20.0;
        QTest::newRow("a slow one") << 9 << 9.0 << 72.0;
        QTest::newRow("too slow to be one") << 9 << 61.0 << 0.0;
    }
    void silence()
    {
        QFETCH(int, beats);
        QFETCH(double, seconds);
        QFETCH(double, quietUntil);
        m->serviceBeats(beats, seconds);
        m->scheduler.advance(std::chrono::milliseconds{qint64((quietUntil > 0 ? quietUntil : 900) * 1000)} -
                             2s);
        QCOMPARE(pulse().trouble(), Trouble::None);
        m->scheduler.advance(4s);
        QCOMPARE(pulse().trouble(), quietUntil > 0 ? Trouble::Silent : Trouble::None);
        m->serviceBeats(1, 1);
        QCOMPARE(pulse().trouble(), Trouble::None);
        m->scheduler.sleep(3600s); // in which nobody wrote
        m->scheduler.advance(3s);
        QCOMPARE(pulse().trouble(), Trouble::None);
    }

    void whatSaysNothingOfItsLife()
    {
        m->serviceBeats(9, 2);
        m->serviceSays("processing"); // whose rhythm nobody knows
        m->scheduler.advance(600s);
        QCOMPARE(pulse().trouble(), Trouble::None);
        m->serviceSays("idle");
        m->scheduler.advance(30s);
        QCOMPARE(pulse().trouble(), Trouble::Silent);
        m->record.toggle();
        QCOMPARE(pulse().trouble(), Trouble::None); // while an answer is awaited
        m->scheduler.advance(12s);
        QCOMPARE(pulse().trouble(), Trouble::NotStarted);
    }

    void theRhythmOutlivesTheProgram()
    {
        m->serviceBeats(9, 2);
        QTRY_VERIFY(QFile::exists(m->paths.ownCache + u"/pulse.json"_s));
        Program next{m->paths, {m->scheduler, m->http, m->processes, m->desktop, m->secrets}, {}, {}};
        m->scheduler.advance(30s);
        QTRY_COMPARE((m->scheduler.advance(1500ms), next.pulse.trouble()), Trouble::Silent);
    }

    void reasons_data()
    {
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<QByteArray>("permissions");
        QTest::addColumn<QString>("rest"); // what else is known
        QTest::addColumn<Reason>("reason");
        const QByteArray idle = "idle", fine = "{}", denied = R"({"microphone":"denied","screen":true})";
        QTest::newRow("all") << idle << denied << u"no engine, full, silent, taken before"_s
                             << Reason::NotInstalled;
        QTest::newRow("denied") << idle << denied << u"full, silent, taken before"_s << Reason::Denied;
        QTest::newRow("disk") << idle << fine << u"full, silent, taken before"_s << Reason::DiskFull;
        QTest::newRow("silent") << idle << fine << u"silent, taken before"_s << Reason::Silent;
        QTest::newRow("busy") << QByteArray{"processing"} << fine << u"taken before"_s << Reason::Busy;
        QTest::newRow("lies") << idle << fine << u"taken before"_s << Reason::NotTaken;
        QTest::newRow("never taken") << idle << fine << QString{} << Reason::NoAnswer;
        QTest::newRow("taken now") << idle << fine << u"taken before, taken now"_s << Reason::NoAnswer;
        // Nobody asks for permissions during a recording.
        QTest::newRow("a stop") << QByteArray{"recording"} << denied << QString{} << Reason::NoAnswer;
    }
    void reasons()
    {
        QFETCH(QByteArray, status);
        QFETCH(QByteArray, permissions);
        QFETCH(QString, rest);
        QFETCH(Reason, reason);
        m->installScript(m->paths.recorderScript, "echo '" + permissions + "'");
        if (rest.contains(u"no engine"_s)) QFile::remove(m->paths.python);
        *m->freeBytes = Pulse::leastFree - rest.contains(u"full"_s);
        if (rest.contains(u"taken before"_s)) {
            m->record.toggle();
            QFile::remove(m->paths.commandFile);
            m->serviceSays("recording");
        }
        m->serviceSays(status);
        if (rest.contains(u"silent"_s)) {
            m->serviceBeats(9, 1);
            m->scheduler.advance(30s);
        }
        QSignalSpy cards{&m->program, &Program::toastWanted};
        m->record.toggle();
        if (rest.contains(u"taken now"_s)) QFile::remove(m->paths.commandFile);
        m->scheduler.advance(11s);
        QCOMPARE(pulse().trouble(), Trouble::None);
        m->scheduler.advance(1s);
        QCOMPARE(pulse().trouble(), status == "recording" ? Trouble::NotStopped : Trouble::NotStarted);
        QTRY_COMPARE(pulse().reason(), reason);
        QCOMPARE(cards.size(), 1);

        m->serviceSays(status == "recording" ? "idle" : "recording");
        QCOMPARE(pulse().trouble(), Trouble::None);
    }

    void aFullDiskIsToldOnceARecording()
    {
        QSignalSpy cards{&m->program, &Program::toastWanted};
        *m->freeBytes = Pulse::leastFree;
        m->serviceSays("recording");
        QTRY_VERIFY(pulse().freeBytes());
        QVERIFY(!pulse().diskRunsOut());
        *m->freeBytes = Pulse::leastFree - 1;
        m->scheduler.advance(30s);
        QTRY_VERIFY(pulse().diskRunsOut());
        for (int looks = 0; looks < 3; ++looks) {
            m->scheduler.advance(30s);
            QThreadPool::globalInstance()->waitForDone();
            QCoreApplication::processEvents();
        }
        pulse().dismissDisk();
        m->scheduler.advance(300s);
        QVERIFY(!pulse().diskRunsOut());
        QCOMPARE(cards.size(), 2); // and that it records
    }

    void aLongRecordingIsAskedAfter()
    {
        const double begin = m->scheduler.now() + 1.5;
        m->serviceWrites("{\"status\":\"recording\",\"since\":" + QByteArray::number(begin, 'f') + '}');
        QSignalSpy asked{&m->program.longRecording, &LongRecording::asked};
        m->scheduler.advance(90min - 3s);
        QCOMPARE(asked.size(), 0);
        m->scheduler.advance(3s);
        QCOMPARE(asked.size(), 1);
        QCOMPARE(forgotten().title, u"Запись идёт уже 1\u00A0ч 30\u00A0мин"_s);
        QCOMPARE(forgotten().body, u"Всё ещё на встрече? Сама остановится через 1\u00A0ч 30\u00A0мин."_s);
        m->scheduler.advance(45min);
        QCOMPARE(asked.size(), 2); // nobody has answered
        m->scheduler.advance(10min);
        m->program.board.act(noticeKind::Forgotten, NoticeAction::GoOn);
        QVERIFY(!forgotten().shown);
        m->scheduler.advance(45min - 3s);
        QCOMPARE(asked.size(), 2);
        m->scheduler.advance(3s);
        QCOMPARE(asked.size(), 3);
        QCOMPARE(forgotten().body, u"Всё ещё на встрече?"_s); // its time to stop has passed

        m->settings.set(u"remind_long"_s, false);
        QVERIFY(!forgotten().shown);
        m->settings.set(u"remind_long"_s, true);
        QSignalSpy cards{&m->program, &Program::toastWanted};
        m->prefs.set(u"notifications"_s, false);
        m->scheduler.advance(45min);
        QVERIFY(forgotten().shown);
        QVERIFY(cards.isEmpty());
        m->program.board.act(noticeKind::Forgotten, NoticeAction::Stop);
        QCOMPARE(m->record.pending(), RecordControl::Pending::Stopping);
        m->serviceSays("processing");
        QVERIFY(!forgotten().shown);
        m->serviceWrites(R"({"status":"recording","since":0})");
        m->scheduler.advance(300min);
        QVERIFY(!forgotten().shown);
    }

    void whatIsReadyAndWhatIsSlow()
    {
        const auto meet = [&](const QByteArray& name, std::chrono::seconds writing) {
            const double begin = m->scheduler.now();
            m->serviceWrites("{\"status\":\"recording\",\"since\":" + QByteArray::number(begin, 'f') + '}');
            m->scheduler.advance(600s - 3s);
            m->serviceSays("processing");
            if (name == "c") QVERIFY(m->panel.usualLine().isEmpty()); // two tell nothing yet
            m->scheduler.advance(writing);
            if (name.isEmpty()) return;
            m->write(m->paths.logs + u'/' + QString::fromLatin1(name) + u".protocol.json"_s,
                     "{\"title\":\"secret\",\"tldr\":\"all in "
                     "short\",\"_meta\":{\"duration_min\":10,\"started_at\":\"" +
                         QDateTime::fromSecsSinceEpoch(qint64(begin)).toUTC().toString(Qt::ISODate).toUtf8() +
                         "\"}}");
            QTRY_VERIFY((m->scheduler.advance(200ms), notice(noticeKind::Ready).shown));
            m->serviceSays("idle");
        };
        QSignalSpy cards{&m->program, &Program::toastWanted};
        for (const QByteArray& name : {QByteArray{"a"}, QByteArray{"b"}, QByteArray{"c"}}) {
            meet(name, 120s);
            QVERIFY(!notice(noticeKind::Ready).title.contains(u"secret"_s));
            m->program.board.dismiss(noticeKind::Ready);
        }
        QCOMPARE(cards.size(), 9); // that it records, that it has ended, that it is ready
        meet({}, 60s);
        QCOMPARE(m->panel.usualLine(), Message::of("pulse.usual", u"2"_s));
        m->scheduler.advance(500s); // three times as long as usual, but not ten minutes
        QVERIFY(!notice(noticeKind::Slow).shown);
        m->scheduler.advance(90s);
        QVERIFY(notice(noticeKind::Slow).shown);
        m->program.board.dismiss(noticeKind::Slow);
        m->scheduler.advance(600s);
        QVERIFY(!notice(noticeKind::Slow).shown);

        m->serviceSays("idle");
        meet("e", 10s);
        m->program.board.act(noticeKind::Ready, NoticeAction::CopySummary);
        QCOMPARE(m->desktop.copiedText, u"all in short"_s);
        QVERIFY(!notice(noticeKind::Ready).shown);
        meet("f", 10s);
        m->scheduler.advance(24h);
        QVERIFY(!notice(noticeKind::Ready).shown);
    }

    void aDayOfOrdinaryStates()
    {
        int said = 0;
        connect(&m->program.board, &NoticeBoard::changed, this, [&] {
            for (const Notice& notice : m->program.board.notices())
                said += notice.shown;
        });
        for (int hour = 0; hour < 24; ++hour) {
            m->serviceBeats(12, 60);
            if (hour % 3 == 0) m->scheduler.sleep(3600s);
            m->record.toggle();
            m->scheduler.advance(11s);
            QFile::remove(m->paths.commandFile);
            m->write(m->paths.stateFile, R"({"status":"recording"})"); // at the last moment
            m->scheduler.advance(1500ms);
            m->serviceBeats(20, 30);
            m->record.toggle();
            m->serviceSays("processing");
            m->scheduler.advance(500s);
            m->serviceSays("idle");
        }
        QCOMPARE(said, 0);
    }

private:
    [[nodiscard]] Pulse& pulse() const { return m->program.pulse; }
    [[nodiscard]] Notice notice(int kind) const { return m->program.board.notice(kind); }
    [[nodiscard]] Notice forgotten() const { return notice(noticeKind::Forgotten); }

    std::unique_ptr<TestProgram> m;
};

MURMELI_TEST(PulseTest)
#include "PulseTest.moc"
