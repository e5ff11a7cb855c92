#pragma once

#include <QString>

/// Numbers as they are read out.
namespace murmeli::numbers {

/// `percent` as `language` ("ru", "en") writes it, as "42 %". Any thread.
QString percent(int percent, const QString& language);

/// `percent` as `language` ("ru", "en") says it, as "42 процента". Any thread.
QString spokenPercent(int percent, const QString& language);

} // namespace murmeli::numbers
