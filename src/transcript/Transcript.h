#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

namespace murmeli {

/// A line of a transcript.
struct TranscriptLine {
    QString stamp;                 ///< as it is written, without its brackets
    std::optional<qint64> seconds; ///< from the meeting's begin
    QString speaker;               ///< empty when the line names none
    QString words;

    bool operator==(const TranscriptLine&) const = default;
};

/// What was said at a meeting: lines that begin with a time stamp, as "[00:12:31]". A plain value; any
/// thread.
class Transcript final {
public:
    Transcript() = default;
    explicit Transcript(const QString& text);

    /// Of a stamp with two or three numbers, "12:34" or "[01:02:03]"; of one with more, its first two are
    /// minutes and seconds. Nothing when it is no stamp or beyond what can be counted.
    static std::optional<qint64> seconds(QStringView stamp);

    /// All lines, in their order.
    [[nodiscard]] QList<TranscriptLine> lines() const;

    /// A line, and those beside it.
    struct Quote {
        QString text;
        QString before; ///< empty at the beginning, as is the next at the end
        QString after;
    };
    /// What was being said at `stamp`: its own line, or the last one that began before it.
    [[nodiscard]] std::optional<Quote> quote(const QString& stamp) const;

private:
    struct Mark {
        qint64 seconds = 0;
        qsizetype line = 0;
    };
    [[nodiscard]] QString line(qsizetype index) const;

    QString m_text; ///< the others point into it
    QList<QStringView> m_lines;
    QList<QStringView> m_stamps;             ///< of the lines
    QHash<QStringView, qsizetype> m_byStamp; ///< of equal stamps the last line
    QList<Mark> m_marks;                     ///< ascending; of equal seconds the first stamp
};

} // namespace murmeli
