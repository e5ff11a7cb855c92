#pragma once

#include "ReceiptFiles.h"
#include "base/Lease.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace murmeli {

class Language;
class Receipts;
class Scheduler;

/// A receipt in words, or the month above some of them.
class SentRow {
    Q_GADGET
    QML_VALUE_TYPE(sentRow)
    Q_PROPERTY(bool heading MEMBER heading FINAL) ///< a month with its sums
    Q_PROPERTY(QString symbol MEMBER symbol FINAL)
    Q_PROPERTY(QString title MEMBER title FINAL)
    Q_PROPERTY(QString line MEMBER line FINAL)
    Q_PROPERTY(QString size MEMBER size FINAL)
    Q_PROPERTY(QString result MEMBER result FINAL)
    Q_PROPERTY(bool good MEMBER good FINAL)   ///< the result
    Q_PROPERTY(bool first MEMBER first FINAL) ///< below a heading, or of all
    Q_PROPERTY(bool last MEMBER last FINAL)
    Q_PROPERTY(QString spoken MEMBER spoken FINAL)

public:
    bool heading = false, good = true, first = false, last = false;
    QString symbol, title, line, size, result, spoken;
};

/// What has left this computer, the newest first: of one meeting, or of all, month by month. Main thread
/// only.
class SentModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a meeting or for all and handed to its view")
    Q_PROPERTY(int total READ total NOTIFY changed FINAL)
    Q_PROPERTY(bool loaded READ loaded NOTIFY changed FINAL)
    Q_PROPERTY(bool unreadable READ unreadable NOTIFY changed FINAL)

public:
    /// \param stem of the meeting; empty for all.
    SentModel(const Receipts& receipts, const Language& language, const Scheduler& scheduler, QString stem,
              QObject* parent = nullptr);
    ~SentModel() override;
    Q_DISABLE_COPY_MOVE(SentModel)

    [[nodiscard]] int total() const { return m_total; }
    [[nodiscard]] bool loaded() const { return m_loaded; }
    [[nodiscard]] bool unreadable() const { return m_unreadable; }

    void load();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

signals:
    void changed();

private:
    struct Month {
        double time = 0;
        qint64 receipts = 0;
        qint64 bytes = 0;
        bool operator==(const Month&) const = default;
    };
    struct Row {
        std::optional<Month> month;
        Receipt receipt;
        bool first = false;
        bool last = false;
        bool operator==(const Row&) const = default;
    };
    [[nodiscard]] QList<Row> rowsOf(const QList<Receipt>& receipts) const;
    [[nodiscard]] SentRow drawn(const Row& row) const;
    [[nodiscard]] SentRow drawn(const Month& month) const;

    ReceiptFiles m_files;
    const Language& m_language;
    const Scheduler& m_scheduler;
    QString m_stem;
    QList<Row> m_rows;
    int m_total = 0;
    bool m_loaded = false;
    bool m_unreadable = false;
    Lease m_load;
};

} // namespace murmeli
