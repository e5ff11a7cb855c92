#pragma once

#include "Words.h"

#include <vector>

namespace murmeli::words {

/// The words of a text, one after the other, in which others are looked for that may have been changed on
/// their way. One thread at a time.
class WordSequence {
public:
    void append(QStringView text, const QList<Span>& words, Keys& keys);
    [[nodiscard]] qsizetype size() const { return qsizetype(m_words.size()); }

    /// Where other words come cheapest, and what they cost: nothing for the same word, 0.35 for another form
    /// of it, 1 for another word or a missing one, 0.5 for one more in between; by the number of them.
    struct Match {
        double distance = 1; ///< 1 and more: nothing is alike
        qsizetype first = 0; ///< of the sequence's words
        qsizetype end = 0;   ///< behind the last
    };
    /// Between the words `from` and `to`.
    [[nodiscard]] Match nearest(QStringView quotation, Keys& keys, qsizetype from, qsizetype to) const;

private:
    struct Word {
        int form = 0;
        int key = 0;
    };
    [[nodiscard]] Word known(const QString& folded, const QByteArray& key) const;

    std::vector<Word> m_words;
    QHash<QString, int> m_forms;
    QHash<QByteArray, int> m_keys;
};

} // namespace murmeli::words
