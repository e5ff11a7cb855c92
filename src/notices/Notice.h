#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

namespace noticeKind {
Q_NAMESPACE
QML_NAMED_ELEMENT(NoticeKind)
/// What the program says of the service unasked, in the order in which it stands in the panel.
enum NoticeKind { Trouble, Disk, Forgotten, Slow, Ready };
Q_ENUM_NS(NoticeKind)
inline constexpr int count = Ready + 1;
} // namespace noticeKind

namespace noticeTone {
Q_NAMESPACE
QML_NAMED_ELEMENT(NoticeTone)
enum NoticeTone { Passing, Starting, Warning, Failure, Good };
Q_ENUM_NS(NoticeTone)
} // namespace noticeTone

/// A button of a notice.
class NoticeAction {
    Q_GADGET
    QML_VALUE_TYPE(noticeAction)
    Q_PROPERTY(int action MEMBER action FINAL)
    Q_PROPERTY(QString text MEMBER text FINAL)
    Q_PROPERTY(bool first MEMBER first FINAL)

public:
    enum Action {
        TryAgain,
        Install,
        ShowPermissions,
        ShowRecordings,
        ShowLog,
        Stop,
        GoOn,
        Open,
        CopySummary
    };
    int action = TryAgain;
    QString text;
    bool first = false; ///< what most will want
    bool operator==(const NoticeAction&) const = default;
};

/// A banner of the panel, and the card that announces it.
class Notice {
    Q_GADGET
    QML_VALUE_TYPE(notice)
    Q_PROPERTY(bool shown MEMBER shown FINAL)
    Q_PROPERTY(int tone MEMBER tone FINAL)
    Q_PROPERTY(QString symbol MEMBER symbol FINAL)
    Q_PROPERTY(QString title MEMBER title FINAL)
    Q_PROPERTY(QString body MEMBER body FINAL)
    Q_PROPERTY(QList<murmeli::NoticeAction> actions MEMBER actions FINAL)
    Q_PROPERTY(bool closable MEMBER closable FINAL)

public:
    bool shown = false;
    int tone = noticeTone::Warning;
    QString symbol;
    QString title;
    QString body;
    QString brief; ///< what a card has room for; empty: all of the body
    QList<NoticeAction> actions;
    bool closable = false;
    bool operator==(const Notice&) const = default;
};

} // namespace murmeli
