#include "ReportRow.h"

#include "MeetingReport.h"
#include "base/Text.h"
#include "localisation/Language.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace murmeli {

bool ReportRow::holds(const QString& stamp) const
{
    return stamps.contains(stamp) ||
           std::ranges::any_of(sides, [&](const ReportSide& side) { return side.at == stamp; });
}

QString ReportRow::firstStamp() const
{
    if (!stamps.isEmpty()) return stamps.first();
    const auto found = std::ranges::find_if(sides, [](const ReportSide& side) { return !side.at.isEmpty(); });
    return found == sides.end() ? QString{} : found->at;
}

namespace reportRows {

namespace {

/// As much of a count as a row can show.
int shown(qint64 count) { return int(std::clamp<qint64>(count, 0, std::numeric_limits<int>::max())); }

constexpr qsizetype mostInRow = 60; // of a kind; each is a control of its own, and all are made at once
constexpr double longestSeconds = 1e12;

QString shown(const QString& text) { return text::shortened(text); }
QString shown(const std::optional<QString>& text) { return text::shortened(text.value_or(QString{})); }

QStringList shown(const QStringList& texts)
{
    QStringList result;
    for (const QString& text : texts.first(std::min(texts.size(), mostInRow)))
        result.append(shown(text));
    return result;
}

QStringList stamps(const QStringList& at)
{
    QStringList result;
    for (const QString& stamp : at) {
        if (!stamp.isEmpty() && result.size() < mostInRow) result.append(stamp);
    }
    return result;
}

double within(double share) { return std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0.0; }

class Rows {
public:
    /// A heading and below it a card with a row for every item.
    template <typename Items, typename Make>
    void section(const char* key, const Items& items, Make make)
    {
        if (items.isEmpty()) return;
        m_rows.append({.kind = reportKind::Heading, .key = QString::fromLatin1(key)});
        const qsizetype first = m_rows.size();
        for (const auto& item : items)
            m_rows.append(make(item));
        m_rows[first].first = true;
        m_rows.last().last = true;
    }
    void note(const char* key) { m_rows.append({.kind = reportKind::Note, .key = QString::fromLatin1(key)}); }
    [[nodiscard]] QList<ReportRow> all() const { return m_rows; }

private:
    QList<ReportRow> m_rows;
};

ReportRow metricRow(const ReportMetric& metric)
{
    return {.kind = reportKind::Metric,
            .key = metric.titleKey,
            .share = metric.share(),
            .count = metric.done,
            .total = metric.total};
}

ReportRow disagreementRow(const Disagreement& disagreement)
{
    ReportRow row{.kind = reportKind::Disagreement,
                  .title = shown(disagreement.topic),
                  .ending = shown(disagreement.outcome)};
    for (const Disagreement::Side& side : disagreement.sides) {
        if (row.sides.size() == mostInRow) break;
        ReportSide shownSide;
        shownSide.who = shown(side.who);
        shownSide.position = shown(side.position);
        shownSide.at = stamps({side.at}).value(0);
        row.sides.append(shownSide);
    }
    return row;
}

QList<ReportRow> dynamics(const MeetingReport& report)
{
    if (report.speakers.isEmpty()) return {};
    QList<ReportRow> rows{{.kind = reportKind::Stats,
                           .value = mmss(report.durationSec),
                           .firm = report.analyticsExact,
                           .share = within(report.speechShare),
                           .count = shown(report.turns),
                           .total = shown(report.longPauses)}};
    for (const SpeakerShare& speaker : report.speakers) {
        rows.append({.kind = reportKind::Speaker,
                     .title = shown(speaker.name),
                     .value = mmss(speaker.seconds),
                     .share = within(speaker.share),
                     .seconds = speaker.seconds,
                     .count = int(rows.size()) - 1});
    }
    return rows;
}

/// The parts that are there.
QString joined(const QStringList& parts, const QString& separator)
{
    QStringList present = parts;
    present.removeAll(QString{});
    return present.join(separator);
}

/// What a row says, without its own stamps.
QStringList words(const ReportRow& row, const QString& language, bool stampsOfSides)
{
    QStringList lines{joined({row.title, row.lead, row.value}, u" · "_s), row.body, row.quote};
    for (const ReportSide& side : row.sides)
        lines.append(joined({joined({side.who, side.position}, u": "_s), stampsOfSides ? side.at : QString{}},
                            u" "_s));
    for (const QString& text : row.pros)
        lines.append(u"+ "_s + text);
    for (const QString& text : row.cons)
        lines.append(u"− "_s + text);
    if (!row.ending.isEmpty()) {
        const bool commitment = row.kind == reportKind::Commitment;
        lines.append(
            Language::text(language, commitment ? u"report.dod"_s : u"report.outcome"_s, row.ending));
    }
    return lines;
}

} // namespace

QString mmss(double seconds)
{
    const qint64 s = std::isfinite(seconds) ? qint64(std::clamp(seconds, 0.0, longestSeconds)) : 0;
    const auto two = [](qint64 number) { return QString::number(number).rightJustified(2, u'0'); };
    if (s < 3600) return QString::number(s / 60) + u':' + two(s % 60);
    return QString::number(s / 3600) + u':' + two(s % 3600 / 60) + u':' + two(s % 60);
}

QList<ReportRow> of(const MeetingReport& report)
{
    Rows rows;
    rows.section("report.metrics", report.metrics(), metricRow);
    rows.section("report.blockers", report.blockers, [](const QString& blocker) {
        return ReportRow{.kind = reportKind::Blocker, .body = shown(blocker)};
    });
    rows.section("report.insights", report.insights, [](const Insight& insight) {
        return ReportRow{.kind = reportKind::Insight,
                         .title = shown(insight.title),
                         .body = shown(insight.detail),
                         .stamps = stamps(insight.at)};
    });
    rows.section("report.commitments", report.commitments, [](const Commitment& commitment) {
        return ReportRow{.kind = reportKind::Commitment,
                         .title = shown(commitment.who),
                         .lead = shown(commitment.due),
                         .body = shown(commitment.what),
                         .quote = shown(commitment.quote),
                         .ending = shown(commitment.definitionOfDone),
                         .stamps = stamps({commitment.at}),
                         .firm = commitment.isFirm()};
    });
    rows.section("report.disagreements", report.disagreements, disagreementRow);
    rows.section("report.agenda", report.agenda, [](const AgendaItem& item) {
        return ReportRow{.kind = reportKind::Agenda,
                         .title = shown(item.topic),
                         .value = shown(item.status),
                         .stamps = stamps({item.at}),
                         .firm = item.isDone(),
                         .partial = item.isPartial()};
    });
    rows.section("report.numbers", report.numbers, [](const MeetingNumber& number) {
        return ReportRow{.kind = reportKind::Number,
                         .title = shown(number.metric),
                         .body = shown(number.note),
                         .value = shown(number.value),
                         .stamps = stamps({number.at})};
    });
    rows.section("report.concepts", report.concepts, [](const Concept& idea) {
        return ReportRow{.kind = reportKind::Concept,
                         .title = shown(idea.idea),
                         .stamps = stamps({idea.at}),
                         .pros = shown(idea.pros),
                         .cons = shown(idea.cons)};
    });
    rows.section("report.roles", report.roles, [](const MeetingRole& role) {
        return ReportRow{.kind = reportKind::Role,
                         .title = shown(role.who),
                         .lead = shown(role.role),
                         .body = shown(role.evidence),
                         .stamps = stamps({role.at})};
    });
    if (!report.roles.isEmpty()) rows.note("report.roles.note");
    rows.section("report.dynamics", dynamics(report), [](const ReportRow& row) { return row; });
    if (!report.speakers.isEmpty())
        rows.note(report.analyticsExact ? "report.dynamics.exact" : "report.dynamics.approx");
    rows.note("report.note");
    return rows.all();
}

QString text(const ReportRow& row, const QString& language)
{
    QStringList lines = words(row, language, true);
    lines.append(row.stamps.join(u' '));
    return joined(lines, u"\n"_s);
}

QString spoken(const ReportRow& row, const QString& language)
{
    QStringList lines = words(row, language, false);
    if (row.kind == reportKind::Commitment)
        lines.append(Language::text(language, row.firm ? u"report.firm"_s : u"report.soft"_s));
    return text::shortened(joined(lines, u", "_s));
}

} // namespace reportRows

} // namespace murmeli
