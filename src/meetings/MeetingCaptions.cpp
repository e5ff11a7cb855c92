#include "MeetingCaptions.h"

#include "base/Dates.h"
#include "base/Text.h"
#include "localisation/Language.h"

using namespace Qt::StringLiterals;

namespace murmeli::captions {

QString dayTitle(const QDate& day, const QDate& today, const QString& language)
{
    if (day == today) return Language::text(language, u"day.today"_s);
    if (day == today.addDays(-1)) return Language::text(language, u"day.yesterday"_s);
    const QString skeleton = day.year() == today.year() ? u"EEEEdMMM"_s : u"EEEEdMMMyyyy"_s;
    return text::capitalizedFirst(dates::bySkeleton(day.startOfDay(), language, skeleton));
}

QString shortDate(const QDate& day, const QDate& today, const QString& language)
{
    const QString skeleton = day.year() == today.year() ? u"dMMM"_s : u"dMMMyyyy"_s;
    return dates::bySkeleton(day.startOfDay(), language, skeleton);
}

QString timeRange(const Meeting& meeting, const QString& language)
{
    const QString skeleton = u"Hm"_s;
    const QString start = dates::bySkeleton(meeting.startedAt, language, skeleton);
    const auto end = meeting.endedAt();
    return end ? start + u" – "_s + dates::bySkeleton(*end, language, skeleton) : start;
}

QString moment(const QDateTime& moment, const QDate& today, const QString& language)
{
    return dayTitle(moment.date(), today, language) + u", "_s + dates::bySkeleton(moment, language, u"Hm"_s);
}

QString dateLine(const Meeting& meeting, const QDate& today, const QString& language)
{
    return dayTitle(meeting.startedAt.date(), today, language) + Language::text(language, u"common.dot"_s) +
           timeRange(meeting, language);
}

QString heardKey(Heard heard)
{
    switch (heard) {
    case Heard::Little:
        return u"pulse.little"_s;
    case Heard::OneVoice:
        return u"pulse.little.voice"_s;
    case Heard::Enough:
        break;
    }
    return {};
}

} // namespace murmeli::captions
