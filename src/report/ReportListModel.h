#pragma once

#include "QuoteCheck.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

/// The rows of a report. Main thread only.
class ReportListModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the loader of reports")

public:
    explicit ReportListModel(QObject* parent) : QAbstractListModel(parent) {}

    void setRows(const QList<ReportRow>& rows);
    [[nodiscard]] const QList<ReportRow>& rows() const { return m_rows; }

    /// What the quotations in these rows were found to be.
    void setFindings(const QuoteFindings& findings);
    [[nodiscard]] const QuoteFindings& findings() const { return m_findings; }

    /// The next row after `row` in the direction of `step` (1, -1) that is a claim; `row` when there is none.
    Q_INVOKABLE [[nodiscard]] int neighbour(int row, int step) const;

    /// The next row with a moment to look at; -1 when there is none. From -1 it looks from either end.
    Q_INVOKABLE [[nodiscard]] int stampedNeighbour(int row, int step) const;

    /// What the claim in a row says, as it is read out in `language`; empty when the row is none.
    Q_INVOKABLE [[nodiscard]] QString spoken(int row, const QString& language) const;

    /// What the claim in a row says, in lines, as it is copied in `language`; empty when the row is none.
    [[nodiscard]] QString copied(int row, const QString& language) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    QList<ReportRow> m_rows;
    QuoteFindings m_findings;
};

} // namespace murmeli
