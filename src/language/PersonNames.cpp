#include "PersonNames.h"

#include <QSet>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace murmeli::personNames {

namespace {

// Names that stand for the first of their row.
constexpr std::array shortNames{u"александр саша шура саня александра",
                                u"алексей леша алеша",
                                u"анастасия настя",
                                u"анатолий толя",
                                u"андрей андрюша",
                                u"анна аня анечка нюра",
                                u"антон тоша",
                                u"антонина тоня",
                                u"аркадий аркаша",
                                u"арсений сеня арсик",
                                u"артем тема артемий",
                                u"борис боря",
                                u"вадим вадик",
                                u"валентин валя валентина",
                                u"валерий валера валерия лера",
                                u"василий вася",
                                u"вероника ника",
                                u"виктор витя",
                                u"виктория вика",
                                u"виталий виталик",
                                u"владимир вова володя",
                                u"владислав влад слава",
                                u"вячеслав слава",
                                u"галина галя",
                                u"геннадий гена",
                                u"георгий гоша жора",
                                u"григорий гриша",
                                u"даниил данила даня данил",
                                u"дарья даша",
                                u"денис дениска ден",
                                u"дмитрий дима митя",
                                u"евгений женя евгения",
                                u"егор егорка гоша",
                                u"екатерина катя",
                                u"елена лена алена",
                                u"елизавета лиза",
                                u"иван ваня",
                                u"игорь гарик",
                                u"илья илюша",
                                u"ирина ира",
                                u"константин костя",
                                u"ксения ксюша",
                                u"лариса лара",
                                u"лев лева",
                                u"леонид леня",
                                u"лидия лида",
                                u"любовь люба",
                                u"людмила люда мила",
                                u"максим макс",
                                u"маргарита рита",
                                u"мария маша маруся",
                                u"михаил миша",
                                u"надежда надя",
                                u"наталья наталия наташа ната",
                                u"никита ник",
                                u"николай коля",
                                u"оксана ксюша",
                                u"олег олежа",
                                u"ольга оля",
                                u"павел паша",
                                u"петр петя",
                                u"полина поля",
                                u"роман рома",
                                u"светлана света лана",
                                u"семен сема",
                                u"сергей сережа серега",
                                u"софия софья соня",
                                u"станислав стас слава",
                                u"степан степа",
                                u"тамара тома",
                                u"татьяна таня",
                                u"тимофей тима",
                                u"федор федя",
                                u"эдуард эдик",
                                u"юлия юля",
                                u"юрий юра",
                                u"яков яша",
                                u"ярослав слава ярик",
                                u"alexander alex sasha alexandra",
                                u"andrew andy drew",
                                u"anthony tony",
                                u"benjamin ben",
                                u"catherine katherine kate cathy katie",
                                u"charles charlie chuck",
                                u"christopher chris christina",
                                u"daniel dan danny",
                                u"david dave",
                                u"edward ed eddie",
                                u"elizabeth liz beth",
                                u"gregory greg",
                                u"james jim jimmy",
                                u"jennifer jen jenny",
                                u"jessica jess",
                                u"john jack johnny",
                                u"jonathan jon john",
                                u"joseph joe",
                                u"joshua josh",
                                u"kenneth ken kenny",
                                u"lawrence larry",
                                u"margaret maggie meg",
                                u"matthew matt",
                                u"michael mike mick",
                                u"nicholas nick",
                                u"patricia pat patrick",
                                u"philip phillip phil",
                                u"peter pete",
                                u"rebecca becky",
                                u"richard rick dick",
                                u"robert rob bob bobby",
                                u"samuel sam samantha",
                                u"stephen steve steven",
                                u"susan sue suzanne",
                                u"theodore ted theo",
                                u"thomas tom tommy",
                                u"timothy tim",
                                u"victoria vicky",
                                u"william will bill billy"};

constexpr std::array noNames{u"speaker",     u"спикер",       u"участник",   u"участница",   u"participant",
                             u"неизвестный", u"unknown",      u"собеседник", u"гость",       u"guest",
                             u"я",           u"me",           u"host",       u"все",         u"команда",
                             u"team",        u"мы",           u"we",         u"менеджер",    u"manager",
                             u"клиент",      u"client",       u"заказчик",   u"customer",    u"разработка",
                             u"development", u"отдел",        u"department", u"разработчик", u"developer",
                             u"дизайнер",    u"designer",     u"аналитик",   u"analyst",     u"маркетинг",
                             u"marketing",   u"руководитель", u"директор",   u"director",    u"бухгалтер"};

/// For each name, the rows in which it stands.
QHash<QByteArray, QSet<int>> shortRows(words::Keys& keys)
{
    QHash<QByteArray, QSet<int>> rows;
    for (int i = 0; i < int(shortNames.size()); ++i) {
        const QStringList names = QString::fromUtf16(shortNames.at(size_t(i))).split(u' ');
        for (const QString& name : names)
            rows[keys.of(name)].insert(i);
    }
    return rows;
}

bool isCyrillic(QStringView word)
{
    return std::ranges::any_of(word, [](QChar c) { return c.script() == QChar::Script_Cyrillic; });
}

} // namespace

bool mayBeSame(QStringView left, QStringView right, words::Keys& keys)
{
    const QList<words::Span> leftWords = words::split(left);
    const QList<words::Span> rightWords = words::split(right);
    if (leftWords.isEmpty() || rightWords.isEmpty() || isCyrillic(left) != isCyrillic(right)) return true;
    const auto isNone = [](QStringView name, const QList<words::Span>& words) {
        return std::ranges::any_of(words, [&](const words::Span& word) {
            const QString folded = words::folded(word.in(name));
            return folded.front().isDigit() || isNobodysName(folded);
        });
    };
    if (isNone(left, leftWords) || isNone(right, rightWords)) return true;
    const QHash<QByteArray, QSet<int>> rows = shortRows(keys);
    for (const words::Span& leftWord : leftWords) {
        const QByteArray leftKey = keys.of(leftWord.in(left));
        for (const words::Span& rightWord : rightWords) {
            const QByteArray& rightKey = keys.of(rightWord.in(right));
            if (leftKey == rightKey || rows.value(leftKey).intersects(rows.value(rightKey))) return true;
            // an initial
            const QString one = words::folded(leftWord.in(left));
            const QString other = words::folded(rightWord.in(right));
            if ((one.size() == 1 || other.size() == 1) && one.front() == other.front()) return true;
        }
    }
    return false;
}

QStringList othersFor(const QString& name)
{
    QStringList others;
    for (const char16_t* row : shortNames) {
        const QStringList names = QString::fromUtf16(row).split(u' ');
        if (names.contains(name)) others += names;
    }
    others.removeDuplicates();
    others.removeAll(name);
    return others;
}

bool isNobodysName(QStringView word)
{
    return std::ranges::any_of(noNames, [&](const char16_t* none) { return word == QStringView{none}; });
}

} // namespace murmeli::personNames
