#include "Numbers.h"

#include <unicode/locid.h>
#include <unicode/numberformatter.h>

namespace murmeli::numbers {

namespace {

QString formatted(int percent, const QString& language, UNumberUnitWidth width)
{
    UErrorCode status = U_ZERO_ERROR;
    const auto format = icu::number::NumberFormatter::withLocale(icu::Locale{language.toUtf8().constData()})
                            .unit(icu::NoUnit::percent())
                            .unitWidth(width);
    const icu::UnicodeString text = format.formatInt(percent, status).toString(status);
    return U_FAILURE(status) ? QString::number(percent) : QString::fromUtf16(text.getBuffer(), text.length());
}

} // namespace

QString percent(int percent, const QString& language)
{
    return formatted(percent, language, UNUM_UNIT_WIDTH_SHORT);
}

QString spokenPercent(int percent, const QString& language)
{
    return formatted(percent, language, UNUM_UNIT_WIDTH_FULL_NAME);
}

} // namespace murmeli::numbers
