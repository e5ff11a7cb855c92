#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

/// What claims are put into words for: a copy ends with the moments that the claim stands on, as they are
/// written; a voice leaves them to their own controls.
enum class Wording { Copied, Spoken };

// What an analysis claims. Each claim names the moments that it stands on as stamps, "[00:12:31]"; an empty
// one is none. `stamps` are those that there are, `words` the lines that say it in `language`. Any thread.

/// What hindered the meeting.
struct Blocker {
    Q_GADGET
    QML_VALUE_TYPE(blocker)
    Q_PROPERTY(QString what MEMBER what FINAL)

public:
    QString what;

    [[nodiscard]] QStringList words(const QString& language, Wording wording) const;
    bool operator==(const Blocker&) const = default;
};

/// What is easily overlooked.
struct Insight {
    Q_GADGET
    QML_VALUE_TYPE(insight)
    Q_PROPERTY(QString title MEMBER title FINAL)
    Q_PROPERTY(QString detail MEMBER detail FINAL)
    Q_PROPERTY(QStringList stamps READ stamps FINAL)

public:
    QString kind;
    QString title;
    QString detail;
    QStringList at;

    [[nodiscard]] QStringList stamps() const;
    [[nodiscard]] QStringList words(const QString& language, Wording wording) const;
    bool operator==(const Insight&) const = default;
};

/// What somebody promised to do.
struct Commitment {
    Q_GADGET
    QML_VALUE_TYPE(commitment)
    Q_PROPERTY(QString who MEMBER who FINAL)
    Q_PROPERTY(QString what MEMBER what FINAL)
    Q_PROPERTY(QString due MEMBER due FINAL)
    Q_PROPERTY(QString quote MEMBER quote FINAL)
    Q_PROPERTY(QString definitionOfDone MEMBER definitionOfDone FINAL)
    Q_PROPERTY(bool firm READ isFirm FINAL)
    Q_PROPERTY(QStringList stamps READ stamps FINAL)

public:
    QString who;
    QString what;
    QString due; ///< empty: none was named
    QString quote;
    QString at;
    QString firmness;         ///< in the words of the analysis
    QString definitionOfDone; ///< empty: none was named

    [[nodiscard]] bool isFirm() const;
    [[nodiscard]] QStringList stamps() const;
    [[nodiscard]] QStringList words(const QString& language, Wording wording) const;
    bool operator==(const Commitment&) const = default;
};

/// What somebody holds in a disagreement.
struct DisagreementSide {
    Q_GADGET
    QML_VALUE_TYPE(disagreementSide)
    Q_PROPERTY(QString who MEMBER who FINAL)
    Q_PROPERTY(QString position MEMBER position FINAL)
    Q_PROPERTY(QString at MEMBER at FINAL)

public:
    QString who;
    QString position;
    QString at;

    bool operator==(const DisagreementSide&) const = default;
};

struct Disagreement {
    Q_GADGET
    QML_VALUE_TYPE(disagreement)
    Q_PROPERTY(QString topic MEMBER topic FINAL)
    Q_PROPERTY(QList<murmeli::DisagreementSide> sides MEMBER sides FINAL)
    Q_PROPERTY(QString outcome MEMBER outcome FINAL)
    Q_PROPERTY(QStringList stamps READ stamps FINAL)

public:
    QString topic;
    QList<DisagreementSide> sides;
    QString outcome;

    [[nodiscard]] QStringList stamps() const; ///< those of the sides
    [[nodiscard]] QStringList words(const QString& language, Wording wording) const;
    bool operator==(const Disagreement&) const = default;
};

/// A topic that was to be talked about, and how far it came.
struct AgendaItem {
    Q_GADGET
    QML_VALUE_TYPE(agendaItem)
    Q_PROPERTY(QString topic MEMBER topic FINAL)
    Q_PROPERTY(QString status MEMBER status FINAL)
    Q_PROPERTY(bool done READ isDone FINAL)
    Q_PROPERTY(bool partial READ isPartial FINAL)
    Q_PROPERTY(QStringList stamps READ stamps FINAL)

public:
    QString topic;
    QString status; ///< in the words of the analysis
    QString at;

    [[nodiscard]] bool isDone() const;
    [[nodiscard]] bool isPartial() const;
    [[nodiscard]] QStringList stamps() const;
    [[nodiscard]] QStringList words(const QString& language, Wording wording) const;
    bool operator==(const AgendaItem&) const = default;
};

struct MeetingNumber {
    Q_GADGET
    QML_VALUE_TYPE(meetingNumber)
    Q_PROPERTY(QString metric MEMBER metric FINAL)
    Q_PROPERTY(QString value MEMBER value FINAL)
    Q_PROPERTY(QString note MEMBER note FINAL)
    Q_PROPERTY(QStringList stamps READ stamps FINAL)

public:
    QString metric;
    QString value; ///< with its unit
    QString at;
    QString note; ///< empty: none

    [[nodiscard]] QStringList stamps() const;
    [[nodiscard]] QStringList words(const QString& language, Wording wording) const;
    bool operator==(const MeetingNumber&) const = default;
};

/// An idea that was discussed.
struct Concept {
    Q_GADGET
    QML_VALUE_TYPE(discussedConcept)
    Q_PROPERTY(QString idea MEMBER idea FINAL)
    Q_PROPERTY(QStringList pros MEMBER pros FINAL)
    Q_PROPERTY(QStringList cons MEMBER cons FINAL)
    Q_PROPERTY(QStringList stamps READ stamps FINAL)

public:
    QString idea;
    QStringList pros;
    QStringList cons;
    QString at;

    [[nodiscard]] QStringList stamps() const;
    [[nodiscard]] QStringList words(const QString& language, Wording wording) const;
    bool operator==(const Concept&) const = default;
};

struct MeetingRole {
    Q_GADGET
    QML_VALUE_TYPE(meetingRole)
    Q_PROPERTY(QString who MEMBER who FINAL)
    Q_PROPERTY(QString role MEMBER role FINAL)
    Q_PROPERTY(QString evidence MEMBER evidence FINAL)
    Q_PROPERTY(QStringList stamps READ stamps FINAL)

public:
    QString who;
    QString role;
    QString evidence;
    QString at;

    [[nodiscard]] QStringList stamps() const;
    [[nodiscard]] QStringList words(const QString& language, Wording wording) const;
    bool operator==(const MeetingRole&) const = default;
};

} // namespace murmeli
