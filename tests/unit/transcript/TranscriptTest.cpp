#include "registeredTests.h"
#include "support/Cases.h"
#include "support/TestProgram.h"
#include "transcript/TranscriptModel.h"
#include "windows/MainModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

/// What was said at a meeting, to be read.
class TranscriptTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<TestProgram>(); }
    void cleanup()
    {
        main.reset();
        m.reset();
    }

    void quotes()
    {
        const Transcript transcript{
            u"[00:00:05]  Анна: привет \n[00:10:00] раньше\n[без конца\n[00:10:00] позже\n"
            "[00:10:30] полминуты\n[10:30] то же\n[шум] шуршание\n[01:00:00] конец"_s};
        const Cases<QString, QString> cases{
            // what was said then, between the lines around it; nothing when that is not known
            {"exact", u"[00:00:05]"_s, u"|Анна: привет|раньше"_s},
            {"of equal stamps the later", u"[00:10:00]"_s, u"раньше|позже|полминуты"_s},
            {"between two", u"[00:10:05]"_s, u"раньше|позже|полминуты"_s},
            {"other spelling", u"00:05"_s, u"|Анна: привет|раньше"_s},
            {"of equal seconds the first", u"10:31"_s, u"позже|полминуты|то же"_s},
            {"after the end", u"[999999999999:00]"_s, u"шуршание|конец|"_s},
            {"before the beginning", u"[00:00:01]"_s, {}},
            {"negative", u"[-1:00]"_s, {}},
            {"a word that stands there", u"[шум]"_s, u"то же|шуршание|конец"_s},
            {"no stamp", u"[]"_s, {}},
        };
        for (const auto& [name, stamp, lines] : cases) {
            CASE(name);
            const auto found = transcript.quote(stamp);
            QCOMPARE(found ? found->before + u'|' + found->text + u'|' + found->after : QString{}, lines);
        }
    }

    void speakers()
    {
        const Cases<QString, QString> cases{
            {"named", u"[1:02] Анна: принесу"_s, u"1:02|Анна|принесу"_s},
            {"in two words", u"[1:02:03]  Speaker 1 :  x: y"_s, u"1:02:03|Speaker 1|x: y"_s},
            {"nobody", u"[1:02] принесу"_s, u"1:02||принесу"_s},
            {"a sentence before the colon", u"[1:02] Итог. Решили: да"_s, u"1:02||Итог. Решили: да"_s},
            {"too long for a name", u"[1:02] "_s + QString(61, u'a') + u": b"_s,
             u"1:02||"_s + QString(61, u'a') + u": b"_s},
            {"a colon first", u"[1:02] : b"_s, u"1:02||: b"_s},
            {"no stamp", u"a: b"_s, {}},
        };
        for (const auto& [name, text, expected] : cases) {
            CASE(name);
            const auto lines = Transcript{text}.lines();
            const TranscriptLine line = lines.value(0);
            QCOMPARE(lines.isEmpty() ? QString{} : line.stamp + u'|' + line.speaker + u'|' + line.words,
                     expected);
        }
    }

    void reading()
    {
        write(
            u"[00:00:05] Анна: Тексты принесу\n[00:00:20] Илья: ждём\n[00:01:00] Анна: Готово, текстов нет\n"_s);
        detail().openTranscript(u"[00:00:30]"_s);
        TranscriptModel& lines = *detail().transcript();
        const QAbstractItemModelTester tester{&lines};
        QTRY_COMPARE(lines.rowCount(), 3);
        QCOMPARE(lines.here(), 1);
        QCOMPARE(lines.index(2).data(TranscriptModel::PlaceRole), 0);
        QCOMPARE(lines.spoken(0, u"ru"_s), u"5 секунд, Анна: Тексты принесу"_s);

        lines.setQuery(u"текст "_s);
        QTRY_COMPARE(lines.hitCount(), 2);
        QCOMPARE(lines.hit(), 2); // from where somebody reads, on
        lines.step(1);
        QCOMPARE(lines.hit(), 1);
        QCOMPARE(lines.marked(0, Qt::red, Qt::blue, Qt::white),
                 u"<span style=\"background-color:#ff0000ff;color:#ffffff\">Тексты</span> принесу"_s);
        lines.setQuery(u"нигде"_s);
        QTRY_COMPARE(lines.hitCount(), 0);

        lines.select(1, false);
        lines.mark();
        QTRY_COMPARE(lines.index(1).data(TranscriptModel::MarksRole).toStringList(), QStringList{u"важно"_s});
        lines.select(0, true);
        lines.copyQuote();
        QCOMPARE(m->desktop.copiedText,
                 u"«Тексты принесу\nИлья: ждём» — Анна, 00:00:05, «<Синк>», 21.11.2026"_s);
        QCOMPARE(m->desktop.copiedHtml, u"<blockquote>Тексты принесу<br>Илья: ждём</blockquote>"
                                        "<p>— Анна, 00:00:05, «&lt;Синк&gt;», 21.11.2026</p>"_s);
        // It is read again while it is read on screen.
        write(u"[00:00:05] Анна: Тексты принесу\n"_s);
        m->scheduler.advance(20s);
        QTRY_COMPARE(lines.rowCount(), 1);
        detail().closeTranscript();
        QCOMPARE(lines.rowCount(), 0);
    }

    void aVeryLargeOneIsCut()
    {
        const QString line = u"[00:00:05] Анна: "_s + QString(1000, u'ж') + u'\n';
        write(line.repeated(10'000));
        detail().openTranscript({});
        TranscriptModel& lines = *detail().transcript();
        QTRY_VERIFY(lines.isCut());
        QVERIFY(lines.rowCount() > 7'000 && lines.rowCount() < 10'000);
    }

private:
    void write(const QString& lines)
    {
        const QString path = m->paths.vaultDir + u"/a.md"_s;
        m->write(path, u"# x\n## Транскрипт\n"_s.toUtf8() + lines.toUtf8());
        if (main) return;
        m->write(
            m->paths.logs + u"/a.protocol.json"_s,
            "{\"title\":\"<Синк>\",\"_meta\":{\"started_at\":\"2026-11-21T12:00:00Z\",\"protocol_md\":\"" +
                path.toUtf8() + "\"}}");
        main = std::make_unique<MainModel>(m->mainGround());
        if (!QTest::qWaitFor([&] { return main->store()->loaded(); })) qFatal("The meeting is not listed");
        main->open(u"a"_s);
    }
    [[nodiscard]] MeetingDetailModel& detail() const { return *main->detail(); }

    std::unique_ptr<TestProgram> m;
    std::unique_ptr<MainModel> main;
};

MURMELI_TEST(TranscriptTest)
#include "TranscriptTest.moc"
