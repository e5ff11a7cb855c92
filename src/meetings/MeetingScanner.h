#pragma once

#include "Meeting.h"
#include "base/Files.h"

#include <QByteArray>
#include <QList>
#include <QThreadPool>

#include <unordered_map>

namespace murmeli {

/// A meeting as the list keeps it.
struct ListedMeeting {
    Meeting meeting;
    QString searchText; ///< lower-cased title and summary
    bool operator==(const ListedMeeting&) const = default;
};

/// Reads the folder of summary files, and reads again only what has changed since the last time. One thread
/// at a time, which gets help for many files; waits for the disk.
class MeetingScanner final {
public:
    struct Result {
        bool changed = false;          ///< since the last scan; the first one has always changed
        bool restless = false;         ///< a file was met in the middle of being written; look again soon
        QStringList touched;           ///< ids of those whose file was written since the last scan
        QList<ListedMeeting> meetings; ///< newest first; equal starts as the folder lists them
    };

    explicit MeetingScanner(const QString& folder);

    Result scan();

private:
    struct Known {
        files::Identity identity;
        bool settled = false;
        std::optional<ListedMeeting> listed; ///< nothing when the file is no summary
        size_t position = 0;                 ///< in the folder's order
        quint64 seen = 0;                    ///< number of the scan that met the file last
    };

    /// At one file, on whatever thread is free.
    struct Look {
        QByteArray name;
        Known* known;
        bool changed = false;
        bool restless = false;
        bool touched = false;
    };
    void look(Look& look) const;
    [[nodiscard]] QList<ListedMeeting> sorted() const;

    QByteArray m_folder;
    QByteArray m_zone; ///< its id, as of the last scan
    std::unordered_map<std::string, Known> m_known;
    QList<ListedMeeting> m_sorted;
    quint64 m_scan = 0;
    QThreadPool m_helpers; ///< its own: the process's pool may have just the thread that waits for them
};

} // namespace murmeli
