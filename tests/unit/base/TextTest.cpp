#include "base/Text.h"

#include "base/Dates.h"
#include "registeredTests.h"

#include <QTest>
#include <QTimeZone>

using namespace Qt::StringLiterals;
using namespace murmeli;

class TextTest : public QObject {
    Q_OBJECT

private slots:
    void charactersAreWhatAReaderCounts_data()
    {
        QTest::addColumn<QString>("whole");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("firstTwo");
        QTest::newRow("empty") << u""_s << 0 << u""_s;
        QTest::newRow("cyrillic") << u"Ёжик"_s << 4 << u"Ёж"_s;
        QTest::newRow("combining marks") << u"и\u0306ц\u0301а"_s << 3 << u"и\u0306ц\u0301"_s;
        QTest::newRow("family emoji")
            << u"👨‍👩‍👧‍👦ab"_s << 3 << u"👨‍👩‍👧‍👦a"_s;
        QTest::newRow("flags") << u"🇨🇭🇷🇺x"_s << 3 << u"🇨🇭🇷🇺"_s;
        QTest::newRow("carriage return and line feed") << u"\r\nab"_s << 3 << u"\r\na"_s;
        QTest::newRow("lone surrogate")
            << QString{QChar{0xd83d}} + u"ab"_s << 3 << QString{QChar{0xd83d}} + u"a"_s;
    }
    void charactersAreWhatAReaderCounts()
    {
        QFETCH(QString, whole);
        QFETCH(int, count);
        QFETCH(QString, firstTwo);
        QCOMPARE(text::characterCount(whole), count);
        QCOMPARE(text::first(whole, 2), firstTwo);
        QCOMPARE(text::first(whole, 100), whole);
        QCOMPARE(text::first(whole, -1), QString{});
    }

    void capitalizedFirst_data()
    {
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("expected");
        QTest::newRow("empty") << u""_s << u""_s;
        QTest::newRow("rest unchanged") << u"синк ПО релизу"_s << u"Синк ПО релизу"_s;
        QTest::newRow("with a mark") << u"и\u0306од"_s << u"И\u0306од"_s;
        QTest::newRow("grows") << u"ßa"_s << u"SSa"_s;
        QTest::newRow("outside the first plane") << u"𐐨x"_s << u"𐐀x"_s;
        QTest::newRow("no letter") << u"«слово»"_s << u"«слово»"_s;
    }
    void capitalizedFirst()
    {
        QFETCH(QString, given);
        QTEST(text::capitalizedFirst(given), "expected");
    }

    void trimmedTakesUnicodeSpaces()
    {
        QCOMPARE(text::trimmed(u"\u2003\u00a0\u2028\n слово и слово \u3000\r\n\u0085"_s), u"слово и слово"_s);
    }

    void datesAreWrittenInTheLanguage_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("skeleton");
        QTest::addColumn<QString>("expected");
        QTest::newRow("ru day") << u"ru"_s << u"EEEEdMMM"_s << u"пятница, 15 нояб."_s;
        QTest::newRow("en day") << u"en"_s << u"EEEEdMMM"_s << u"Friday, Nov 15"_s;
        QTest::newRow("ru day of another year")
            << u"ru"_s << u"EEEEdMMMyyyy"_s << u"пятница, 15 нояб. 2024\u202fг."_s;
        QTest::newRow("ru time") << u"ru"_s << u"Hm"_s << u"17:00"_s;
        QTest::newRow("en time has 24 hours too") << u"en"_s << u"Hm"_s << u"17:00"_s;
    }
    void datesAreWrittenInTheLanguage()
    {
        QFETCH(QString, language);
        QFETCH(QString, skeleton);
        const QDateTime moment{QDate{2024, 11, 15}, QTime{17, 0}};
        QTEST(dates::bySkeleton(moment, language, skeleton), "expected");
        QCOMPARE(dates::bySkeleton({}, language, skeleton), QString{});
    }

    void runningTimesAreSpoken_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("expected");
        QTest::newRow("one and many") << 24 * 60 + 31 << u"ru"_s << u"24 минуты 31 секунда"_s;
        QTest::newRow("no minute") << 5 << u"ru"_s << u"5 секунд"_s;
        QTest::newRow("not wrapped into hours") << 75 * 60 << u"ru"_s << u"75 минут 0 секунд"_s;
        QTest::newRow("english") << 61 << u"en"_s << u"1 minute, 1 second"_s;
    }
    void runningTimesAreSpoken()
    {
        QFETCH(int, seconds);
        QFETCH(QString, language);
        QTEST(dates::spokenDuration(seconds, language), "expected");
    }

    void logTimesAreUtcWithWholeSeconds()
    {
        QCOMPARE(dates::iso8601(1'794'853'200.9), u"2026-11-16T18:20:00Z"_s);
    }
};

MURMELI_TEST(TextTest)
#include "TextTest.moc"
