#include "base/Json.h"
#include "meetings/MeetingCaptions.h"
#include "meetings/ProtocolFile.h"
#include "meetings/ProtocolFinder.h"
#include "registeredTests.h"
#include "report/ReportLoader.h"
#include "support/Cases.h"
#include "support/Faults.h"
#include "support/TestProgram.h"

#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

#include <cmath>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

const QByteArray analysis =
    R"({"insights":[{"title":"т","at":["[00:01]",7," [00:02]"]}],"blockers":["б",1]})";

MeetingReport parsed(const QByteArray& analysis) { return MeetingReport::parse(*json::object(analysis)); }

} // namespace

class ReportTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void optionalTexts()
    {
        const Cases<QString> cases{
            // what stands there, and what is shown of it
            {R"("null")", {}}, {R"("NuLL")", {}}, {R"(" null ")", u"null"_s},      {R"("  ")", {}},
            {"7", {}},         {"null", {}},      {R"(" завтра\n")", u"завтра"_s},
        };
        for (const auto& [due, shown] : cases) {
            CASE(due);
            const MeetingReport report = parsed(R"({"commitments":[{"due":)" + QByteArray{due} + "}]}");
            QCOMPARE(report.commitments[0].due, shown);
        }
        QCOMPARE(parsed(R"({"commitments":[{"definition_of_done":"null"}]})").metrics()[3].done, 0);
    }

    void lists()
    {
        const Cases<QByteArray, int> cases{
            {"one that says nothing", "[{}]", 1},
            {"equals", R"([{"who":"a"},{"who":"a"}])", 2},
            {"not all are objects", "[{},7]", 0},
            {"object", "{}", 0},
            {"text", R"("x")", 0},
            {"null", "null", 0},
        };
        for (const auto& [name, value, count] : cases) {
            CASE(name);
            QByteArray all = R"({"blockers":["x"])";
            for (const char* key : {"commitments", "disagreements", "numbers", "insights", "agenda_coverage",
                                    "roles", "concepts"})
                all += ",\"" + QByteArray{key} + "\":" + value;
            const MeetingReport report = parsed(all + '}');
            for (const qsizetype size :
                 {report.commitments.size(), report.disagreements.size(), report.numbers.size(),
                  report.insights.size(), report.agenda.size(), report.roles.size(), report.concepts.size()})
                QCOMPARE(size, count);
            QCOMPARE(report.isEmpty(), count == 0);
        }
        QVERIFY(parsed(R"({"blockers":["x"],"roles":[{}],"concepts":[{}]})").isEmpty());
        QCOMPARE(parsed(analysis).insights[0].at, (QStringList{u"[00:01]"_s, u" [00:02]"_s}));
        QCOMPARE(parsed(analysis).blockers, QStringList{u"б"_s});
    }

    void words()
    {
        const Cases<bool, bool, bool> cases{
            // firm, done, partial
            {"Твёрдое", true, false, false},        {"твердо", true, false, false},
            {"тве\u0308рдое", true, false, false}, // of two signs
            {"прои\u0306дена", false, true, false}, {"ТВЕРДО", true, false, false},
            {"не твёрдое", false, false, false},    {"пройдена полностью", false, true, false},
            {"Пройдена", false, false, false},      {"частично", false, false, true},
            {"Частично", false, false, false},      {" пройден ", false, true, false},
        };
        for (const auto& [word, firm, done, partial] : cases) {
            CASE(word);
            const MeetingReport report = parsed(R"({"commitments":[{"firmness":")" + QByteArray{word} +
                                                R"("}],"agenda_coverage":[{"status":")" + word + R"("}]})");
            QCOMPARE(report.commitments[0].isFirm(), firm);
            QCOMPARE(report.agenda[0].isDone(), done);
            QCOMPARE(report.agenda[0].isPartial(), partial);
        }
    }

    void metrics()
    {
        const Cases<QByteArray, QString> cases{
            {"nothing", R"({"blockers":["x"]})", {}},
            {"an empty commitment", R"({"commitments":[{}]})", u"owner 0/1|due 0/1|firm 0/1|dod 0/1"_s},
            {"two commitments",
             R"({"commitments":[{"who":"a","firmness":"твёрдо"},{"who":" ","due":"b"},
                                {"who":"c","definition_of_done":"d"}]})",
             u"owner 2/3|due 1/3|firm 1/3|dod 1/3"_s},
            {"agenda", R"({"agenda_coverage":[{"status":"пройдена"},{"status":"частично"},{}]})",
             u"agenda 1/3"_s},
        };
        for (const auto& [name, analysis, metrics] : cases) {
            CASE(name);
            QStringList told;
            for (const ReportMetric& metric : parsed(analysis).metrics())
                told.append(
                    u"%1 %2/%3"_s.arg(metric.titleKey.section(u'.', -1)).arg(metric.done).arg(metric.total));
            QCOMPARE(told.join(u'|'), metrics);
        }
    }

    void analytics()
    {
        MeetingReport report;
        report.applyAnalytics(
            *json::object(R"({"duration_sec":60,"speech_share":0.5,"turns":12,"pauses":7,"long_pauses":"3",)"
                          R"("source":"segments","speakers":[{"name":" Анна ","seconds":30,"share":"x"}]})"));
        QCOMPARE((QList<double>{report.durationSec, report.speechShare, double(report.turns),
                                double(report.pauses), double(report.longPauses)}),
                 (QList<double>{60, 0.5, 12, 7, 0}));
        QVERIFY(report.analyticsExact);
        QCOMPARE(report.speakers.size(), 1);
        QCOMPARE(report.speakers[0].name, u"Анна"_s);
        QCOMPARE((QList<double>{report.speakers[0].seconds, report.speakers[0].share}),
                 (QList<double>{30, 0}));
        report.applyAnalytics(*json::object(R"({"source":"starts"})"));
        QVERIFY(!report.analyticsExact);
        QVERIFY(report.speakers.isEmpty());
    }

    void stamps()
    {
        const Cases<qint64> cases{
            // in seconds
            {"[01:02:03]", 3723},  {"[12:34]", 754},        {"12:34", 754},
            {" [[00:00:05]] ", 5}, {"[1:x:2]", 62},         {"[1::2]", 62},
            {"[1: 2:3]", 63},      {"[99:99:99:99]", 6039}, {"[999999999999:00]", 59999999999940},
        };
        for (const auto& [stamp, seconds] : cases) {
            CASE(stamp);
            QCOMPARE(Transcript::seconds(QString::fromUtf8(stamp)).value_or(-1), seconds);
        }
        for (const char* none : {"[7]", "[]", "[a:b]", "[9223372036854775807:00]", "[153722867280912930:09]",
                                 "[99999999999999999999:01]"})
            QVERIFY2(!Transcript::seconds(QString::fromUtf8(none)), none);
    }

    void transcripts()
    {
        const Cases<QString, std::optional<QString>> cases{
            {"none", u"# План\n[00:01] x"_s, std::nullopt},
            {"another case", u"# ТРАНСКРИПТ\n[00:01] x"_s, std::nullopt},
            {"without lines", u"## Транскрипт\nпусто"_s, QString{}},
            {"lines", u"[00:00] до\n## Транскрипт\n\n> [00:01] А: раз\nречь\n > >[00:02] Б: два > \n"_s,
             u"[00:01] А: раз\n[00:02] Б: два"_s},
            {"line ends of another system", u"## Транскрипт\r\n> [00:01] А: раз\r\n[00:02] два\r\n"_s,
             u"[00:01] А: раз\n[00:02] два"_s},
        };
        for (const auto& [name, protocol, text] : cases) {
            CASE(name);
            QCOMPARE(protocolFile::transcriptIn(protocol), text);
        }
    }

    void durations()
    {
        const std::initializer_list<std::pair<double, QString>> cases{
            {3599.9, u"59:59"_s},      {3600, u"1:00:00"_s}, {3725, u"1:02:05"_s},
            {std::nan(""), u"0:00"_s}, {-5, u"0:00"_s},      {1e300, u"277777777:46:40"_s},
        };
        for (const auto& [seconds, text] : cases)
            QCOMPARE(reportRows::mmss(seconds), text);
    }

    void whatIsCopiedAndWhatIsReadOut()
    {
        const auto rows = reportRows::of(parsed(
            R"({"commitments":[{"who":"Анна","what":"тексты","due":"вторник","quote":"принесу","at":"[00:14]",
                                "firmness":"твёрдое","definition_of_done":"лежат"}],
                "disagreements":[{"topic":"раскатка","outcome":"всем",
                                  "sides":[{"who":"Илья","position":"всем","at":"[00:27]"}]}]})"));
        const auto worded = [&](Wording wording) {
            QStringList texts;
            for (const ReportRow& row : rows) {
                if (row.isClaim()) texts.append(row.words(u"ru"_s, wording).join(u'\n'));
            }
            return texts.join(u'|');
        };
        QCOMPARE(worded(Wording::Copied), u"Анна · вторник\nтексты\nпринесу\nГотово, когда: лежат\n[00:14]|"
                                          "раскатка\nИлья: всем [00:27]\nИтог: всем"_s);
        QCOMPARE(worded(Wording::Spoken), u"Анна · вторник\nтексты\nпринесу\nГотово, когда: лежат\nТВЁРДОЕ|"
                                          "раскатка\nИлья: всем\nИтог: всем"_s);
    }

    void aClaimShowsAsManyPartsAsCanBeLaidOut()
    {
        const QByteArray stamps = '[' + R"("[00:01]",)"_ba.repeated(5000) + R"("[00:02]"])";
        const QByteArray sides = '[' + R"({"who":"А"},)"_ba.repeated(5000) + "{}]";
        const MeetingReport report =
            parsed(R"({"insights":[{"at":)" + stamps + R"(}],"disagreements":[{"sides":)" + sides +
                   R"(}],"concepts":[{"pros":)" + stamps + R"(,"cons":)" + stamps + "}]}");
        for (const qsizetype parts : {report.insights[0].at.size(), report.disagreements[0].sides.size(),
                                      report.concepts[0].pros.size(), report.concepts[0].cons.size()})
            QVERIFY(parts > 10 && parts <= 100);
    }

    void loading()
    {
        const Cases<QByteArray, QByteArray, bool> cases{
            {"nothing", {}, "{}", false},
            {"analysis", analysis, "{}", true},
            {"cut", analysis.chopped(1), "{}", false},
            {"figures alone", {}, R"({"analytics":{"speakers":[{"name":"Анна"}]}})", true},
            {"figures of another type", {}, R"({"analytics":[1]})", false},
        };
        for (const auto& [name, stored, meta, present] : cases) {
            CASE(name);
            init();
            if (!stored.isNull()) m->write(m->stored, stored);
            m->write(m->meeting.jsonPath, R"({"title":"x","_meta":)" + meta + '}');
            m->load();
            QCOMPARE(m->loader.present(), present);
            QCOMPARE(m->loader.empty(), !present);
        }
    }

    void loadingNeverWaits()
    {
        QFile::remove(*m->meeting.protocolPath);
        for (const QString& path : {m->meeting.jsonPath, m->stored, *m->meeting.protocolPath})
            QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        m->load();
        QVERIFY(!m->loader.present());
    }

    void transcriptsThatAreTooShort()
    {
        const QString stamp = u"[00:00:05] "_s;
        const Cases<QString, bool> cases{
            {"none", {}, false},
            {"200 characters", stamp + QString(189, u'ж'), false},
            {"201 characters", stamp + QString(190, u'ж'), true},
            {"200 seen as 390", stamp + u"e\u0301"_s.repeated(189), false},
        };
        m->signIn();
        m->server.says(Server::answer(200, "{}"));
        for (const auto& [name, line, enough] : cases) {
            CASE(name);
            m->write(*m->meeting.protocolPath, (u"## Транскрипт\n> "_s + line + u'\n').toUtf8());
            m->build();
            QCOMPARE(m->asked().size(), enough ? 1 : 0);
            m->server.requests.clear();
            QCOMPARE(m->loader.error(), enough ? Message{} : Message::of("report.error.no_transcript"));
        }
    }

    void theRequest()
    {
        m->server.says(Server::answer(200, "{}"));
        m->build();
        QCOMPARE(m->loader.error(), Message::of("report.error.auth"));
        m->signIn();
        m->meeting.durationMin = 12.5;
        m->build();
        QVERIFY(m->loader.error().isEmpty());
        QCOMPARE(m->asked().size(), 1);
        const Server::Request request = m->asked()[0];
        QCOMPARE(request.method, "POST"_ba);
        QCOMPARE(request.header("Authorization"), "Bearer a"_ba);
        QCOMPARE(request.header("Content-Type"), "application/json"_ba);
        const QJsonObject body = *json::object(request.body);
        QCOMPARE(body.keys(), (QStringList{u"duration_min"_s, u"meeting_date"_s, u"transcript"_s}));
        QCOMPARE(body[u"duration_min"_s].toDouble(), 12.5);
        QCOMPARE(body[u"meeting_date"_s].toString(),
                 captions::dateLine(m->meeting, m->scheduler.moment().date(), u"ru"_s));
        QVERIFY(body[u"transcript"_s].toString().startsWith(u"[00:00:05] Анна: "_s));
    }

    void whatIsNoAnswerLeavesWhatIsStored()
    {
        QList<Fault> faults = faultsAround(analysis);
        faults.append({"created", Server::answer(201, analysis)});
        faults.append({"an error with an analysis", Server::answer(500, analysis)});
        const QByteArray old = R"({"insights":[{"title":"прежнее"}]})";
        m->signIn();
        m->write(m->stored, old);
        m->load();
        for (const Fault& fault : faults) {
            CASE(fault.name);
            m->server.reply = fault;
            m->build();
            QVERIFY(!m->loader.error().isEmpty());
            // Of a break on its way the platform tells in its own words.
            QCOMPARE(m->loader.error() != Message::of("report.error.server"), fault.hangsUp);
            QCOMPARE(m->loader.report()->insights[0].title, u"прежнее"_s);
            QCOMPARE(m->readStored(), old);
        }
    }

    void anAnalysisIsStoredForPeopleToRead()
    {
        m->signIn();
        m->write(m->meeting.jsonPath, R"({"_meta":{"analytics":{"turns":5}}})");
        m->server.says(Server::answer(200, R"({"insights":[{"n":1.50}],"a":{"я":"\u0416","b":[]},"a":{},)"
                                           R"("big":123456789012345678901234567890})"));
        m->build();
        QCOMPARE(m->loader.report()->turns, 5); // beside what is known here
        QCOMPARE(m->readStored(), R"({
  "a": {},
  "big": 123456789012345678901234567890,
  "insights": [
    {
      "n": 1.50
    }
  ]
})"_ba);
        QFile::remove(m->stored);
        QVERIFY(QDir{}.mkdir(m->stored));
        m->server.says(Server::answer(200, R"({"insights":[{"title":"новое"}]})"));
        m->build(); // not stored, but shown
        QCOMPARE(m->loader.report()->insights[0].title, u"новое"_s);
    }

    void anOpenedAnalysisFollowsItsMeeting()
    {
        m->signIn();
        m->server.says(Server::answer(200, analysis));
        m->build();
        m->loader.toggle(u"[00:00:05]"_s);
        QCOMPARE(m->loader.quotation().size(), 3); // from the transcript that it was made of
        m->write(*m->meeting.protocolPath, "## Транскрипт\n\n> [00:00:05] Анна: новое\n");
        m->loader.follow(m->meeting);
        QTRY_VERIFY(m->loader.quotation().value(0).contains(u"новое"_s)); // and stays unfolded
    }

    void anAnalysisTooLargeToReadAgainIsStoredAsItCame()
    {
        m->signIn();
        const QByteArray body =
            R"({"insights":[{"title":"Ждали"}],"x":[)" + "[[[[[[1]]]]]],"_ba.repeated(400'000) + "0]}";
        m->server.says(Server::answer(200, body));
        m->build();
        QCOMPARE(QFileInfo{m->stored}.size(), body.size());
        m->load();
        QVERIFY(m->loader.present());
        QCOMPARE(m->loader.report()->insights[0].title, u"Ждали"_s);
    }

    void aSecondPressDoesNothing()
    {
        m->signIn();
        m->server.holds("/api/");
        m->loader.build(m->meeting);
        m->loader.build(m->meeting); // while the transcript is being read
        QTRY_COMPARE(m->server.held.size(), 1);
        QVERIFY(m->loader.loading());
        m->loader.build(m->meeting);
        m->server.held[0]->write(Server::answer(200, analysis));
        QTRY_VERIFY(!m->loader.loading());
        QVERIFY(m->loader.present());
        QCOMPARE(m->asked().size(), 1);
    }

    void aLoadThatComesLateDoesNotHideTheAnswer()
    {
        m->signIn();
        m->server.holds("/api/");
        m->loader.build(m->meeting);
        QTRY_COMPARE(m->server.held.size(), 1);
        // It takes long to read, and where the answer would be stored there is a folder: the load finds
        // nothing.
        m->write(*m->meeting.protocolPath,
                 "## Транскрипт\n\n" + "> [00:00:05] Анна: слово\n"_ba.repeated(1'000'000));
        QVERIFY(QDir{}.mkdir(m->stored));
        m->loader.load(m->meeting);
        m->server.held[0]->write(Server::answer(200, analysis));
        QTRY_VERIFY(!m->loader.loading());
        QVERIFY(m->loader.present());
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QVERIFY(m->loader.present());
    }

private:
    struct Fixture : TestProgram {
        Meeting meeting{.id = u"2025-03-04 10-15-30"_s,
                        .title = u"План"_s,
                        .startedAt = QDateTime{{2025, 3, 4}, {10, 15}},
                        .protocolPath = home.filePath(u"план.md"_s),
                        .jsonPath = paths.logs + u"/2025-03-04 10-15-30.protocol.json"_s};
        QString stored = ReportLoader::storedFile(meeting);
        ReportLoader loader{{.account = account,
                             .http = http,
                             .language = language,
                             .desktop = desktop,
                             .scheduler = scheduler,
                             .protocols = std::make_shared<ProtocolFinder>(paths.vaultDir),
                             .webOrigin = server.origin()}};

        Fixture()
        {
            write(*meeting.protocolPath,
                  "# План\n\n## Транскрипт\n\n> [00:00:05] Анна: " + "ж"_ba.repeated(300) + '\n');
        }
        void load()
        {
            loader.load(meeting);
            QTRY_VERIFY(loader.asked());
        }
        /// Asks for an analysis and waits for what comes of it.
        void build()
        {
            const QSignalSpy changed{&loader, &ReportLoader::changed};
            loader.build(meeting);
            QTRY_VERIFY_WITH_TIMEOUT(!changed.isEmpty() && !loader.loading(), 60'000);
        }
        [[nodiscard]] QList<Server::Request> asked() const { return server.requestsTo("/api/assist/report"); }
        [[nodiscard]] QByteArray readStored() const { return files::readWhole(stored, 100'000).value_or(""); }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(ReportTest)
#include "ReportTest.moc"
