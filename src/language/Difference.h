#pragma once

#include <QList>
#include <QString>

namespace murmeli::words {

/// A part of a text, as it became another one.
struct Piece {
    enum class Kind { Same, Removed, Added };
    Kind kind = Kind::Same;
    QString text;
    bool operator==(const Piece&) const = default;
};

/// What went and what came between two texts, by whole words and signs: all pieces that are not removed make
/// `after`. Of texts that are too long to compare, all that differs. Any thread.
QList<Piece> difference(const QString& before, const QString& after);

/// The same without what only repeats: of equal parts, of more than so many words, those beside a difference.
QList<Piece> brief(const QList<Piece>& pieces, qsizetype longest = 12);

/// How much of two texts differs, from 0 (nothing) to 1 (everything).
double dissimilarity(const QString& before, const QString& after);

} // namespace murmeli::words
