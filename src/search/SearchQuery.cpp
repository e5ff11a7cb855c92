#include "SearchQuery.h"

#include "MeetingText.h"
#include "base/Text.h"

#include <QLocale>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

using indexExpression::Column;

enum class Operator { Speaker, Since, Until, Place };

struct Name {
    QStringView text;
    Operator means;
};
constexpr std::array operators = {Name{u"от", Operator::Speaker}, Name{u"from", Operator::Speaker},
                                  Name{u"с", Operator::Since},    Name{u"since", Operator::Since},
                                  Name{u"по", Operator::Until},   Name{u"until", Operator::Until},
                                  Name{u"в", Operator::Place},    Name{u"in", Operator::Place}};

struct PlaceName {
    QStringView text;
    SearchPlace means;
};
constexpr std::array places = {
    PlaceName{u"название", SearchPlace::Title},         PlaceName{u"title", SearchPlace::Title},
    PlaceName{u"протокол", SearchPlace::Protocol},      PlaceName{u"protocol", SearchPlace::Protocol},
    PlaceName{u"разбор", SearchPlace::Analysis},        PlaceName{u"analysis", SearchPlace::Analysis},
    PlaceName{u"расшифровка", SearchPlace::Transcript}, PlaceName{u"transcript", SearchPlace::Transcript}};

constexpr std::array russianDays = {u"понедельник", u"вторник", u"среда",      u"четверг",
                                    u"пятница",     u"суббота", u"воскресенье"};
constexpr std::array englishDays = {u"monday", u"tuesday",  u"wednesday", u"thursday",
                                    u"friday", u"saturday", u"sunday"};

std::optional<QDate> dayOf(const QString& said, const QDate& today, words::Keys& keys)
{
    for (const QString& shape : {u"yyyy-MM-dd"_s, u"dd.MM.yyyy"_s, u"d.M.yyyy"_s}) {
        const QDate date = QDate::fromString(said, shape);
        if (date.isValid()) return date;
    }
    const QByteArray key = keys.of(said);
    const auto is = [&](QStringView word) { return keys.of(word) == key; };
    if (is(u"сегодня") || is(u"today")) return today;
    if (is(u"вчера") || is(u"yesterday")) return today.addDays(-1);
    for (int day = 1; day <= 7; ++day) { // the last one that has begun
        if (!is(QStringView{russianDays.at(size_t(day) - 1)}) &&
            !is(QStringView{englishDays.at(size_t(day) - 1)}))
            continue;
        return today.addDays(-((today.dayOfWeek() - day + 7) % 7));
    }
    return std::nullopt;
}

SearchPlace placeOf(const Passage& passage)
{
    switch (passage.kind) {
    case Passage::Kind::Title:
        return SearchPlace::Title;
    case Passage::Kind::Said:
        return SearchPlace::Transcript;
    case Passage::Kind::Analysis:
    case Passage::Kind::Promise:
    case Passage::Kind::Mark:
        return SearchPlace::Analysis;
    default:
        return SearchPlace::Protocol;
    }
}

Column columnOf(SearchPlace place)
{
    switch (place) {
    case SearchPlace::Title:
        return Column::Title;
    case SearchPlace::Protocol:
        return Column::Protocol;
    case SearchPlace::Analysis:
        return Column::Analysis;
    case SearchPlace::Transcript:
        return Column::Said;
    }
    Q_UNREACHABLE();
}

QList<QByteArray> keysOf(QStringView text, words::Keys& keys)
{
    QList<QByteArray> found;
    for (const words::Span& word : words::split(text))
        found.append(keys.of(word.in(text)));
    return found;
}

bool isQuote(QChar c) { return u"\"«»“”„"_s.contains(c); }

} // namespace

bool SearchQuery::takeOperator(const QString& name, const QString& value, const QDate& today,
                               words::Keys& keys)
{
    const QString lower = name.toLower();
    const auto* const known =
        std::ranges::find_if(operators, [&](const Name& one) { return one.text == lower; });
    if (known == operators.end()) return false;
    const QString said = value.trimmed();
    if (said.isEmpty()) return true;
    switch (known->means) {
    case Operator::Speaker:
        if (const auto parts = keysOf(said, keys); !parts.isEmpty()) m_speakers.append(parts);
        break;
    case Operator::Since:
        if (const auto day = dayOf(said, today, keys)) m_since = std::max(*day, m_since.value_or(*day));
        break;
    case Operator::Until:
        if (const auto day = dayOf(said, today, keys)) m_until = std::min(*day, m_until.value_or(*day));
        break;
    case Operator::Place:
        for (const PlaceName& place : places) {
            if (keys.of(place.text) == keys.of(said)) m_places.append(place.means);
        }
        break;
    }
    return true;
}

SearchQuery::SearchQuery(const QString& typed, const SearchFilters& filters, const QDate& today,
                         const Pairs& pairs, words::Keys& keys)
    : m_since(filters.since), m_until(filters.until)
{
    if (!filters.speaker.isEmpty()) m_speakers.append(keysOf(filters.speaker, keys));
    if (filters.place) m_places.append(*filters.place);

    const QString text = text::first(typed, longest);
    for (qsizetype at = 0; at < text.size();) {
        qsizetype end = at;
        qsizetype colon = -1;
        bool quoted = false;
        for (; end < text.size() && (quoted || !text[end].isSpace()); ++end) {
            if (isQuote(text[end])) quoted = !quoted;
            if (text[end] == u':' && colon < 0 && !quoted) colon = end;
        }
        if (end == at) { // white space parts, and at the end says that the last word is whole
            m_words += text[at++];
            continue;
        }
        QString value = colon < 0 ? QString{} : text.sliced(colon + 1, end - colon - 1);
        value.removeIf(isQuote);
        const bool taken = colon > at && takeOperator(text.sliced(at, colon - at), value, today, keys);
        m_words += taken ? u" "_s : text.sliced(at, end - at);
        at = end;
    }
    m_terms = words::Terms{m_words, keys};
    m_terms.widen(pairs, keys);
}

IndexQuery SearchQuery::question(IndexQuery::Order order, int most,
                                 const indexExpression::Beginnings& beginnings) const
{
    QList<Column> columns;
    for (const SearchPlace place : m_places)
        columns.append(columnOf(place));
    if (!m_speakers.isEmpty()) columns = {Column::Said};
    QByteArray match = indexExpression::of(m_terms, columns, beginnings);
    for (const QList<QByteArray>& name : m_speakers)
        match = indexExpression::both(match, indexExpression::any(name, Column::People));
    IndexQuery question{
        .match = match, .without = indexExpression::unwanted(m_terms), .order = order, .most = most};
    if (m_since) question.from = m_since->startOfDay().toSecsSinceEpoch();
    if (m_until) question.until = m_until->endOfDay().toSecsSinceEpoch();
    return question;
}

bool SearchQuery::needsText() const
{
    return !m_speakers.isEmpty() || std::ranges::any_of(m_terms.list(), &words::Terms::Term::exact);
}

bool SearchQuery::looksAt(const Passage& passage, words::Keys& keys) const
{
    if (!m_places.isEmpty() && !m_places.contains(placeOf(passage))) return false;
    if (m_speakers.isEmpty()) return true;
    if (passage.kind != Passage::Kind::Said) return false;
    const QList<QByteArray> parts = keysOf(passage.speaker, keys);
    return std::ranges::any_of(m_speakers, [&](const QList<QByteArray>& name) {
        return std::ranges::all_of(name, [&](const QByteArray& part) { return parts.contains(part); });
    });
}

bool SearchQuery::isMetBy(const MeetingText& text, words::Keys& keys) const
{
    QList<bool> met(m_terms.list().size());
    bool looked = false;
    for (const Passage& passage : text.passages) {
        const QList<words::Span> split = words::split(passage.text);
        for (qsizetype i = 0; i < met.size(); ++i) {
            if (!m_terms.list()[i].excluded || !m_terms.list()[i].exact) continue;
            if (m_terms.has(i, passage.text, split, keys)) return false;
        }
        if (!looksAt(passage, keys)) continue;
        looked = true;
        const QList<bool> here = m_terms.met(passage.text, split, keys);
        for (qsizetype i = 0; i < met.size(); ++i)
            met[i] = met[i] || here[i];
    }
    return looked && !met.contains(false);
}

} // namespace murmeli
