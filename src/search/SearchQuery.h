#pragma once

#include "IndexExpression.h"
#include "IndexFile.h"
#include "language/Terms.h"

#include <QDate>

#include <optional>

namespace murmeli {

struct MeetingText;
struct Passage;

/// Where in a meeting something is looked for.
enum class SearchPlace { Title, Protocol, Analysis, Transcript };

/// What the choices beside the field say; operators in what is typed count beside them.
struct SearchFilters {
    QString speaker;                   ///< empty: anybody
    std::optional<QDate> since, until; ///< both inclusive
    std::optional<SearchPlace> place;

    [[nodiscard]] bool isEmpty() const { return speaker.isEmpty() && !since && !until && !place; }
    bool operator==(const SearchFilters&) const = default;
};

/// What somebody looks for. A plain value; any thread, the keys are the caller's.
class SearchQuery {
public:
    using Pairs = QList<std::pair<QString, QString>>;

    static constexpr qsizetype longest = 500; ///< characters of what is typed that count

    SearchQuery() = default;
    /// \param today to which words like "yesterday" belong; \param pairs of texts that mean the same.
    SearchQuery(const QString& typed, const SearchFilters& filters, const QDate& today, const Pairs& pairs,
                words::Keys& keys);

    [[nodiscard]] bool isEmpty() const { return m_terms.isEmpty() && !isFiltered(); }
    /// Somewhere, somewhen or by somebody alone.
    [[nodiscard]] bool isFiltered() const
    {
        return !m_speakers.isEmpty() || m_since || m_until || !m_places.isEmpty();
    }
    [[nodiscard]] const words::Terms& terms() const { return m_terms; }
    /// What was typed, without operators.
    [[nodiscard]] const QString& words() const { return m_words; }

    [[nodiscard]] IndexQuery question(IndexQuery::Order order, int most,
                                      const indexExpression::Beginnings& beginnings = {}) const;

    /// Whether the index alone cannot tell which meetings it finds.
    [[nodiscard]] bool needsText() const;
    [[nodiscard]] bool isMetBy(const MeetingText& text, words::Keys& keys) const;
    /// Whether something may be found there at all.
    [[nodiscard]] bool looksAt(const Passage& passage, words::Keys& keys) const;

private:
    bool takeOperator(const QString& name, const QString& value, const QDate& today, words::Keys& keys);

    words::Terms m_terms;
    QString m_words;
    QList<QList<QByteArray>> m_speakers; ///< the keys of each name's parts
    std::optional<QDate> m_since, m_until;
    QList<SearchPlace> m_places;
};

} // namespace murmeli
