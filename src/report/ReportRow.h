#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

struct MeetingReport;

namespace reportKind {
Q_NAMESPACE
QML_NAMED_ELEMENT(ReportKind)

/// What a row of a report is; those from Blocker to Role are its items.
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
    Stats,
    Speaker,
    Note,
};
Q_ENUM_NS(Kind)
} // namespace reportKind

/// What somebody holds in a disagreement.
class ReportSide {
    Q_GADGET
    QML_VALUE_TYPE(reportSide)
    Q_PROPERTY(QString who MEMBER who FINAL)
    Q_PROPERTY(QString position MEMBER position FINAL)
    Q_PROPERTY(QString at MEMBER at FINAL)

public:
    QString who;
    QString position;
    QString at;
    bool operator==(const ReportSide&) const = default;
};

/// One row of a shown report. Texts are as long as can be laid out; keys are those of the interface's texts.
class ReportRow {
    Q_GADGET
    QML_VALUE_TYPE(reportRow)
    Q_PROPERTY(int kind MEMBER kind FINAL)
    Q_PROPERTY(bool first MEMBER first FINAL)
    Q_PROPERTY(bool last MEMBER last FINAL)
    Q_PROPERTY(QString key MEMBER key FINAL)
    Q_PROPERTY(QString title MEMBER title FINAL)
    Q_PROPERTY(QString lead MEMBER lead FINAL)
    Q_PROPERTY(QString body MEMBER body FINAL)
    Q_PROPERTY(QString quote MEMBER quote FINAL)
    Q_PROPERTY(QString ending MEMBER ending FINAL)
    Q_PROPERTY(QString value MEMBER value FINAL)
    Q_PROPERTY(QStringList stamps MEMBER stamps FINAL)
    Q_PROPERTY(QList<murmeli::ReportSide> sides MEMBER sides FINAL)
    Q_PROPERTY(QStringList pros MEMBER pros FINAL)
    Q_PROPERTY(QStringList cons MEMBER cons FINAL)
    Q_PROPERTY(bool firm MEMBER firm FINAL)
    Q_PROPERTY(bool partial MEMBER partial FINAL)
    Q_PROPERTY(double share MEMBER share FINAL)
    Q_PROPERTY(double seconds MEMBER seconds FINAL)
    Q_PROPERTY(int count MEMBER count FINAL)
    Q_PROPERTY(int total MEMBER total FINAL)
    Q_PROPERTY(bool item READ isItem FINAL)
    Q_PROPERTY(QString firstStamp READ firstStamp FINAL)

public:
    int kind = reportKind::Heading; ///< a reportKind; views compare numbers better than enumerators
    bool first = false;             ///< on its card
    bool last = false;
    QString key;   ///< of a heading, a metric's title, a note
    QString title; ///< what or who it is about
    QString lead;  ///< beside the title
    QString body;
    QString quote;
    QString ending;     ///< the outcome, or when a commitment is done
    QString value;      ///< a number, or how far a topic came
    QStringList stamps; ///< without those of the sides
    QList<ReportSide> sides;
    QStringList pros;
    QStringList cons;
    bool firm = false; ///< a commitment is, a topic is done, figures are exact
    bool partial = false;
    double share = 0;   ///< 0 to 1
    double seconds = 0; ///< how long somebody spoke
    int count = 0;      ///< done of the total; turns; which speaker
    int total = 0;      ///< of the count; long pauses
    bool operator==(const ReportRow&) const = default;

    /// Whether it can be stepped to and copied.
    [[nodiscard]] bool isItem() const { return kind >= reportKind::Blocker && kind <= reportKind::Role; }

    /// Whether the claim stands on that moment, among others.
    Q_INVOKABLE [[nodiscard]] bool holds(const QString& stamp) const;
    [[nodiscard]] QString firstStamp() const; ///< also one of a side; empty when there is none
};

namespace reportRows {

/// All sections in their order; those without content are left out. Any thread.
QList<ReportRow> of(const MeetingReport& report);

/// What a row says, in lines, with its stamps at the end.
QString text(const ReportRow& row, const QString& language);

/// What a row says as it is read out, without the stamps, which are controls of their own.
QString spoken(const ReportRow& row, const QString& language);

/// A running time as "12:34" or, from an hour on, "1:02:03"; "0:00" for what is no time.
QString mmss(double seconds);

} // namespace reportRows

} // namespace murmeli
