#include "MeetingReport.h"

#include "base/Json.h"
#include "base/Text.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qsizetype mostInClaim = 60; // of a kind; each is a control of its own, and all are made at once

QString trimmedText(const QJsonObject& object, QLatin1StringView key)
{
    return text::shortened(text::trimmed(json::text(object, key)));
}

/// Models like to write "null" for what they do not know. Only the bare word counts as that.
QString known(const QJsonObject& object, QLatin1StringView key)
{
    return json::text(object, key).toLower() == "null"_L1 ? QString{} : trimmedText(object, key);
}

QStringList texts(const QJsonObject& object, QLatin1StringView key)
{
    QStringList result;
    const QJsonArray array = object.value(key).toArray();
    for (const auto& value : array) {
        if (value.isString()) result.append(text::shortened(value.toString()));
    }
    return result;
}

template <typename List>
List inClaim(const List& list)
{
    return list.first(std::min(list.size(), mostInClaim));
}

/// One item for every element; none at all when an element is no object.
template <typename Item, typename Decode>
QList<Item> items(const QJsonObject& object, QLatin1StringView key, Decode decode)
{
    const QJsonArray array = object.value(key).toArray();
    if (!std::ranges::all_of(array, [](const QJsonValue& value) { return value.isObject(); })) return {};
    QList<Item> result;
    result.reserve(array.size());
    for (const auto& value : array)
        result.append(decode(value.toObject()));
    return result;
}

Commitment commitment(const QJsonObject& o)
{
    return {.who = trimmedText(o, "who"_L1),
            .what = trimmedText(o, "what"_L1),
            .due = known(o, "due"_L1),
            .quote = trimmedText(o, "quote"_L1),
            .at = trimmedText(o, "at"_L1),
            .firmness = trimmedText(o, "firmness"_L1),
            .definitionOfDone = known(o, "definition_of_done"_L1)};
}

Disagreement disagreement(const QJsonObject& o)
{
    const auto side = [](const QJsonObject& s) {
        return DisagreementSide{.who = trimmedText(s, "who"_L1),
                                .position = trimmedText(s, "position"_L1),
                                .at = trimmedText(s, "at"_L1)};
    };
    return {.topic = trimmedText(o, "topic"_L1),
            .sides = inClaim(items<DisagreementSide>(o, "sides"_L1, side)),
            .outcome = trimmedText(o, "outcome"_L1)};
}

MeetingNumber meetingNumber(const QJsonObject& o)
{
    return {.metric = trimmedText(o, "metric"_L1),
            .value = trimmedText(o, "value"_L1),
            .at = trimmedText(o, "at"_L1),
            .note = known(o, "note"_L1)};
}

Insight insight(const QJsonObject& o)
{
    return {.kind = trimmedText(o, "kind"_L1),
            .title = trimmedText(o, "title"_L1),
            .detail = trimmedText(o, "detail"_L1),
            .at = inClaim(texts(o, "at"_L1))};
}

AgendaItem agendaItem(const QJsonObject& o)
{
    return {.topic = trimmedText(o, "topic"_L1),
            .status = trimmedText(o, "status"_L1),
            .at = trimmedText(o, "at"_L1)};
}

MeetingRole meetingRole(const QJsonObject& o)
{
    return {.who = trimmedText(o, "who"_L1),
            .role = trimmedText(o, "role"_L1),
            .evidence = trimmedText(o, "evidence"_L1),
            .at = trimmedText(o, "at"_L1)};
}

Concept idea(const QJsonObject& o)
{
    return {.idea = trimmedText(o, "idea"_L1),
            .pros = inClaim(texts(o, "pros"_L1)),
            .cons = inClaim(texts(o, "cons"_L1)),
            .at = trimmedText(o, "at"_L1)};
}

SpeakerShare speakerShare(const QJsonObject& o)
{
    return {.name = trimmedText(o, "name"_L1),
            .seconds = json::number(o, "seconds"_L1).value_or(0),
            .share = json::number(o, "share"_L1).value_or(0)};
}

template <typename List, typename Property>
int countOf(const List& list, Property property)
{
    return int(std::ranges::count_if(list, property));
}

} // namespace

MeetingReport MeetingReport::parse(const QJsonObject& analysis)
{
    MeetingReport report;
    report.commitments = items<Commitment>(analysis, "commitments"_L1, commitment);
    report.disagreements = items<Disagreement>(analysis, "disagreements"_L1, disagreement);
    report.blockers = texts(analysis, "blockers"_L1);
    report.numbers = items<MeetingNumber>(analysis, "numbers"_L1, meetingNumber);
    report.insights = items<Insight>(analysis, "insights"_L1, insight);
    report.agenda = items<AgendaItem>(analysis, "agenda_coverage"_L1, agendaItem);
    report.roles = items<MeetingRole>(analysis, "roles"_L1, meetingRole);
    report.concepts = items<Concept>(analysis, "concepts"_L1, idea);
    return report;
}

void MeetingReport::applyAnalytics(const QJsonObject& analytics)
{
    durationSec = json::number(analytics, "duration_sec"_L1).value_or(0);
    speechShare = json::number(analytics, "speech_share"_L1).value_or(0);
    turns = json::integer(analytics, "turns"_L1).value_or(0);
    pauses = json::integer(analytics, "pauses"_L1).value_or(0);
    longPauses = json::integer(analytics, "long_pauses"_L1).value_or(0);
    analyticsExact = json::text(analytics, "source"_L1) == "segments"_L1;
    speakers = items<SpeakerShare>(analytics, "speakers"_L1, speakerShare);
}

bool MeetingReport::isEmpty() const
{
    return commitments.isEmpty() && disagreements.isEmpty() && numbers.isEmpty() && insights.isEmpty() &&
           agenda.isEmpty();
}

QList<ReportMetric> MeetingReport::metrics() const
{
    QList<ReportMetric> result;
    if (const int total = int(commitments.size()); total > 0) {
        const auto add = [&](const char* key, auto property) {
            result.append({QString::fromLatin1(key), countOf(commitments, property), total});
        };
        add("report.metric.owner", [](const Commitment& c) { return !c.who.isEmpty(); });
        add("report.metric.due", [](const Commitment& c) { return !c.due.isEmpty(); });
        add("report.metric.firm", &Commitment::isFirm);
        add("report.metric.dod", [](const Commitment& c) { return !c.definitionOfDone.isEmpty(); });
    }
    if (!agenda.isEmpty())
        result.append({u"report.metric.agenda"_s, countOf(agenda, &AgendaItem::isDone), int(agenda.size())});
    return result;
}

} // namespace murmeli
