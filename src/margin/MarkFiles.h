#pragma once

#include "Mark.h"
#include "service/OwnFile.h"

#include <QList>

namespace murmeli {

struct Meeting;
struct Paths;

/// Where marks are kept: those of a meeting in its margin, those that have none yet in a file of their own.
/// Everything here waits for the disk: beside the main thread, any thread.
class MarkFiles {
public:
    explicit MarkFiles(const Paths& paths);

    struct Read {
        QList<Mark> marks; ///< by their time
        bool unreadable = false;
    };

    /// Those that have no meeting yet.
    [[nodiscard]] Read waiting() const;
    [[nodiscard]] OwnWritten add(const Mark& mark) const;
    [[nodiscard]] OwnWritten removeWaiting(const Mark& mark) const;

    /// Those of a meeting, by its id; none for an id that would lead out of the folder.
    [[nodiscard]] Read of(const QString& meeting) const;
    [[nodiscard]] OwnWritten addTo(const QString& meeting, const Mark& mark) const;
    /// Puts `now` in the place of `before`; removes that when `now` has no text.
    [[nodiscard]] OwnWritten change(const QString& meeting, const Mark& before, const Mark& now) const;

    /// Moves the marks to the margins of the meetings in which they were made: first in there, then out of
    /// here, so that a kill between them leaves a mark twice, which the next move mends, and never none.
    [[nodiscard]] OwnWritten settle(const QList<Meeting>& meetings) const;

    /// The margin of a meeting, in which other things may stand beside the marks.
    [[nodiscard]] OwnFile margin(const QString& meeting) const;

private:
    QString m_folder;
    OwnLines m_waiting;
};

/// Whether a mark was made in the meeting.
[[nodiscard]] bool belongs(const Mark& mark, const Meeting& meeting);

} // namespace murmeli
