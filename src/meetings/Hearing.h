#pragma once

#include "Meeting.h"
#include "base/Files.h"

#include <QHash>
#include <QList>
#include <QSet>

namespace murmeli {

/// Finds recordings in which hardly anything was heard: by the service's figures of the talk, and by
/// transcripts that are too short to say anything.
class Hearing final {
public:
    static constexpr qsizetype fewestCharacters = 201; ///< of a transcript that says something

    /// By the figures in a summary file. \param speechShare 0 to 1, where it is exact; \param speakers their
    /// number, where it is known. Any thread.
    static Heard of(std::optional<double> speechShare, std::optional<qsizetype> speakers,
                    std::optional<double> durationMin);

    /// The ids of those whose transcript is too short. Reads protocols again only when they have changed; one
    /// thread at a time, which may wait for the disk.
    QSet<QString> tooShort(const QList<Meeting>& meetings);

private:
    struct Known {
        files::Identity file;
        bool little = false;
    };
    QHash<QString, Known> m_known; ///< by the protocol's path
};

} // namespace murmeli
