#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

namespace murmeli {

/// What is known to be wrong with a recording's sound.
enum class Heard {
    Enough, ///< or nobody can tell
    Little, ///< hardly any speech
    OneVoice,
};

/// One recorded meeting, as its summary file tells it.
struct Meeting {
    QString id; ///< the summary file's name without its suffix: the stem
    QString title;
    QString tldr; ///< its summary in a paragraph; may be empty
    QDateTime startedAt;
    std::optional<double> durationMin; ///< minutes
    std::optional<QString> protocolPath;
    QString jsonPath; ///< the summary file
    Heard heard = Heard::Enough;

    /// When it ended; nothing without a length.
    [[nodiscard]] std::optional<QDateTime> endedAt() const;

    bool operator==(const Meeting&) const = default;
};

} // namespace murmeli
