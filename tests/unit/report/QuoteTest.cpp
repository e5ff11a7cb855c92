#include "language/PersonNames.h"
#include "registeredTests.h"
#include "report/QuoteCheck.h"
#include "support/Cases.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;

class QuoteTest : public QObject {
    Q_OBJECT

private slots:
    void quotations()
    {
        const Transcript transcript{u"[00:01:00] Илья: Начнём с релиза.\n"
                                    "[00:14:05] Анна: Тексты точно принесу во вторник, не позже обеда.\n"
                                    "[00:22:48] Илья: ну может быть попробую на этой неделе, если вдруг "
                                    "освободится стенд\n"
                                    "[00:38:40] Ольга: Я им уже пообещала двадцать восьмое, и точка.\n"
                                    "[00:40:00] Speaker 2: Договорились, бюджет за мной.\n"
                                    "[00:50:00] Анна: Нужен отчёт к среде. Ну, давай\n"
                                    "[00:50:05] Илья: Подготовлю отчёт к среде\n"
                                    "[00:51:00] Ну смотрите: сдаём макет завтра\n"_s};
        const Cases<QString, QString, QString, QString> cases{
            // who is to have said what and when, and what is found
            {"word for word", u"Анна"_s, u"«Тексты точно принесу во вторник»"_s, u"[00:14:05]"_s, u"exact"_s},
            {"its line began long before", u"Анна"_s, u"не позже обеда"_s, u"[00:20:00]"_s, u"exact"_s},
            {"a minute before", u"Анна"_s, u"не позже обеда"_s, u"[00:13:06]"_s, u"exact"_s},
            {"more than that", u"Анна"_s, u"не позже обеда"_s, u"[00:13:04]"_s, u"elsewhere [00:14:05]"_s},
            {"a word or two differ", u"Илья"_s, u"Попробую на неделе, если освободится стенд"_s,
             u"[00:22:48]"_s, u"similar"_s},
            {"another form", u"Анна"_s, u"тексты точно принесут во вторник"_s, u"[00:14:05]"_s, u"similar"_s},
            {"at another moment", u"Ольга"_s, u"я им уже пообещала двадцать восьмое"_s, u"[00:33:02]"_s,
             u"elsewhere [00:38:40]"_s},
            {"never said", u"Илья"_s, u"Бюджет на стенд согласую сам"_s, u"[00:22:48]"_s, u"none"_s},
            {"two words, said", u"Анна"_s, u"позже обеда"_s, u"[00:14:05]"_s, u"exact"_s},
            {"two words, not said", u"Анна"_s, u"раньше обеда"_s, u"[00:14:05]"_s, {}},
            {"two words, elsewhere", u"Анна"_s, u"позже обеда"_s, u"[00:38:40]"_s, {}},
            {"no moment is named", u"Анна"_s, u"не позже обеда"_s, {}, u"exact"_s},
            {"said by somebody else", u"Тимур"_s, u"не позже обеда"_s, u"[00:14:05]"_s, u"exact (Анна)"_s},
            {"a name in another form", u"Анны и Тимура"_s, u"не позже обеда"_s, u"[00:14:05]"_s, u"exact"_s},
            {"said by nobody known", u"Тимур"_s, u"бюджет за мной"_s, u"[00:40:00]"_s, u"exact"_s},
            {"its first word was not said", u"Илья"_s, u"Я подготовлю отчёт к среде"_s, u"[00:50:05]"_s,
             u"similar"_s},
            {"somebody else has begun it", u"Илья"_s, u"давай подготовлю отчёт"_s, u"[00:50:05]"_s,
             u"exact"_s},
            {"both have said it", u"Илья"_s, u"отчёт к среде"_s, u"[00:50:05]"_s, u"exact"_s},
            {"two words accuse nobody", u"Илья"_s, u"ну давай"_s, u"[00:50:05]"_s, u"exact"_s},
            {"speech before a colon", u"Илья"_s, u"Ну смотрите, сдаём макет"_s, u"[00:51:00]"_s, u"exact"_s},
            {"over two lines",
             u"Илья"_s,
             u"если вдруг освободится стенд я им уже пообещала"_s,
             {},
             u"exact"_s},
            {"nothing is quoted", u"Анна"_s, u"«…»"_s, u"[00:14:05]"_s, {}},
        };
        for (const auto& [name, who, quote, at, told] : cases) {
            CASE(name);
            Commitment claim;
            claim.who = who;
            claim.quote = quote;
            claim.at = at;
            const QuoteFindings findings = QuoteFindings::of(transcript, {{.value = claim}});
            const QuoteFinding found = findings.byRow.value(0);
            const QStringList kinds{{}, u"exact"_s, u"similar"_s, u"elsewhere"_s, u"none"_s};
            QString text = kinds[found.kind];
            if (!found.stamp.isEmpty()) text += u' ' + found.stamp;
            if (!found.speaker.isEmpty()) text += u" (%1)"_s.arg(found.speaker);
            QCOMPARE(text, told);
            if (found.kind != QuoteFinding::Similar || who != "Илья"_L1) continue;
            QString pieces = found.lead();
            for (const words::Piece& piece : found.pieces)
                pieces += QStringList{u"%1"_s, u"[-%1-]"_s, u"[+%1+]"_s}[int(piece.kind)].arg(piece.text);
            QCOMPARE(pieces, u"Илья: ну может быть [-Попробую -][+попробую +]на [+этой +]неделе, если "
                             "[+вдруг +]освободится стенд"_s);
        }
        Commitment late, early;
        late.at = u"[00:51:01]"_s;
        early.at = u"[00:00:59]"_s;
        late.quote = early.quote = u"не позже обеда"_s;
        const QuoteFindings both = QuoteFindings::of(transcript, {{.value = late}, {.value = early}});
        QCOMPARE(both.outside, (QSet<QString>{late.at, early.at}));
        QCOMPARE(both.sum(u"ru"_s), u"Цитат: 2 · в другом месте 2"_s);
        QCOMPARE(QuoteFindings::of({}, {{.value = late}}).sum(u"en"_s),
                 u"No transcript — nothing to compare the quotations with"_s);
    }

    // "Somebody else said this" accuses: a doubt counts for the one who is named.
    void names()
    {
        const Cases<QString, QString, bool> cases{
            {"a case form", u"Анне"_s, u"Анна"_s, true},
            {"a part", u"Мария Лаптева"_s, u"Лаптева М."_s, true},
            {"in short", u"Саша"_s, u"Александр Иванов"_s, true},
            {"in short in a case form", u"Лене"_s, u"Елена"_s, true},
            {"in English", u"Bob"_s, u"Robert Miles"_s, true},
            {"an initial", u"А. Петров"_s, u"Анна"_s, true},
            {"one of several", u"Илья и Тимур"_s, u"Тимур"_s, true},
            {"in another script", u"Anna"_s, u"Ольга"_s, true},
            {"a number", u"Анна"_s, u"Спикер 1"_s, true},
            {"no name", u"Анна"_s, u"Гость"_s, true},
            {"nobody", {}, u"Анна"_s, true},
            {"everybody", u"Мы"_s, u"Анна"_s, true},
            {"in short, another one", u"Тёма"_s, u"Артём"_s, true},
            {"another one", u"Илья"_s, u"Анна"_s, false},
            {"another one of many names", u"Илья Петров"_s, u"Анна Сергеевна Орлова"_s, false},
            {"another one in English", u"Bob"_s, u"Alice"_s, false},
        };
        words::Keys keys;
        for (const auto& [name, who, speaker, same] : cases) {
            CASE(name);
            QCOMPARE(personNames::mayBeSame(who, speaker, keys), same);
        }
    }
};

MURMELI_TEST(QuoteTest)
#include "QuoteTest.moc"
