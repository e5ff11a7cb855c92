#include "language/Words.h"

#include "language/Difference.h"
#include "language/Layouts.h"
#include "registeredTests.h"
#include "support/Cases.h"

#include <QFile>
#include <QHash>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;

class WordsTest : public QObject {
    Q_OBJECT

private slots:
    void splitting()
    {
        const Cases<QString, QString> cases{
            {"a sentence", u"Ну, всё — «готово»!"_s, u"Ну|всё|готово"_s},
            {"numbers", u"0.9 1,5 12.11.2026 3. ,7"_s, u"0.9|1,5|12.11.2026|3|7"_s},
            {"a dot after a letter", u"v.2 a.b 2.b"_s, u"v|2|a|b|2|b"_s},
            {"a hyphen parts", u"кое-что re-do"_s, u"кое|что|re|do"_s},
            {"marks", u"и\u0306од ударе\u0301ние"_s, u"и\u0306од|ударе\u0301ние"_s},
            {"beyond the first plane", u"𝒳𝒴 😀 a"_s, u"𝒳𝒴|a"_s},
            {"half a pair", QString{u"a"_s + QChar{0xd83d} + u"b"_s}, u"a|b"_s},
            {"nothing", u" …— "_s, {}},
        };
        for (const auto& [name, text, expected] : cases) {
            CASE(name);
            QStringList found;
            for (const words::Span& span : words::split(text))
                found.append(span.in(text).toString());
            QCOMPARE(found.join(u'|'), expected);
        }
    }

    void differences()
    {
        const QString long20 = u"a b c d e f g h i j k l m n o p q r s t"_s;
        const Cases<QString, QString, QString> cases{
            // before, after, and what is told: [-gone-] and [+come+]
            {"a word", u"до вторника."_s, u"до среды."_s, u"до [-вторника-][+среды+]."_s},
            {"words side by side", u"a x y b"_s, u"a 1 2 b"_s, u"a [-x y -][+1 2 +]b"_s},
            {"the case of a letter, and a sign", u"Да, нет"_s, u"да нет"_s, u"[-Да, -][+да +]нет"_s},
            {"white space alone is no difference", u"a  b"_s, u" a b"_s, u"a b"_s},
            {"a part of a number", u"0.10"_s, u"0.9"_s, u"[-0.10-][+0.9+]"_s},
            {"from nothing", {}, u"a b"_s, u"[+a b+]"_s},
            {"to nothing", u"a"_s, {}, u"[-a-]"_s},
            {"far from the difference", long20 + u" x"_s, long20 + u" y"_s, u"… o p q r s t [-x-][+y+]"_s},
            {"between two", u"x "_s + long20 + u" x"_s, u"y "_s + long20 + u" y"_s,
             u"[-x -][+y +]a b c d e f … o p q r s t [-x-][+y+]"_s},
            {"too long to compare",
             QString{u"a "_s}.repeated(3000) + u"x"_s,
             u"y "_s + QString{u"b "_s}.repeated(3000),
             {}},
        };
        for (const auto& [name, before, after, told] : cases) {
            CASE(name);
            QString found;
            QString made;
            const QList<words::Piece> pieces = words::difference(before, after);
            for (const words::Piece& piece : pieces) {
                if (piece.kind != words::Piece::Kind::Removed) made += piece.text;
            }
            QCOMPARE(made.simplified(), after.simplified());
            const QStringList signs{u"%1"_s, u"[-%1-]"_s, u"[+%1+]"_s};
            for (const words::Piece& piece : words::brief(pieces))
                found += signs[int(piece.kind)].arg(piece.text);
            if (!told.isEmpty()) QCOMPARE(found, told);
        }
        QCOMPARE(words::dissimilarity(u"a b c d"_s, u"a b c e"_s), 0.25);
        QCOMPARE(words::dissimilarity({}, u"a"_s), 1.0);
    }

    void folding()
    {
        const Cases<QString, QString> cases{
            {"case and ё", u"ЁЛКА"_s, u"елка"_s},
            {"ё in two", u"Е\u0308лка"_s, u"елка"_s},
            {"й stays", u"И\u0306ОД"_s, u"йод"_s},
            {"an accent goes", u"за\u0301мок"_s, u"замок"_s},
            {"one that is a letter stays", u"Café"_s, u"café"_s},
        };
        for (const auto& [name, word, expected] : cases) {
            CASE(name);
            QCOMPARE(words::folded(word), expected);
        }
    }

    void keys()
    {
        words::Keys keys;
        const Cases<QStringList> equal{
            {"irregular", {u"люди"_s, u"человека"_s, u"ЛЮДЯМ"_s}},
            {"a fleeting vowel", {u"сборок"_s, u"сборка"_s, u"сборки"_s}},
            {"another", {u"конец"_s, u"конца"_s}},
            {"english", {u"Releases"_s, u"released"_s, u"release"_s}},
            {"ё", {u"отчёт"_s, u"отчета"_s}},
        };
        for (const auto& [name, forms] : equal) {
            CASE(name);
            for (const QString& form : forms)
                QCOMPARE(keys.of(form), keys.of(forms.first()));
        }
        for (const char* itself : {"0.9", "x86", "2026", "日本"})
            QCOMPARE(keys.of(QString::fromUtf8(itself)), QByteArray{itself});
        QVERIFY(keys.of(u"лес"_s) != keys.of(u"лесок"_s)); // too short a stem to tell
        QCOMPARE(QString::fromUtf8(keys.of(QString(500, u'ж'))).size(), 64);
        QVERIFY(keys.of({}).isEmpty());
    }

    // Of words that nobody had in view when the irregular ones were listed.
    void formsOfAWordHaveOneKey()
    {
        QFile file{QStringLiteral(MURMELI_TEST_DATA "/wordForms.txt")};
        QVERIFY(file.open(QIODevice::ReadOnly));
        words::Keys keys;
        QHash<QByteArray, QString> owners;
        qsizetype rows = 0, forms = 0, joined = 0;
        QStringList lost, mixed;
        for (const QString& row : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
            const QStringList words = row.split(u' ', Qt::SkipEmptyParts);
            QHash<QByteArray, int> counts;
            for (const QString& word : words)
                ++counts[keys.of(word)];
            const QByteArray own = keys.of(words.first());
            for (const QString& word : words) {
                if (keys.of(word) != own) lost.append(word);
                const auto other = owners.constFind(keys.of(word));
                if (other != owners.cend() && *other != words.first()) mixed.append(word + u'=' + *other);
                owners.insert(keys.of(word), words.first());
            }
            ++rows;
            forms += words.size();
            joined += counts[own];
        }
        qInfo("%lld of %lld forms of %lld words are joined", joined, forms, rows);
        QVERIFY(rows >= 100);
        QVERIFY2(joined * 100 >= forms * 97, qPrintable(lost.join(u' ')));
        QVERIFY2(mixed.isEmpty(), qPrintable(mixed.join(u' ')));
    }

    void layouts()
    {
        const Cases<QString, QString> cases{
            {"Russian on English", u"cjhjr djghjcjd"_s, u"сорок вопросов"_s},
            {"English on Russian", u"кудуфыу"_s, u"release"_s},
            {"letters on signs", u"{jhjij? j,]tv"_s, u"Хорошо, объем"_s},
            {"and back", u"Хорошо, объём"_s, u"{jhjij? j,]`v"_s},
            {"digits stay", u"0.9"_s, u"0ю9"_s},
        };
        for (const auto& [name, text, expected] : cases) {
            CASE(name);
            QCOMPARE(layouts::exchanged(text), expected);
        }
    }
};

MURMELI_TEST(WordsTest)
#include "WordsTest.moc"
