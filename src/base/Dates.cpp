#include "Dates.h"

#include <QTimeZone>

#include <map>
#include <memory>
#include <unicode/dtptngen.h>
#include <unicode/measfmt.h>
#include <unicode/measunit.h>
#include <unicode/measure.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <vector>

namespace murmeli::dates {

namespace {

icu::UnicodeString toIcu(const QString& text)
{
    return {reinterpret_cast<const char16_t*>(text.utf16()), int32_t(text.size())};
}

QString fromIcu(const icu::UnicodeString& text)
{
    return QString::fromUtf16(text.getBuffer(), text.length());
}

std::unique_ptr<icu::SimpleDateFormat> makeFormat(const QString& language, const QString& skeleton)
{
    const icu::Locale locale{language.toUtf8().constData()};
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::DateTimePatternGenerator> patterns{
        icu::DateTimePatternGenerator::createInstance(locale, status)};
    if (U_FAILURE(status)) return nullptr;
    const icu::UnicodeString pattern = patterns->getBestPattern(toIcu(skeleton), status);
    auto format = std::make_unique<icu::SimpleDateFormat>(pattern, locale, status);
    return U_FAILURE(status) ? nullptr : std::move(format);
}

} // namespace

QString bySkeleton(const QDateTime& moment, const QString& language, const QString& skeleton)
{
    if (!moment.isValid()) return {};
    // Making one takes a millisecond, and a list has many dates. ICU's formats are not for several threads.
    thread_local std::map<std::pair<QString, QString>, std::unique_ptr<icu::SimpleDateFormat>> formats;
    auto [found, isNew] = formats.try_emplace({language, skeleton});
    if (isNew) found->second = makeFormat(language, skeleton);
    if (!found->second) return {};
    const icu::UnicodeString zone = toIcu(QString::fromLatin1(QTimeZone::systemTimeZoneId()));
    icu::UnicodeString known;
    if (found->second->getTimeZone().getID(known) != zone) { // the traveller's has changed
        found->second->adoptTimeZone(icu::TimeZone::createTimeZone(zone));
    }
    icu::UnicodeString result;
    found->second->format(UDate(moment.toMSecsSinceEpoch()), result);
    return fromIcu(result);
}

QString spokenDuration(qint64 seconds, const QString& language)
{
    UErrorCode status = U_ZERO_ERROR;
    thread_local std::map<QString, std::unique_ptr<icu::MeasureFormat>> formats;
    auto [found, isNew] = formats.try_emplace(language);
    if (isNew)
        found->second = std::make_unique<icu::MeasureFormat>(icu::Locale{language.toUtf8().constData()},
                                                             UMEASFMT_WIDTH_WIDE, status);
    std::vector<icu::Measure> parts;
    if (seconds >= 60)
        parts.emplace_back(icu::Formattable{int64_t(seconds / 60)}, icu::MeasureUnit::createMinute(status),
                           status);
    parts.emplace_back(icu::Formattable{int64_t(seconds % 60)}, icu::MeasureUnit::createSecond(status),
                       status);
    icu::UnicodeString result;
    icu::FieldPosition ignored;
    found->second->formatMeasures(parts.data(), int32_t(parts.size()), result, ignored, status);
    return U_FAILURE(status) ? QString{} : fromIcu(result);
}

QString iso8601(double seconds)
{
    return QDateTime::fromSecsSinceEpoch(qint64(seconds), Qt::UTC).toString(Qt::ISODate);
}

QString iso8601Local(const QDateTime& moment)
{
    return moment.toOffsetFromUtc(moment.offsetFromUtc()).toString(Qt::ISODate);
}

std::optional<double> fromIso8601(const QString& text)
{
    const QDateTime moment = QDateTime::fromString(text, Qt::ISODate);
    return moment.isValid() ? std::optional{double(moment.toSecsSinceEpoch())} : std::nullopt;
}

} // namespace murmeli::dates
