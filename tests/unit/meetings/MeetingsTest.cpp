#include "base/Files.h"
#include "localisation/Language.h"
#include "meetings/MeetingCaptions.h"
#include "meetings/MeetingListModel.h"
#include "meetings/MeetingScanner.h"
#include "meetings/MeetingStore.h"
#include "meetings/ProtocolFinder.h"
#include "meetings/SummaryFile.h"
#include "registeredTests.h"
#include "service/Paths.h"
#include "service/Prefs.h"
#include "support/Cases.h"
#include "support/ManualScheduler.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

ListedMeeting listed(const QString& id, int minute, const QString& title = u"т"_s)
{
    const Meeting meeting{
        .id = id, .title = title, .startedAt = QDateTime{{2026, 3, 4}, {10, 0}}.addSecs(minute * 60)};
    return {meeting, title.toLower()};
}

QString ids(const QList<ListedMeeting>& meetings)
{
    QStringList names;
    for (const ListedMeeting& m : meetings)
        names.append(m.meeting.id);
    return names.join(u' ');
}

QString ids(const MeetingListModel& model)
{
    QStringList names;
    for (int row = 0; row < model.count(); ++row)
        names.append(model.idAt(row));
    return names.join(u' ');
}

} // namespace

class MeetingsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("TZ", "Europe/Moscow"); }

    void internetDates()
    {
        const Cases<QString> cases{
            // and what they are in UTC
            {"2025-03-04T10:15:30Z", u"2025-03-04T10:15:30.000Z"_s},
            {"2025-03-04T10:15:30.123Z", u"2025-03-04T10:15:30.123Z"_s},
            {"2025-03-04T10:15:30.5+03:00", u"2025-03-04T07:15:30.500Z"_s},
            {"2025-03-04T01:15:30-05:30", u"2025-03-04T06:45:30.000Z"_s},
            {"2025-03-04 10:15", {}},
            {"2025-03-04T10:15:30", {}},
            {"2025-02-30T10:15:30Z", {}},
            {"2025-03-04T25:15:30Z", {}},
            {"2025-03-04T10:15:30Z and more", {}},
            {"2025-03-04T10:15:30+\uffee\uffee:00", {}}, // read as digits they would not fit any number
            {"", {}},
        };
        for (const auto& [text, utc] : cases) {
            CASE(text);
            const auto date = summaryFile::internetDate(QString::fromUtf8(text));
            QCOMPARE(date ? date->toUTC().toString(Qt::ISODateWithMs) : QString{}, utc);
        }
    }

    void records()
    {
        const QString bare = u"2025-01-02 03-04-05||2025-01-02T03:04:05||"_s;
        const QString titled = u"x||2025-01-02T03:04:05||"_s;
        const Cases<QByteArray, QString> cases{
            // title|tldr|start in Moscow|end|protocol; "-" when it is none
            {"whole",
             R"({"title":" План\n","tldr":"  Коротко ","_meta":{"started_at":"2025-03-04T07:15:00Z",)"
             R"("duration_min":47.5,"protocol_md":"/p.md"}})",
             u"План|Коротко|2025-03-04T10:15:00|2025-03-04T11:02:30|/p.md"_s},
            {"nothing", "{}", bare},
            {"other types",
             R"({"title":7,"tldr":[],"_meta":{"started_at":1,"duration_min":"5","protocol_md":null}})", bare},
            {"meta of another type", R"({"title":"x","_meta":[]})", titled},
            {"no length", R"({"title":"x","_meta":{"duration_min":0}})", titled},
            {"negative length", R"({"title":"x","_meta":{"duration_min":-3}})", titled},
            {"length beyond all", R"({"title":"x","_meta":{"duration_min":1e300}})", titled},
            {"a number of any size",
             R"({"big":123456789012345678901234567890,"title":"x","_meta":{"duration_min":1}})",
             u"x||2025-01-02T03:04:05|2025-01-02T03:05:05|"_s},
            {"half a pair of surrogates", R"({"title":"x","tldr":"\ud83d"})",
             u"x|"_s + QChar{0xd83d} + u"|2025-01-02T03:04:05||"_s},
            {"members of one name", R"({"title":"y","_meta":{},"title":"x"})", titled},
            {"byte order mark", "\xef\xbb\xbf{\"title\":\"x\"}", titled},
            {"a list", "[]", u"-"_s},
            {"cut", R"({"title":"x")", u"-"_s},
            {"empty", "", u"-"_s},
            {"no UTF-8", "{\"title\":\"\xff\"}", u"-"_s},
        };
        for (const auto& [name, json, record] : cases) {
            CASE(name);
            const auto meeting =
                summaryFile::meeting(json, u"/x.protocol.json"_s, u"2025-01-02 03-04-05"_s, 0);
            const QString format = u"yyyy-MM-ddTHH:mm:ss"_s;
            const auto end = meeting ? meeting->endedAt() : std::nullopt;
            QStringList parts{u"-"_s};
            if (meeting) {
                parts = {meeting->title, meeting->tldr, meeting->startedAt.toString(format)};
                parts << (end ? end->toString(format) : QString{})
                      << meeting->protocolPath.value_or(QString{});
            }
            QCOMPARE(parts.join(u'|'), record);
        }
    }

    void dateFallbacks()
    {
        const qint64 modified = 1'740'000'000'000;
        const auto start = [&](const QString& stem, std::optional<qint64> time) {
            return summaryFile::meeting("{}", {}, stem, time)->startedAt.toMSecsSinceEpoch();
        };
        QCOMPARE(start(u"no date"_s, modified), modified);
        QCOMPARE(start(u"2025-13-02 03-04-05"_s, modified), modified);
        QCOMPARE(start(u" 2025-01-02 03-04-05"_s, modified), modified);
        QCOMPARE(start(u"no date"_s, std::nullopt), 0);
    }

    void theListFollowsTheTimeZone()
    {
        Home home;
        home.write(u"a"_s, R"({"_meta":{"started_at":"2026-03-04T22:30:00Z"}})");
        QTRY_VERIFY(files::isSettled(files::identity(home.file(u"a"_s))));
        const auto day = [&home] { return home.scan().meetings.at(0).meeting.startedAt.date().day(); };
        QCOMPARE(day(), 5);
        qputenv("TZ", "Europe/Berlin");
        QCOMPARE(day(), 4);
        // An hour that was left out there.
        QCOMPARE(
            summaryFile::meeting("{}", {}, u"2026-03-29 02-30-00"_s, 5'000)->startedAt.toSecsSinceEpoch(), 5);
        initTestCase();
        QCOMPARE(day(), 5);
    }

    void captions()
    {
        const QDate today{2026, 11, 21};
        const Cases<QDate, QString, QString> cases{
            {"today", today, u"Сегодня"_s, u"Today"_s},
            {"yesterday", {2026, 11, 20}, u"Вчера"_s, u"Yesterday"_s},
            {"this year", {2026, 11, 19}, u"Четверг, 19 нояб."_s, u"Thursday, Nov 19"_s},
            {"another year", {2024, 11, 15}, u"Пятница, 15 нояб. 2024\u202fг."_s, u"Friday, Nov 15, 2024"_s},
            {"tomorrow", {2026, 11, 22}, u"Воскресенье, 22 нояб."_s, u"Sunday, Nov 22"_s},
        };
        for (const auto& [name, day, russian, english] : cases) {
            CASE(name);
            QCOMPARE(captions::dayTitle(day, today, u"ru"_s), russian);
            QCOMPARE(captions::dayTitle(day, today, u"en"_s), english);
        }
        const Meeting meeting{.startedAt = QDateTime{today, QTime{9, 5}}, .durationMin = 55};
        QCOMPARE(captions::dateLine(meeting, today, u"ru"_s), u"Сегодня · 09:05 – 10:00"_s);
        QCOMPARE(captions::timeRange({.startedAt = meeting.startedAt}, u"en"_s), u"09:05"_s);
    }

    void scanning()
    {
        Home home;
        QVERIFY(home.scan().changed); // the first one, of a folder that is not there
        QDir{}.mkpath(home.paths.logs);
        QVERIFY(!home.scan().changed);
        home.write(u"2026-03-04 10-00-00"_s, "{}");
        home.write(u"2026-03-05 10-00-00"_s, R"({"title":"later"})");
        QVERIFY(files::writeAtomic(home.paths.logs + u"/notes.json"_s, "{}"));
        QCOMPARE(ids(home.scan().meetings), u"2026-03-05 10-00-00 2026-03-04 10-00-00"_s);
        QTRY_VERIFY(files::isSettled(files::identity(home.file(u"2026-03-05 10-00-00"_s))));
        home.scan();
        QVERIFY(!home.scan().changed);
        home.write(u"2026-03-04 10-00-00"_s, R"({"title":"changed"})");
        const auto result = home.scan();
        QVERIFY(result.changed);
        QCOMPARE(result.meetings[1].meeting.title, u"changed"_s);
        QFile::remove(home.file(u"2026-03-05 10-00-00"_s));
        QCOMPARE(ids(home.scan().meetings), u"2026-03-04 10-00-00"_s);
    }

    void oddFilesAreLeftOut()
    {
        Home home;
        QDir{}.mkpath(home.file(u"folder"_s));
        home.write(u"good"_s, "{}");
        home.write(u"empty"_s, "");
        QCOMPARE(::mkfifo(QFile::encodeName(home.file(u"pipe"_s)).constData(), 0600), 0);
        QVERIFY(QFile::link(u"/nowhere"_s, home.file(u"dangling link"_s)));
        home.write(u"500 MB"_s, "{}");
        QVERIFY(QFile::resize(home.file(u"500 MB"_s), 500'000'000));
        QCOMPARE(ids(home.scan().meetings), u"good"_s);
    }

    void aFileBeingWrittenKeepsItsRow()
    {
        Home home;
        home.write(u"a"_s, R"({"title":"whole"})");
        home.scan();
        QFile file{home.file(u"a"_s)};
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        auto torn = home.scan();
        QVERIFY(torn.restless);
        QCOMPARE(torn.meetings.value(0).meeting.title, u"whole"_s);
        file.write(R"({"title":"half)");
        file.flush();
        QVERIFY(home.scan().restless);
        file.write(R"( and whole"})");
        file.close();
        const auto done = home.scan();
        QVERIFY(!done.restless);
        QCOMPARE(done.meetings.value(0).meeting.title, u"half and whole"_s);
        // What has long been there and is none leaves no row.
        QVERIFY(QFile::remove(home.file(u"a"_s)) && QFile::link(u"/bin/sh"_s, home.file(u"a"_s)));
        QVERIFY(home.scan().meetings.isEmpty());
    }

    void protocolsAreFoundByTitle()
    {
        Home home;
        ProtocolFinder finder{home.paths.vaultDir};
        Meeting meeting{.title = u"  Синк ПО релизу "_s};
        QVERIFY(!finder.find(meeting)); // no folder yet: looked for again
        QDir{}.mkpath(home.paths.vaultDir);
        const QString file = home.paths.vaultDir + u"/2026 синк по релизу 0.9.txt"_s;
        QVERIFY(files::writeAtomic(file, "x"));
        QCOMPARE(finder.find(meeting), file);
        meeting.protocolPath = home.paths.vaultDir + u"/gone.md"_s;
        QCOMPARE(finder.find(meeting), file);
        QVERIFY(files::writeAtomic(*meeting.protocolPath, "x"));
        QCOMPARE(finder.find(meeting), meeting.protocolPath);
        QVERIFY(!finder.find({.title = u" "_s}));
        QVERIFY(!finder.find({.title = u"gone"_s})); // the folder is listed once
    }

    void searching()
    {
        Home home;
        MeetingListModel model{home.language};
        const QAbstractItemModelTester tester{&model};
        model.setMeetings({listed(u"c"_s, 3, u"Планы\nбюджет"_s), listed(u"b"_s, 2, u"релизный"_s),
                           listed(u"a"_s, 1, u"Релиз"_s)},
                          {2026, 3, 4});
        const Cases<QString, QString> cases{
            {"white space", u" \t\n"_s, u"c b a"_s}, {"another case", u"  РЕЛИЗ "_s, u"b a"_s},
            {"in the summary", u"бюджет"_s, u"c"_s}, {"nowhere", u"нет такого"_s, {}},
            {"nothing asked", {}, u"c b a"_s},
        };
        for (const auto& [name, query, found] : cases) {
            CASE(name);
            model.setQuery(query);
            QCOMPARE(ids(model), found);
        }
    }

    void hitsAreMarkedInPlainText()
    {
        Home home;
        MeetingListModel model{home.language};
        model.setMeetings({listed(u"a"_s, 1, u"Синк\nпо РЕЛИЗУ <b>"_s)}, {2026, 3, 4});
        model.setQuery(u"релиз"_s);
        QCOMPARE(model.data(model.index(0), MeetingListModel::TitleRole).toString(), u"Синк по РЕЛИЗУ <b>"_s);
        QCOMPARE(model.data(model.index(0), MeetingListModel::TitleHitRole).toPoint(), (QPoint{8, 5}));
        QCOMPARE(model.data(model.index(0), MeetingListModel::SummaryHitRole).toPoint(), (QPoint{-1, 0}));
        model.setQuery({});
        QCOMPARE(model.data(model.index(0), MeetingListModel::TitleHitRole).toPoint(), (QPoint{-1, 0}));
    }

    void aRescanTouchesOnlyWhatDiffers()
    {
        Home home;
        MeetingListModel model{home.language};
        const QAbstractItemModelTester tester{&model};
        const QDate day{2026, 3, 4};
        model.setMeetings({listed(u"d"_s, 4), listed(u"c"_s, 3), listed(u"a"_s, 1)}, day);
        QSignalSpy reset{&model, &QAbstractItemModel::modelReset};
        QSignalSpy inserted{&model, &QAbstractItemModel::rowsInserted};
        QSignalSpy removed{&model, &QAbstractItemModel::rowsRemoved};
        QSignalSpy changed{&model, &QAbstractItemModel::dataChanged};
        model.setMeetings(
            {listed(u"e"_s, 5), listed(u"c"_s, 3, u"новое"_s), listed(u"b"_s, 2), listed(u"a"_s, 1)}, day);
        QCOMPARE(reset.count(), 0);
        QCOMPARE(removed.count(), 1);  // d
        QCOMPARE(inserted.count(), 2); // e, b
        QCOMPARE(changed.count(), 1);  // c
        model.setMeetings(
            {listed(u"e"_s, 5), listed(u"c"_s, 3, u"новое"_s), listed(u"b"_s, 2), listed(u"a"_s, 1)}, day);
        QCOMPARE(inserted.count() + removed.count() + changed.count(), 4);
    }

    void anyRescanEndsInTheNewList()
    {
        Home home;
        MeetingListModel model{home.language};
        const QAbstractItemModelTester tester{&model};
        QRandomGenerator random{7};
        for (int round = 0; round < 200; ++round) {
            QList<ListedMeeting> meetings;
            for (int i = 0; i < 12; ++i) {
                if (random.bounded(3) > 0)
                    meetings.append(listed(QString::number(i), random.bounded(3) == 0 ? random.bounded(6) : i,
                                           random.bounded(2) == 0 ? u"x"_s : u"y"_s));
            }
            std::ranges::stable_sort(meetings, [](const ListedMeeting& a, const ListedMeeting& b) {
                return a.meeting.startedAt > b.meeting.startedAt;
            });
            if (random.bounded(4) == 0) model.setQuery(random.bounded(2) == 0 ? u"x"_s : QString{});
            model.setMeetings(meetings, {2026, 3, 4});
            meetings.removeIf([&](const ListedMeeting& m) { return !m.searchText.contains(model.query()); });
            QCOMPARE(ids(model), ids(meetings));
        }
    }

    void theStoreSeesNewMeetings()
    {
        // As on a machine with a single processor.
        QThreadPool& pool = *QThreadPool::globalInstance();
        const auto threads =
            qScopeGuard([&pool, most = pool.maxThreadCount()] { pool.setMaxThreadCount(most); });
        pool.setMaxThreadCount(1);
        Home home;
        ManualScheduler scheduler{1'772'600'000};
        MeetingStore store{home.paths, home.language, scheduler};
        QTRY_VERIFY(store.loaded() && !store.loading());
        QVERIFY(store.list()->isEmpty());
        home.write(u"2026-03-04 10-00-00"_s, "{}");
        scheduler.advance(20s); // a folder that was not there is looked for again and again
        QTRY_COMPARE(store.list()->count(), 1);
        home.write(u"2026-03-05 10-00-00"_s, "{}"); // from now on the folder itself tells
        QTRY_VERIFY(scheduler.wakeUpsWithin(1s) > 0);
        scheduler.advance(150ms);
        QTRY_COMPARE(store.list()->count(), 2);
        QCOMPARE(store.list()->idAt(0), u"2026-03-05 10-00-00"_s);
    }

    void recordingsWithHardlyAnySpeechAreTold()
    {
        const QString said = u"## Транскрипт\n[00:01] Анна: "_s;
        const QString enough = said + QString(200, u'а'), lessThanThat = said + u"раз, раз\n"_s;
        const Cases<QByteArray, QString, QString> cases{
            // analytics and the length in minutes, the protocol, what is told
            {"usual",
             R"({"source":"segments","speech_share":0.6,"speakers":[{},{}]},"duration_min":60)",
             enough,
             {}},
            {"nothing known", R"(7,"duration_min":60)", {}, {}},
            {"silence", R"({"source":"segments","speech_share":0.049,"speakers":[{},{}]})", enough,
             u"pulse.little"_s},
            {"not exact", R"({"source":"starts","speech_share":0,"speakers":[{},{}]})", enough, {}},
            {"one", R"({"speakers":[{}]},"duration_min":10.1,"x":123456789012345678901)", enough,
             u"pulse.little.voice"_s},
            {"one, but shortly", R"({"speakers":[{}]},"duration_min":10)", enough, {}},
            {"short transcript", R"({"speakers":[{}]},"duration_min":60)", lessThanThat, u"pulse.little"_s},
            {"a long protocol", "{}", QString(9000, u'-') + lessThanThat, {}},
            {"no transcript", "{}", u"# Протокол"_s, {}},
        };
        Home home;
        for (const auto& [name, analytics, protocol, key] : cases) {
            const QString path = home.dir.filePath(QLatin1StringView{name} + u".md"_s);
            if (!protocol.isEmpty()) QVERIFY(files::writeAtomic(path, protocol.toUtf8()));
            home.write(QString::fromLatin1(name), R"({"_meta":{"protocol_md":")" + path.toUtf8() +
                                                      R"(","analytics":)" + analytics + "}}");
        }
        ManualScheduler scheduler{1'772'600'000};
        MeetingStore store{home.paths, home.language, scheduler};
        const auto told = [&](const char* name) {
            const QModelIndex row = store.list()->index(store.list()->rowOf(QString::fromLatin1(name)));
            return row.data(MeetingListModel::HeardRole).toString();
        };
        QTRY_COMPARE(told("short transcript"), u"pulse.little"_s);
        for (const auto& [name, analytics, protocol, key] : cases) {
            CASE(name);
            QCOMPARE(told(name), key);
        }
    }

private:
    struct Home {
        QTemporaryDir dir;
        Paths paths{dir.path()};
        Prefs prefs{paths.prefsFile};
        Language language{prefs, [] { return QStringList{}; }};
        MeetingScanner scanner{paths.logs};

        MeetingScanner::Result scan() { return scanner.scan(); }
        [[nodiscard]] QString file(const QString& stem) const
        {
            return paths.logs + u'/' + stem + summaryFile::suffix;
        }
        void write(const QString& stem, const QByteArray& bytes) const
        {
            QVERIFY(QDir{}.mkpath(paths.logs) && files::writeAtomic(file(stem), bytes));
        }
    };
};

MURMELI_TEST(MeetingsTest)
#include "MeetingsTest.moc"
