#include "margin/MarkFiles.h"
#include "registeredTests.h"
#include "search/FoundPlace.h"
#include "support/Cases.h"
#include "support/TestProgram.h"
#include "windows/MainModel.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

/// Looking for what was said in all meetings.
class SearchTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<TestProgram>(); }
    void cleanup()
    {
        main.reset();
        m.reset();
    }

    void questions()
    {
        writeLibrary();
        m->glossary.save({{u"мурмели"_s, u"Murmeli"_s}, {u"сборочный стенд"_s, u"CI"_s}});
        open();
        const Cases<QString, QString> cases{
            // what is typed, and which meetings are found, the newest first
            {"said, in another form", u"подрядчику "_s, u"budget"_s},
            {"all words, from different parts", u"релиз смета "_s, u"budget"_s},
            {"decided", u"откатов"_s, u"sync"_s},
            {"who has a task", u"семён "_s, u"sync"_s},
            {"analysed", u"узкое место"_s, u"sync"_s},
            {"noted", u"стенде "_s, u"budget"_s},
            {"a participant", u"лаптева "_s, u"hiring"_s},
            {"the beginning of the last word", u"подря"_s, u"budget"_s},
            {"but not of a finished one", u"подря "_s, {}},
            {"in these very forms", u"\"смету подрядчика\""_s, u"budget"_s},
            {"which are others", u"\"смета подрядчика\""_s, {}},
            {"not there", u"релиз -смета"_s, u"sync"_s},
            {"not in this form", u"релиз -\"смете\""_s, u"budget sync"_s},
            {"by somebody", u"от:Тимура смета"_s, u"budget"_s},
            {"by somebody else", u"от:Анна смета"_s, {}},
            {"somebody alone", u"from:анна"_s, u"budget sync"_s},
            {"from a day on", u"релиз с:2024-11-13"_s, u"budget"_s},
            {"to a day", u"релиз until:12.11.2024"_s, u"sync"_s},
            {"days in words", u"с:вчера по:сегодня релиз"_s, u"budget"_s},
            {"no day: ignored", u"с:потом релиз"_s, u"budget sync"_s},
            {"in one part", u"в:протоколе murmeli"_s, u"sync"_s},
            {"in another", u"in:transcript релиз"_s, u"budget"_s},
            {"a prefix that is none", u"что:релиз"_s, {}},
            {"heard wrongly", u"мурмели "_s, u"sync"_s},
            {"what several words are heard for", u"сборочный стенд "_s, u"sync"_s},
            {"in the other layout", u"gjlhzlxbr"_s, u"budget"_s},
            {"only a title's middle", u"найм"_s, u"hiring"_s},
            {"what an engine would take for its own", u"NEAR(релиз* \" OR"_s, {}},
        };
        for (const auto& [name, typed, ids] : cases) {
            CASE(name);
            QCOMPARE(found(typed), ids);
        }
        QCOMPARE(search().layout(), QString{});
        found(u"gjlhzlxbr"_s);
        QCOMPARE(search().layout(), u"подрядчик"_s);
        search().searchAsTyped();
        QCOMPARE(settled(), QString{});
        QCOMPARE(found({}), u"budget sync hiring"_s);
        QVERIFY(search().isSettled() && !search().isSearching());
    }

    void placesAreFoundInTheFiles()
    {
        writeLibrary();
        open();
        QCOMPARE(found(u"смета подрядчика"_s), u"budget"_s);
        const QList<FoundPlace> places = placesIn(u"budget"_s);
        QCOMPARE(places.size(), 2);
        QCOMPARE(places[0].passage.kind, Passage::Kind::Said); // both words, before one of them in the title
        QCOMPARE(places[0].stamp(), u"00:06:12"_s);
        QCOMPARE(places[0].speaker(), u"Тимур"_s);
        QCOMPARE(places[0].hits.size(), 2);
        QCOMPARE(places[1].kindKey(), u"search.kind.title"_s);
        QCOMPARE(search().spoken(places[0], u"ru"_s),
                 u"6 минут 12 секунд, Тимур: Смету подрядчика жду к понедельнику."_s);
        QTRY_COMPARE(search().counts(u"ru"_s), u"1 встреча · 2 места"_s);

        main->openAt(u"budget"_s, places[0]);
        QVERIFY(main->detail()->reading() && main->detail()->visiting());
        QTRY_COMPARE(main->detail()->transcript()->here(), 1);
        main->back();

        found(u"узкое место"_s);
        main->openAt(u"sync"_s, placesIn(u"sync"_s).first());
        QVERIFY(main->detail()->analysing());
        QVERIFY(main->detail()->report()->wantedRow() > 0);
        main->back();
        found(u"откатов"_s);
        main->openAt(u"sync"_s, placesIn(u"sync"_s).first());
        QSignalSpy lit{main->detail(), &MeetingDetailModel::itemShown};
        QTRY_COMPARE(lit.size(), 1);
        QVERIFY(!main->detail()->visiting());
    }

    void aLongTextShowsTheSentenceOrPartOfIt()
    {
        const QString filler = u"очень длинное вступление без всякого смысла "_s;
        const Cases<QString, QString> cases{
            {"short: whole", u"Срок. Смету несут. Потом."_s, u"Срок. Смету несут. Потом."_s},
            {"a sentence", filler.repeated(4) + u". Смету несут завтра. "_s + filler,
             u"Смету несут завтра."_s},
            {"cut on both sides", filler.repeated(4) + u"смету "_s + filler.repeated(4),
             u"…длинное вступление без всякого смысла смету "_s + filler.repeated(2) +
                 u"очень длинное вступление…"_s},
        };
        words::Keys keys;
        const SearchQuery query{u"смета "_s, {}, {2026, 3, 4}, {}, keys};
        for (const auto& [name, said, shown] : cases) {
            CASE(name);
            const MeetingText text{.passages = {{.kind = Passage::Kind::Said, .text = said.trimmed()}},
                                   .people = {}};
            const QList<FoundPlace> places = FoundPlace::in(text, query, keys);
            QCOMPARE(places.size(), 1);
            QCOMPARE(places.first().text, shown);
            QCOMPARE(places.first().hits.size(), 1);
            QCOMPARE(places.first().hits.first().in(shown).toString().toLower(), u"смету"_s);
        }
    }

    void whatChangesIsFoundAsItIsNow()
    {
        writeLibrary();
        open();
        QCOMPARE(found(u"смета"_s), u"budget"_s);
        QFile::remove(logs(u"budget"_s, ".protocol.json"));
        write(u"sync"_s, at(-3), R"("title":"Синк","tldr":"Смета готова")", {});
        QTRY_COMPARE((m->scheduler.advance(20s), QCoreApplication::processEvents(), ids()), u"sync"_s);
        QTRY_COMPARE((m->scheduler.advance(1s), settled()), u"sync"_s);
        write(u"late"_s, at(0), R"("title":"Новая")", "Транскрипт\n[00:00:01] Анна: о смете\n");
        QTRY_COMPARE((m->scheduler.advance(20s), settled()), u"late sync"_s);
        m->program.index.measure();
        QTRY_COMPARE(m->program.index.meetings(), 3); // without the one that has gone
    }

    void itIsBuiltWhenThereIsPeaceAndSpace()
    {
        writeLibrary();
        m->serviceSays("recording");
        open(false);
        QCOMPARE(found(u"подрядчик"_s), QString{}); // not built during a recording
        QCOMPARE(found(u"бюджет"_s), u"budget"_s);  // its title
        *m->freeBytes = 100'000'000;
        m->serviceSays("idle");
        QTRY_COMPARE(search().trouble(u"ru"_s), u"Мало места на диске — ищу только по названиям и итогам"_s);
        *m->freeBytes = 84'000'000'000;
        QTRY_COMPARE((m->scheduler.advance(20s), m->program.index.state()), SearchIndex::State::Ready);
        QCOMPARE(search().trouble(u"ru"_s), QString{});
        QCOMPARE(found(u"подрядчик"_s), u"budget"_s);
    }

    void aDamagedIndexIsMadeAnew()
    {
        writeLibrary();
        QDir{}.mkpath(m->paths.ownCache);
        m->write(m->program.index.path(), QByteArray(20'000, 'x'));
        open();
        QCOMPARE(found(u"подрядчик"_s), u"budget"_s);
        // And when it is lost or damaged while it is in use.
        for (const QByteArray& content : {QByteArray{}, QByteArray(20'000, 'x')}) {
            IndexFile::remove(m->program.index.path());
            if (!content.isEmpty()) m->write(m->program.index.path(), content);
            QTRY_COMPARE(found(search().query() + u' '), u"budget"_s);
            QTRY_COMPARE(m->program.index.state(), SearchIndex::State::Ready);
            m->scheduler.advance(10min); // so often
        }
        // In its place there is a folder, which nobody may remove.
        IndexFile::remove(m->program.index.path());
        QDir{}.mkpath(m->program.index.path() + u"/a"_s);
        m->program.index.makeAnew();
        open(false);
        QTRY_COMPARE((m->scheduler.advance(20s), m->program.index.state()), SearchIndex::State::Failed);
        QCOMPARE(found(u"бюджет"_s), u"budget"_s);
        QVERIFY(search().trouble(u"en"_s).startsWith(u"The index cannot be built"_s));
    }

    void nothingFoundHasWaysOut()
    {
        writeLibrary();
        open();
        search().setPeriod(SearchModel::Week);
        QCOMPARE(found(u"смета подрядчека"_s), QString{});
        QTRY_COMPARE(search().waysOut().size(), 1);
        QCOMPARE(search().waysOut().first().query, u"смета подрядчика"_s);
        search().takeWayOut(search().waysOut().first());
        QCOMPARE(settled(), u"budget"_s);

        QCOMPARE(found(u"откатов"_s), u"sync"_s);
        search().setWhere(SearchModel::InTitle);
        QCOMPARE(settled(), QString{});
        QTRY_COMPARE(search().waysOut().size(), 1);
        QCOMPARE(search().waysOut().first().key, u"search.everywhere"_s);
        search().takeWayOut(search().waysOut().first());
        QCOMPARE(settled(), u"sync"_s);

        search().findSpeakers();
        QTRY_COMPARE(search().speakers(),
                     (QStringList{u"Анна"_s, u"Илья"_s, u"Мария Лаптева"_s, u"Тимур"_s}));
        search().setSpeaker(u"Тимур"_s);
        QCOMPARE(found({}), u"budget"_s);
        search().setSpeaker({});
        search().setBest(true);
        QCOMPARE(found(u"релиз"_s), u"sync budget"_s); // its title
        QCOMPARE(main->store()->list()->data(main->store()->list()->index(0), MeetingListModel::DayRole),
                 QString{});
    }

private:
    [[nodiscard]] SearchModel& search() const { return *main->search(); }
    [[nodiscard]] QString logs(const QString& stem, const char* suffix) const
    {
        return m->paths.logs + u'/' + stem + QString::fromLatin1(suffix);
    }
    /// The moment so many days from today, at noon.
    [[nodiscard]] QByteArray at(int days) const
    {
        const QDateTime noon{m->scheduler.moment().date().addDays(days), QTime{12, 0}};
        return noon.toUTC().toString(Qt::ISODate).toUtf8();
    }
    void write(const QString& stem, const QByteArray& start, const QByteArray& members,
               const QByteArray& protocol)
    {
        const QString path = logs(stem, ".md");
        m->write(path, protocol);
        m->write(logs(stem, ".protocol.json"), "{" + members + ",\"_meta\":{\"started_at\":\"" + start +
                                                   "\",\"protocol_md\":\"" + path.toUtf8() + "\"}}");
    }
    void writeLibrary()
    {
        write(u"budget"_s, at(0), R"("title":"Бюджет: смета")",
              "Транскрипт\n[00:00:10] Анна: После релиза Murmel посмотрим.\n"
              "[00:06:12] Тимур: Смету подрядчика жду к понедельнику.\n");
        write(
            u"sync"_s, at(-3),
            R"("title":"Синк по релизу","tldr":"Выпускаем Murmeli","decisions":["Без откатов через CI"],"action_items":[{"task":"проверить","owner":"Семён"}])",
            "Транскрипт\n[00:01:00] Анна: да\n[00:01:10] Илья: нет\n");
        write(u"hiring"_s, at(-30),
              R"("title":"План найма: собеседования","participants":[{"name":"Мария Лаптева"}])", {});
        m->write(logs(u"sync"_s, ".report.json"),
                 R"({"insights":[{"kind":"risk","title":"Узкое место","detail":"один человек"}]})");
        Mark mark;
        mark.time = mark.begin = 1;
        mark.text = u"спросить про стенд"_s;
        QCOMPARE(MarkFiles{m->paths}.addTo(u"budget"_s, mark), OwnWritten::Yes);
    }
    void open(bool ready = true)
    {
        main = std::make_unique<MainModel>(m->mainGround());
        QTRY_VERIFY(main->store()->loaded());
        if (ready) QTRY_COMPARE(m->program.index.state(), SearchIndex::State::Ready);
    }
    [[nodiscard]] QString ids() const
    {
        QStringList ids;
        for (int row = 0; row < main->store()->list()->count(); ++row)
            ids.append(main->store()->list()->idAt(row));
        return ids.join(u' ');
    }
    QString settled()
    {
        return QTest::qWaitFor([this] { return search().isSettled(); }) ? ids() : u"it never settles"_s;
    }
    QString found(const QString& typed)
    {
        search().setQuery(typed);
        return settled();
    }
    QList<FoundPlace> placesIn(const QString& meeting)
    {
        search().lookFrom(0);
        // As long as they are not all known, those of the query before stay.
        std::ignore = QTest::qWaitFor([&] { return search().counts(u"ru"_s).contains(u"мест"_s); });
        return search().placesIn(meeting);
    }

    std::unique_ptr<TestProgram> m;
    std::unique_ptr<MainModel> main;
};

MURMELI_TEST(SearchTest)
#include "SearchTest.moc"
