#pragma once

#include "ProtocolItems.h"
#include "service/OwnFile.h"

#include <QSet>

namespace murmeli {

struct Paths;

/// Another text for one item of a protocol, by the user's wish.
struct ProtocolChange {
    enum class Kind { Remark, Undo, Redo };

    QString id;
    double time = 0; ///< in seconds since 1970 UTC
    Kind kind = Kind::Remark;
    QString section; ///< key in the summary file
    qsizetype index = 0;
    QString field; ///< empty where the element is no object
    QString before;
    QString after;
    QString remark; ///< of that kind
    QString of;     ///< id of the change that is undone or made again

    bool operator==(const ProtocolChange&) const = default;
};

/// Everything that was changed in one protocol, each line written before the change and after it, so that
/// nothing is lost whenever the program ends. All functions wait for the disk: beside the main thread.
class Ledger {
public:
    Ledger(const Paths& paths, const QString& meeting);

    struct Content {
        QList<ProtocolItem> original;  ///< all items before the first change
        QList<ProtocolChange> changes; ///< that were carried out or may have been, in their order
        QSet<QString> ended;           ///< ids of those that were carried out for sure
        QSet<QString> kept;            ///< ids of those that the user has let go
        bool unreadable = false;
    };
    [[nodiscard]] Content read() const;

    /// Notes that a change begins; `items` are all that the protocol has, for the first time.
    [[nodiscard]] OwnWritten begin(const ProtocolChange& change, const QList<ProtocolItem>& items) const;
    /// Notes that it was carried out, or was not and never will be.
    [[nodiscard]] OwnWritten end(const QString& change, bool carriedOut, double now) const;
    /// Notes that the user lets another text stand in the place of a change's.
    [[nodiscard]] OwnWritten keep(const QString& change, double now) const;

private:
    OwnLines m_lines;
};

} // namespace murmeli
