#include "MeetingListModel.h"

#include "MeetingCaptions.h"
#include "base/Text.h"
#include "localisation/Language.h"

#include <QPoint>
#include <QStringMatcher>

#include <algorithm>
#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qsizetype shownLength = 400; // code units of a title or summary; a row has room for fewer

constexpr qsizetype longList = 600; // rows
constexpr size_t ahead = 12;        // meetings

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
    if (!narrower) {
        m_titled.resize(m_needle.isEmpty() ? 0 : size_t(m_all->size()));
        std::iota(m_titled.begin(), m_titled.end(), 0);
    }
    const QStringMatcher needle{m_needle};
    size_t kept = 0;
    for (size_t i = 0; i < m_titled.size(); ++i) {
        // The texts lie all over the memory: to wait for each would take longer than to look through it.
        if (i + ahead < m_titled.size())
            __builtin_prefetch(m_all->at(m_titled[i + ahead]).searchText.constData());
        if (needle.indexIn(m_all->at(m_titled[i]).searchText) >= 0) m_titled[kept++] = m_titled[i];
    }
    m_titled.resize(kept);
}

qsizetype MeetingListModel::positionOf(const QString& id)
{
    if (m_positions.isEmpty()) {
        m_positions.reserve(m_all->size());
        for (qsizetype i = 0; i < m_all->size(); ++i)
            m_positions.insert(m_all->at(i).meeting.id, i);
    }
    return m_positions.value(id, -1);
}

MeetingListModel::Rows MeetingListModel::matching()
{
    Rows rows;
    if (m_needle.isEmpty() && !m_found) {
        rows.reserve(m_all->size());
        for (qsizetype i = 0; i < m_all->size(); ++i)
            rows.append(rowAt(i));
        return rows;
    }
    std::vector<qsizetype> positions;
    if (m_found) {
        for (const QString& id : m_found->ids) {
            if (const qsizetype at = positionOf(id); at >= 0) positions.push_back(at);
        }
    }
    const bool inOrder = m_found && m_found->inOrder;
    if (!inOrder) std::ranges::sort(positions);
    if (!m_found || !m_found->alone) {
        std::vector<qsizetype> sorted = positions;
        if (inOrder) std::ranges::sort(sorted);
        const auto middle = qsizetype(positions.size());
        std::ranges::set_difference(m_titled, sorted, std::back_inserter(positions));
        if (!inOrder) std::ranges::inplace_merge(positions, positions.begin() + middle);
    }
    rows.reserve(qsizetype(positions.size()));
    for (const qsizetype at : positions)
        rows.append(rowAt(at));
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
        const Rows rows = matching();
        // What was found stays until more is known; to find the differences of long lists takes too long.
        if (m_found && rows.size() + m_shown.size() < longList) {
            become(rows);
        } else {
            reset(rows);
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
    if (!m_found) m_positions.clear();
    const Rows rows = matching();
    if (otherOrder || rows.size() + m_shown.size() >= longList) {
        reset(rows);
    } else {
        become(rows);
    }
    emit countChanged();
}

void MeetingListModel::setMeetings(const QList<ListedMeeting>& meetings, const QDate& today)
{
    m_all = std::make_shared<const QList<ListedMeeting>>(meetings);
    m_positions.clear();
    filterTitles(false);
    become(matching());
    if (std::exchange(m_today, today) != today) emit todayChanged();
    emit countChanged();
}

void MeetingListModel::reset(const Rows& rows)
{
    beginResetModel();
    m_shown = rows;
    endResetModel();
}

void MeetingListModel::become(const Rows& rows)
{
    if (m_shown.isEmpty() || rows.isEmpty() || !becomeByDifference(rows)) {
        reset(rows);
    }
}

bool MeetingListModel::becomeByDifference(const Rows& rows)
{
    // A meeting whose start has changed stands elsewhere now: out here, in there.
    QHash<QString, QDateTime> wanted;
    wanted.reserve(rows.size());
    for (const Row& row : rows)
        wanted.insert(row->meeting.id, row->meeting.startedAt);
    const auto stays = [&](const Row& row) {
        const auto found = wanted.constFind(row->meeting.id);
        return found != wanted.cend() && *found == row->meeting.startedAt;
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
        if (at < count() && m_shown[at]->meeting.id == rows[at]->meeting.id) {
            const auto offset = [](const Row& row) { return row->meeting.startedAt.offsetFromUtc(); };
            const Row before = std::exchange(m_shown[at], rows[at]);
            if (*before == *rows[at] && offset(before) == offset(rows[at])) continue;
            emit dataChanged(index(at), index(at));
            continue;
        }
        int end = at;
        const QString next = at < count() ? m_shown[at]->meeting.id : QString{};
        while (end < rows.size() && rows[end]->meeting.id != next)
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
    if (!m_positions.isEmpty()) {
        const qsizetype at = m_positions.value(id, -1);
        return at < 0 ? nullptr : &m_all->at(at).meeting;
    }
    const auto found =
        std::ranges::find(*m_all, id, [](const ListedMeeting& m) -> const QString& { return m.meeting.id; });
    return found == m_all->end() ? nullptr : &found->meeting;
}

QString MeetingListModel::idAt(int row) const
{
    return row >= 0 && row < count() ? m_shown[row]->meeting.id : QString{};
}

int MeetingListModel::rowOf(const QString& id) const
{
    const auto found =
        std::ranges::find(m_shown, id, [](const Row& row) -> const QString& { return row->meeting.id; });
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
    const Meeting& meeting = m_shown[index.row()]->meeting;
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
