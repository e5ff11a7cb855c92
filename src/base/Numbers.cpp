#include "Numbers.h"

#include <memory>
#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/plurrule.h>

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

QString grouped(qint64 number, const QString& language)
{
    UErrorCode status = U_ZERO_ERROR;
    const auto text = icu::number::NumberFormatter::withLocale(icu::Locale{language.toUtf8().constData()})
                          .formatInt(number, status)
                          .toString(status);
    return U_FAILURE(status) ? QString::number(number) : QString::fromUtf16(text.getBuffer(), text.length());
}

QString pluralForm(qint64 number, const QString& language)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::PluralRules> rules{
        icu::PluralRules::forLocale(icu::Locale{language.toUtf8().constData()}, status)};
    if (U_FAILURE(status)) return QStringLiteral("many");
    const icu::UnicodeString form = rules->select(double(number));
    const QString name = QString::fromUtf16(form.getBuffer(), form.length());
    return name == QLatin1String("other") ? QStringLiteral("many") : name;
}

QString percent(int percent, const QString& language)
{
    return formatted(percent, language, UNUM_UNIT_WIDTH_SHORT);
}

QString spokenPercent(int percent, const QString& language)
{
    return formatted(percent, language, UNUM_UNIT_WIDTH_FULL_NAME);
}

} // namespace murmeli::numbers
