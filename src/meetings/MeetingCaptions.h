#pragma once

#include "Meeting.h"

/// How a meeting's day and time are written. `language` is the interface's; `now` decides what is today.
/// Any thread.
namespace murmeli::captions {

/// "Сегодня", "Вчера", "Четверг, 19 нояб.", or with the year for another one than the current.
QString dayTitle(const QDate& day, const QDate& today, const QString& language);

/// "19 нояб.", or with the year for another one than the current.
QString shortDate(const QDate& day, const QDate& today, const QString& language);

/// "12:00 – 12:47", or the start alone.
QString timeRange(const Meeting& meeting, const QString& language);

/// "Сегодня, 14:32".
QString moment(const QDateTime& moment, const QDate& today, const QString& language);

/// Day and time in one line.
QString dateLine(const Meeting& meeting, const QDate& today, const QString& language);

/// The key of what is said about a recording's sound; empty when that is nothing.
QString heardKey(Heard heard);

} // namespace murmeli::captions
