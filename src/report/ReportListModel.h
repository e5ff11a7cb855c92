#pragma once

#include "ReportRow.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

/// The rows of a report. Main thread only.
class ReportListModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the loader of reports")

public:
    explicit ReportListModel(const Language& language, QObject* parent = nullptr)
        : QAbstractListModel(parent), m_language(language)
    {
    }

    void setRows(const QList<ReportRow>& rows);

    /// The next row after `row` in the direction of `step` (1, -1) that is an item; `row` when there is none.
    Q_INVOKABLE [[nodiscard]] int neighbour(int row, int step) const;

    /// Which way a letter key steps: 1, -1, or 0 for none. Keys count by their place, whatever the layout.
    Q_INVOKABLE [[nodiscard]] int direction(const QString& letter) const;

    /// Puts what the row says on the clipboard, with its stamps.
    Q_INVOKABLE void copy(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    const Language& m_language;
    QList<ReportRow> m_rows;
};

} // namespace murmeli
