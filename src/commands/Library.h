#pragma once

#include "meetings/Meeting.h"
#include "meetings/ProtocolFinder.h"
#include "search/MeetingText.h"
#include "service/Paths.h"

#include <QDate>
#include <QList>
#include <QStringList>

#include <memory>
#include <optional>

namespace murmeli {

/// The meetings' files, for whoever asks once and ends. Waits for the disk.
class Library {
public:
    explicit Library(const Paths& paths);

    /// Of all summary files, the latest first as far as their names tell.
    [[nodiscard]] const QStringList& stems();

    [[nodiscard]] std::optional<Meeting> read(const QString& stem) const;

    struct Span {
        std::optional<QDate> since, until; ///< both inclusive
    };
    /// The newest of a span. The service names files after the begin of their meeting, so that the others
    /// need not be read.
    [[nodiscard]] QList<Meeting> newest(qsizetype most, const Span& span);

    /// Those that somebody may mean by a stem, the beginning of one, "last", or words of a title.
    [[nodiscard]] QList<Meeting> find(const QString& words);

    [[nodiscard]] const MeetingFiles& files() const { return m_files; }
    [[nodiscard]] const std::shared_ptr<ProtocolFinder>& protocols() const { return m_protocols; }

private:
    QString m_folder;
    std::shared_ptr<ProtocolFinder> m_protocols;
    MeetingFiles m_files;
    std::optional<QStringList> m_stems;
};

} // namespace murmeli
