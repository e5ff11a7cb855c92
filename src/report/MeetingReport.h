#pragma once

#include "Claims.h"

#include <QJsonObject>

namespace murmeli {

/// How many of the meeting's results have a property that can be checked.
struct ReportMetric {
    Q_GADGET
    QML_VALUE_TYPE(reportMetric)
    Q_PROPERTY(QString titleKey MEMBER titleKey FINAL)
    Q_PROPERTY(int done MEMBER done FINAL)
    Q_PROPERTY(int total MEMBER total FINAL)
    Q_PROPERTY(double share READ share FINAL)

public:
    QString titleKey;
    int done = 0;
    int total = 0;

    [[nodiscard]] double share() const { return total < 1 ? 0.0 : double(done) / total; }
    bool operator==(const ReportMetric&) const = default;
};

struct SpeakerShare {
    QString name;
    double seconds = 0;
    double share = 0; ///< 0 to 1
};

/// What an analysis says about a meeting, and what its time codes say about the talk. Any thread.
struct MeetingReport {
    QList<Commitment> commitments;
    QList<Disagreement> disagreements;
    QStringList blockers;
    QList<MeetingNumber> numbers;
    QList<Insight> insights;
    QList<AgendaItem> agenda;
    QList<MeetingRole> roles;
    QList<Concept> concepts;

    double durationSec = 0;
    double speechShare = 0; ///< of the time, 0 to 1
    qint64 turns = 0;
    qint64 pauses = 0;
    qint64 longPauses = 0; ///< of more than 10 s
    QList<SpeakerShare> speakers;
    bool analyticsExact = false; ///< from the beginning and end of every turn, not from beginnings alone

    /// Lenient: what is missing or of another type is absent. Texts and lists within a claim are cut to what
    /// can be laid out without a halt.
    static MeetingReport parse(const QJsonObject& analysis);

    /// Takes the figures of the talk, as the service keeps them in the summary file.
    void applyAnalytics(const QJsonObject& analytics);

    /// Blockers, roles, concepts and the figures of the talk alone are no analysis.
    [[nodiscard]] bool isEmpty() const;

    [[nodiscard]] QList<ReportMetric> metrics() const;
};

} // namespace murmeli
