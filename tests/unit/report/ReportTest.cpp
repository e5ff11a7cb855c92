#include "base/Json.h"
#include "meetings/MeetingCaptions.h"
#include "meetings/ProtocolFinder.h"
#include "registeredTests.h"
#include "report/ReportLoader.h"
#include "support/TestProgram.h"

#include <QJsonArray>
#include <QTest>
#include <QThreadPool>

#include <cmath>
#include <limits>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

const QByteArray fullAnalysis =
    R"({"insights":[{"title":"т","detail":"д","at":["[00:01]",7," [00:02]"]}],"blockers":["мешало",1],)"
    R"("roles":[{"who":"Анна"}],"big":123456789012345678901234567890,"ratio":1.50,"a":{"я":"\u0416","b":[]}})";

MeetingReport parsed(const QByteArray& analysis) { return MeetingReport::parse(*json::object(analysis)); }

QString told(const QList<ReportMetric>& metrics)
{
    QStringList lines;
    for (const ReportMetric& metric : metrics)
        lines.append(u"%1 %2/%3"_s.arg(metric.titleKey).arg(metric.done).arg(metric.total));
    return lines.join(u'|');
}

} // namespace

enum class Told { Nothing, Server, Platform }; ///< of what went wrong, in whose words

class ReportTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void optionalTexts_data()
    {
        QTest::addColumn<QByteArray>("due");
        QTest::addColumn<QString>("shown"); // empty: absent
        const auto row = [](const char* due, const QString& shown) {
            QTest::newRow(due) << QByteArray{due} << shown;
        };
        row(R"("null")", {});
        row(R"("NuLL")", {});
        row(R"(" null ")", u"null"_s);
        row(R"("  ")", {});
        row("7", {});
        row("null", {});
        row(R"(" завтра\n")", u"завтра"_s);
    }
    void optionalTexts()
    {
        QFETCH(QByteArray, due);
        QFETCH(QString, shown);
        const MeetingReport report =
            parsed(R"({"commitments":[{"due":)" + due + R"(,"definition_of_done":)" + due + "}]}");
        QCOMPARE(report.commitments[0].due, shown);
        QCOMPARE(report.commitments[0].definitionOfDone, report.commitments[0].due);
    }

    void lists_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<int>("count");
        QTest::newRow("one that says nothing") << "[{}]"_ba << 1;
        QTest::newRow("equals") << R"([{"who":"a"},{"who":"a"}])"_ba << 2;
        QTest::newRow("not all are objects") << "[{},7]"_ba << 0;
        QTest::newRow("object") << "{}"_ba << 0;
        QTest::newRow("text") << R"("x")"_ba << 0;
        QTest::newRow("null") << "null"_ba << 0;
    }
    void lists()
    {
        QFETCH(QByteArray, value);
        QFETCH(int, count);
        QByteArray analysis = "{";
        for (const char* key :
             {"commitments", "disagreements", "numbers", "insights", "agenda_coverage", "roles", "concepts"})
            analysis += (analysis.size() > 1 ? ",\"" : "\"") + QByteArray{key} + "\":" + value;
        const MeetingReport report = parsed(analysis + '}');
        for (const qsizetype size :
             {report.commitments.size(), report.disagreements.size(), report.numbers.size(),
              report.insights.size(), report.agenda.size(), report.roles.size(), report.concepts.size()})
            QCOMPARE(size, count);
        QCOMPARE(report.isEmpty(), count == 0);
    }

    void words_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<bool>("firm");
        QTest::addColumn<bool>("done");
        QTest::addColumn<bool>("partial");
        const auto row = [](const char* word, bool firm, bool done, bool partial) {
            QTest::newRow(word) << QString::fromUtf8(word) << firm << done << partial;
        };
        row("Твёрдое", true, false, false);
        row("твердо", true, false, false);
        row("ТВЕРДО", true, false, false);
        row("firm", false, false, false);
        row("мягкое", false, false, false);
        row("не твёрдое", false, false, false);
        row("пройдена полностью", false, true, false);
        row("Пройдена", false, false, false);
        row("частично", false, false, true);
        row("Частично", false, false, false);
        row(" пройден ", false, true, false);
    }
    void words()
    {
        QFETCH(QString, word);
        const QByteArray text = word.toUtf8();
        const MeetingReport report = parsed(R"({"commitments":[{"firmness":")" + text +
                                            R"("}],"agenda_coverage":[{"status":")" + text + R"("}]})");
        QTEST(report.commitments[0].isFirm(), "firm");
        QTEST(report.agenda[0].isDone(), "done");
        QTEST(report.agenda[0].isPartial(), "partial");
    }

    void metrics_data()
    {
        QTest::addColumn<QByteArray>("analysis");
        QTest::addColumn<QString>("metrics");
        const auto four = [](int owner, int due, int firm, int dod, int total) {
            return u"report.metric.owner %1/%5|report.metric.due %2/%5|report.metric.firm %3/%5|"
                   "report.metric.dod %4/%5"_s.arg(owner)
                       .arg(due)
                       .arg(firm)
                       .arg(dod)
                       .arg(total);
        };
        QTest::newRow("nothing") << R"({"blockers":["x"]})"_ba << QString{};
        QTest::newRow("an empty commitment") << R"({"commitments":[{}]})"_ba << four(0, 0, 0, 0, 1);
        QTest::newRow("two commitments")
            << R"({"commitments":[{"who":"a","due":"b","firmness":"твёрдо"},{"who":" ","definition_of_done":"c"}]})"_ba
            << four(1, 1, 1, 1, 2);
        QTest::newRow("agenda")
            << R"({"agenda_coverage":[{"status":"пройдена"},{"status":"частично"},{}]})"_ba
            << u"report.metric.agenda 1/3"_s;
    }
    void metrics()
    {
        QFETCH(QByteArray, analysis);
        QTEST(told(parsed(analysis).metrics()), "metrics");
        QCOMPARE(ReportMetric{}.share(), 0.0);
    }

    void whatCountsAsAnAnalysis()
    {
        QVERIFY(parsed(R"({"blockers":["x"],"roles":[{}],"concepts":[{}]})").isEmpty());
        const MeetingReport report = parsed(fullAnalysis);
        QCOMPARE(report.insights[0].at, (QStringList{u"[00:01]"_s, u" [00:02]"_s}));
        QCOMPARE(report.blockers, QStringList{u"мешало"_s});
    }

    void analytics()
    {
        MeetingReport report;
        report.applyAnalytics(*json::object(
            R"({"duration_sec":60,"speech_share":0.5,"turns":12.0,"pauses":12.5,"long_pauses":"3",)"
            R"("source":"segments","speakers":[{"name":" Анна ","seconds":30,"share":"x"}]})"));
        QCOMPARE(report.durationSec, 60.0);
        QCOMPARE(report.speechShare, 0.5);
        QCOMPARE(report.turns, 12);
        QCOMPARE(report.pauses, 0);
        QCOMPARE(report.longPauses, 0);
        QVERIFY(report.analyticsExact);
        QCOMPARE(report.speakers.size(), 1);
        QCOMPARE(report.speakers[0].name, u"Анна"_s);
        QCOMPARE(report.speakers[0].share, 0.0);
        report.applyAnalytics(*json::object(R"({"source":"starts","speakers":{}})"));
        QVERIFY(!report.analyticsExact);
        QVERIFY(report.speakers.isEmpty());
    }

    void stamps_data()
    {
        QTest::addColumn<QString>("stamp");
        QTest::addColumn<qint64>("seconds"); // -1: none
        const auto row = [](const char* stamp, qint64 seconds) {
            QTest::newRow(stamp) << QString::fromUtf8(stamp) << seconds;
        };
        row("[01:02:03]", 3723);
        row("[12:34]", 754);
        row("12:34", 754);
        row(" [[00:00:05]] ", 5);
        row("[7]", -1);
        row("[]", -1);
        row("", -1);
        row("[a:b]", -1);
        row("[1:x:2]", 62);
        row("[1::2]", 62);
        row("[1: 2:3]", 63);
        row("[99:99:99:99]", 6039);
        row("[999999999999:00]", 59999999999940);
        row("[9223372036854775807:00]", -1);
        row("[99999999999999999999:01]", -1);
        row("[9223372036854775807:9223372036854775807:9223372036854775807]", -1);
    }
    void stamps()
    {
        QFETCH(QString, stamp);
        QTEST(Transcript::seconds(stamp).value_or(-1), "seconds");
    }

    void transcripts_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<QString>("text"); // null: none
        QTest::newRow("none") << u"# План\n[00:01] x"_s << QString{};
        QTest::newRow("another case") << u"# ТРАНСКРИПТ\n[00:01] x"_s << QString{};
        QTest::newRow("without lines") << u"## Транскрипт\nпусто"_s << u""_s;
        QTest::newRow("lines")
            << u"[00:00] до\n## Транскрипт\n\n> [00:01] А: раз\nречь\n > >[00:02] Б: два > \n"_s
            << u"[00:01] А: раз\n[00:02] Б: два"_s;
        QTest::newRow("line ends of another system")
            << u"## Транскрипт\r\n> [00:01] А: раз\r\n[00:02] два\r\n"_s << u"[00:01] А: раз\n[00:02] два"_s;
    }
    void transcripts()
    {
        QFETCH(QString, protocol);
        QFETCH(QString, text);
        const auto found = Transcript::textOf(protocol);
        QCOMPARE(found.has_value(), !text.isNull());
        QCOMPARE(found.value_or(QString{}), text);
    }

    void quotes_data()
    {
        QTest::addColumn<QString>("stamp");
        QTest::addColumn<QString>("quote"); // null: none
        QTest::newRow("exact") << u"[00:00:05]"_s << u"Анна: привет"_s;
        QTest::newRow("of equal stamps the later") << u"[00:10:00]"_s << u"позже"_s;
        QTest::newRow("between two") << u"[00:10:05]"_s << u"позже"_s;
        QTest::newRow("other spelling") << u"00:05"_s << u"Анна: привет"_s;
        QTest::newRow("of equal seconds the first") << u"10:31"_s << u"полминуты"_s;
        QTest::newRow("after the end") << u"[999999999999:00]"_s << u"конец"_s;
        QTest::newRow("before the beginning") << u"[00:00:01]"_s << QString{};
        QTest::newRow("negative") << u"[-1:00]"_s << QString{};
        QTest::newRow("a word that stands there") << u"[шум]"_s << u"шуршание"_s;
        QTest::newRow("no stamp") << u"[]"_s << QString{};
    }
    void quotes()
    {
        QFETCH(QString, stamp);
        QFETCH(QString, quote);
        const Transcript transcript{
            u"[00:00:05]  Анна: привет \n[00:10:00] раньше\n[без конца\n[00:10:00] позже\n"
            "[00:10:30] полминуты\n[10:30] то же\n[шум] шуршание\n[01:00:00] конец"_s};
        const auto found = transcript.quote(stamp);
        QCOMPARE(found.has_value(), !quote.isNull());
        if (found) QCOMPARE(found->text, quote);
    }

    void neighboursOfAQuote()
    {
        const Transcript transcript{u"[00:01] раз\n[00:02] два\n[00:03] три"_s};
        QCOMPARE(transcript.quote(u"[00:02]"_s)->before, u"раз"_s);
        QCOMPARE(transcript.quote(u"[00:02]"_s)->after, u"три"_s);
        QVERIFY(transcript.quote(u"[00:01]"_s)->before.isEmpty());
        QVERIFY(transcript.quote(u"[00:03]"_s)->after.isEmpty());
    }

    void durations_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << 0.0 << u"0:00"_s;
        QTest::newRow("under an hour") << 3599.9 << u"59:59"_s;
        QTest::newRow("an hour") << 3600.0 << u"1:00:00"_s;
        QTest::newRow("padded") << 3725.0 << u"1:02:05"_s;
        QTest::newRow("not a number") << std::nan("") << u"0:00"_s;
        QTest::newRow("endless") << std::numeric_limits<double>::infinity() << u"0:00"_s;
        QTest::newRow("negative") << -5.0 << u"0:00"_s;
    }
    void durations()
    {
        QFETCH(double, seconds);
        QTEST(reportRows::mmss(seconds), "text");
        QVERIFY(!reportRows::mmss(1e300).isEmpty());
    }

    void whatIsCopied()
    {
        const MeetingReport report = parsed(
            R"({"commitments":[{"who":"Анна","what":"тексты","due":"вторник","quote":"принесу","at":"[00:14]","definition_of_done":"лежат"}],)"
            R"("disagreements":[{"topic":"раскатка","sides":[{"who":"Илья","position":"всем","at":"[00:27]"}],"outcome":"всем"}]})");
        QStringList texts;
        for (const ReportRow& row : reportRows::of(report)) {
            if (row.isClaim()) texts.append(row.words(u"ru"_s, Wording::Copied).join(u'\n'));
        }
        QCOMPARE(texts.join(u'|'), u"Анна · вторник\nтексты\nпринесу\nГотово, когда: лежат\n[00:14]|"
                                   "раскатка\nИлья: всем [00:27]\nИтог: всем"_s);
    }

    void steppingFromItemToItem()
    {
        ReportListModel model{nullptr};
        model.setRows(reportRows::of(parsed(R"({"blockers":["x"],"insights":[{},{}],"commitments":[{}]})")));
        QList<int> items;
        for (int row = model.neighbour(-1, 1); items.isEmpty() || row != items.last();
             row = model.neighbour(row, 1))
            items.append(row);
        QCOMPARE(items.size(), 4);
        QCOMPARE(model.neighbour(items[0], -1), items[0]);
        QCOMPARE(model.neighbour(items[3], -1), items[2]);
    }

    void loading_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QByteArray>("meta");
        QTest::addColumn<bool>("present");
        const QByteArray talk = R"({"analytics":{"speakers":[{"name":"Анна"}]}})";
        QTest::newRow("nothing") << QByteArray{} << "{}"_ba << false;
        QTest::newRow("analysis") << fullAnalysis << "{}"_ba << true;
        QTest::newRow("figures alone") << QByteArray{} << talk << true;
        QTest::newRow("figures of another type") << QByteArray{} << R"({"analytics":[1]})"_ba << false;
        QTest::newRow("cut") << fullAnalysis.left(40) << "{}"_ba << false;
        QTest::newRow("a list") << "[]"_ba
                                << "7"_ba << false;
        QTest::newRow("blockers alone") << R"({"blockers":["x"]})"_ba
                                        << "{}"_ba << false;
    }
    void loading()
    {
        QFETCH(QByteArray, stored);
        QFETCH(QByteArray, meta);
        if (!stored.isNull()) m->program.write(ReportLoader::storedFile(m->meeting), stored);
        m->program.write(m->meeting.jsonPath, R"({"title":"x","_meta":)" + meta + '}');
        m->load();
        QTEST(m->loader.present(), "present");
        QCOMPARE(m->loader.empty(), !m->loader.present());
        QVERIFY(m->loader.error().isEmpty());
    }

    void loadingNeverWaits()
    {
        const auto pipe = [](const QString& path) { ::mkfifo(QFile::encodeName(path).constData(), 0600); };
        pipe(m->meeting.jsonPath);
        pipe(ReportLoader::storedFile(m->meeting));
        QFile::remove(*m->meeting.protocolPath);
        pipe(*m->meeting.protocolPath);
        m->load();
        QVERIFY(!m->loader.present());
    }

    void transcriptsThatAreTooShort_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("asked");
        const QString stamp = u"[00:00:05] "_s;
        QTest::newRow("200 characters") << stamp + QString(189, u'ж') << false;
        QTest::newRow("201 characters") << stamp + QString(190, u'ж') << true;
        QTest::newRow("200 seen as 390") << stamp + u"é"_s.repeated(189) << false;
        QTest::newRow("none") << QString{} << false;
    }
    void transcriptsThatAreTooShort()
    {
        QFETCH(QString, line);
        QFETCH(bool, asked);
        m->program.signIn();
        m->program.write(*m->meeting.protocolPath, (u"## Транскрипт\n> "_s + line + u'\n').toUtf8());
        m->reply(Server::answer(200, "{}"));
        m->build();
        QCOMPARE(m->asked().size(), asked ? 1 : 0);
        QCOMPARE(m->program.language.say(m->loader.error()),
                 asked ? QString{} : m->program.language.t(u"report.error.no_transcript"_s));
    }

    void theRequest()
    {
        m->program.signIn();
        m->meeting.durationMin = 12.5;
        m->reply(Server::answer(200, "{}"));
        m->build();
        const Server::Request request = m->asked().value(0);
        QCOMPARE(request.method, "POST"_ba);
        QCOMPARE(request.header("Authorization"), "Bearer a"_ba);
        QCOMPARE(request.header("Content-Type"), "application/json"_ba);
        const QJsonObject body = *json::object(request.body);
        QCOMPARE(body.keys(), (QStringList{u"duration_min"_s, u"meeting_date"_s, u"transcript"_s}));
        QCOMPARE(body[u"duration_min"_s].toDouble(), 12.5);
        QCOMPARE(body[u"meeting_date"_s].toString(),
                 captions::dateLine(m->meeting, m->program.scheduler.moment().date(), u"ru"_s));
        QVERIFY(body[u"transcript"_s].toString().startsWith(u"[00:00:05] Анна: "_s));
        QVERIFY(!body[u"transcript"_s].toString().contains(u"Транскрипт"_s));
    }

    void answers_data()
    {
        QTest::addColumn<QByteArray>("wire");
        QTest::addColumn<Told>("told");
        QTest::newRow("analysis") << Server::answer(200, fullAnalysis) << Told::Nothing;
        QTest::newRow("says nothing") << Server::answer(200, "{}") << Told::Nothing;
        QTest::newRow("list") << Server::answer(200, "[{}]") << Told::Server;
        QTest::newRow("page") << Server::answer(200, "<html>") << Told::Server;
        QTest::newRow("empty") << Server::answer(200, "") << Told::Server;
        QTest::newRow("created") << Server::answer(201, fullAnalysis) << Told::Server;
        QTest::newRow("not modified") << Server::answer(304, "") << Told::Server;
        QTest::newRow("elsewhere")
            << "HTTP/1.1 302 X\r\nLocation: gopher://x/\r\nContent-Length: 0\r\n\r\n"_ba << Told::Server;
        QTest::newRow("error with an analysis") << Server::answer(500, fullAnalysis) << Told::Server;
        QTest::newRow("cut") << Server::answer(200, fullAnalysis).chopped(20) << Told::Platform;
        QTest::newRow("hangs up") << QByteArray{} << Told::Platform;
        QTest::newRow("too large") << Server::answer(200, '"' + QByteArray(9'000'000, 'x') + '"')
                                   << Told::Server;
    }
    void answers()
    {
        QFETCH(QByteArray, wire);
        QFETCH(Told, told);
        m->program.signIn();
        const QByteArray old = R"({"insights":[{"title":"прежнее"}]})";
        m->program.write(ReportLoader::storedFile(m->meeting), old);
        m->program.write(m->meeting.jsonPath, R"({"_meta":{"analytics":{"turns":5}}})");
        m->load();
        m->reply(wire);
        m->build();
        const QString server = m->program.language.t(u"report.error.server"_s);
        const QString error = m->program.language.say(m->loader.error());
        QCOMPARE(error.isEmpty() ? Told::Nothing : error == server ? Told::Server : Told::Platform, told);
        QCOMPARE(m->stored() == old, told != Told::Nothing);
        if (told == Told::Nothing) {
            QCOMPARE(m->loader.report()->turns, 5);
        } else {
            QCOMPARE(m->loader.report()->insights[0].title, u"прежнее"_s);
        }
    }

    void anAnalysisIsStoredAsItCame()
    {
        m->program.signIn();
        m->reply(Server::answer(200, fullAnalysis));
        m->build();
        QCOMPARE(m->stored(), R"({
  "a": {
    "b": [],
    "я": "\u0416"
  },
  "big": 123456789012345678901234567890,
  "blockers": [
    "мешало",
    1
  ],
  "insights": [
    {
      "at": [
        "[00:01]",
        7,
        " [00:02]"
      ],
      "detail": "д",
      "title": "т"
    }
  ],
  "ratio": 1.50,
  "roles": [
    {
      "who": "Анна"
    }
  ]
})"_ba);
        QFile::remove(ReportLoader::storedFile(m->meeting));
        QVERIFY(QDir{}.mkdir(ReportLoader::storedFile(m->meeting)));
        m->reply(Server::answer(200, R"({"insights":[{"title":"новое"}]})"));
        m->build(); // not stored, but shown
        QCOMPARE(m->loader.report()->insights[0].title, u"новое"_s);
    }

    void whoIsNotSignedInIsTold()
    {
        m->build();
        QCOMPARE(m->loader.error(), Message::of("report.error.auth"));
        m->program.signIn();
        m->reply(Server::answer(200, "{}"));
        m->build();
        QVERIFY(m->loader.error().isEmpty());
    }

    void aSecondPressDoesNothing()
    {
        m->program.signIn();
        QTcpSocket* waiting = nullptr;
        m->program.server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.path.startsWith("/api/")) waiting = socket;
        };
        m->loader.build(m->meeting);
        m->loader.build(m->meeting);
        QTRY_VERIFY(waiting);
        QVERIFY(m->loader.loading());
        m->loader.build(m->meeting);
        waiting->write(Server::answer(200, fullAnalysis));
        QTRY_VERIFY(!m->loader.loading());
        QVERIFY(m->loader.present());
        QCOMPARE(m->asked().size(), 1);
    }

    void aLoadThatComesLateDoesNotHideTheAnswer()
    {
        m->program.signIn();
        QTcpSocket* waiting = nullptr;
        m->program.server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.path.startsWith("/api/")) waiting = socket;
        };
        m->loader.build(m->meeting);
        QTRY_VERIFY(waiting);
        // It takes long to read, and where the answer would be stored there is a folder: the load finds
        // nothing.
        m->program.write(*m->meeting.protocolPath,
                         "## Транскрипт\n\n" + "> [00:00:05] Анна: слово\n"_ba.repeated(1'000'000));
        QVERIFY(QDir{}.mkdir(ReportLoader::storedFile(m->meeting)));
        m->loader.load(m->meeting);
        waiting->write(Server::answer(200, fullAnalysis));
        QTRY_VERIFY(!m->loader.loading());
        QVERIFY(m->loader.present());
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QVERIFY(m->loader.present());
    }

    void anAnalysisTooLargeToReadAgainIsStoredAsItCame()
    {
        m->program.signIn();
        const QByteArray body =
            R"({"insights":[{"title":"Ждали"}],"x":[)" + "[[[[[[1]]]]]],"_ba.repeated(400'000) + "0]}";
        m->reply(Server::answer(200, body));
        m->build();
        QCOMPARE(QFileInfo{ReportLoader::storedFile(m->meeting)}.size(), body.size());
        m->load();
        QVERIFY(m->loader.present());
        QCOMPARE(m->loader.report()->insights.first().title, u"Ждали"_s);
    }

    void aClaimShowsAsManyPartsAsCanBeLaidOut()
    {
        const QByteArray stamps = "\"[00:01]\","_ba.repeated(5000) + "\"[00:02]\"";
        const QByteArray sides = "{\"who\":\"А\"},"_ba.repeated(5000) + "{}";
        const MeetingReport report =
            parsed("{\"insights\":[{\"at\":[" + stamps + "]}],\"disagreements\":[{\"sides\":[" + sides +
                   "]}],\"concepts\":[{\"pros\":[" + stamps + "]}]}");
        for (const qsizetype parts : {report.insights[0].at.size(), report.disagreements[0].sides.size(),
                                      report.concepts[0].pros.size()})
            QVERIFY(parts > 10 && parts <= 100);
    }

    void whatIsReadOut()
    {
        const auto rows = reportRows::of(parsed(
            R"({"commitments":[{"who":"Анна","what":"тексты","firmness":"твёрдое","at":"[00:14]","definition_of_done":"лежат"}],)"
            R"("disagreements":[{"topic":"раскатка","sides":[{"who":"Илья","position":"всем","at":"[00:27]"}],"outcome":"всем"}]})"));
        QStringList texts;
        for (const ReportRow& row : rows) {
            if (row.isClaim()) texts.append(row.words(u"ru"_s, Wording::Spoken).join(u", "_s));
        }
        QVERIFY(texts[0].startsWith(u"Анна, тексты, Готово, когда: лежат, "_s));
        QVERIFY(texts[0].endsWith(u"ТВЁРДОЕ"_s) || texts[0].endsWith(u"С ОГОВОРКОЙ"_s));
        QCOMPARE(texts[1], u"раскатка, Илья: всем, Итог: всем"_s);
    }

private:
    struct Fixture {
        TestProgram program;
        Meeting meeting{.id = u"2025-03-04 10-15-30"_s,
                        .title = u"План"_s,
                        .startedAt = QDateTime{{2025, 3, 4}, {10, 15}},
                        .protocolPath = program.home.filePath(u"план.md"_s),
                        .jsonPath = program.paths.logs + u"/2025-03-04 10-15-30.protocol.json"_s};
        ReportLoader loader{{.account = program.account,
                             .http = program.http,
                             .language = program.language,
                             .desktop = program.desktop,
                             .scheduler = program.scheduler,
                             .protocols = std::make_shared<ProtocolFinder>(program.paths.vaultDir),
                             .webOrigin = program.server.origin()}};

        Fixture()
        {
            program.write(
                *meeting.protocolPath,
                (u"# План\n\n## Транскрипт\n\n> [00:00:05] Анна: "_s + QString(300, u'ж') + u'\n').toUtf8());
        }
        void load()
        {
            loader.load(meeting);
            [this] { QTRY_VERIFY(loader.asked()); }();
        }
        /// Asks for an analysis and waits for what comes of it.
        void build()
        {
            int changes = 0;
            const auto counting =
                QObject::connect(&loader, &ReportLoader::changed, &loader, [&] { ++changes; });
            loader.build(meeting);
            [&] { QTRY_VERIFY_WITH_TIMEOUT(changes > 0 && !loader.loading(), 60'000); }();
            QObject::disconnect(counting);
        }
        void reply(const QByteArray& wire)
        {
            program.server.reply = [wire](QTcpSocket* socket, const Server::Request&) {
                if (!wire.isEmpty()) socket->write(wire);
                if (!wire.contains("Content-Length: ") || !wire.endsWith('}')) socket->disconnectFromHost();
            };
        }
        [[nodiscard]] QList<Server::Request> asked() const
        {
            return program.server.requestsTo("/api/assist/report");
        }
        [[nodiscard]] QByteArray stored() const
        {
            return files::readWhole(ReportLoader::storedFile(meeting), 100'000).value_or(QByteArray{});
        }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(ReportTest)
#include "ReportTest.moc"
