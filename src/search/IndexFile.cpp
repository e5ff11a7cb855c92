#include "IndexFile.h"

#include "language/Words.h"

#include <QFile>
#include <QSet>

#include <SQLiteCpp/SQLiteCpp.h>
#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr int version = 1;
constexpr qint64 perSecond = 4096; // rows that may begin in one second
constexpr int patience = 2000;     // milliseconds for another process's write

constexpr auto preparations = {
    "PRAGMA page_size=8192",
    "PRAGMA journal_mode=WAL",
};
constexpr auto settings = {
    "PRAGMA synchronous=NORMAL",
    "PRAGMA cache_size=-4096",
    "PRAGMA temp_store=MEMORY",
};
constexpr auto tables = {
    "CREATE VIRTUAL TABLE words USING fts5(title, people, protocol, analysis, said, content='', "
    "tokenize=\"ascii tokenchars '.,'\", detail=full)",
    "CREATE TABLE doc(id INTEGER PRIMARY KEY, stem TEXT NOT NULL, alive INTEGER NOT NULL, "
    "files BLOB NOT NULL, names TEXT NOT NULL, made INTEGER NOT NULL, gone INTEGER)",
    "CREATE TABLE word(key TEXT PRIMARY KEY, meetings INTEGER NOT NULL) WITHOUT ROWID",
    "CREATE INDEX doc_stem ON doc(stem) WHERE alive",
    "PRAGMA user_version=1",
};

std::string text(const QString& string) { return string.toStdString(); }
std::string text(const QByteArray& bytes) { return bytes.toStdString(); }

} // namespace

IndexFile::IndexFile(const QString& path, Mode mode)
{
    attempt([&] {
        open(path, mode);
        return true;
    });
}

IndexFile::~IndexFile() = default;

template <typename Work>
auto IndexFile::attempt(Work work) -> std::optional<decltype(work())>
{
    try {
        return work();
    } catch (const SQLite::Exception& error) {
        const int code = error.getErrorCode();
        m_broken = m_broken || code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
        return std::nullopt;
    }
}

void IndexFile::open(const QString& path, Mode mode)
{
    const QByteArray name = QFile::encodeName(path);
    if (mode == Mode::Write) {                     // for the owner alone from the first byte on
        if (!QFile::exists(path)) removeLog(path); // of a file that somebody has removed
        const int fd = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (fd < 0) return;
        ::close(fd);
    }
    auto database = std::make_unique<SQLite::Database>(
        name.toStdString(), mode == Mode::Write ? SQLite::OPEN_READWRITE : SQLite::OPEN_READONLY, patience);
    int found = database->execAndGet("PRAGMA user_version").getInt();
    const bool fresh = found == 0 && !database->tableExists("doc");
    if (fresh && mode == Mode::Write) {
        for (const char* step : preparations)
            database->exec(step);
        SQLite::Transaction whole{*database};
        for (const char* step : tables)
            database->exec(step);
        whole.commit();
        found = version;
    }
    if (found != version) {
        m_broken = !fresh;
        return;
    }
    for (const char* step : settings)
        database->exec(step);
    m_database = std::move(database);
}

bool IndexFile::put(const QList<IndexDocument>& documents)
{
    if (!m_database) return false;
    // The engine collects words in memory for as long as rows come in their order.
    std::vector<const IndexDocument*> order;
    for (const IndexDocument& document : documents)
        order.push_back(&document);
    std::ranges::stable_sort(order, {}, &IndexDocument::start);
    return attempt([&] {
               SQLite::Transaction whole{*m_database};
               SQLite::Statement bury{*m_database, "UPDATE doc SET alive=0 WHERE stem=? AND alive"};
               SQLite::Statement last{*m_database, "SELECT max(id) FROM doc WHERE id BETWEEN ? AND ?"};
               SQLite::Statement insert{*m_database,
                                        "INSERT INTO words(rowid, title, people, protocol, analysis, said) "
                                        "VALUES(?, ?, ?, ?, ?, ?)"};
               SQLite::Statement note{*m_database,
                                      "INSERT INTO doc VALUES(?, ?, 1, ?, ?, unixepoch(), NULL)"};
               for (const IndexDocument* one : order) {
                   const IndexDocument& document = *one;
                   bury.bind(1, text(document.stem));
                   bury.exec();
                   bury.reset();
                   const qint64 first = std::max<qint64>(0, document.start) * perSecond;
                   last.bind(1, int64_t(first));
                   last.bind(2, int64_t(first + perSecond - 1));
                   last.executeStep();
                   const int64_t id = last.isColumnNull(0) ? first : last.getColumn(0).getInt64() + 1;
                   last.reset();
                   insert.bind(1, id);
                   int column = 2;
                   for (const QByteArray* keys : {&document.title, &document.people, &document.protocol,
                                                  &document.analysis, &document.said})
                       insert.bindNoCopy(column++, keys->constData(), int(keys->size()));
                   insert.exec();
                   insert.reset();
                   note.bind(1, id);
                   note.bind(2, text(document.stem));
                   note.bind(3, document.files.constData(), int(document.files.size()));
                   note.bind(4, text(document.names.join(u'\n')));
                   note.exec();
                   note.reset();
               }
               whole.commit();
               return true;
           })
        .value_or(false);
}

bool IndexFile::forget(const QStringList& stems)
{
    if (!m_database) return false;
    return attempt([&] {
               SQLite::Transaction whole{*m_database};
               SQLite::Statement bury{*m_database,
                                      "UPDATE doc SET alive=0, gone=unixepoch() WHERE stem=? AND alive"};
               for (const QString& stem : stems) {
                   bury.bind(1, text(stem));
                   bury.exec();
                   bury.reset();
               }
               whole.commit();
               return true;
           })
        .value_or(false);
}

QHash<QString, QByteArray> IndexFile::known()
{
    if (!m_database) return {};
    return attempt([&] {
               QHash<QString, QByteArray> known;
               SQLite::Statement all{*m_database, "SELECT stem, files FROM doc WHERE alive"};
               while (all.executeStep()) {
                   const SQLite::Column files = all.getColumn(1);
                   known.insert(QString::fromUtf8(all.getColumn(0).getText()),
                                QByteArray{static_cast<const char*>(files.getBlob()), files.getBytes()});
               }
               return known;
           })
        .value_or(QHash<QString, QByteArray>{});
}

IndexFile::Size IndexFile::size()
{
    if (!m_database) return {};
    return attempt([&] {
               SQLite::Statement sums{
                   *m_database, "SELECT count(*), coalesce(sum(alive), 0), unixepoch() - min(gone) FROM doc"};
               sums.executeStep();
               const qint64 all = sums.getColumn(0).getInt64(), alive = sums.getColumn(1).getInt64();
               const SQLite::Column gone = sums.getColumn(2);
               return Size{alive, all - alive,
                           gone.isNull() ? std::nullopt : std::optional{qint64(gone.getInt64())}};
           })
        .value_or(Size{});
}

namespace {

constexpr auto found = " FROM words JOIN doc ON doc.id = words.rowid "
                       "WHERE words MATCH ?1 AND doc.alive AND words.rowid BETWEEN ?2 AND ?3";
constexpr auto every = " FROM doc WHERE alive AND id BETWEEN ?2 AND ?3 AND (?1 = '' OR id NOT IN "
                       "(SELECT rowid FROM words WHERE words MATCH ?1))";
// How much a word in each column weighs.
constexpr auto best = " ORDER BY bm25(words, 8.0, 4.0, 3.0, 2.0, 1.0), words.rowid DESC LIMIT ?4";
constexpr auto newest = " ORDER BY words.rowid DESC LIMIT ?4";
constexpr auto newestOfAll = " ORDER BY id DESC LIMIT ?4";

void bind(SQLite::Statement& statement, const IndexQuery& query)
{
    constexpr qint64 latest = std::numeric_limits<qint64>::max() / perSecond - 1;
    statement.bind(1, text(query.match.isEmpty() ? query.without : query.match));
    statement.bind(2, int64_t(std::clamp<qint64>(query.from.value_or(0), 0, latest) * perSecond));
    statement.bind(
        3, int64_t((std::clamp<qint64>(query.until.value_or(latest), 0, latest) + 1) * perSecond - 1));
}

std::string selecting(const char* what, const IndexQuery& query)
{
    return std::string{"SELECT "} + what + (query.match.isEmpty() ? every : found);
}

} // namespace

QStringList IndexFile::find(const IndexQuery& query)
{
    if (!m_database) return {};
    return attempt([&] {
               const bool byBest = query.order == IndexQuery::Order::Best;
               const char* order = query.match.isEmpty() ? newestOfAll : byBest ? best : newest;
               SQLite::Statement rows{*m_database, selecting("stem", query) + order};
               bind(rows, query);
               rows.bind(4, query.most);
               QStringList stems;
               while (rows.executeStep())
                   stems.append(QString::fromUtf8(rows.getColumn(0).getText()));
               return stems;
           })
        .value_or(QStringList{});
}

qint64 IndexFile::count(const IndexQuery& query)
{
    if (!m_database) return 0;
    return attempt([&] {
               SQLite::Statement rows{*m_database, selecting("count(*)", query)};
               bind(rows, query);
               rows.executeStep();
               return qint64(rows.getColumn(0).getInt64());
           })
        .value_or(0);
}

QStringList IndexFile::names(int most)
{
    if (!m_database) return {};
    const auto counts = attempt([&] {
        QHash<QString, int> counts;
        SQLite::Statement all{*m_database, "SELECT names FROM doc WHERE alive"};
        while (all.executeStep()) {
            for (const QString& name :
                 QString::fromUtf8(all.getColumn(0).getText()).split(u'\n', Qt::SkipEmptyParts))
                ++counts[name];
        }
        return counts;
    });
    QStringList names = counts.value_or(QHash<QString, int>{}).keys();
    std::ranges::sort(names, [&](const QString& left, const QString& right) {
        const int l = counts->value(left), r = counts->value(right);
        return l != r ? l > r : left < right;
    });
    return names.first(std::min<qsizetype>(most, names.size()));
}

QList<QByteArray> IndexFile::nearest(const QByteArray& key, int exchanges)
{
    if (!m_database) return {};
    struct Near {
        QByteArray key;
        int distance;
        qint64 meetings;
    };
    const QString wanted = QString::fromUtf8(key);
    auto found = attempt([&] {
        std::vector<Near> found;
        SQLite::Statement all{*m_database, "SELECT key, meetings FROM word"};
        while (all.executeStep()) {
            const SQLite::Column term = all.getColumn(0);
            if (std::abs(term.getBytes() - int(key.size())) > 4 * exchanges) continue; // bytes
            const QByteArray other{term.getText(), term.getBytes()};
            const int far = words::distance(wanted, QString::fromUtf8(other), exchanges);
            if (far > 0 && far <= exchanges) found.push_back({other, far, all.getColumn(1).getInt64()});
        }
        return found;
    });
    auto near = found.value_or(std::vector<Near>{});
    std::ranges::sort(near, [](const Near& left, const Near& right) {
        return left.distance != right.distance ? left.distance < right.distance
                                               : left.meetings > right.meetings;
    });
    QList<QByteArray> keys;
    for (const Near& one : near)
        keys.append(one.key);
    return keys;
}

QList<QByteArray> IndexFile::beginnings(const QByteArray& beginning, IndexQuery::Order order)
{
    constexpr qint64 readable = 20'000; // words in meetings that the engine reads in a few milliseconds
    // They stand in nearly every meeting then. To weigh each takes its time.
    const int commonest = order == IndexQuery::Order::Best ? 4 : 16;
    if (!m_database || beginning.isEmpty()) return {};
    const std::string last = text(beginning) + "\xf4\x8f\xbf\xbf"; // the last character that there is
    return attempt([&] {
               QList<QByteArray> keys;
               SQLite::Statement sum{*m_database, "SELECT sum(meetings) FROM word WHERE key BETWEEN ? AND ?"};
               sum.bind(1, text(beginning));
               sum.bind(2, last);
               sum.executeStep();
               if (sum.getColumn(0).getInt64() <= readable) return keys;
               SQLite::Statement best{
                   *m_database,
                   "SELECT key FROM word WHERE key BETWEEN ? AND ? ORDER BY meetings DESC LIMIT ?"};
               best.bind(1, text(beginning));
               best.bind(2, last);
               best.bind(3, commonest);
               while (best.executeStep())
                   keys.append(QByteArray{best.getColumn(0).getText()});
               return keys;
           })
        .value_or(QList<QByteArray>{});
}

bool IndexFile::countWords()
{
    if (!m_database) return false;
    return attempt([&] {
               // Of the connection alone, so that any other program can open the file.
               m_database->exec(
                   "CREATE VIRTUAL TABLE IF NOT EXISTS temp.vocabulary USING fts5vocab(main, words, row)");
               SQLite::Transaction whole{*m_database};
               m_database->exec("DELETE FROM word");
               m_database->exec("INSERT INTO word SELECT term, doc FROM temp.vocabulary");
               whole.commit();
               return true;
           })
        .value_or(false);
}

bool IndexFile::countWords(const QList<IndexDocument>& documents)
{
    if (!m_database) return false;
    QHash<QByteArray, int> counts;
    for (const IndexDocument& document : documents) {
        QSet<QByteArray> keys;
        for (const QByteArray* column :
             {&document.title, &document.people, &document.protocol, &document.analysis, &document.said}) {
            for (const QByteArray& key : column->split(' '))
                keys.insert(key);
        }
        keys.remove({});
        for (const QByteArray& key : std::as_const(keys))
            ++counts[key];
    }
    return attempt([&] {
               SQLite::Transaction whole{*m_database};
               SQLite::Statement add{*m_database,
                                     "INSERT INTO word VALUES(?1, ?2) ON CONFLICT(key) DO UPDATE SET "
                                     "meetings = meetings + ?2"};
               for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
                   add.bind(1, text(it.key()));
                   add.bind(2, it.value());
                   add.exec();
                   add.reset();
               }
               whole.commit();
               return true;
           })
        .value_or(false);
}

bool IndexFile::hasCounted()
{
    if (!m_database) return false;
    return attempt([&] {
               return SQLite::Statement{*m_database, "SELECT 1 FROM word LIMIT 1"}.executeStep();
           })
        .value_or(false);
}

bool IndexFile::settle()
{
    if (!m_database) return false;
    return attempt([&] {
               SQLite::Statement checkpoint{*m_database, "PRAGMA wal_checkpoint(TRUNCATE)"};
               checkpoint.executeStep();
               return checkpoint.getColumn(0).getInt() == 0;
           })
        .value_or(false);
}

void IndexFile::remove(const QString& path)
{
    QFile::remove(path);
    removeLog(path);
}

void IndexFile::removeLog(const QString& path)
{
    for (const QString& suffix : {u"-wal"_s, u"-shm"_s, u"-journal"_s})
        QFile::remove(path + suffix);
}

} // namespace murmeli
