#pragma once

#include "Meeting.h"

#include <QByteArray>

/// How a meeting is read from its summary file. Pure functions, any thread.
namespace murmeli::summaryFile {

inline constexpr QLatin1StringView suffix{".protocol.json"};
inline constexpr qint64 sizeLimit = 64 * 1024 * 1024; ///< bytes; a larger file is no summary

/// \param bytes the file's content, \param modifiedMs its time of change in milliseconds since 1970 UTC, for
/// files that do not say when their meeting began. \return nothing when it is not JSON or no object.
std::optional<Meeting> meeting(const QByteArray& bytes, const QString& path, const QString& stem,
                               std::optional<qint64> modifiedMs);

/// An internet date-time with or without fractions of a second, as 2025-03-04T10:15:30.123Z, in local time.
std::optional<QDateTime> internetDate(const QString& text);

/// The start that the service names its files after, as "2025-03-04 10-15-30" in local time.
std::optional<QDateTime> dateFromStem(const QString& stem);

} // namespace murmeli::summaryFile
