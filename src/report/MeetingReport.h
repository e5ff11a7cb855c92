#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <optional>

namespace murmeli {

/// Every claim tells the moment that it stands on as a stamp, "[00:12:31]"; it is empty when there is none.
struct Commitment {
    QUuid id = QUuid::createUuid();
    QString who;
    QString what;
    std::optional<QString> due;
    QString quote;
    QString at;
    QString firmness; ///< in the words of the analysis
    std::optional<QString> definitionOfDone;

    [[nodiscard]] bool isFirm() const;
};

struct Disagreement {
    struct Side {
        QString who;
        QString position;
        QString at;
    };
    QUuid id = QUuid::createUuid();
    QString topic;
    QList<Side> sides;
    QString outcome;
};

struct MeetingNumber {
    QUuid id = QUuid::createUuid();
    QString metric;
    QString value; ///< with its unit
    QString at;
    std::optional<QString> note;
};

struct Insight {
    QUuid id = QUuid::createUuid();
    QString kind;
    QString title;
    QString detail;
    QStringList at;
};

struct AgendaItem {
    QUuid id = QUuid::createUuid();
    QString topic;
    QString status; ///< in the words of the analysis
    QString at;

    [[nodiscard]] bool isDone() const;
    [[nodiscard]] bool isPartial() const;
};

struct MeetingRole {
    QUuid id = QUuid::createUuid();
    QString who;
    QString role;
    QString evidence;
    QString at;
};

struct Concept {
    QUuid id = QUuid::createUuid();
    QString idea;
    QStringList pros;
    QStringList cons;
    QString at;
};

struct SpeakerShare {
    QUuid id = QUuid::createUuid();
    QString name;
    double seconds = 0;
    double share = 0; ///< 0 to 1
};

/// How many of the meeting's results have a property that can be checked.
struct ReportMetric {
    QString titleKey;
    int done = 0;
    int total = 0;

    [[nodiscard]] double share() const { return total < 1 ? 0.0 : double(done) / total; }
    bool operator==(const ReportMetric&) const = default;
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

    /// Lenient: what is missing or of another type is absent.
    static MeetingReport parse(const QJsonObject& analysis);

    /// Takes the figures of the talk, as the service keeps them in the summary file.
    void applyAnalytics(const QJsonObject& analytics);

    /// Blockers, roles, concepts and the figures of the talk alone are no analysis.
    [[nodiscard]] bool isEmpty() const;

    [[nodiscard]] QList<ReportMetric> metrics() const;
};

} // namespace murmeli
