#pragma once

#include "Redaction.h"
#include "search/MeetingText.h"

#include <QFlags>

namespace murmeli {

/// A part of a meeting that can be handed out.
enum class HandoutPart {
    Summary = 0x01,
    Decisions = 0x02,
    Tasks = 0x04,
    Steps = 0x08,
    Questions = 0x10,
    Risks = 0x20,
    Quotes = 0x40, ///< that the analysis rests on, with their moments
    Transcript = 0x80,
};
Q_DECLARE_FLAGS(HandoutParts, HandoutPart)
Q_DECLARE_OPERATORS_FOR_FLAGS(HandoutParts)

/// In the order in which they are handed out.
const QList<HandoutPart>& allHandoutParts();
/// As a part is called in files and commands: "summary", "action_items".
QString nameOf(HandoutPart part);
QString titleOf(HandoutPart part, const QString& language);

/// What of a meeting is handed out, and how.
struct HandoutChoice {
    HandoutParts parts =
        HandoutPart::Summary | HandoutPart::Decisions | HandoutPart::Tasks | HandoutPart::Questions;
    bool hideNames = false;
    bool hideNumbers = false;
    bool operator==(const HandoutChoice&) const = default;
};

/// A meeting's files as they are now. A plain value.
struct HandoutSource {
    Meeting meeting;
    qint64 edits = 0; ///< how often its protocol was corrected
    MeetingText text;
    QList<Passage> quotes; ///< what was promised, in whose words, and when

    /// Waits for the disk; any thread.
    static HandoutSource read(const Meeting& meeting, const MeetingFiles& files, const QString& language);

    /// How much there is of a part.
    [[nodiscard]] qsizetype count(HandoutPart part) const;
    /// Everybody who may be named in it.
    [[nodiscard]] QStringList names() const;
};

/// A meeting as it is handed out, in whatever form. A plain value.
struct Handout {
    struct Section {
        HandoutPart part = HandoutPart::Summary;
        QString heading;
        QList<Passage> items; ///< of the transcript its lines
    };
    QString language; ///< of the headings
    QString title;
    QString dateLine;
    qint64 edits = 0;
    QList<Section> sections; ///< none is empty
    Redaction redaction;     ///< of the names in it; of nobody when they are not hidden
    Meeting meeting;         ///< under the title that is handed out

    /// In the language of its headings. Any thread.
    static Handout of(const HandoutSource& source, const HandoutChoice& choice, const QString& language);

    /// A quotation with its marks, and who said it when.
    [[nodiscard]] QString quoted(const Passage& quote) const;
    [[nodiscard]] static QString sourceOf(const Passage& quote);
    /// A stamp without its brackets.
    [[nodiscard]] static QString moment(const Passage& passage);

    /// A name that is left in what was made of it, beside headings and dates, which are not the meeting's.
    [[nodiscard]] QString nameLeftIn(QString made) const;

    /// What its file may be called, with an ending as "md".
    [[nodiscard]] QString fileName(const QString& ending) const;
    /// What receipts say of it: its parts, and what was hidden.
    [[nodiscard]] static QStringList receiptParts(const HandoutChoice& choice);
};

} // namespace murmeli
