#include "SectionListModel.h"

#include "base/Text.h"
#include "localisation/Language.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

void SectionListModel::setSections(const QList<ProtocolSection>& sections)
{
    QList<Row> rows;
    for (const ProtocolSection& section : sections) {
        for (const auto& item : section.items) {
            const bool first = &item == &section.items.first();
            rows.append({section.key, first ? section.titleKey : QString{}, &item == &section.items.last(),
                         item.index, item.text});
        }
    }
    // Where something came or went there is neither a jump nor another row for what is read just now.
    const auto same = std::ranges::mismatch(m_rows, rows).in1 - m_rows.begin();
    qsizetype was = m_rows.size();
    qsizetype now = rows.size();
    while (was > same && now > same && m_rows[was - 1] == rows[now - 1]) {
        --was;
        --now;
    }
    const qsizetype changed = std::min(was, now);
    for (qsizetype i = same; i < changed; ++i) {
        if (m_rows[i] == rows[i]) continue;
        m_rows[i] = rows[i];
        emit dataChanged(index(int(i)), index(int(i)));
    }
    if (was > now) {
        beginRemoveRows({}, int(now), int(was) - 1);
        m_rows.remove(now, was - now);
        endRemoveRows();
    } else if (now > was) {
        beginInsertRows({}, int(was), int(now) - 1);
        m_rows = rows;
        endInsertRows();
    }
}

int SectionListModel::rowOf(const QString& section, qsizetype index) const
{
    const auto found = std::ranges::find_if(
        m_rows, [&](const Row& row) { return row.section == section && row.index == index; });
    return found == m_rows.end() ? -1 : int(found - m_rows.begin());
}

QString SectionListModel::textOf(const QString& section, qsizetype index) const
{
    const int row = rowOf(section, index);
    return row < 0 ? QString{} : m_rows[row].text;
}

int SectionListModel::markCorrected(const QString& section, qsizetype index, const QString& before)
{
    const int old = rowOf(m_corrected.first, m_corrected.second);
    m_corrected = {section, index};
    const auto earlier = m_corrections.value(m_corrected);
    m_corrections[m_corrected] = {.before = earlier.after == before ? earlier.before : before,
                                  .after = textOf(section, index)};
    const int row = rowOf(section, index);
    for (const int changed : {old, row}) {
        if (changed >= 0)
            emit dataChanged(this->index(changed), this->index(changed), {BeforeRole, CorrectedRole});
    }
    return row;
}

int SectionListModel::light(const QString& section, qsizetype index)
{
    m_lit = {section, index};
    const int row = rowOf(section, index);
    if (row >= 0) emit dataChanged(this->index(row), this->index(row), {LitRole});
    return row;
}

QString SectionListModel::text(int row) const { return m_rows.value(row).text; }

QStringList SectionListModel::words(const QString& language) const
{
    QStringList sections;
    for (const Row& row : m_rows) {
        if (!row.titleKey.isEmpty()) sections.append(Language::text(language, row.titleKey));
        sections.last() += u"\n– "_s + row.text;
    }
    return sections;
}

std::optional<SectionListModel::Correction> SectionListModel::correctionOf(const Row& row) const
{
    const auto found = m_corrections.constFind({row.section, row.index});
    if (found == m_corrections.cend() || found->after != row.text) return std::nullopt;
    return *found;
}

int SectionListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant SectionListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Row& row = m_rows[index.row()];
    switch (role) {
    case TextRole:
        return text::shortened(row.text);
    case TitleKeyRole:
        return row.titleKey;
    case LastRole:
        return row.last;
    case BeforeRole:
        return text::shortened(correctionOf(row).value_or(Correction{}).before, 400);
    case CorrectedRole:
        return m_corrected == std::pair{row.section, row.index} && correctionOf(row);
    case LitRole:
        return m_lit == std::pair{row.section, row.index};
    default:
        return {};
    }
}

QHash<int, QByteArray> SectionListModel::roleNames() const
{
    return {{TextRole, "text"},     {TitleKeyRole, "titleKey"},   {LastRole, "last"},
            {BeforeRole, "before"}, {CorrectedRole, "corrected"}, {LitRole, "lit"}};
}

} // namespace murmeli
