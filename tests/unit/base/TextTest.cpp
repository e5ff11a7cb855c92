#include "base/Text.h"

#include "base/Dates.h"
#include "registeredTests.h"
#include "support/Cases.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;

class TextTest : public QObject {
    Q_OBJECT

private slots:
    void charactersAreWhatAReaderCounts()
    {
        const Cases<QString, int, QString> cases{
            {"empty", u""_s, 0, u""_s},
            {"cyrillic", u"Ёжик"_s, 4, u"Ёж"_s},
            {"combining marks", u"и\u0306ц\u0301а"_s, 3, u"и\u0306ц\u0301"_s},
            {"family emoji", u"👨‍👩‍👧‍👦ab"_s, 3, u"👨‍👩‍👧‍👦a"_s},
            {"flags", u"🇨🇭🇷🇺x"_s, 3, u"🇨🇭🇷🇺"_s},
            {"carriage return and line feed", u"\r\nab"_s, 3, u"\r\na"_s},
            {"lone surrogate", QChar{0xd83d} + u"ab"_s, 3, QChar{0xd83d} + u"a"_s},
        };
        for (const auto& [name, whole, count, firstTwo] : cases) {
            CASE(name);
            QCOMPARE(text::characterCount(whole), count);
            QCOMPARE(text::first(whole, 2), firstTwo);
            QCOMPARE(text::first(whole, 100), whole);
            QCOMPARE(text::first(whole, -1), QString{});
        }
    }

    void capitalizedFirst()
    {
        const Cases<QString, QString> cases{
            {"empty", u""_s, u""_s},
            {"rest unchanged", u"синк ПО релизу"_s, u"Синк ПО релизу"_s},
            {"with a mark", u"и\u0306од"_s, u"И\u0306од"_s},
            {"grows", u"ßa"_s, u"SSa"_s},
            {"outside the first plane", u"𐐨x"_s, u"𐐀x"_s},
            {"no letter", u"«слово»"_s, u"«слово»"_s},
        };
        for (const auto& [name, given, expected] : cases) {
            CASE(name);
            QCOMPARE(text::capitalizedFirst(given), expected);
        }
    }

    void trimmedTakesUnicodeSpaces()
    {
        QCOMPARE(text::trimmed(u"\u2003\u00a0\u2028\n слово и слово \u3000\r\n\u0085"_s), u"слово и слово"_s);
    }

    void runningTimesAreSpoken()
    {
        const Cases<int, QString, QString> cases{
            {"one and many", 24 * 60 + 31, u"ru"_s, u"24 минуты 31 секунда"_s},
            {"no minute", 5, u"ru"_s, u"5 секунд"_s},
            {"not wrapped into hours", 75 * 60, u"ru"_s, u"75 минут 0 секунд"_s},
            {"english", 61, u"en"_s, u"1 minute, 1 second"_s},
        };
        for (const auto& [name, seconds, language, expected] : cases) {
            CASE(name);
            QCOMPARE(dates::spokenDuration(seconds, language), expected);
        }
    }

    void logTimesAreUtcWithWholeSeconds()
    {
        QCOMPARE(dates::iso8601(1'794'853'200.9), u"2026-11-16T18:20:00Z"_s);
        QCOMPARE(dates::bySkeleton({}, u"ru"_s, u"Hm"_s), QString{}); // no moment, no text
    }
};

MURMELI_TEST(TextTest)
#include "TextTest.moc"
