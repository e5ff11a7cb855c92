#include "handout/Redaction.h"

#include "registeredTests.h"
#include "support/Cases.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;

class RedactionTest : public QObject {
    Q_OBJECT

private slots:
    // names.txt has a name a line and behind it the forms that texts have it in.
    void namesInAllTheirForms()
    {
        QFile file{QStringLiteral(MURMELI_TEST_DATA "/names.txt")};
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
        const QRegularExpression hidden{u"^«У Участник 1(['’]s?)? было\\.»$"_s};
        int all = 0;
        QStringList left;
        for (const QString& line : lines) {
            const QString name = line.section(u'\t', 0, 0).trimmed();
            for (const QString& form : QStringList{name} + line.section(u'\t', 1).split(u" | "_s)) {
                Redaction redaction{{name}, u"Участник"_s};
                const QString text = redaction.withoutNames(u"«У "_s + form.trimmed() + u" было.»"_s);
                ++all;
                if (!hidden.match(text).hasMatch()) left.append(form.trimmed() + u": "_s + text);
            }
        }
        QVERIFY(all > 1000);
        QVERIFY2(left.size() * 100 <= all, qPrintable(left.join(u'\n')));
    }

    void people()
    {
        const QStringList names{u"Анна Ковалёва"_s, u"Лев"_s,          u"Ли"_s,         u"Саша"_s,
                                u"Speaker 2"_s,     u"王伟"_s,         u"Надежда К."_s, u"Пётр (бухгалтер)"_s,
                                u"Орлов, Иван"_s,   u"Менеджер Зоя"_s, u"Speaker A"_s};
        const Cases<QString, QString> cases{
            {"one number for one person", u"Анне и Ковалёвой; Льва нет"_s, u"У 1 и У 1; У 2 нет"_s},
            {"initials", u"А. С. Ковалёва, Ковалёву А.С. и так далее"_s, u"У 1, У 1 и так далее"_s},
            {"ё, capitals, an accent", u"ЛЕВ, КОВАЛЕВА, Петра́"_s, u"У 1, У 2, У 3"_s},
            {"two letters", u"Ли! Нужно ли, если?"_s, u"У 1! Нужно ли, если?"_s},
            {"a word too", u"Надежде не оставим надежды"_s, u"У 1 не оставим надежды"_s},
            {"short and theirs", u"Саш, Александру и Сашин отчёт"_s, u"У 1, У 1 и У 1 отчёт"_s},
            {"nobody", u"Speaker 2: бухгалтеру"_s, u"Speaker 2: бухгалтеру"_s},
            {"no spaces", u"王伟说"_s, u"У 1说"_s},
            {"the family name first", u"Орлов, Иван: Ивану Орлову"_s, u"У 1: У 1"_s},
            {"a role and a name", u"Менеджеру Зое, менеджеру"_s, u"Менеджеру У 1, менеджеру"_s},
            {"an initial between two", u"Ответит Лев. И. Орлов согласен"_s, u"Ответит У 1. У 2 согласен"_s},
            {"in other words", u"Анналы, левый, левая, полёт, петля"_s,
             u"Анналы, левый, левая, полёт, петля"_s},
        };
        for (const auto& [name, text, expected] : cases) {
            CASE(name);
            Redaction redaction{names, u"У"_s};
            QCOMPARE(redaction.withoutNames(text), expected);
            QCOMPARE(redaction.leftIn(expected), QString{});
        }
        const Redaction redaction{names + QStringList{u"Надя"_s, u"Вера"_s, u"Tim"_s}, u"У"_s};
        QCOMPARE(redaction.leftIn(u"Надо. Верно! Time?"_s), QString{}); // begin like the names
        QCOMPARE(redaction.leftIn(u"о Ковалёвой"_s), u"Ковалёвой"_s);
        QCOMPARE(redaction.leftIn(u"с Ковалёвгю"_s), u"Ковалёвгю"_s); // a slip that begins like the name
    }

    void numbers()
    {
        const Cases<QString, QString> cases{
            {"sums", u"1 250 000 ₽, $3.5, −12 % и №7"_s, u"…, …, … и …"_s},
            {"dates and times", u"28.11.2026 в 12:30–14:00"_s, u"… в …"_s},
            {"in a word", u"GPT-4, Q3"_s, u"GPT-…, Q…"_s},
            {"moments stay", u"[00:12:31] два, 2"_s, u"[00:12:31] два, …"_s},
        };
        for (const auto& [name, text, expected] : cases) {
            CASE(name);
            QCOMPARE(Redaction::withoutNumbers(text), expected);
        }
    }
};

MURMELI_TEST(RedactionTest)
#include "RedactionTest.moc"
