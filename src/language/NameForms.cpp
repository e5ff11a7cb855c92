#include "NameForms.h"

#include "PersonNames.h"

#include <QSet>

#include <algorithm>
#include <array>
#include <initializer_list>

using namespace Qt::StringLiterals;

namespace murmeli::nameForms {

namespace {

constexpr QStringView vowels = u"аеиоуыэюя";
constexpr QStringView hushing = u"жшщчц";
constexpr QStringView withI = u"гкхжшщч"; // и follows them, never ы

// Names, or forms of names, that are everyday words.
const QSet<QString>& wordsToo()
{
    static const QSet<QString> set = [] {
        const QStringList list =
            u"вера веры вере веру верой надежда надежды надежде надежду надеждой любовь любви любовью роман "
            "романа роману романом романе романы лев слава славы славе славу славой роза розы розе розу "
            "розой "
            "лилия лилии лилию майя майю марта марте марту марки марку марка марке маркой мир мира миру "
            "миром "
            "мире света свете свету светом светой свет мила милы милу милой лада лады нина ник рома рому "
            "макс паша паши паше пашу поля поле полю полей полем соня лана ира тома томе тому томом том "
            "стеши дима жанр гера гена рад рада рады раде раду радой злата нота лука луки луке луку лукой "
            "тим "
            "тима ян яна арт арте роб иней май мая маю маем мае ника нике нику никой вова толя толи лера "
            "ната "
            "заря зари заре зарю мороз мороза морозу морозом морозе волк волка мельник кузнец кузнеца заяц "
            "ворон ворона вороны голова головы голове голову головой борода белый белого белому белым белом "
            "черный черного черному черным черном большой новый нового новому новым новом новых ко ли ан ким "
            "кима ким но на не за до по так да нет "
            "will bill mark rob sue drew grace hope faith may june april rose art jack nick dick pat bob "
            "frank grant miles max chance chase dean guy drake pierce rich ray sky summer joy ivy ruby olive "
            "brown black white green young long short king best hand day hill wood woods stone field park "
            "banks bush cook baker smith miller mason carter fisher hunter marks rose wells price page bell "
            "ford lane law little love major may moon small swift waters rice post power read reed sharp "
            "so do an to in on it is he we no go me my by be as at or of if us up li ma yu he"_s.split(u' ');
        return QSet<QString>{list.begin(), list.end()};
    }();
    return set;
}

bool isCyrillic(QStringView word)
{
    return std::ranges::any_of(word, [](QChar c) { return c.script() == QChar::Script_Cyrillic; });
}

/// Collects forms of one word.
struct Forms {
    explicit Forms(QStringView of) : word(of) { list.append(of.toString()); }

    void add(const QString& stem, std::initializer_list<QStringView> endings)
    {
        for (const QStringView ending : endings)
            list.append(stem + ending.toString());
    }
    /// The word without its last letters.
    [[nodiscard]] QString cut(qsizetype letters) const { return word.chopped(letters).toString(); }
    [[nodiscard]] QChar fromEnd(qsizetype index) const
    {
        return index < word.size() ? word[word.size() - 1 - index] : QChar{};
    }

    QStringView word;
    QStringList list;
};

/// Nouns as "стол", whose nominative is their stem.
void declineHard(Forms& forms, const QString& stem)
{
    forms.add(stem, {u"а", u"у", u"ом", u"е"});
    if (!stem.isEmpty() && hushing.contains(stem.back())) forms.add(stem, {u"ем"});
}

/// Nouns as "конь", "музей": \param stem without the last letter.
void declineSoft(Forms& forms, const QString& stem) { forms.add(stem, {u"я", u"ю", u"ем", u"е"}); }

void declineConsonant(Forms& forms)
{
    const QString word = forms.word.toString();
    declineHard(forms, word);
    const bool possessive =
        word.endsWith(u"ов") || word.endsWith(u"ев") || word.endsWith(u"ин") || word.endsWith(u"ын");
    if (possessive) forms.add(word, {u"ым", u"ы", u"ых", u"ыми"}); // family names, and families
    const bool plural = word.endsWith(u"ич") || word.endsWith(u"ян") || word.endsWith(u"ук") ||
                        word.endsWith(u"юк") || word.endsWith(u"ман") || word.endsWith(u"берг");
    if (plural) {
        forms.add(word, {withI.contains(word.back()) ? u"и" : u"ы", u"ей", u"ов", u"ам", u"ами", u"ах"});
    }

    // A vowel that goes: Павел, Павла; Заяц, Зайца; Лев, Льва.
    if (word.size() < 3) return;
    const QChar vowel = forms.fromEnd(1);
    const QString end = word.last(1);
    const QString before = forms.cut(2);
    if (word == u"лев") declineHard(forms, u"льв"_s);
    if (vowel != u'е' && vowel != u'о' && vowel != u'я') return;
    const QChar neighbour = before.isEmpty() ? QChar{} : before.back();
    if (end == u"ц" && vowel != u'о') {
        if (vowels.contains(neighbour)) {
            declineHard(forms, before + u'й' + end);
        } else {
            declineHard(forms, before + end);
            if (neighbour == u'л') declineHard(forms, before + u'ь' + end); // Малец, Мальца
        }
    } else if (vowel != u'я' && (end == u"к" || end == u"л" || end == u"н" || end == u"р" || end == u"т")) {
        declineHard(forms, before + end);
        if (end == u"к" && vowel == u'е') declineHard(forms, before + u'ь' + end); // Королек, Королька
    }
}

void declineShortI(Forms& forms)
{
    const QString stem = forms.cut(1);
    const QChar vowel = forms.fromEnd(1);
    declineSoft(forms, stem);
    if (vowel == u'и') {
        forms.add(stem, {u"и"}); // о Василии
        forms.add(forms.cut(2), {u"ого", u"ому", u"им", u"ом", u"его", u"ему", u"ем", u"ие", u"их", u"ими"});
        forms.add(forms.cut(2) + u'ь', {u"я", u"ю", u"ем", u"е", u"его", u"ему", u"им", u"ем"});
    } else if (vowel == u'ы' || vowel == u'о') {
        forms.add(forms.cut(2), {u"ого", u"ому", u"ым", u"им", u"ом", u"ые", u"ых", u"ыми"});
    } else if (vowel == u'е') {
        declineSoft(forms, forms.cut(2) + u'ь'); // Воробей, Воробья
    }
}

void declineSoftSign(Forms& forms)
{
    const QString stem = forms.cut(1);
    declineSoft(forms, stem);
    forms.add(stem, {u"и", u"ью"});                                                          // women
    if (forms.fromEnd(2) == u'о') forms.add(forms.cut(3) + forms.fromEnd(1), {u"и", u"ью"}); // Любовь, Любви
    if (forms.fromEnd(2) == u'е' || forms.fromEnd(2) == u'о') {
        declineSoft(forms, forms.cut(3) + forms.fromEnd(1)); // Кремень, Кремня
    }
}

void declineA(Forms& forms)
{
    const QString stem = forms.cut(1);
    const QChar before = forms.fromEnd(1);
    forms.add(stem, {withI.contains(before) ? u"и" : u"ы", u"е", u"у", u"ой", u"ою"});
    if (hushing.contains(before)) forms.add(stem, {u"ей", u"ею"});
    if (vowels.contains(before)) forms.add(stem, {u"и"}); // Гулиа, Луа: as they stand, or so
}

void declineYa(Forms& forms)
{
    const QString stem = forms.cut(1);
    const QChar before = forms.fromEnd(1);
    forms.add(stem, {u"и", u"е", u"ю", u"ей", u"ею"});
    if (before == u'а') forms.add(forms.cut(2), {u"ой", u"ую", u"ою", u"ей"}); // Горская
    if (before == u'я') forms.add(forms.cut(2), {u"ей", u"юю", u"ею"});
}

void declineOther(Forms& forms, QChar last)
{
    const QString stem = forms.cut(1);
    if (last == u'о') {
        forms.add(stem, {u"а", u"у", u"ом", u"е", u"ы", u"и", u"ой"}); // as many say: у Данилы, с Шевченкой
    } else if (forms.word.endsWith(u"ые") || forms.word.endsWith(u"ие")) {
        forms.add(stem, {u"х", u"м", u"ми"});
    } else if (last == u'ы' || last == u'и') { // Ивановы
        forms.add(stem, {u"ых", u"ым", u"ыми", u"ов", u"ам", u"ами", u"ах"});
    }
}

QStringList russian(const QString& word)
{
    Forms forms{word};
    const QChar last = word.back();
    if (word.size() < 2) return forms.list;
    if (last == u'а') {
        declineA(forms);
    } else if (last == u'я') {
        declineYa(forms);
    } else if (last == u'й') {
        declineShortI(forms);
    } else if (last == u'ь') {
        declineSoftSign(forms);
    } else if (vowels.contains(last)) {
        declineOther(forms, last);
    } else {
        declineConsonant(forms);
    }
    return forms.list;
}

QStringList english(const QString& word)
{
    Forms forms{word};
    // The apostrophe of "Anna's" ends the word; families are "the Smiths", "the Joneses".
    forms.add(word, {u"s"});
    if (word.endsWith(u's') || word.endsWith(u'x') || word.endsWith(u'z') || word.endsWith(u"ch")) {
        forms.add(word, {u"es"});
    }
    return forms.list;
}

QStringList unique(QStringList list)
{
    list.removeDuplicates();
    return list;
}

} // namespace

QString plain(QStringView word)
{
    QString result;
    for (const QChar c : word.toString().normalized(QString::NormalizationForm_C).toLower()) {
        if (c.category() == QChar::Mark_NonSpacing) continue;
        switch (c.unicode()) {
        case u'ё':
            result += u'е';
            continue;
        case u'ł':
            result += u'l';
            continue;
        case u'ø':
            result += u'o';
            continue;
        case u'đ':
            result += u'd';
            continue;
        case u'ı':
            result += u'i';
            continue;
        case u'ß':
            result += u"ss";
            continue;
        case u'æ':
            result += u"ae";
            continue;
        default:
            break;
        }
        const bool marked = c.script() == QChar::Script_Latin && c.decompositionTag() == QChar::Canonical;
        result += marked ? QString{c}.normalized(QString::NormalizationForm_D).front() : c;
    }
    return result;
}

QStringList of(QStringView word)
{
    const QString name = plain(word);
    if (name.isEmpty()) return {};
    return unique(isCyrillic(name) ? russian(name) : english(name));
}

QStringList relatedTo(QStringView word)
{
    const QString name = plain(word);
    if (name.isEmpty()) return {};
    QStringList forms;
    // They begin too many sentences that are about something else.
    static const QSet<QString> commonBeginnings{u"тема"_s, u"поля"_s, u"света"_s, u"лана"_s, u"ник"_s,
                                                u"ден"_s,  u"will"_s, u"bill"_s,  u"drew"_s};
    for (const QString& other : QStringList{name} + personNames::othersFor(name)) {
        if (other != name && commonBeginnings.contains(other)) continue;
        forms += of(other);
        const QString stem = other.chopped(1);
        if (!isCyrillic(other) || stem.size() < 2) continue;
        const bool isA = other.endsWith(u'а');
        if (!isA && !(other.endsWith(u'я') && !other.endsWith(u"ия"))) continue;
        forms += isA ? stem : stem + u'ь'; // Саш, Оль: when they are called
        for (const QStringView ending :
             {u"", u"а", u"о", u"ы", u"у", u"ой", u"ого", u"ому", u"ым", u"ом", u"ых", u"ыми"})
            forms += stem + u"ин"_s + ending.toString(); // Сашин
    }
    return unique(forms);
}

bool isAlsoAWord(const QString& form) { return wordsToo().contains(form); }

} // namespace murmeli::nameForms
