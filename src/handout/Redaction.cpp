#include "Redaction.h"

#include "language/NameForms.h"
#include "language/PersonNames.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qsizetype shortName = 2;      // letters of one that is a word of many languages
constexpr qsizetype leastBeginning = 4; // letters by which a slip of a name is recognised

bool isCapital(QStringView word) { return !word.isEmpty() && word.front().isUpper(); }

bool hasNoSpaces(QStringView word)
{
    return std::ranges::any_of(word, [](QChar c) {
        switch (c.script()) {
        case QChar::Script_Han:
        case QChar::Script_Hiragana:
        case QChar::Script_Katakana:
        case QChar::Script_Hangul:
        case QChar::Script_Thai:
        case QChar::Script_Lao:
        case QChar::Script_Khmer:
        case QChar::Script_Myanmar:
            return true;
        default:
            return false;
        }
    });
}

QStringList wordsOf(const QString& name)
{
    QStringList parts;
    for (const words::Span& word : words::split(name))
        parts.append(word.in(name).toString());
    return parts;
}

bool hasCapital(const QStringList& words) { return std::ranges::any_of(words, isCapital); }

/// The words of each person that is named, without what stands beside a name, as a role in brackets. "Иванов,
/// Иван" is one person, "Анна, Пётр Иванов" are two.
QList<QStringList> peopleIn(const QString& name)
{
    static const QRegularExpression beside{uR"(\([^)]*\)?|\[[^\]]*\]?)"_s};
    QString bare = name;
    bare.replace(beside, u" "_s);
    QList<QStringList> people;
    for (const QString& one : bare.split(QRegularExpression{u"[/;|]"_s})) {
        QList<QStringList> pieces;
        for (const QString& piece : one.split(u','))
            if (const QStringList words = wordsOf(piece); !words.isEmpty()) pieces.append(words);
        if (pieces.size() == 2 && pieces[0].size() == 1 && pieces[1].size() <= 2 && hasCapital(pieces[1])) {
            people.append(pieces[0] + pieces[1]);
            continue;
        }
        const bool named = std::ranges::any_of(pieces, hasCapital);
        for (const QStringList& piece : pieces)
            if (!named || hasCapital(piece)) people.append(piece); // else a role
    }
    return people;
}

/// Whether a word of a name says who it is: no number, no "Speaker" and no letter behind that.
bool isTelling(const QString& word)
{
    return !word.front().isDigit() && word.size() > 1 && !personNames::isNobodysName(nameForms::plain(word));
}

/// What may stand between two parts of one name.
bool joins(QStringView gap)
{
    return std::ranges::all_of(gap, [](QChar c) {
        return c.isSpace() || c == u'-' || c == u'\u2010' || c == u'\u2011' || c == u'.' || c == u'\'' ||
               c == u'’';
    });
}

QString commonBeginning(const QStringList& forms)
{
    QString letters = forms.value(0);
    for (const QString& form : forms) {
        while (!form.startsWith(letters))
            letters.chop(1);
    }
    return letters;
}

} // namespace

Redaction::Redaction(const QStringList& names, const QString& label) : m_label(label)
{
    QList<QStringList> people;
    QHash<QStringList, QString> inverted; // as "Иванов, Иван" stands before what was said
    for (const QString& name : names) {
        const QList<QStringList> named = peopleIn(name);
        if (named.size() == 1 && named.first().size() > 1 && name.contains(u','))
            inverted[named.first()] = name;
        for (const QStringList& parts : named) {
            const bool telling =
                std::ranges::any_of(parts, isTelling) || std::ranges::any_of(parts, hasNoSpaces);
            if (telling && !people.contains(parts)) people.append(parts);
        }
    }
    // Those with most parts first: a short name is that of somebody who has it among others.
    std::ranges::stable_sort(people, std::greater{}, &QStringList::size);
    for (const QStringList& parts : people) {
        QSet<int> same;
        bool first = true;
        for (const QString& part : parts) {
            const Named* known = named(part);
            const QSet<int> bearers = known ? known->people : QSet<int>{};
            same = std::exchange(first, false) ? bearers : same & bearers;
        }
        if (same.size() == 1) continue;
        m_names.append(parts.join(u' '));
        add(parts, int(m_names.size()) - 1);
        if (inverted.contains(parts)) m_written.append({inverted[parts], int(m_names.size()) - 1});
    }
}

void Redaction::add(const QStringList& parts, int person)
{
    const bool lowerCase = std::ranges::none_of(parts, [](const QString& part) { return isCapital(part); });
    for (const QString& part : parts) {
        if (hasNoSpaces(part)) {
            m_written.append({part, person});
            continue;
        }
        const QString plain = nameForms::plain(part);
        const bool cased = part.front().isUpper() || part.front().isLower();
        if (cased && !lowerCase && !isCapital(part)) {
            m_particles.insert(plain);
            continue;
        }
        if (personNames::isNobodysName(plain)) continue; // a role beside the name
        if (plain.size() < 2) {                          // an initial, or the beginning of O'Brien
            m_particles.insert(plain);
            continue;
        }
        const QStringList forms = nameForms::of(part);
        for (const QString& form : forms) {
            Named& named = m_forms[form];
            if (!named.own) named = {{}, false, true}; // more than what was only related
            named.people.insert(person);
            named.capital = cased && (plain.size() <= shortName || nameForms::isAlsoAWord(form));
        }
        for (const QString& form : nameForms::relatedTo(part)) {
            Named& named = m_forms[form];
            if (named.own) continue;
            named.people.insert(person);
            named.capital = true;
        }
        const QString beginning = commonBeginning(forms);
        if (!cased || beginning.size() < leastBeginning) continue;
        QSet<qsizetype> sizes;
        for (const QString& form : forms)
            sizes.insert(form.size());
        m_beginnings.append({beginning, sizes});
    }
}

const Redaction::Named* Redaction::named(QStringView word) const
{
    const auto found = m_forms.constFind(nameForms::plain(word));
    if (found == m_forms.cend() || (found->capital && !isCapital(word))) return nullptr;
    return &*found;
}

QList<Redaction::Found> Redaction::find(const QString& text) const
{
    QList<Found> all;
    for (const auto& [name, person] : m_written) {
        for (qsizetype at = text.indexOf(name); at >= 0; at = text.indexOf(name, at + name.size()))
            all.append({{at, name.size()}, person});
    }
    const QList<words::Span> spans = words::split(text);
    const auto gapBefore = [&](qsizetype i) {
        const qsizetype end = spans[i - 1].begin + spans[i - 1].size;
        return QStringView{text}.sliced(end, spans[i].begin - end);
    };
    const auto isInitial = [&](qsizetype i) {
        const words::Span& span = spans[i];
        const qsizetype end = span.begin + span.size;
        return span.size == 1 && isCapital(span.in(text)) && end < text.size() && text[end] == u'.';
    };
    const auto isParticle = [&](qsizetype i) {
        const words::Span& span = spans[i];
        const qsizetype end = span.begin + span.size;
        const bool bound = end < text.size() && (text[end] == u'\'' || text[end] == u'’');
        return m_particles.contains(nameForms::plain(span.in(text))) && (span.size > 1 || bound);
    };
    for (qsizetype i = 0; i < spans.size(); ++i) {
        const Named* begin = named(spans[i].in(text));
        if (!begin) continue;
        QSet<int> people = begin->people;
        qsizetype last = i;
        for (qsizetype next = i + 1; next < spans.size() && joins(gapBefore(next)); ++next) {
            const QStringView word = spans[next].in(text);
            if (const Named* more = named(word)) {
                const QSet<int> both = people & more->people;
                if (both.isEmpty()) break;
                people = both;
                last = next;
            } else if (isParticle(next) && gapBefore(next) == u"-") {
                last = next;
            } else if (!isParticle(next) && !isInitial(next)) {
                break;
            }
        }
        // Initials and particles belong to the name that they stand at.
        qsizetype first = i;
        while (first > 0 && (isInitial(first - 1) || isParticle(first - 1)) && joins(gapBefore(first)))
            --first;
        qsizetype end = spans[last].begin + spans[last].size;
        const qsizetype name = last;
        for (qsizetype next = last + 1; next < spans.size() && isInitial(next) && joins(gapBefore(next));
             ++next) {
            if (last == name && gapBefore(next).contains(u'.')) break; // the sentence has ended
            end = spans[next].begin + spans[next].size + 1;
            last = next;
        }
        const int person = *std::ranges::min_element(people);
        all.append({{spans[first].begin, end - spans[first].begin}, person});
        i = last;
    }
    std::ranges::sort(all, {}, [](const Found& found) { return found.where.begin; });
    return all;
}

QString Redaction::withoutNames(const QString& text)
{
    QString result;
    qsizetype at = 0;
    for (const Found& found : find(text)) {
        const qsizetype end = found.where.begin + found.where.size;
        const qsizetype begin = std::max(found.where.begin, at); // an initial may stand between two names
        if (begin >= end) continue;
        if (!m_numbers.contains(found.person)) {
            if (m_numbers.isEmpty()) m_first = m_names[found.person];
            m_numbers.insert(found.person, int(m_numbers.size()) + 1);
        }
        result += QStringView{text}.sliced(at, begin - at);
        result += m_label + u' ' + QString::number(m_numbers.value(found.person));
        at = end;
    }
    return result + text.sliced(at);
}

QString Redaction::leftIn(const QString& text) const
{
    for (const auto& [name, person] : m_written) {
        if (text.contains(name)) return name;
    }
    for (const words::Span& span : words::split(text)) {
        const QStringView word = span.in(text);
        if (named(word)) return word.toString();
        if (!isCapital(word)) continue;
        const QString plain = nameForms::plain(word);
        if (m_forms.contains(plain) || nameForms::isAlsoAWord(plain)) continue;
        const bool alike = std::ranges::any_of(m_beginnings, [&](const Beginning& beginning) {
            return plain.startsWith(beginning.letters) && beginning.sizes.contains(plain.size());
        });
        if (alike) return word.toString();
    }
    return {};
}

QString Redaction::withoutNumbers(const QString& text)
{
    static const QRegularExpression numbers{
        uR"((\[\d{1,3}:\d{2}(?::\d{2})?\])|(?:(?<![\w])[+−-])?(?:[№#$€£¥₽]\s?)?\p{Nd}+(?:[.,:/\-–\s]\p{Nd}+)*(?:\s?[%‰°$€£¥₽])?)"_s,
        QRegularExpression::UseUnicodePropertiesOption};
    QString result;
    qsizetype at = 0;
    for (auto it = numbers.globalMatch(text); it.hasNext();) {
        const auto match = it.next();
        result += QStringView{text}.sliced(at, match.capturedStart() - at);
        result += match.hasCaptured(1) && match.capturedLength(1) > 0 ? match.captured(1) : u"…"_s;
        at = match.capturedEnd();
    }
    return result + text.sliced(at);
}

} // namespace murmeli
