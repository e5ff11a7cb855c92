#include "margin/HomelessMarks.h"
#include "margin/MeetingMarks.h"
#include "margin/RecordingMarks.h"
#include "registeredTests.h"
#include "support/TestProgram.h"
#include "windows/MainModel.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

/// What is noted during a recording, and where it goes.
class MarksTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<TestProgram>(); }
    void cleanup() { m.reset(); }

    void aMarkHasTheMomentOfItsFirstLetter()
    {
        marks().setDraft(u"nothing runs"_s);
        marks().add();
        QVERIFY(marks().latest().isEmpty());
        marks().setDraft({});
        record();
        m->scheduler.advance(60s);
        marks().setDraft(u"с"_s);
        m->scheduler.advance(30s);
        marks().setDraft(u"спросить\nпро стенд "_s);
        marks().add();
        QCOMPARE(marks().draft(), QString{});
        for (const char* text : {"b", "c", "d"})
            note(QString::fromLatin1(text));
        QCOMPARE(latest(), (QStringList{u"02:31 d"_s, u"02:11 c"_s, u"01:51 b"_s}));
        QTRY_COMPARE(files().waiting().marks.size(), 4);
        const Mark first = files().waiting().marks.first();
        QCOMPARE(first.text, u"спросить про стенд"_s);
        QCOMPARE(first.stamp(), u"01:01"_s);

        Program next{m->paths, {m->scheduler, m->http, m->processes, m->desktop, m->secrets}, {}, {}};
        m->scheduler.advance(0ms);
        QTRY_COMPARE(next.marks.latest().size(), 3);
        marks().setDraft(QString(600, u'я'));
        QCOMPARE(marks().draft().size(), 500);
    }

    void whatCannotBeWrittenStaysInTheField()
    {
        m->write(m->paths.ownData, "a file in the folder's place");
        record();
        QSignalSpy told{&m->program, &Program::toastWanted};
        note(u"важно"_s);
        QTRY_COMPARE(told.size(), 1);
        QCOMPARE(marks().draft(), u"важно"_s);
        QVERIFY(marks().latest().isEmpty());
    }

    void itMovesToItsMeeting_data()
    {
        QTest::addColumn<double>("since"); // from the meeting's begin, as the next
        QTest::addColumn<double>("time");
        QTest::addColumn<double>("minutes"); // 0: unknown
        QTest::addColumn<bool>("moves");
        QTest::newRow("in the middle") << 0.0 << 600.0 << 30.0 << true;
        QTest::newRow("begins differ") << 120.0 << 600.0 << 30.0 << true;
        QTest::newRow("begins differ too much") << 121.0 << 600.0 << 30.0 << false;
        QTest::newRow("a minute after the end") << 0.0 << 1860.0 << 30.0 << true;
        QTest::newRow("later") << 0.0 << 1861.0 << 30.0 << false;
        QTest::newRow("unknown length") << 0.0 << 6 * 3600.0 << 0.0 << true;
        QTest::newRow("unknown length, later") << 0.0 << 6 * 3600.0 + 1 << 0.0 << false;
    }
    void itMovesToItsMeeting()
    {
        QFETCH(double, since);
        QFETCH(double, time);
        QFETCH(double, minutes);
        QFETCH(bool, moves);
        const double begin = 1'763'719'620;
        Meeting meeting{.id = u"2025-11-21 13-07-00"_s,
                        .startedAt = QDateTime::fromSecsSinceEpoch(qint64(begin))};
        if (minutes > 0) meeting.durationMin = minutes;
        Mark mark;
        mark.text = u"a"_s;
        mark.time = begin + time;
        mark.begin = begin + since;
        QCOMPARE(files().add(mark), OwnWritten::Yes);
        // As if a kill had come between the two steps of an earlier move.
        if (moves) QCOMPARE(files().addTo(meeting.id, mark), OwnWritten::Yes);
        QCOMPARE(files().settle({meeting}), OwnWritten::Yes);
        QCOMPARE(files().waiting().marks.size(), moves ? 0 : 1);
        QCOMPARE(files().of(meeting.id).marks.size(), moves ? 1 : 0);
    }

    void theSummaryBringsItHome()
    {
        m->write(m->paths.logs + u"/old.protocol.json"_s, "{}");
        record();
        m->scheduler.advance(60s);
        note(u"важно"_s);
        QTRY_COMPARE(files().waiting().marks.size(), 1);
        QSignalSpy came{&m->program.summaries, &SummaryWatch::appeared};
        m->serviceSays("processing");
        QVERIFY(m->program.summaries.isWaiting());
        const QString start = QDateTime::fromSecsSinceEpoch(qint64(m_begin)).toUTC().toString(Qt::ISODate);
        m->write(m->paths.logs + u"/new.protocol.json"_s,
                 "{\"_meta\":{\"started_at\":\"" + start.toUtf8() + "\",\"duration_min\":3}}");
        QTRY_COMPARE((m->scheduler.advance(200ms), files().of(u"new"_s).marks.size()), 1);
        QCOMPARE(files().of(u"new"_s).marks.first().stamp(), u"01:21"_s);
        QCOMPARE(came.size(), 1);
        QTRY_VERIFY(files().waiting().marks.isEmpty());
        QVERIFY(!m->program.summaries.isWaiting());
    }

    void aMarginIsChangedAndKept()
    {
        Mark mark;
        mark.text = u"a"_s;
        mark.time = 100;
        for (const QString& id : {u".."_s, u"../x"_s, u"a/b"_s, QString{}})
            QCOMPARE(files().addTo(id, mark), OwnWritten::Failed);
        m->write(m->paths.ownData + u"/margin/x.json"_s,
                 R"({"v":1,"names":{"1":"Anna"},"marks":[7,{"t":1,"text":"old","new":2}]})");
        QCOMPARE(files().addTo(u"x"_s, mark), OwnWritten::Yes);
        Mark old = files().of(u"x"_s).marks.first(), now = old;
        now.text = u"new"_s;
        QCOMPARE(files().change(u"x"_s, old, now), OwnWritten::Yes);
        now.text.clear();
        QCOMPARE(files().change(u"x"_s, mark, now), OwnWritten::Yes);
        const QByteArray left = files::readWhole(m->paths.ownData + u"/margin/x.json"_s, 1000).value_or("");
        QVERIFY2(left.contains(R"("names":{"1":"Anna"})") && left.contains(R"("new":2)") &&
                     left.contains('7'),
                 left);
        QCOMPARE(files().of(u"x"_s).marks.size(), 1);
    }

    void whatIsRemovedCanBeBroughtBackForAWhile()
    {
        for (const char* text : {"a", "b"}) {
            Mark mark;
            mark.text = QString::fromLatin1(text);
            mark.time = *text;
            QCOMPARE(files().addTo(u"x"_s, mark), OwnWritten::Yes);
        }
        MeetingMarks opened{m->paths, u"x"_s, m->scheduler};
        QTRY_COMPARE(opened.marks().size(), 2);
        opened.edit(1, u" c\n"_s);
        opened.remove(0);
        QVERIFY(opened.removed());
        QTRY_COMPARE(files().of(u"x"_s).marks.size(), 1);
        QCOMPARE(files().of(u"x"_s).marks.first().text, u"c"_s);
        m->scheduler.advance(7999ms);
        opened.bringBack();
        QTRY_COMPARE(files().of(u"x"_s).marks, opened.marks());
        QCOMPARE(opened.marks().first().text, u"a"_s);
        opened.remove(1);
        m->scheduler.advance(8s);
        QVERIFY(!opened.removed());
        QTRY_COMPARE(files().of(u"x"_s).marks.size(), 1);

        m->write(m->paths.ownData + u"/margin/x.json"_s,
                 R"({"v":2,"marks":[{"t":1,"at":1,"text":"newer"}]})");
        opened.remove(0);
        QTRY_VERIFY(opened.failed());
        QTRY_COMPARE(opened.marks().size(), 1);
        QCOMPARE(opened.marks().first().text, u"newer"_s);
    }

    void aMarkWithoutAMeetingCanBePutToOne()
    {
        const double now = m->scheduler.now();
        const auto meeting = [&](const QString& id, double begin) {
            const QString start = QDateTime::fromSecsSinceEpoch(qint64(begin)).toUTC().toString(Qt::ISODate);
            m->write(m->paths.logs + u'/' + id + u".protocol.json"_s,
                     "{\"_meta\":{\"started_at\":\"" + start.toUtf8() + "\",\"duration_min\":30}}");
        };
        meeting(u"near"_s, now - 7200);
        meeting(u"far"_s, now - 90'000);
        Mark homely, homeless;
        homely.time = now - 90'000 + 60;
        homely.begin = now - 90'000;
        homeless.time = now - 100;
        homeless.begin = now - 200;
        homely.text = homeless.text = u"a"_s;
        for (const Mark& mark : {homely, homeless})
            QCOMPARE(files().add(mark), OwnWritten::Yes);
        m->serviceSays("processing");
        MainModel main{m->mainGround()};
        HomelessMarks& marks = *main.homeless();
        QTRY_COMPARE(files().of(u"far"_s).marks.size(), 1); // came while nobody looked
        m->serviceSays("idle");
        m->scheduler.advance(590s);
        marks.look();
        QTest::qWait(0);
        QVERIFY(marks.marks().isEmpty());
        QTRY_COMPARE((m->scheduler.advance(20s), marks.marks().size()), 1);
        QCOMPARE(marks.nearest(homeless), (QStringList{u"near"_s, u"far"_s}));

        marks.remove(homeless);
        QTRY_VERIFY(files().waiting().marks.isEmpty());
        marks.bringBack();
        QTRY_COMPARE(files().waiting().marks.size(), 1);
        main.open(u"near"_s);
        marks.put(marks.marks().first(), u"near"_s);
        QTRY_COMPARE(main.detail()->marks()->marks().size(), 1); // in the opened meeting at once
        QVERIFY(files().waiting().marks.isEmpty() && marks.marks().isEmpty());
    }

private:
    [[nodiscard]] RecordingMarks& marks() const { return m->program.marks; }
    [[nodiscard]] MarkFiles files() const { return MarkFiles{m->paths}; }
    void record()
    {
        m_begin = m->scheduler.now();
        m->serviceWrites("{\"status\":\"recording\",\"since\":" + QByteArray::number(m_begin, 'f') + '}');
    }
    void note(const QString& text)
    {
        m->scheduler.advance(20s);
        marks().setDraft(text);
        marks().add();
    }
    [[nodiscard]] QStringList latest() const
    {
        QStringList lines;
        for (const Mark& mark : marks().latest())
            lines.append(mark.stamp() + u' ' + mark.text);
        return lines;
    }

    double m_begin = 0;
    std::unique_ptr<TestProgram> m;
};

MURMELI_TEST(MarksTest)
#include "MarksTest.moc"
