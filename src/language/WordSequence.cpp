#include "WordSequence.h"

#include <algorithm>

namespace murmeli::words {

namespace {

// In twentieths.
constexpr int anotherForm = 7;
constexpr int anotherWord = 20;
constexpr int oneMore = 10;

} // namespace

void WordSequence::append(QStringView text, const QList<Span>& words, Keys& keys)
{
    m_words.reserve(m_words.size() + size_t(words.size()));
    for (const Span& word : words) {
        const QString form = folded(word.in(text));
        const QByteArray& key = keys.of(form);
        if (!m_forms.contains(form)) m_forms.insert(form, int(m_forms.size()));
        if (!m_keys.contains(key)) m_keys.insert(key, int(m_keys.size()));
        m_words.push_back(known(form, key));
    }
}

WordSequence::Word WordSequence::known(const QString& folded, const QByteArray& key) const
{
    return {m_forms.value(folded, -1), m_keys.value(key, -1)};
}

WordSequence::Match WordSequence::nearest(QStringView quotation, Keys& keys, qsizetype from,
                                          qsizetype to) const
{
    std::vector<Word> quoted;
    for (const Span& word : split(quotation)) {
        const QString form = folded(word.in(quotation));
        quoted.push_back(known(form, keys.of(form)));
    }
    if (quoted.empty()) return {};
    // One column a word of the sequence: what the first i quoted words cost that end there, and where they
    // begin.
    struct Cell {
        int cost = 0;
        int first = 0;
    };
    std::vector<Cell> before(quoted.size() + 1), now(quoted.size() + 1);
    for (size_t i = 0; i < before.size(); ++i)
        before[i] = {int(i) * anotherWord, int(from)};
    Cell best{int(quoted.size()) * anotherWord, int(from)};
    qsizetype end = from;
    for (qsizetype at = std::max<qsizetype>(0, from); at < std::min(to, size()); ++at) {
        const Word& word = m_words[size_t(at)];
        now[0] = {0, int(at) + 1};
        before[0].first = int(at);
        for (size_t i = 1; i < now.size(); ++i) {
            const Word& wanted = quoted[i - 1];
            const int other = wanted.form == word.form ? 0
                              : wanted.key == word.key ? anotherForm
                                                       : anotherWord;
            Cell cell{before[i - 1].cost + other, before[i - 1].first};
            // Of equal ones the one that begins later: what stands before it is somebody else's.
            if (const Cell missing{now[i - 1].cost + anotherWord, now[i - 1].first};
                missing.cost < cell.cost || (missing.cost == cell.cost && missing.first > cell.first))
                cell = missing;
            if (const int more = before[i].cost + oneMore; more < cell.cost) cell = {more, before[i].first};
            now[i] = cell;
        }
        if (now.back().cost < best.cost) {
            best = now.back();
            end = at + 1;
        }
        std::swap(before, now);
    }
    return {double(best.cost) / (anotherWord * double(quoted.size())), best.first, end};
}

} // namespace murmeli::words
