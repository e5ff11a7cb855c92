#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QStringList>

#include <memory>
#include <optional>

namespace SQLite {
class Database;
}

namespace murmeli {

/// What of a meeting is found: the keys of its words, joined by spaces, column by column.
struct IndexDocument {
    QString stem;
    qint64 start = 0;  ///< seconds since 1970 UTC; before that counts as 0
    QByteArray files;  ///< which state of its files this was made of
    QStringList names; ///< of people, as they are written
    QByteArray title, people, protocol, analysis, said;
};

/// A question in the index's own words, and what to do with its answers.
struct IndexQuery {
    enum class Order { Newest, Best };
    QByteArray match;   ///< an FTS5 expression made by IndexExpression, never what somebody has typed;
                        ///< empty: every meeting
    QByteArray without; ///< the same, of what must not be there; counts when `match` is empty
    std::optional<qint64> from; ///< seconds since 1970 UTC, as the next; both inclusive
    std::optional<qint64> until;
    Order order = Order::Newest;
    int most = 50;
};

/// The index of meetings, one SQLite file. It belongs to one thread, waits for the disk, and never throws:
/// what cannot be had is nothing, and broken() then tells whether the file is to be made anew.
class IndexFile {
public:
    enum class Mode { Read, Write };

    IndexFile(const QString& path, Mode mode);
    ~IndexFile();
    Q_DISABLE_COPY_MOVE(IndexFile)

    /// There is a file that can be used; in Mode::Write it is made when missing.
    [[nodiscard]] bool isOpen() const { return m_database != nullptr; }
    /// What is there is damaged or of another version.
    [[nodiscard]] bool broken() const { return m_broken; }

    /// Puts documents in, in one transaction; older ones of the same stem show no more. \return false when
    /// nothing of it was written.
    bool put(const QList<IndexDocument>& documents);
    /// Counts in how many meetings each word stands, for beginnings() and nearest(); of a few documents that
    /// were just put, only theirs.
    bool countWords();
    bool countWords(const QList<IndexDocument>& documents);
    [[nodiscard]] bool hasCounted();

    /// Meetings that are gone show no more.
    bool forget(const QStringList& stems);

    /// Of every document that shows: which state of its files it was made of.
    [[nodiscard]] QHash<QString, QByteArray> known();
    struct Size {
        qint64 alive = 0;
        qint64 dead = 0; ///< rows that take room and show no more
        std::optional<qint64>
            oldestGone; ///< seconds for which the words of a meeting that is gone have stayed
    };
    [[nodiscard]] Size size();

    /// Stems of the meetings that are found, in the order that was asked for.
    [[nodiscard]] QStringList find(const IndexQuery& query);
    [[nodiscard]] qint64 count(const IndexQuery& query);

    /// The names in the meetings, those in most of them first.
    [[nodiscard]] QStringList names(int most);
    /// The commonest keys with this beginning, when there are so many of them in so many meetings that the
    /// engine itself would have to read too much; else none.
    [[nodiscard]] QList<QByteArray> beginnings(const QByteArray& beginning, IndexQuery::Order order);
    /// The keys closest to `key` that are there, by at most `exchanges` letters; the best first.
    [[nodiscard]] QList<QByteArray> nearest(const QByteArray& key, int exchanges);

    /// Moves all that has been written from the log beside the file into it. \return false when somebody who
    /// reads keeps it from that.
    bool settle();
    static void remove(const QString& path);    ///< with the files that SQLite keeps beside it
    static void removeLog(const QString& path); ///< these alone

private:
    template <typename Work>
    auto attempt(Work work) -> std::optional<decltype(work())>;
    void open(const QString& path, Mode mode);

    std::unique_ptr<SQLite::Database> m_database;
    bool m_broken = false;
};

} // namespace murmeli
