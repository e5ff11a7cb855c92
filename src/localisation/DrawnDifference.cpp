#include "DrawnDifference.h"

#include "Language.h"

using namespace Qt::StringLiterals;

namespace murmeli::drawnDifference {

QVariantList pieces(const QList<words::Piece>& pieces)
{
    QVariantList list;
    for (const words::Piece& piece : pieces)
        list.append(QVariantMap{{u"text"_s, piece.text}, {u"kind"_s, int(piece.kind)}});
    return list;
}

QString spoken(const QList<words::Piece>& pieces, const QString& language)
{
    QStringList parts;
    for (const words::Piece& piece : pieces) {
        if (piece.kind == words::Piece::Kind::Same) continue;
        const bool removed = piece.kind == words::Piece::Kind::Removed;
        parts.append(
            Language::text(language, removed ? u"diff.removed"_s : u"diff.added"_s, piece.text.trimmed()));
    }
    return parts.join(u", "_s);
}

} // namespace murmeli::drawnDifference
