#include "Searcher.h"

#include "base/Files.h"
#include "language/Layouts.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qsizetype shortestMisspelt = 4; // letters
constexpr qsizetype longWord = 7;         // in which two letters may be wrong
constexpr int mostNear = 3;               // keys that are tried for a word

bool isSame(const files::Identity& left, const files::Identity& right)
{
    return left.device == right.device && left.inode == right.inode;
}

} // namespace

Searcher::~Searcher() = default;

// The file may have been made anew, and another one moved over it.
IndexFile* Searcher::index()
{
    const files::Identity now = files::identity(m_path);
    if (!m_index || !isSame(now, m_file) || m_index->broken()) {
        m_file = now;
        m_index = now.size < 0 ? nullptr : std::make_unique<IndexFile>(m_path, IndexFile::Mode::Read);
    }
    if (m_index && !m_index->isOpen()) m_index.reset();
    return m_index.get();
}

SearchQuery Searcher::queryOf(const SearchQuestion& question)
{
    return {question.typed, question.filters, question.today, question.pairs, m_keys};
}

SearchAnswer Searcher::ask(const SearchQuestion& question)
{
    SearchAnswer answer{.query = queryOf(question)};
    IndexFile* const index = this->index();
    if (!index || answer.query.isEmpty()) return answer;
    const auto look = [&](const SearchQuery& query) {
        const int most = query.needsText() ? question.candidates : question.most;
        const IndexQuery asked =
            query.question(question.order, most, [index, &question](const QByteArray& beginning) {
                return index->beginnings(beginning, question.order);
            });
        answer.ids = index->find(asked);
        answer.candidates = query.needsText();
        answer.meetings = answer.ids.size() < most ? answer.ids.size() : index->count(asked);
    };
    look(answer.query);
    answer.indexed = !index->broken();
    if (answer.meetings > 0 || !question.otherLayout || answer.query.terms().isEmpty()) return answer;

    SearchQuestion other = question;
    other.typed = layouts::exchanged(answer.query.words());
    const SearchQuery exchanged = queryOf(other);
    if (exchanged.terms().isEmpty()) return answer;
    look(exchanged);
    if (answer.meetings > 0) {
        answer.query = exchanged;
        answer.layout = other.typed.trimmed();
    }
    return answer;
}

QStringList Searcher::names(int most)
{
    IndexFile* const index = this->index();
    return index ? index->names(most) : QStringList{};
}

std::optional<SearchWayOut> Searcher::withoutFilter(const SearchQuestion& question)
{
    std::optional<SearchWayOut> best;
    const auto offer = [&](const char* key, auto remove) {
        SearchQuestion without = question;
        remove(without.filters);
        if (without.filters == question.filters) return;
        const SearchQuery query = queryOf(without);
        if (query.needsText()) return; // the index alone does not know
        const int meetings = int(m_index->count(query.question(IndexQuery::Order::Newest, 0)));
        if (meetings > 0 && (!best || meetings > best->meetings))
            best = SearchWayOut{.key = QString::fromLatin1(key), .query = {}, .meetings = meetings};
    };
    offer("search.any_time", [](SearchFilters& filters) { filters.since = filters.until = {}; });
    offer("search.anyone", [](SearchFilters& filters) { filters.speaker.clear(); });
    offer("search.everywhere", [](SearchFilters& filters) { filters.place.reset(); });
    return best;
}

std::optional<SearchWayOut> Searcher::nearest(const SearchQuestion& question, const Reader& read)
{
    const SearchQuery query = queryOf(question);
    for (const words::Span& word : words::split(question.typed)) {
        const QString typed = words::folded(word.in(question.typed));
        const auto is = [&](const words::Terms::Term& term) {
            return !term.exact && !term.excluded && term.folded == QStringList{typed};
        };
        if (typed.size() < shortestMisspelt || std::ranges::none_of(query.terms().list(), is)) continue;
        const QByteArray key = m_keys.of(typed);
        const auto found = [&](const QByteArray& other) {
            return m_index->find({.match = indexExpression::row({other}), .most = 1});
        };
        if (!found(key).isEmpty()) continue;
        const QList<QByteArray> near = m_index->nearest(key, typed.size() >= longWord ? 2 : 1);
        for (const QByteArray& other : near.first(std::min<qsizetype>(mostNear, near.size()))) {
            // As it is written in a meeting, in the form closest to what was typed.
            const QStringList ids = found(other);
            if (ids.isEmpty()) continue;
            QString best;
            int least = 0;
            for (const Passage& passage : read(ids.first()).passages) {
                for (const words::Span& said : words::split(passage.text)) {
                    if (m_keys.of(said.in(passage.text)) != other) continue;
                    const QString form = words::folded(said.in(passage.text));
                    const int far = words::distance(form, typed, int(typed.size()));
                    if (!best.isEmpty() && far >= least) continue;
                    best = form;
                    least = far;
                }
            }
            if (best.isEmpty()) continue;
            SearchQuestion instead = question;
            instead.typed.replace(word.begin, word.size, best);
            const SearchQuery wanted = queryOf(instead);
            if (wanted.needsText()) continue;
            const int meetings = int(m_index->count(wanted.question(IndexQuery::Order::Newest, 0)));
            if (meetings > 0)
                return SearchWayOut{
                    .key = u"search.nearest"_s, .query = instead.typed.trimmed(), .meetings = meetings};
        }
    }
    return std::nullopt;
}

QList<SearchWayOut> Searcher::waysOut(const SearchQuestion& question, const Reader& read)
{
    QList<SearchWayOut> ways;
    if (!index()) return ways;
    if (const auto way = nearest(question, read)) ways.append(*way);
    if (const auto way = withoutFilter(question)) ways.append(*way);
    return ways;
}

} // namespace murmeli
