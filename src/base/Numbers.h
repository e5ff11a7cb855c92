#pragma once

#include <QString>

/// Numbers as they are written and read out.
namespace murmeli::numbers {

/// `percent` as `language` ("ru", "en") writes it, as "42 %". Any thread.
QString percent(int percent, const QString& language);

/// `percent` as `language` ("ru", "en") says it, as "42 процента". Any thread.
QString spokenPercent(int percent, const QString& language);

/// `number` with its digits in groups, as "10 000". Any thread.
QString grouped(qint64 number, const QString& language);

/// Which form of a word stands beside a whole number: "one", "few" or "many"; English has only the first and
/// the last. Any thread.
QString pluralForm(qint64 number, const QString& language);

} // namespace murmeli::numbers
