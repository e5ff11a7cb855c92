#pragma once

#include "ReportRow.h"
#include "language/Difference.h"
#include "language/WordSequence.h"
#include "transcript/Transcript.h"

#include <QSet>
#include <QVariantList>

namespace murmeli {

/// What a comparison of a quotation with the transcript has shown. Words were compared, nothing else: it says
/// nothing of what is true.
class QuoteFinding {
    Q_GADGET
    QML_VALUE_TYPE(quoteFinding)
    Q_PROPERTY(int kind READ kindForViews FINAL)
    Q_PROPERTY(QString stamp MEMBER stamp FINAL)
    Q_PROPERTY(QString speaker MEMBER speaker FINAL)
    Q_PROPERTY(QString lead READ lead FINAL)
    Q_PROPERTY(QVariantList pieces READ piecesForViews FINAL)

public:
    enum Kind {
        Nothing,
        Exact,     ///< word for word, about the moment that it names
        Similar,   ///< alike, there
        Elsewhere, ///< alike, at another moment
        None,      ///< no such words
    };
    Q_ENUM(Kind)

    Kind kind = Nothing;
    QString stamp;              ///< where the words are, when they are elsewhere; with its brackets
    QString said;               ///< who said them; empty when nobody is named
    QString speaker;            ///< the same when it is somebody else than the claim says
    QList<words::Piece> pieces; ///< of similar ones: from the quotation to what was said

    [[nodiscard]] int kindForViews() const { return kind; }
    [[nodiscard]] QString lead() const { return said.isEmpty() ? QString{} : said + QStringLiteral(": "); }
    [[nodiscard]] QVariantList piecesForViews() const;
    bool operator==(const QuoteFinding&) const = default;
};

/// Of all commitments of a report. Any thread.
struct QuoteFindings {
    QHash<int, QuoteFinding> byRow;
    QSet<QString> outside; ///< stamps before the transcript's first line or after its last
    bool noTranscript = false;
    bool operator==(const QuoteFindings&) const = default;

    static QuoteFindings of(const Transcript& transcript, const QList<ReportRow>& rows);

    /// How many quotations were compared, and with what result.
    [[nodiscard]] QString sum(const QString& language) const;
};

} // namespace murmeli
