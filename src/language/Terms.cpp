#include "Terms.h"

#include <algorithm>

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

QList<Span> Terms::hits(QStringView text, const QList<Span>& words, Keys& keys) const
{
    QList<Span> found;
    for (qsizetype at = 0; at < words.size();) {
        qsizetype size = 0;
        for (const Term& term : m_list) {
            if (!term.excluded) size = std::max(size, matched(term, text, words, at, keys));
        }
        for (qsizetype i = 0; i < size; ++i)
            found.append(words[at + i]);
        at += std::max<qsizetype>(size, 1);
    }
    return found;
}

} // namespace murmeli::words
