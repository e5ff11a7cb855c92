#pragma once

#include "MarkFiles.h"

#include <QObject>
#include <QThreadPool>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

class AppState;
class Scheduler;

/// The marks of the running recording, and the one that is being written. Main thread only.
class RecordingMarks final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the panel")
    Q_PROPERTY(QString draft READ draft WRITE setDraft NOTIFY draftChanged FINAL)
    Q_PROPERTY(
        QList<murmeli::Mark> latest READ latest NOTIFY changed FINAL) ///< the newest first, three at most

public:
    RecordingMarks(const Paths& paths, const AppState& state, const Scheduler& scheduler,
                   QObject* parent = nullptr);
    ~RecordingMarks() override;
    Q_DISABLE_COPY_MOVE(RecordingMarks)

    [[nodiscard]] QString draft() const { return m_draft; }
    /// The mark's moment is that of its first letter.
    void setDraft(const QString& draft);

    [[nodiscard]] QList<Mark> latest() const;

    /// Notes the draft; nothing when it is empty or nothing is being recorded.
    Q_INVOKABLE void add();

    /// These have come: marks that were made in one of them move there.
    void settle(const QList<Meeting>& meetings);

signals:
    void changed();
    void draftChanged();
    void notWritten(murmeli::OwnWritten why); ///< what was added is the draft again
    void settled();                           ///< marks may have moved to their meetings

private:
    void look();

    MarkFiles m_files;
    const AppState& m_state;
    const Scheduler& m_scheduler;
    QString m_draft;
    double m_begun = 0;  ///< the draft, in seconds since 1970 UTC
    double m_begin = 0;  ///< of the recording, likewise; 0 when there is none
    QList<Mark> m_marks; ///< of the recording, by their time
    QThreadPool m_disk;  ///< one thread, so that everything is written in its order
};

} // namespace murmeli
