#pragma once

#include "ProtocolItems.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace murmeli {

/// The items of a protocol, a row each; the first row of a section carries its title. Main thread only.
class SectionListModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a meeting and handed to its view")

public:
    enum Role { TextRole = Qt::UserRole, TitleKeyRole, LastRole, BeforeRole, CorrectedRole, LitRole };

    explicit SectionListModel(QObject* parent) : QAbstractListModel(parent) {}

    /// Shows the sections; rows that stay are left alone.
    void setSections(const QList<ProtocolSection>& sections);

    /// Marks an item as just corrected. \return its row, -1 when it is not shown.
    int markCorrected(const QString& section, qsizetype index, const QString& before);

    /// Lights an item up, for it was looked for. \return its row, -1 when it is not shown.
    int light(const QString& section, qsizetype index);

    /// The text of an item now; empty when it is not shown.
    [[nodiscard]] QString textOf(const QString& section, qsizetype index) const;

    [[nodiscard]] QString text(int row) const; ///< empty when there is no such row

    /// Every section as text, in `language`: its title, and its items in a list.
    [[nodiscard]] QStringList words(const QString& language) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    struct Row {
        QString section;
        QString titleKey; ///< empty but for the first of its section
        bool last = false;
        qsizetype index = 0;
        QString text;
        bool operator==(const Row&) const = default;
    };
    [[nodiscard]] int rowOf(const QString& section, qsizetype index) const;

    QList<Row> m_rows;
    /// Of a corrected item. It counts as long as its text stands there: the service may move items.
    struct Correction {
        QString before;
        QString after;
    };
    [[nodiscard]] std::optional<Correction> correctionOf(const Row& row) const;

    QHash<std::pair<QString, qsizetype>, Correction> m_corrections;
    std::pair<QString, qsizetype> m_corrected; ///< the latest one
    std::pair<QString, qsizetype> m_lit;
};

} // namespace murmeli
