#pragma once

#include "MeetingReport.h"

#include <variant>

namespace murmeli {

namespace reportKind {
Q_NAMESPACE
QML_NAMED_ELEMENT(ReportKind)

/// What a row of a report is, in the order of ReportRow::Value.
enum Kind {
    Heading,
    Metric,
    Blocker,
    Insight,
    Commitment,
    Disagreement,
    Agenda,
    Number,
    Concept,
    Role,
    Figures,
    Speaker,
    Note,
};
Q_ENUM_NS(Kind)
} // namespace reportKind

/// Above a section's card.
struct ReportHeading {
    QString key;
    bool operator==(const ReportHeading&) const = default;
};

/// Below a section's card.
struct ReportNote {
    QString key;
    bool operator==(const ReportNote&) const = default;
};

/// The talk in four figures.
struct TalkFigures {
    Q_GADGET
    QML_VALUE_TYPE(talkFigures)
    Q_PROPERTY(QString duration MEMBER duration FINAL)
    Q_PROPERTY(double speechShare MEMBER speechShare FINAL)
    Q_PROPERTY(int turns MEMBER turns FINAL)
    Q_PROPERTY(int longPauses MEMBER longPauses FINAL)
    Q_PROPERTY(bool exact MEMBER exact FINAL)

public:
    QString duration; ///< a running time
    double speechShare = 0;
    int turns = 0;
    int longPauses = 0;
    bool exact = false; ///< else share and pauses are not known

    bool operator==(const TalkFigures&) const = default;
};

/// How much of the talk was one person's.
struct SpeakerFigures {
    Q_GADGET
    QML_VALUE_TYPE(speakerFigures)
    Q_PROPERTY(QString name MEMBER name FINAL)
    Q_PROPERTY(QString duration MEMBER duration FINAL)
    Q_PROPERTY(double seconds MEMBER seconds FINAL)
    Q_PROPERTY(double share MEMBER share FINAL)
    Q_PROPERTY(int place MEMBER place FINAL)

public:
    QString name;
    QString duration; ///< a running time
    double seconds = 0;
    double share = 0; ///< 0 to 1
    int place = 0;    ///< among the speakers, from 0

    bool operator==(const SpeakerFigures&) const = default;
};

/// One row of a shown report: a heading, a note, or a part of the card between them.
struct ReportRow {
    using Value =
        std::variant<ReportHeading, ReportMetric, Blocker, Insight, Commitment, Disagreement, AgendaItem,
                     MeetingNumber, Concept, MeetingRole, TalkFigures, SpeakerFigures, ReportNote>;

    Value value;
    bool first = false; ///< on its card
    bool last = false;

    [[nodiscard]] reportKind::Kind kind() const { return reportKind::Kind(value.index()); }

    /// Whether it is a claim, which can be stepped to and copied.
    [[nodiscard]] bool isClaim() const;

    /// The moments that it stands on.
    [[nodiscard]] QStringList stamps() const;

    /// What a claim says; empty for every other row.
    [[nodiscard]] QStringList words(const QString& language, Wording wording) const;

    bool operator==(const ReportRow&) const = default;
};

namespace reportRows {

/// All sections in their order; those without content are left out. Any thread.
QList<ReportRow> of(const MeetingReport& report);

/// A running time as "12:34" or, from an hour on, "1:02:03"; "0:00" for what is no time.
QString mmss(double seconds);

} // namespace reportRows

} // namespace murmeli
