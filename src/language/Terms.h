#pragma once

#include "Words.h"

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

    [[nodiscard]] const QList<Term>& list() const { return m_list; }
    [[nodiscard]] bool isEmpty() const { return m_list.isEmpty(); }

    /// Every word in `text` that is looked for, in the text's order. \param words of the text, as split()
    /// gives them.
    [[nodiscard]] QList<Span> hits(QStringView text, const QList<Span>& words, Keys& keys) const;
    [[nodiscard]] QList<Span> hits(QStringView text, Keys& keys) const
    {
        return hits(text, split(text), keys);
    }

    bool operator==(const Terms&) const = default;

private:
    QList<Term> m_list;
};

} // namespace murmeli::words
