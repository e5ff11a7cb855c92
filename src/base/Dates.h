#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

/// Dates as people read them, formatted by ICU so that all systems agree.
namespace murmeli::dates {

/// `moment` in local time by the pattern that `language` ("ru", "en") has for an ICU skeleton such as
/// "EEEEdMMM" or "Hm"; empty when the moment is invalid. Any thread.
QString bySkeleton(const QDateTime& moment, const QString& language, const QString& skeleton);

/// A running time as it is read out, as "24 минуты 31 секунда"; without minutes when there are none.
QString spokenDuration(qint64 seconds, const QString& language);

/// ISO 8601 in UTC with whole seconds, as 2026-11-15T18:20:00Z. \param seconds since 1970-01-01 UTC.
QString iso8601(double seconds);
/// The same of a local moment, with the zone it stands in, as 2026-11-15T21:20:00+03:00.
QString iso8601Local(const QDateTime& moment);
/// And back; nothing when it is none.
std::optional<double> fromIso8601(const QString& text);

} // namespace murmeli::dates
