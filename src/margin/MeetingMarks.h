#pragma once

#include "MarkFiles.h"
#include "base/Lease.h"

#include <QObject>
#include <QThreadPool>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace murmeli {

class Scheduler;

/// The marks of an opened meeting. What is removed can be brought back for a while. Main thread only.
class MeetingMarks final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a meeting and handed to its view")
    Q_PROPERTY(QList<murmeli::Mark> marks READ marks NOTIFY changed FINAL)
    Q_PROPERTY(bool removed READ removed NOTIFY changed FINAL) ///< the last one can be brought back
    Q_PROPERTY(bool failed READ failed NOTIFY changed FINAL)   ///< the last change could not be written

public:
    MeetingMarks(const Paths& paths, QString meeting, Scheduler& scheduler, QObject* parent = nullptr);
    ~MeetingMarks() override;
    Q_DISABLE_COPY_MOVE(MeetingMarks)

    [[nodiscard]] QList<Mark> marks() const { return m_marks; }
    [[nodiscard]] bool removed() const { return m_removed.has_value(); }
    [[nodiscard]] bool failed() const { return m_failed; }

    /// Notes something to a moment that has passed.
    void add(const Mark& mark);
    /// Another text for a mark; without one it is removed.
    Q_INVOKABLE void edit(int index, const QString& text);
    Q_INVOKABLE void remove(int index) { edit(index, {}); }
    /// For 8 s after a mark was removed.
    Q_INVOKABLE void bringBack();

    /// Reads them again.
    void load();

signals:
    void changed();

private:
    void write(std::function<OwnWritten()> work);

    MarkFiles m_files;
    QString m_meeting;
    Scheduler& m_scheduler;
    QList<Mark> m_marks;
    std::optional<Mark> m_removed;
    bool m_failed = false;
    Lease m_regret;
    QThreadPool m_disk; ///< one thread, so that everything is written in its order
};

} // namespace murmeli
