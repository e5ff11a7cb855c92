#include "AssistantModel.h"

#include "GlossaryStore.h"
#include "base/Drafts.h"
#include "base/Json.h"
#include "base/Text.h"

#include <QJsonDocument>

#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

AssistantModel::AssistantModel(GlossaryStore& store, Drafts& drafts, QObject* parent)
    : QAbstractListModel(parent),
      m_store(store),
      m_drafts(drafts),
      m_base(store.entries()),
      m_draft(store.entries())
{
    filter();
    connect(&store, &GlossaryStore::entriesChanged, this, &AssistantModel::follow);
    // A working copy is its writer's own, and waits for him.
    connect(&store, &GlossaryStore::personChanged, this, [this] {
        m_dirty = false;
        follow();
        recall();
        emit changed();
    });
    // Whose it is may be known only now.
    connect(&store, &GlossaryStore::changed, this, [this] {
        if (!m_dirty || m_keptAs == draftName()) return;
        m_drafts.set(m_keptAs, {});
        setDirty(true);
    });
    connect(&drafts, &Drafts::changed, this, [this](const QString& about) {
        if (about == draftName()) recall();
    });
    recall();
}

QString AssistantModel::draftName() const { return u"glossary of "_s + m_store.person(); }

void AssistantModel::recall()
{
    const auto kept = json::object(m_drafts.of(draftName()).toUtf8());
    if (m_dirty || !kept) return;
    const auto draft = glossaryText::merged(glossaryText::parseAll(json::text(*kept, "base"_L1)),
                                            glossaryText::parseAll(json::text(*kept, "text"_L1)), m_base);
    m_dirty = draft != m_base; // else it has been saved after all
    m_keptAs = draftName();
    show(draft);
}

void AssistantModel::setDirty(bool dirty)
{
    m_dirty = dirty;
    QByteArray kept;
    if (dirty) {
        const QJsonObject draft{{u"base"_s, glossaryText::serialised(m_base)},
                                {u"text"_s, glossaryText::serialised(m_draft)}};
        kept = QJsonDocument{draft}.toJson(QJsonDocument::Compact);
    }
    m_keptAs = draftName();
    m_drafts.set(m_keptAs, QString::fromUtf8(kept));
}

void AssistantModel::show(const QList<GlossaryEntry>& draft)
{
    if (m_draft == draft) return;
    beginResetModel();
    m_draft = draft;
    filter();
    endResetModel();
    emit changed();
}

void AssistantModel::follow()
{
    // A working copy keeps its changes and takes in what has come meanwhile.
    const auto next = m_dirty ? glossaryText::merged(m_base, m_draft, m_store.entries()) : m_store.entries();
    m_base = m_store.entries();
    show(next);
}

bool AssistantModel::matches(const GlossaryEntry& entry) const
{
    return m_needle.isEmpty() || entry.heard.toLower().contains(m_needle) ||
           entry.correct.toLower().contains(m_needle);
}

void AssistantModel::filter()
{
    m_visible.clear();
    for (int i = 0; i < m_draft.size(); ++i) {
        if (matches(m_draft[i])) m_visible.append(i);
    }
}

void AssistantModel::setQuery(const QString& query)
{
    if (query == m_query) return;
    m_query = query;
    m_needle = text::trimmed(query).toLower();
    beginResetModel();
    filter();
    endResetModel();
    emit changed();
}

void AssistantModel::touch()
{
    ++m_edits;
    setDirty(true);
    emit changed();
}

bool AssistantModel::add(const QString& heard, const QString& correct)
{
    if (text::trimmed(correct).isEmpty()) return false;
    // As it will be read again: a term that is written with an arrow is a rule.
    const auto entry =
        glossaryText::parse(text::oneLine(GlossaryEntry{heard, correct}.line())).value_or(GlossaryEntry{});
    const bool shown = matches(entry);
    if (shown) beginInsertRows({}, 0, 0);
    m_draft.prepend(entry);
    for (int& position : m_visible)
        ++position;
    if (shown) {
        m_visible.prepend(0);
        endInsertRows();
    }
    touch();
    return true;
}

void AssistantModel::removeAt(int row)
{
    if (row < 0 || row >= m_visible.size()) return;
    beginRemoveRows({}, row, row);
    m_draft.removeAt(m_visible.takeAt(row));
    for (qsizetype later = row; later < m_visible.size(); ++later)
        --m_visible[later];
    endRemoveRows();
    touch();
}

void AssistantModel::save()
{
    if (!m_dirty || m_saving) return;
    m_saving = true;
    emit changed();
    m_store.save(m_draft, [this, edits = m_edits](bool saved) {
        m_saving = false;
        if (saved && edits == m_edits) {
            setDirty(false);
            follow(); // the saved list is the same but for its spaces
        }
        emit changed();
    });
}

void AssistantModel::revert()
{
    if (!m_dirty) return;
    setDirty(false);
    follow();
    emit changed();
}

int AssistantModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_visible.size());
}

QVariant AssistantModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const GlossaryEntry& entry = m_draft[m_visible[index.row()]];
    switch (role) {
    case HeardRole:
        return entry.isRule() ? entry.heard : QString{};
    case CorrectRole:
        return entry.correct;
    case LineRole:
        return entry.line();
    default:
        return {};
    }
}

QHash<int, QByteArray> AssistantModel::roleNames() const
{
    return {{HeardRole, "heard"}, {CorrectRole, "correct"}, {LineRole, "line"}};
}

} // namespace murmeli
