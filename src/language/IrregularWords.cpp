#include "IrregularWords.h"

#include <QHash>

#include <array>

using namespace Qt::StringLiterals;

namespace murmeli::irregular {

namespace {

// Each row's first word stands for the others. It is one whose stem the regular forms have too, so that they
// need not be named.
constexpr std::array rows{
    u"день дня дню днем дне дни дней дням днями днях",
    u"человек люди людей людям людьми людях",
    u"деньги денег деньгам деньгами деньгах",
    u"письмо писем",
    u"год лет",
    u"друг друзья друзей друзьям друзьями друзьях",
    u"ребенок дети детей детям детьми детях",
    u"павел павла павлу павлом павле",
    u"лев льва льву львом льве",
    u"любовь любви любовью",
    u"сын сыновья сыновей сыновьям сыновьями сыновьях",
    u"брат братья братьев братьям братьями братьях",
    u"имя имени именем имена имен именам именами именах",
    u"время времени временем времена времен временам временами временах",
    u"готовый готов готова готово готовы",
    u"нужный нужен нужна нужно нужны",
    u"должный должен должна должно должны",
    u"важный важен важна важно важны",
    u"возможный возможен возможна возможно возможны",
    u"сложный сложен сложна сложно сложны",
    u"согласный согласен согласна согласно согласны",
    u"полный полон полна полно полны",
    u"идея идеи идее идею идей идеей идеям идеями идеях",
    // whose end looks like an ending
    u"кредита кредит",
    u"лимита лимит",
    u"аудита аудит",
    u"визита визит",
    u"дефицита дефицит",
    u"транзита транзит",
    u"режима режим",
    u"псевдонима псевдоним",
    u"опыта опыт",
    u"сбыта сбыт",
    u"быта быт",
    u"обмену обмен обмена обмены",
    u"программа программ",
    u"диаграмма диаграмм",
    u"телеграмма телеграмм",
    u"реклама реклам",
    u"проблема проблем",
    u"система систем",
    u"схема схем",
    u"тема тем",
    u"экзамену экзамен экзамена экзамены",
    u"домену домен домена домены",
    // as a verb's form they would be found under that
    u"встреча встречу встречи",
    u"прибыль прибыли",
    u"почта почту",
    u"обед обеду",
    u"запад западу",
    u"спад спаду",
    u"простой",
    u"покой",
    u"бойца боец",
    u"локтя локоть",
    u"займа заем",
    u"шва шов шву швом шве швы швов швам швами швах",
    u"граждане гражданин гражданина гражданину гражданином гражданине граждан",
    u"дочь дочери дочерью дочерей дочерям дочерьми дочерях",
    u"рожь ржи рожью",
    u"семени семя семенем семена семян семенам семенами семенах",
    u"племени племя племенем племена племен племенам племенами племенах",
    u"знамени знамя знаменем знамена знамен знаменам знаменами знаменах",
    u"пламени пламя пламенем",
    u"бремени бремя бременем",
    u"яйцо яиц",
    u"лошадь лошадьми",
    u"свадьба свадеб",
    u"спальня спален",
    u"бревно бревен",
    u"перилам перила перил",
    u"граблями грабли грабель граблей граблям граблях",
    u"больной болен",
    u"темный темен",
    u"честный честен",
    u"спокойный спокоен",
    u"полезный полезен",
    u"виновный виновен",
    u"умный умен",
    u"острый острой",
    u"child children",
    u"person people",
    u"man men",
    u"woman women",
    u"send sends sent sending",
    u"do does did done doing",
    u"make makes made making",
    u"write writes wrote written writing",
    u"buy buys bought buying",
    u"tell tells told telling",
    u"find finds found finding",
    u"meet meets met meeting meetings",
    u"pay pays paid paying",
    u"go goes went gone going",
    u"come comes came coming",
    u"become becomes became becoming",
    u"take takes took taken taking",
    u"give gives gave given giving",
    u"get gets got gotten getting",
    u"forget forgets forgot forgotten forgetting",
    u"say says said saying",
    u"know knows knew known knowing",
    u"think thinks thought thinking",
    u"see sees saw seen seeing",
    u"bring brings brought bringing",
    u"begin begins began begun beginning",
    u"keep keeps kept keeping",
    u"feel feels felt feeling",
    u"mean means meant meaning",
    u"hold holds held holding",
    u"hear hears heard hearing",
    u"lose loses lost losing",
    u"win wins won winning",
    u"build builds built building",
    u"choose chooses chose chosen choosing",
    u"speak speaks spoke spoken speaking",
    u"sell sells sold selling",
    u"spend spends spent spending",
    u"lend lends lent lending",
    u"run runs ran running",
    u"grow grows grew grown growing",
    u"draw draws drew drawn drawing",
    u"throw throws threw thrown throwing",
    u"show shows showed shown showing",
    u"teach teaches taught teaching",
    u"catch catches caught catching",
    u"seek seeks sought seeking",
    u"leave leaves left leaving",
    u"break breaks broke broken breaking",
    u"drive drives drove driven driving",
    u"rise rises rose risen rising",
    u"fall falls fell fallen falling",
    u"stand stands stood standing",
    u"understand understands understood understanding",
    u"sit sits sat sitting",
    u"wear wears wore worn wearing",
    u"freeze freezes froze frozen freezing",
    u"steal steals stole stolen stealing",
    u"fight fights fought fighting",
};

// Verbs in four forms: to do, I do, you do, he did. The others follow. They have the prefixes below too.
constexpr std::array verbs{
    // another stem in the present
    u"идти иду идешь шел",
    u"йти йду йдешь шел",
    u"прийти приду придешь пришел",
    u"ехать еду едешь ехал",
    u"быть буду будешь был",
    u"беречь берегу бережешь берег",
    u"стричь стригу стрижешь стриг",
    u"жечь жгу жжешь жег",
    u"спасти спасу спасешь спас",
    u"обрести обрету обретешь обрел",
    u"красть краду крадешь крал",
    u"бежать бегу бежишь бежал",
    u"ошибить ошибу ошибешь ошиб",
    u"шить шью шьешь шил",
    u"умереть умру умрешь умер",
    u"сохнуть сохну сохнешь сох",
    u"привыкнуть привыкну привыкнешь привык",
    u"отдохнуть отдохну отдохнешь отдохнул",
    u"танцевать танцую танцуешь танцевал",
    u"защитить защищу защитишь защитил",
    u"крыть крою кроешь крыл",
    u"мыть мою моешь мыл",
    u"жить живу живешь жил",
    u"плыть плыву плывешь плыл",
    u"бить бью бьешь бил",
    u"вить вью вьешь вил",
    u"лить лью льешь лил",
    u"пить пью пьешь пил",
    u"звать зову зовешь звал",
    u"брать беру берешь брал",
    u"гнать гоню гонишь гнал",
    u"слать шлю шлешь слал",
    u"ждать жду ждешь ждал",
    u"рвать рву рвешь рвал",
    u"дать дам дашь дал",
    u"стать стану станешь стал",
    u"встать встану встанешь встал",
    u"чать чну чнешь чал",
    u"жать жму жмешь жал",
    u"взять возьму возьмешь взял",
    u"нять ниму нимешь нял",
    u"нять йму ймешь нял",
    u"понять пойму поймешь понял",
    u"принять приму примешь принял",
    u"хотеть хочу хочешь хотел",
    u"мочь могу можешь мог",
    u"лечь лягу ляжешь лег",
    u"влечь влеку влечешь влек",
    u"вести веду ведешь вел",
    u"нести несу несешь нес",
    u"везти везу везешь вез",
    u"расти расту растешь рос",
    u"честь чту чтешь чел",
    u"пасть паду падешь пал",
    u"давать даю даешь давал",
    u"ставать стаю стаешь ставал",
    u"вставать встаю встаешь вставал",
    u"вернуть верну вернешь вернул",
    u"двинуть двину двинешь двинул",
    u"тянуть тяну тянешь тянул",
    u"снуть сну снешь снул",
    u"кинуть кину кинешь кинул",
    u"стигнуть стигну стигнешь стиг",
    u"никнуть никну никнешь ник",
    u"рискнуть рискну рискнешь рискнул",
    u"толкнуть толкну толкнешь толкнул",
    u"черкнуть черкну черкнешь черкнул",
    u"глянуть гляну глянешь глянул",
    u"тронуть трону тронешь тронул",
    u"обмануть обману обманешь обманул",
    u"упомянуть упомяну упомянешь упомянул",
    u"бороться борюсь борешься боролся",
    // another consonant
    u"писать пишу пишешь писал",
    u"казать кажу кажешь казал",
    u"вязать вяжу вяжешь вязал",
    u"обязать обяжу обяжешь обязал",
    u"резать режу режешь резал",
    u"мазать мажу мажешь мазал",
    u"искать ищу ищешь искал",
    u"прятать прячу прячешь прятал",
    u"видеть вижу видишь видел",
    // the past keeps a vowel that the present has not
    u"держать держу держишь держал",
    u"слышать слышу слышишь слышал",
    u"молчать молчу молчишь молчал",
    u"стоять стою стоишь стоял",
    u"бояться боюсь боишься боялся",
    u"лежать лежу лежишь лежал",
    u"звучать звучу звучишь звучал",
    u"кричать кричу кричишь кричал",
    u"смотреть смотрю смотришь смотрел",
    u"сидеть сижу сидишь сидел",
    u"глядеть гляжу глядишь глядел",
    u"терпеть терплю терпишь терпел",
    u"зависеть завишу зависишь зависел",
    u"лететь лечу летишь летел",
    u"гореть горю горишь горел",
    u"велеть велю велишь велел",
    u"обидеть обижу обидишь обидел",
    u"иметь имею имеешь имел",
    u"уметь умею умеешь умел",
    u"спеть спею спеешь спел",
    u"сметь смею смеешь смел",
    u"болеть болею болеешь болел",
    u"владеть владею владеешь владел",
    u"жалеть жалею жалеешь жалел",
    u"греть грею греешь грел",
    u"надеяться надеюсь надеешься надеялся",
    u"сеять сею сеешь сеял",
    u"теять тею теешь теял",
    // only the first person has another consonant
    u"водить вожу водишь водил",
    u"просить прошу просишь просил",
    u"носить ношу носишь носил",
    u"возить вожу возишь возил",
    u"ходить хожу ходишь ходил",
    u"судить сужу судишь судил",
    u"платить плачу платишь платил",
    u"тратить трачу тратишь тратил",
    u"ветить вечу ветишь ветил",
    u"встретить встречу встретишь встретил",
    u"метить мечу метишь метил",
    u"местить мещу местишь местил",
    u"вместить вмещу вместишь вместил",
    u"пустить пущу пустишь пустил",
    u"чистить чищу чистишь чистил",
    u"кратить кращу кратишь кратил",
    u"вратить вращу вратишь вратил",
    u"братить бращу братишь братил",
    u"гласить глашу гласишь гласил",
    u"высить вышу высишь высил",
    u"низить нижу низишь низил",
    u"грузить гружу грузишь грузил",
    u"следить слежу следишь следил",
    u"твердить твержу твердишь твердил",
    u"упредить упрежу упредишь упредил",
    u"будить бужу будишь будил",
    u"родить рожу родишь родил",
    u"городить горожу городишь городил",
    u"садить сажу садишь садил",
    u"ездить езжу ездишь ездил",
    u"градить гражу градишь градил",
    u"трудить тружу трудишь трудил",
    u"сетить сещу сетишь сетил",
    u"катить качу катишь катил",
    u"хватить хвачу хватишь хватил",
    u"крутить кручу крутишь крутил",
    u"светить свечу светишь светил",
    u"святить свящу святишь святил",
    u"растить ращу растишь растил",
    u"разить ражу разишь разил",
    u"близить ближу близишь близил",
    u"морозить морожу морозишь морозил",
    u"претить прещу претишь претил",
    u"красить крашу красишь красил",
    u"весить вешу весишь весил",
    u"бросить брошу бросишь бросил",
    u"месить мешу месишь месил",
    u"щадить щажу щадишь щадил",
    u"ладить лажу ладишь ладил",
    u"купить куплю купишь купил",
    u"любить люблю любишь любил",
    u"строить строю строишь строил",
    u"своить свою своишь своил",
};

constexpr std::array prefixes{u"пере", u"предо", u"пред", u"подо", u"надо", u"разо", u"изо", u"обо", u"ото",
                              u"взо",  u"при",   u"про",  u"пре",  u"под",  u"над",  u"раз", u"рас", u"воз",
                              u"вос",  u"вы",    u"до",   u"за",   u"из",   u"ис",   u"на",  u"не",  u"об",
                              u"от",   u"по",    u"со",   u"во",   u"вз",   u"вс",   u"съ",  u"объ", u"отъ",
                              u"подъ", u"разъ",  u"въ",   u"о",    u"с",    u"у",    u"в"};

QString withoutReflexive(const QString& word)
{
    return word.endsWith(u"ся"_s) || word.endsWith(u"сь"_s) ? word.chopped(2) : word;
}

bool isHusher(QChar c) { return u"жшчщ"_s.contains(c); }

/// All forms of a verb that is given in four.
QStringList formsOf(const QStringList& verb)
{
    const QString infinitive = withoutReflexive(verb[0]), first = withoutReflexive(verb[1]);
    const QString second = withoutReflexive(verb[2]), past = withoutReflexive(verb[3]);
    const QString present = second.chopped(second.endsWith(u'ь') ? 2 : 1); // держи, пише
    QStringList forms{infinitive, first, second, past};
    if (infinitive == u"дать"_s) {
        forms += {u"даст"_s, u"дадим"_s, u"дадите"_s, u"дадут"_s, u"дай"_s, u"дайте"_s};
    } else if (infinitive == u"хотеть"_s) {
        forms += {u"хочет"_s, u"хотим"_s, u"хотите"_s, u"хотят"_s};
    } else {
        const QString stem = present.chopped(1);
        const bool soft = present.endsWith(u'и');
        const QString they = soft ? stem + (isHusher(stem.back()) ? u"ат"_s : u"ят"_s)
                                  : first + u'т'; // пишу, пишут; знаю, знают
        forms += {present + u'т', present + u'м', present + u"те"_s, they};
        const bool open = u"аеиоуя"_s.contains(stem.back());
        for (const QString& order :
             open ? QStringList{stem + u'й'} : QStringList{stem + u'и', stem + u'ь', first.chopped(1) + u'и'})
            forms += {order, order + u"те"_s};
    }
    const QString did = past.endsWith(u'л') ? past.chopped(1) : past;
    return forms + QStringList{did + u"ла"_s, did + u"ло"_s, did + u"ли"_s};
}

struct Table {
    QHash<QString, QString> words;
    QHash<QString, QString> verbs; ///< what their infinitive is
};

Table read()
{
    Table table;
    for (const char16_t* row : rows) {
        const QStringList words = QString::fromUtf16(row).split(u' ');
        for (const QString& word : words) {
            if (!table.words.contains(word)) table.words.insert(word, words.first());
        }
    }
    for (const char16_t* row : verbs) {
        const QStringList verb = QString::fromUtf16(row).split(u' ');
        for (const QString& form : formsOf(verb)) {
            if (!table.verbs.contains(form)) table.verbs.insert(form, withoutReflexive(verb.first()));
        }
    }
    for (const QString& form : {u"стоить"_s, u"стоил"_s, u"стоила"_s, u"стоило"_s, u"стоили"_s})
        table.verbs.insert(form, u"стоять"_s); // they share the present
    // Words of their own that look like a verb's.
    for (const QString& word : {u"мой"_s, u"моем"_s, u"мою"_s, u"свою"_s, u"свой"_s, u"стой"_s, u"чела"_s,
                                u"чело"_s, u"сну"_s, u"жму"_s, u"рожу"_s, u"пала"_s, u"ник"_s, u"вон"_s})
        table.verbs.remove(word);
    return table;
}

// планирует, планировал; but новую is another's ending.
std::optional<QString> infinitiveOfOva(const QString& word)
{
    constexpr qsizetype shortest = 3; // letters before the ending
    static const std::array endings{u"уешь"_s,  u"ует"_s,   u"уем"_s,   u"уете"_s, u"уют"_s,
                                    u"уй"_s,    u"уйте"_s,  u"овать"_s, u"овал"_s, u"овала"_s,
                                    u"овало"_s, u"овали"_s, u"ирую"_s,  u"изую"_s, u"ендую"_s,
                                    u"льзую"_s, u"ебую"_s,  u"асую"_s,  u"осую"_s, u"исую"_s,
                                    u"ствую"_s, u"робую"_s, u"едую"_s,  u"етую"_s, u"оргую"_s};
    for (const QString& ending : endings) {
        if (!word.endsWith(ending)) continue;
        const bool told = ending.endsWith(u"ую"_s); // by the letters before it
        const QString base = word.chopped(told ? 2 : ending.size());
        if (base.size() >= shortest) return base + u"овать"_s;
    }
    return std::nullopt;
}

} // namespace

std::optional<QString> dictionaryForm(const QString& folded)
{
    static const Table table = read();
    const auto found = table.words.constFind(folded);
    if (found != table.words.cend()) return *found;
    QString word = withoutReflexive(folded);
    if (word.endsWith(u"ьте"_s)) word.chop(2); // оставьте is told as оставь
    constexpr qsizetype shortestWord = 6;
    if (word.size() >= shortestWord && word.endsWith(u"ат"_s) && isHusher(word[word.size() - 3]))
        word = word.chopped(2) + u"ит"_s; // увеличат as увеличит
    if (const auto verb = table.verbs.constFind(word); verb != table.verbs.cend()) return *verb;
    constexpr qsizetype shortest = 2; // letters behind a prefix
    for (const QStringView prefix : prefixes) {
        if (!word.startsWith(prefix) || word.size() - prefix.size() < shortest) continue;
        const auto verb = table.verbs.constFind(word.sliced(prefix.size()));
        if (verb == table.verbs.cend()) continue;
        // разберу, разобрал
        const bool filled = prefix.size() > 2 && prefix.endsWith(u'о') && prefix != u"про";
        return (filled ? prefix.chopped(1) : prefix).toString() + (*verb == u"идти"_s ? u"йти"_s : *verb);
    }
    if (const auto infinitive = infinitiveOfOva(word)) return infinitive;
    return word != folded ? std::optional{word} : std::nullopt;
}

} // namespace murmeli::irregular
