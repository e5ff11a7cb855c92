#pragma once

#include "Words.h"

#include <utility>

namespace murmeli::words {

/// What is looked for: words in any of their forms, and in quotation marks words in these very forms, one
/// after the other. Any thread; the keys are the caller's.
class Terms {
public:
    struct Term {
        QStringList folded; ///< one, or several that follow each other
        QList<QByteArray> keys;
        bool exact = false;    ///< in these forms
        bool prefix = false;   ///< may be the beginning of a word
        bool excluded = false; ///< must not be there
        bool operator==(const Term&) const = default;
    };

    Terms() = default;
    /// As somebody has typed it: the last word may be unfinished. A quotation mark that is not closed closes
    /// at the end.
    Terms(QStringView typed, Keys& keys);

    /// Where one text of a pair stands among the words, in any forms, the other one is as good.
    void widen(const QList<std::pair<QString, QString>>& pairs, Keys& keys);

    /// What may stand in the place of some of the terms: words in a row.
    struct Alternative {
        qsizetype first = 0; ///< of the terms
        qsizetype size = 0;
        QList<QByteArray> keys;
        bool operator==(const Alternative&) const = default;
    };

    [[nodiscard]] const QList<Term>& list() const { return m_list; }
    [[nodiscard]] const QList<Alternative>& alternatives() const { return m_alternatives; }
    [[nodiscard]] bool isEmpty() const { return m_list.isEmpty(); }

    /// Every word in `text` that is looked for, in the text's order. \param words of the text, as split()
    /// gives them.
    [[nodiscard]] QList<Span> hits(QStringView text, const QList<Span>& words, Keys& keys) const;
    [[nodiscard]] QList<Span> hits(QStringView text, Keys& keys) const
    {
        return hits(text, split(text), keys);
    }

    /// Whether the text has the term at `index` of the list.
    [[nodiscard]] bool has(qsizetype index, QStringView text, const QList<Span>& words, Keys& keys) const;
    /// Of every term that is looked for, whether the text has it; of those that are not, true.
    [[nodiscard]] QList<bool> met(QStringView text, const QList<Span>& words, Keys& keys) const;

    bool operator==(const Terms&) const = default;

private:
    QList<Term> m_list;
    QList<Alternative> m_alternatives; ///< of terms that follow each other; those of some terms are together
};

} // namespace murmeli::words
