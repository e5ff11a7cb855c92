#pragma once

#include "Notice.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

class Desktop;
class Language;
class LongRecording;
struct Paths;
class Pulse;
class RecordControl;
class WriteUp;

/// What stands at the top of the panel about the service, and what its buttons do. The words are made when
/// somebody looks. Main thread only.
class NoticeBoard final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to each view")
    Q_PROPERTY(QList<murmeli::Notice> notices READ notices NOTIFY changed FINAL) ///< by their NoticeKind
    Q_PROPERTY(
        QString line READ line NOTIFY changed FINAL) ///< the trouble in a line; empty when there is none
    Q_PROPERTY(bool lineFails READ lineFails NOTIFY changed FINAL) ///< and it is a failure

public:
    /// What it stands among; all of it outlives the object.
    struct Ground {
        const Paths& paths;
        Pulse& pulse;
        LongRecording& longRecording;
        WriteUp& writeUp;
        RecordControl& record;
        const Language& language;
        Desktop& desktop;
    };

    explicit NoticeBoard(const Ground& ground, QObject* parent = nullptr);

    [[nodiscard]] QList<Notice> notices() const;
    [[nodiscard]] Notice notice(int kind) const; ///< a NoticeKind
    [[nodiscard]] QString line() const;
    [[nodiscard]] bool lineFails() const;

    /// Why the service did not do what it was asked for.
    [[nodiscard]] static QString reasonOf(const Pulse& pulse, const QString& language);

    Q_INVOKABLE void act(int kind, int action); ///< a NoticeAction::Action
    Q_INVOKABLE void dismiss(int kind);

signals:
    void changed();
    void installRequested();
    void permissionsRequested();
    void summaryCopied(const QString& id, qint64 bytes);
    void meetingRequested(const QString& id);
    void folderOpened(); ///< in a window of its own

private:
    [[nodiscard]] Notice trouble() const;
    [[nodiscard]] Notice disk() const;
    [[nodiscard]] Notice forgotten() const;
    [[nodiscard]] Notice slow() const;
    [[nodiscard]] Notice ready() const;
    [[nodiscard]] NoticeAction action(NoticeAction::Action action, const char* key, bool first = false) const;

    Ground m_ground;
};

} // namespace murmeli
