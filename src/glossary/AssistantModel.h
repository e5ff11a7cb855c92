#pragma once

#include "GlossaryText.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

class Drafts;
class GlossaryStore;

/// The glossary as it is being edited: a working copy that follows the store until something is changed, and
/// then outlives the program as a draft. Its rows are those entries that match the search. Main thread only.
class AssistantModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the pane")
    Q_PROPERTY(bool dirty READ dirty NOTIFY changed FINAL)
    Q_PROPERTY(bool saving READ saving NOTIFY changed FINAL)
    Q_PROPERTY(int total READ total NOTIFY changed FINAL) ///< entries, whatever is searched for
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed FINAL)

public:
    enum Role { HeardRole = Qt::UserRole, CorrectRole, LineRole };

    AssistantModel(GlossaryStore& store, Drafts& drafts, QObject* parent = nullptr);

    [[nodiscard]] bool dirty() const { return m_dirty; }
    [[nodiscard]] bool saving() const { return m_saving; }
    [[nodiscard]] int total() const { return int(m_draft.size()); }
    [[nodiscard]] QString query() const { return m_query; }
    void setQuery(const QString& query);

    /// At the top, a term when nothing was heard. \return false when nothing is to be written.
    Q_INVOKABLE bool add(const QString& heard, const QString& correct);
    Q_INVOKABLE void removeAt(int row);
    Q_INVOKABLE void save();
    void revert() override;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

signals:
    void changed();

private:
    [[nodiscard]] QString draftName() const;
    void follow();
    void recall(); ///< what was left unsaved when the program ended
    void show(const QList<GlossaryEntry>& draft);
    void setDirty(bool dirty);
    void filter();
    [[nodiscard]] bool matches(const GlossaryEntry& entry) const;
    void touch();

    GlossaryStore& m_store;
    Drafts& m_drafts;
    QList<GlossaryEntry> m_base; ///< what the working copy began with
    QList<GlossaryEntry> m_draft;
    QList<int> m_visible; ///< positions in the draft
    QString m_query;
    QString m_needle;
    QString m_keptAs; ///< the name of the draft
    bool m_dirty = false;
    bool m_saving = false;
    quint64 m_edits = 0;
};

} // namespace murmeli
