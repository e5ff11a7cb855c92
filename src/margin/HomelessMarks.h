#pragma once

#include "MarkFiles.h"
#include "base/Lease.h"

#include <QObject>
#include <QThreadPool>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>

namespace murmeli {

class AppState;
class Language;
class MeetingListModel;
class Scheduler;

/// Marks that have found no meeting ten minutes after the service was done: they can be put to one by hand.
/// Those whose meeting stands in the list by now move there by themselves. Main thread only.
class HomelessMarks final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the main window")
    Q_PROPERTY(QList<murmeli::Mark> marks READ marks NOTIFY changed FINAL)
    Q_PROPERTY(bool removed READ removed NOTIFY changed FINAL) ///< the last one can be brought back
    Q_PROPERTY(bool failed READ failed NOTIFY changed FINAL)   ///< the last change could not be written

public:
    struct Ground {
        const Paths& paths;
        const AppState& state;
        const MeetingListModel& meetings;
        const Language& language;
        Scheduler& scheduler;
    };
    explicit HomelessMarks(const Ground& ground, QObject* parent = nullptr);
    ~HomelessMarks() override;
    Q_DISABLE_COPY_MOVE(HomelessMarks)

    [[nodiscard]] QList<Mark> marks() const { return m_marks; }
    [[nodiscard]] bool removed() const { return m_removed.has_value(); }
    [[nodiscard]] bool failed() const { return m_failed; }

    /// Reads which marks wait, and moves those home whose meeting is known.
    void look();

    /// Day and time of a mark.
    Q_INVOKABLE [[nodiscard]] QString when(const murmeli::Mark& mark) const;
    /// The ids of the meetings that began closest to a mark, the closest first.
    Q_INVOKABLE [[nodiscard]] QStringList nearest(const murmeli::Mark& mark) const;
    /// Day, time and title of a meeting.
    Q_INVOKABLE [[nodiscard]] QString line(const QString& meeting) const;

    Q_INVOKABLE void put(const murmeli::Mark& mark, const QString& meeting);
    Q_INVOKABLE void remove(const murmeli::Mark& mark);
    /// For 8 s after a mark was removed.
    Q_INVOKABLE void bringBack();

signals:
    void changed();
    void settled(); ///< marks have moved to meetings

private:
    void followService();
    void take(const QList<Mark>& waiting);
    void write(std::function<OwnWritten()> work);

    Ground m_ground;
    MarkFiles m_files;
    QList<Mark> m_marks;
    std::optional<Mark> m_removed;
    std::optional<double> m_doneSince; ///< since when the service does nothing, in seconds since 1970 UTC
    bool m_failed = false;
    quint64 m_changes = 0; ///< made here so far
    Lease m_regret;
    QThreadPool m_disk; ///< one thread, so that everything is written in its order
};

} // namespace murmeli
