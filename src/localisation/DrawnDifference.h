#pragma once

#include "language/Difference.h"

#include <QVariantList>

/// A difference between two texts, as it is shown and read out. Any thread.
namespace murmeli::drawnDifference {

/// For views: maps of "text" and "kind", a words::Piece::Kind.
QVariantList pieces(const QList<words::Piece>& pieces);

/// "убрано: вторника, вставлено: среды"; empty when nothing differs.
QString spoken(const QList<words::Piece>& pieces, const QString& language);

} // namespace murmeli::drawnDifference
