#pragma once

#include "Receipt.h"

/// A receipt in words. Pure functions, any thread.
namespace murmeli::receiptWords {

inline constexpr qsizetype longest =
    120; ///< characters of what stands in a file that somebody may have changed

QString title(const Receipt& receipt, const QString& language);  ///< what it was
QString place(const Receipt& receipt, const QString& language);  ///< where to
QString result(const Receipt& receipt, const QString& language); ///< what has become of it; may be empty

} // namespace murmeli::receiptWords
