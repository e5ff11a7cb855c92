#include "MeetingListModel.h"

#include "MeetingCaptions.h"
#include "base/Text.h"
#include "localisation/Language.h"

#include <QPoint>

#include <algorithm>
#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qsizetype shownLength = 400; // code units of a title or summary; a row has room for fewer

QString shown(const QString& text) { return text::oneLine(text.left(shownLength)); }

} // namespace

MeetingListModel::MeetingListModel(const Language& language, QObject* parent)
    : QAbstractListModel(parent), m_language(language)
{
    connect(&language, &Language::changed, this, [this] {
        if (!m_shown.isEmpty()) emit dataChanged(index(0), index(count() - 1), {TimeRole});
    });
}

void MeetingListModel::filterTitles(bool narrower)
{
    const auto misses = [this](qsizetype at) { return !m_all[at].searchText.contains(m_needle); };
    if (!narrower) {
        m_titled.resize(m_needle.isEmpty() ? 0 : size_t(m_all.size()));
        std::iota(m_titled.begin(), m_titled.end(), 0);
    }
    std::erase_if(m_titled, misses);
}

QList<ListedMeeting> MeetingListModel::matching() const
{
    if (m_needle.isEmpty() && !m_found) return m_all;
    std::vector<qsizetype> positions;
    if (!m_found || !m_found->alone) positions = m_titled;
    if (m_found) {
        QHash<QString, qsizetype> wanted;
        for (const QString& id : m_found->ids)
            wanted.insert(id, wanted.size());
        std::vector<qsizetype> others;
        for (qsizetype i = 0; i < m_all.size() && !wanted.isEmpty(); ++i) {
            if (wanted.contains(m_all[i].meeting.id)) others.push_back(i);
        }
        const auto place = [&](qsizetype at) {
            return wanted.value(m_all[at].meeting.id, wanted.size() + at);
        };
        std::vector<qsizetype> both;
        std::ranges::set_union(positions, others, std::back_inserter(both));
        positions = both;
        if (m_found->inOrder) std::ranges::sort(positions, {}, place);
    }
    QList<ListedMeeting> rows;
    rows.reserve(qsizetype(positions.size()));
    for (const qsizetype at : positions)
        rows.append(m_all[at]);
    return rows;
}

void MeetingListModel::setQuery(const QString& query)
{
    if (query == m_query) return;
    const QString old = std::exchange(m_needle, text::trimmed(query).toLower());
    m_query = query;
    if (m_needle != old) {
        // Whoever finds the longer text has found the shorter one too.
        filterTitles(!old.isEmpty() && m_needle.contains(old));
        const QList<ListedMeeting> rows = matching();
        if (m_found) { // most of what was found stays until more is known
            become(rows);
        } else {
            beginResetModel();
            m_shown = rows;
            endResetModel();
        }
        emit countChanged();
    }
    emit queryChanged();
}

void MeetingListModel::setFound(const std::optional<Found>& found)
{
    if (found == m_found) return;
    const bool otherOrder = (found && found->inOrder) || (m_found && m_found->inOrder);
    m_found = found;
    if (otherOrder) {
        beginResetModel();
        m_shown = matching();
        endResetModel();
    } else {
        become(matching());
    }
    emit countChanged();
}

void MeetingListModel::setMeetings(const QList<ListedMeeting>& meetings, const QDate& today)
{
    m_all = meetings;
    filterTitles(false);
    become(matching());
    if (std::exchange(m_today, today) != today) emit todayChanged();
    emit countChanged();
}

void MeetingListModel::become(const QList<ListedMeeting>& rows)
{
    if (m_shown.isEmpty() || rows.isEmpty() || !becomeByDifference(rows)) {
        beginResetModel();
        m_shown = rows;
        endResetModel();
    }
}

bool MeetingListModel::becomeByDifference(const QList<ListedMeeting>& rows)
{
    // A meeting whose start has changed stands elsewhere now: out here, in there.
    QHash<QString, QDateTime> wanted;
    wanted.reserve(rows.size());
    for (const ListedMeeting& row : rows)
        wanted.insert(row.meeting.id, row.meeting.startedAt);
    const auto stays = [&](const ListedMeeting& row) {
        const auto found = wanted.constFind(row.meeting.id);
        return found != wanted.cend() && *found == row.meeting.startedAt;
    };
    for (int end = count(); end > 0;) {
        if (stays(m_shown[end - 1])) {
            --end;
            continue;
        }
        int begin = end - 1;
        while (begin > 0 && !stays(m_shown[begin - 1]))
            --begin;
        beginRemoveRows({}, begin, end - 1);
        m_shown.remove(begin, end - begin);
        endRemoveRows();
        end = begin;
    }

    int at = 0;
    for (; at < rows.size(); ++at) {
        if (at < count() && m_shown[at].meeting.id == rows[at].meeting.id) {
            const auto offset = [](const ListedMeeting& row) {
                return row.meeting.startedAt.offsetFromUtc();
            };
            if (m_shown[at] == rows[at] && offset(m_shown[at]) == offset(rows[at])) continue;
            m_shown[at] = rows[at];
            emit dataChanged(index(at), index(at));
            continue;
        }
        int end = at;
        const QString next = at < count() ? m_shown[at].meeting.id : QString{};
        while (end < rows.size() && rows[end].meeting.id != next)
            ++end;
        if (!next.isNull() && end == rows.size()) return false; // equals that have changed places
        beginInsertRows({}, at, end - 1);
        m_shown.insert(at, end - at, {});
        std::copy(rows.begin() + at, rows.begin() + end, m_shown.begin() + at);
        endInsertRows();
        at = end - 1;
    }
    return count() == rows.size();
}

const Meeting* MeetingListModel::find(const QString& id) const
{
    const auto found = std::ranges::find(m_all, id, [](const ListedMeeting& m) { return m.meeting.id; });
    return found == m_all.end() ? nullptr : &found->meeting;
}

QString MeetingListModel::idAt(int row) const
{
    return row >= 0 && row < count() ? m_shown[row].meeting.id : QString{};
}

int MeetingListModel::rowOf(const QString& id) const
{
    const auto found = std::ranges::find(m_shown, id, [](const ListedMeeting& m) { return m.meeting.id; });
    return found == m_shown.end() ? -1 : int(found - m_shown.begin());
}

QString MeetingListModel::dayTitle(const QString& day, const QString& language) const
{
    return captions::dayTitle(QDate::fromString(day, Qt::ISODate), m_today, language);
}

int MeetingListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant MeetingListModel::hit(const QString& text) const
{
    if (m_needle.isEmpty()) return QPoint{-1, 0};
    const QString line = shown(text);
    const QString lower = line.toLower();
    // Where lower-casing changes the length, places cannot be told; nothing is marked then.
    const qsizetype at = lower.size() == line.size() ? lower.indexOf(m_needle) : -1;
    return QPoint{int(at), at < 0 ? 0 : int(m_needle.size())};
}

QVariant MeetingListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Meeting& meeting = m_shown[index.row()].meeting;
    switch (role) {
    case IdRole:
        return meeting.id;
    case TitleRole:
        return shown(meeting.title);
    case SummaryRole:
        return shown(meeting.tldr);
    case TimeRole:
        return captions::timeRange(meeting, m_language.current());
    case DateRole:
        return m_found && m_found->inOrder
                   ? captions::shortDate(meeting.startedAt.date(), m_today, m_language.current())
                   : QString{};
    case DayRole:
        if (m_found && m_found->inOrder) return QString{};
        return meeting.startedAt.date().toString(Qt::ISODate);
    case TitleHitRole:
        return hit(meeting.title);
    case SummaryHitRole:
        return hit(meeting.tldr);
    case HeardRole:
        return captions::heardKey(meeting.heard);
    default:
        return {};
    }
}

QHash<int, QByteArray> MeetingListModel::roleNames() const
{
    return {{IdRole, "meetingId"},      {TitleRole, "title"},
            {SummaryRole, "summary"},   {TimeRole, "time"},
            {DayRole, "day"},           {DateRole, "date"},
            {TitleHitRole, "titleHit"}, {SummaryHitRole, "summaryHit"},
            {HeardRole, "heard"}};
}

} // namespace murmeli
