#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace murmeli {

/// A rule (how a misheard word is written) or a term (a word alone).
struct GlossaryEntry {
    QString heard; ///< empty for a term
    QString correct;

    [[nodiscard]] bool isRule() const;
    /// As it stands in the glossary's text; empty when it says nothing.
    [[nodiscard]] QString line() const;
    bool operator==(const GlossaryEntry&) const = default;
};
std::size_t qHash(const GlossaryEntry& entry, std::size_t seed = 0);

/// The glossary as one text, a line an entry. Pure functions, any thread.
namespace glossaryText {

std::optional<GlossaryEntry> parse(const QString& line);
QList<GlossaryEntry> parseAll(const QString& text);
QString serialised(const QList<GlossaryEntry>& entries);

/// `entries` with the rule added, or an earlier rule for the same heard form changed. \return nothing when
/// there is nothing to learn.
std::optional<QList<GlossaryEntry>> learned(QList<GlossaryEntry> entries, const QString& heard,
                                            const QString& correct);

/// `theirs` with what was done from `base` to `mine`: what is new in mine stands where mine has it, at the
/// top or the end; what is gone from mine is gone.
QList<GlossaryEntry> merged(const QList<GlossaryEntry>& base, const QList<GlossaryEntry>& mine,
                            const QList<GlossaryEntry>& theirs);

} // namespace glossaryText

} // namespace murmeli
