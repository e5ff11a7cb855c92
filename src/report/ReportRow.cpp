#include "ReportRow.h"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <limits>
#include <type_traits>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr double longestSeconds = 1e12;

template <reportKind::Kind kind, typename Value>
constexpr bool stands = std::same_as<std::variant_alternative_t<kind, ReportRow::Value>, Value>;
static_assert(stands<reportKind::Heading, ReportHeading> && stands<reportKind::Metric, ReportMetric> &&
              stands<reportKind::Blocker, Blocker> && stands<reportKind::Insight, Insight> &&
              stands<reportKind::Commitment, Commitment> && stands<reportKind::Disagreement, Disagreement> &&
              stands<reportKind::Agenda, AgendaItem> && stands<reportKind::Number, MeetingNumber> &&
              stands<reportKind::Concept, Concept> && stands<reportKind::Role, MeetingRole> &&
              stands<reportKind::Figures, TalkFigures> && stands<reportKind::Speaker, SpeakerFigures> &&
              stands<reportKind::Note, ReportNote>);

/// As much of a count as a row can show.
int shown(qint64 count) { return int(std::clamp<qint64>(count, 0, std::numeric_limits<int>::max())); }

double within(double share) { return std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0.0; }

class Rows {
public:
    /// A heading and below it a card with a row for every item.
    template <typename Items>
    void section(const QString& key, const Items& items)
    {
        if (items.isEmpty()) return;
        m_rows.append({.value = ReportHeading{key}});
        const qsizetype first = m_rows.size();
        for (const auto& item : items)
            m_rows.append({.value = item});
        m_rows[first].first = true;
        m_rows.last().last = true;
    }
    void note(const QString& key) { m_rows.append({.value = ReportNote{key}}); }
    [[nodiscard]] bool isEmpty() const { return m_rows.isEmpty(); }
    [[nodiscard]] QList<ReportRow> all() const { return m_rows; }

private:
    QList<ReportRow> m_rows;
};

QList<ReportRow::Value> talk(const MeetingReport& report)
{
    if (report.speakers.isEmpty()) return {};
    TalkFigures figures;
    figures.duration = reportRows::mmss(report.durationSec);
    figures.speechShare = within(report.speechShare);
    figures.turns = shown(report.turns);
    figures.longPauses = shown(report.longPauses);
    figures.exact = report.analyticsExact;
    QList<ReportRow::Value> values{figures};
    for (const SpeakerShare& speaker : report.speakers) {
        SpeakerFigures row;
        row.name = speaker.name;
        row.duration = reportRows::mmss(speaker.seconds);
        row.seconds = speaker.seconds;
        row.share = within(speaker.share);
        row.place = int(values.size()) - 1;
        values.append(row);
    }
    return values;
}

} // namespace

bool ReportRow::isClaim() const { return kind() >= reportKind::Blocker && kind() <= reportKind::Role; }

QStringList ReportRow::stamps() const
{
    return std::visit(
        [](const auto& row) {
            if constexpr (requires { row.stamps(); })
                return row.stamps();
            else
                return QStringList{};
        },
        value);
}

QStringList ReportRow::words(const QString& language, Wording wording) const
{
    return std::visit(
        [&](const auto& row) {
            if constexpr (requires { row.words(language, wording); })
                return row.words(language, wording);
            else
                return QStringList{};
        },
        value);
}

QString reportRows::mmss(double seconds)
{
    const qint64 s = std::isfinite(seconds) ? qint64(std::clamp(seconds, 0.0, longestSeconds)) : 0;
    const auto two = [](qint64 number) { return QString::number(number).rightJustified(2, u'0'); };
    if (s < 3600) return QString::number(s / 60) + u':' + two(s % 60);
    return QString::number(s / 3600) + u':' + two(s % 3600 / 60) + u':' + two(s % 60);
}

QList<ReportRow> reportRows::of(const MeetingReport& report)
{
    QList<Blocker> blockers;
    for (const QString& what : report.blockers)
        blockers.append({what});
    Rows rows;
    rows.section(u"report.metrics"_s, report.metrics());
    rows.section(u"report.blockers"_s, blockers);
    rows.section(u"report.insights"_s, report.insights);
    rows.section(u"report.commitments"_s, report.commitments);
    rows.section(u"report.disagreements"_s, report.disagreements);
    rows.section(u"report.agenda"_s, report.agenda);
    rows.section(u"report.numbers"_s, report.numbers);
    rows.section(u"report.concepts"_s, report.concepts);
    rows.section(u"report.roles"_s, report.roles);
    if (!report.roles.isEmpty()) rows.note(u"report.roles.note"_s);
    if (rows.isEmpty() && !report.speakers.isEmpty()) rows.note(u"report.none"_s);
    rows.section(u"report.dynamics"_s, talk(report));
    if (!report.speakers.isEmpty())
        rows.note(report.analyticsExact ? u"report.dynamics.exact"_s : u"report.dynamics.approx"_s);
    rows.note(u"report.note"_s);
    return rows.all();
}

} // namespace murmeli
