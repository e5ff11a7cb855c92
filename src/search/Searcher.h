#pragma once

#include "FoundPlace.h"
#include "IndexFile.h"
#include "SearchQuery.h"
#include "base/Files.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <memory>

namespace murmeli {

/// What is asked, and how much of the answer is wanted.
struct SearchQuestion {
    QString typed;
    SearchFilters filters;
    SearchQuery::Pairs pairs; ///< of texts that mean the same
    QDate today;
    IndexQuery::Order order = IndexQuery::Order::Newest;
    int most = 0;            ///< meetings
    int candidates = 2000;   ///< the same where their files have to be looked at
    bool otherLayout = true; ///< whether keys of the other keyboard layout may be meant
};

struct SearchAnswer {
    bool indexed = false; ///< there is an index
    SearchQuery query;    ///< what was looked for in the end
    QString layout;       ///< what was typed, in the other keyboard layout; empty when it was taken as typed
    QStringList ids;
    qint64 meetings = 0;
    bool candidates = false; ///< these have yet to be looked at in their files
};

/// A way out when nothing was found.
struct SearchWayOut {
    Q_GADGET
    QML_VALUE_TYPE(searchWayOut)
    Q_PROPERTY(QString key MEMBER key FINAL)     ///< of its text
    Q_PROPERTY(QString query MEMBER query FINAL) ///< what to look for instead; empty: a filter goes
    Q_PROPERTY(int meetings MEMBER meetings FINAL)

public:
    QString key;
    QString query;
    int meetings = 0;
    bool operator==(const SearchWayOut&) const = default;
};

/// Asks the index. One thread at a time; waits for the disk.
class Searcher {
public:
    explicit Searcher(QString path) : m_path(std::move(path)) {}
    ~Searcher();
    Q_DISABLE_COPY_MOVE(Searcher)

    [[nodiscard]] SearchAnswer ask(const SearchQuestion& question);
    [[nodiscard]] QStringList names(int most);

    /// Reads one of a found meeting's texts.
    using Reader = std::function<MeetingText(const QString& id)>;
    /// At most two; each finds something.
    [[nodiscard]] QList<SearchWayOut> waysOut(const SearchQuestion& question, const Reader& read);

    [[nodiscard]] words::Keys& keys() { return m_keys; }

private:
    [[nodiscard]] IndexFile* index();
    [[nodiscard]] SearchQuery queryOf(const SearchQuestion& question);
    [[nodiscard]] std::optional<SearchWayOut> withoutFilter(const SearchQuestion& question);
    [[nodiscard]] std::optional<SearchWayOut> nearest(const SearchQuestion& question, const Reader& read);

    QString m_path;
    std::unique_ptr<IndexFile> m_index;
    files::Identity m_file; ///< which one is open
    words::Keys m_keys;
};

} // namespace murmeli
