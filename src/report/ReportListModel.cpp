#include "ReportListModel.h"

namespace murmeli {

void ReportListModel::setRows(const QList<ReportRow>& rows)
{
    if (rows == m_rows) return;
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

int ReportListModel::neighbour(int row, int step) const
{
    for (int i = row + step; i >= 0 && i < m_rows.size(); i += step) {
        if (m_rows[i].isItem()) return i;
    }
    return row;
}

int ReportListModel::stampedNeighbour(int row, int step) const
{
    for (int i = row < 0 && step < 0 ? int(m_rows.size()) - 1 : row + step; i >= 0 && i < m_rows.size();
         i += step) {
        if (!m_rows[i].firstStamp().isEmpty()) return i;
    }
    return -1;
}

int ReportListModel::direction(const QString& letter) const
{
    if (letter == u"j" || letter == u"о") return 1;
    if (letter == u"k" || letter == u"л") return -1;
    return 0;
}

QString ReportListModel::text(int row, const QString& language) const
{
    const bool known = row >= 0 && row < m_rows.size() && m_rows[row].isItem();
    return known ? reportRows::text(m_rows[row], language) : QString{};
}

QString ReportListModel::spoken(int row, const QString& language) const
{
    const bool known = row >= 0 && row < m_rows.size() && m_rows[row].isItem();
    return known ? reportRows::spoken(m_rows[row], language) : QString{};
}

int ReportListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant ReportListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != Qt::UserRole) return {};
    return QVariant::fromValue(m_rows[index.row()]);
}

QHash<int, QByteArray> ReportListModel::roleNames() const { return {{Qt::UserRole, "row"}}; }

} // namespace murmeli
