#pragma once

#include "ChangeHistory.h"
#include "ProtocolWriter.h"
#include "base/Lease.h"
#include "language/Difference.h"
#include "localisation/Message.h"
#include "meetings/Meeting.h"

#include <QAbstractListModel>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace murmeli {

class Desktop;
class Language;

/// A change of a protocol as it is listed, in the language of the moment.
class ChangeRow {
    Q_GADGET
    QML_VALUE_TYPE(changeRow)
    Q_PROPERTY(QString title MEMBER title FINAL) ///< its section
    Q_PROPERTY(QString time MEMBER time FINAL)
    Q_PROPERTY(QString remark MEMBER remark FINAL)
    Q_PROPERTY(QString note MEMBER note FINAL) ///< what has become of it
    Q_PROPERTY(QVariantList pieces MEMBER pieces FINAL)
    Q_PROPERTY(QString spoken MEMBER spoken FINAL)
    Q_PROPERTY(bool holds MEMBER holds FINAL) ///< else it is grey
    Q_PROPERTY(bool undoable MEMBER undoable FINAL)
    Q_PROPERTY(bool redoable MEMBER redoable FINAL)
    Q_PROPERTY(bool foreign MEMBER foreign FINAL) ///< not from here
    Q_PROPERTY(bool gone MEMBER gone FINAL)       ///< its text is no longer there to be changed

public:
    QString title, time, remark, note, spoken;
    QVariantList pieces;
    bool holds = true, undoable = false, redoable = false, foreign = false, gone = false;
};

/// The changes of an opened meeting's protocol, the newest first, each to be taken back; or all items against
/// those at first. Main thread only.
class ProtocolChanges final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a meeting and handed to its view")
    Q_PROPERTY(int total READ total NOTIFY changed FINAL) ///< changes by remarks
    Q_PROPERTY(QString counts READ counts NOTIFY changed FINAL)
    Q_PROPERTY(bool comparing READ comparing WRITE setComparing NOTIFY changed FINAL)
    Q_PROPERTY(bool unreadable READ unreadable NOTIFY changed FINAL)
    Q_PROPERTY(QString overwritten READ overwritten NOTIFY changed FINAL) ///< what the service has put back
    Q_PROPERTY(int overwrittenCount READ overwrittenCount NOTIFY changed FINAL)
    Q_PROPERTY(murmeli::Message message READ message NOTIFY changed FINAL) ///< of the last wish
    Q_PROPERTY(bool failed READ failed NOTIFY changed FINAL) ///< and it could not be carried out

public:
    struct Ground {
        const Paths& paths;
        ProtocolWriter& writer;
        const Language& language;
        Desktop& desktop;
        const Scheduler& scheduler;
    };
    ProtocolChanges(const Ground& ground, const Meeting& meeting, QObject* parent = nullptr);
    ~ProtocolChanges() override;
    Q_DISABLE_COPY_MOVE(ProtocolChanges)

    [[nodiscard]] int total() const { return int(m_history.entries.size()); }
    [[nodiscard]] QString counts() const;
    [[nodiscard]] bool comparing() const { return m_comparing; }
    void setComparing(bool comparing);
    [[nodiscard]] bool unreadable() const { return m_unreadable; }
    [[nodiscard]] QString overwritten() const;
    [[nodiscard]] int overwrittenCount() const;
    [[nodiscard]] Message message() const { return m_message; }
    [[nodiscard]] bool failed() const { return m_failed; }

    /// Reads the ledger and the protocol again.
    void load(const Meeting& meeting);

    Q_INVOKABLE void undo(int row);
    Q_INVOKABLE void redo(int row);
    /// The last change that holds and can be.
    Q_INVOKABLE void undoLast();
    /// Puts what was to come back on the clipboard.
    Q_INVOKABLE void copyBefore(int row);

    /// Writes again what the service has put back, or lets it stand.
    Q_INVOKABLE void restore();
    Q_INVOKABLE void keep();

    Q_INVOKABLE void forgetMessage();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

signals:
    void changed();
    void told(); ///< there is another message
    void copied(qint64 bytes);
    void written(const murmeli::ProtocolChange& change); ///< into the summary file

private:
    struct Row {
        std::optional<ChangeHistory::Entry> entry;
        std::optional<ChangeHistory::Foreign> foreign;
        std::optional<ComparedItem> item;
        bool titled = true; ///< with its section
        QList<words::Piece> pieces;
        bool operator==(const Row&) const = default;
    };
    struct Content {
        ChangeHistory history;
        QList<Row> rows;
        double fileTime = 0;
        bool unreadable = false;
        bool unfinished = false; ///< some changes are only begun
        QSet<QString> possible;  ///< ids of changes that can be undone or made again
    };
    static QList<Row> rowsOf(const ChangeHistory& history);
    static QList<Row> rowsOf(const QList<ComparedItem>& items);
    void setRows(const QList<Row>& rows);
    [[nodiscard]] ChangeRow drawn(const Row& row) const;
    void write(const ChangeHistory::Entry& entry, ProtocolChange::Kind kind);
    [[nodiscard]] const ChangeHistory::Entry* entryAt(int row) const;
    void say(const Message& message, bool failed = false);

    Ground m_ground;
    Meeting m_meeting;
    ChangeHistory m_history;
    QList<Row> m_rows;
    QSet<QString> m_gone;    ///< ids of changes whose text was no longer there
    QSet<QString> m_writing; ///< ids of changes that are being undone or made again, until that is seen
    QSet<QString> m_written; ///< those of them for which it is done
    Message m_message;
    bool m_failed = false;
    bool m_settled = false; ///< what an earlier run had begun
    double m_fileTime = 0;  ///< of the summary file, in seconds since 1970 UTC
    bool m_comparing = false;
    bool m_unreadable = false;
    Lease m_load;
};

} // namespace murmeli
