#include "Terms.h"

#include <algorithm>
#include <vector>

namespace murmeli::words {

namespace {

constexpr qsizetype shortestBeginning = 2; // letters; one would be found everywhere

bool opens(QChar c) { return c == u'"' || c == u'«' || c == u'“' || c == u'„'; }
bool closes(QChar c) { return c == u'"' || c == u'»' || c == u'”' || c == u'“'; }

Terms::Term termOf(QStringView text, Keys& keys)
{
    Terms::Term term;
    for (const Span& word : split(text)) {
        term.folded.append(folded(word.in(text)));
        term.keys.append(keys.of(word.in(text)));
    }
    return term;
}

/// How many words of the text from `at` on are the term's; 0 when they are not.
qsizetype matched(const Terms::Term& term, QStringView text, const QList<Span>& words, qsizetype at,
                  Keys& keys)
{
    const qsizetype size = term.folded.size();
    if (at + size > words.size()) return 0;
    for (qsizetype i = 0; i < size; ++i) {
        const QStringView word = words[at + i].in(text);
        const bool same = term.exact ? folded(word) == term.folded[i]
                                     : keys.of(word) == term.keys[i] ||
                                           (term.prefix && folded(word).startsWith(term.folded[i]));
        if (!same) return 0;
    }
    return size;
}

/// The same for an alternative.
qsizetype matched(const Terms::Alternative& other, QStringView text, const QList<Span>& words, qsizetype at,
                  Keys& keys)
{
    if (at + other.keys.size() > words.size()) return 0;
    for (qsizetype i = 0; i < other.keys.size(); ++i) {
        if (keys.of(words[at + i].in(text)) != other.keys[i]) return 0;
    }
    return other.keys.size();
}

QList<QByteArray> keysOf(const QString& text, Keys& keys)
{
    QList<QByteArray> found;
    for (const Span& word : split(text))
        found.append(keys.of(word.in(text)));
    return found;
}

} // namespace

Terms::Terms(QStringView typed, Keys& keys)
{
    for (qsizetype at = 0; at < typed.size();) {
        if (typed[at].isSpace()) {
            ++at;
            continue;
        }
        const bool excluded = typed[at] == u'-' && at + 1 < typed.size() && !typed[at + 1].isSpace();
        if (excluded) ++at;
        qsizetype end = at;
        const bool exact = opens(typed[at]);
        if (exact) {
            for (end = ++at; end < typed.size() && !closes(typed[end]);)
                ++end;
        } else {
            while (end < typed.size() && !typed[end].isSpace() && !opens(typed[end]))
                ++end;
        }
        Term term = termOf(typed.sliced(at, end - at), keys);
        term.exact = exact;
        term.excluded = excluded;
        // A word that is still being typed.
        term.prefix = !exact && end == typed.size() && !term.folded.isEmpty() &&
                      term.folded.last().size() >= shortestBeginning;
        if (!term.folded.isEmpty()) m_list.append(term);
        at = exact ? end + 1 : end;
    }
}

void Terms::widen(const QList<std::pair<QString, QString>>& pairs, Keys& keys)
{
    std::vector<std::pair<QList<QByteArray>, QList<QByteArray>>> known;
    for (const auto& [one, other] : pairs) {
        const auto left = keysOf(one, keys), right = keysOf(other, keys);
        if (left.isEmpty() || right.isEmpty() || left == right) continue;
        known.emplace_back(left, right);
        known.emplace_back(right, left);
    }
    const auto stands = [this](const QList<QByteArray>& row, qsizetype at) {
        if (at + row.size() > m_list.size()) return false;
        for (qsizetype i = 0; i < row.size(); ++i) {
            const Term& term = m_list[at + i];
            if (term.exact || term.excluded || term.keys.size() != 1 || term.keys.first() != row[i])
                return false;
        }
        return true;
    };
    m_alternatives.clear();
    for (qsizetype at = 0; at < m_list.size();) {
        qsizetype longest = 0;
        for (const auto& [row, other] : known) {
            if (stands(row, at)) longest = std::max(longest, row.size());
        }
        for (const auto& [row, other] : known) {
            const Alternative alternative{at, longest, other};
            if (row.size() == longest && stands(row, at) && !m_alternatives.contains(alternative))
                m_alternatives.append(alternative);
        }
        at += std::max<qsizetype>(longest, 1);
    }
}

bool Terms::has(qsizetype index, QStringView text, const QList<Span>& words, Keys& keys) const
{
    for (qsizetype at = 0; at < words.size(); ++at) {
        if (matched(m_list[index], text, words, at, keys) > 0) return true;
    }
    return false;
}

QList<bool> Terms::met(QStringView text, const QList<Span>& words, Keys& keys) const
{
    QList<bool> found(m_list.size());
    for (qsizetype i = 0; i < m_list.size(); ++i)
        found[i] = m_list[i].excluded || has(i, text, words, keys);
    for (const Alternative& other : m_alternatives) {
        bool stands = false;
        for (qsizetype at = 0; at < words.size() && !stands; ++at)
            stands = matched(other, text, words, at, keys) > 0;
        for (qsizetype i = other.first; stands && i < other.first + other.size; ++i)
            found[i] = true;
    }
    return found;
}

QList<Span> Terms::hits(QStringView text, const QList<Span>& words, Keys& keys) const
{
    QList<Span> found;
    for (qsizetype at = 0; at < words.size();) {
        qsizetype size = 0;
        for (const Term& term : m_list) {
            if (!term.excluded) size = std::max(size, matched(term, text, words, at, keys));
        }
        for (const Alternative& other : m_alternatives)
            size = std::max(size, matched(other, text, words, at, keys));
        for (qsizetype i = 0; i < size; ++i)
            found.append(words[at + i]);
        at += std::max<qsizetype>(size, 1);
    }
    return found;
}

} // namespace murmeli::words
