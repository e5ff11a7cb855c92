#include "ReportListModel.h"

#include "base/Text.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

enum Role { Kind = Qt::UserRole, Value, Claim, First, Last, Stamps, Finding };

/// What a view of that kind takes: a heading and a note are their keys, all others values of their own type.
QVariant forViews(const ReportRow& row)
{
    return std::visit(
        [](const auto& value) {
            if constexpr (requires { value.key; })
                return QVariant{value.key};
            else
                return QVariant::fromValue(value);
        },
        row.value);
}

} // namespace

void ReportListModel::setRows(const QList<ReportRow>& rows)
{
    if (rows == m_rows) return;
    beginResetModel();
    m_rows = rows;
    m_findings = {};
    endResetModel();
}

void ReportListModel::setFindings(const QuoteFindings& findings)
{
    if (std::exchange(m_findings, findings) == findings || m_rows.isEmpty()) return;
    emit dataChanged(index(0), index(int(m_rows.size()) - 1), {Finding});
}

int ReportListModel::neighbour(int row, int step) const
{
    for (int i = row + step; i >= 0 && i < m_rows.size(); i += step) {
        if (m_rows[i].isClaim()) return i;
    }
    return row;
}

int ReportListModel::stampedNeighbour(int row, int step) const
{
    for (int i = row < 0 && step < 0 ? int(m_rows.size()) - 1 : row + step; i >= 0 && i < m_rows.size();
         i += step) {
        if (!m_rows[i].stamps().isEmpty()) return i;
    }
    return -1;
}

QString ReportListModel::spoken(int row, const QString& language) const
{
    return text::shortened(m_rows.value(row).words(language, Wording::Spoken).join(u", "_s));
}

QString ReportListModel::copied(int row, const QString& language) const
{
    return m_rows.value(row).words(language, Wording::Copied).join(u'\n');
}

int ReportListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant ReportListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const ReportRow& row = m_rows[index.row()];
    switch (role) {
    case Kind:
        return int(row.kind());
    case Value:
        return forViews(row);
    case Claim:
        return row.isClaim();
    case First:
        return row.first;
    case Last:
        return row.last;
    case Stamps:
        return row.stamps();
    case Finding:
        return QVariant::fromValue(m_findings.byRow.value(index.row()));
    default:
        return {};
    }
}

QHash<int, QByteArray> ReportListModel::roleNames() const
{
    return {{Kind, "kind"}, {Value, "value"},   {Claim, "claim"},    {First, "first"},
            {Last, "last"}, {Stamps, "stamps"}, {Finding, "finding"}};
}

} // namespace murmeli
