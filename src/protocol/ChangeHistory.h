#pragma once

#include "Ledger.h"

namespace murmeli {

/// What has become of the changes of one protocol, seen from its items as they are now. Any thread.
struct ChangeHistory {
    enum class State {
        Holds,
        Undone,
        Overwritten, ///< somebody else has put back what stood there before
        Kept,        ///< and the user lets that stand
    };
    struct Entry {
        ProtocolChange change; ///< by a remark
        State state = State::Holds;
        double undoneAt = 0; ///< in seconds since 1970 UTC
        bool operator==(const Entry&) const = default;
    };
    /// Another text than a change's that is not from here.
    struct Foreign {
        QString change; ///< id
        QString section;
        QString before;
        QString after; ///< of the item that is nearest to it; empty when none is left
        bool operator==(const Foreign&) const = default;
    };

    QList<Entry> entries; ///< in the order of the changes
    QList<Foreign> foreign;

    static ChangeHistory of(const Ledger::Content& ledger, const QList<ProtocolItem>& items);

    /// Those of the ledger that were carried out: an unfinished one when its text stands there, unless its
    /// item still reads as before.
    static QList<ProtocolChange> carriedOut(const Ledger::Content& ledger, const QList<ProtocolItem>& items);

    bool operator==(const ChangeHistory&) const = default;
};

/// An item at first and as it is now.
struct ComparedItem {
    QString section;
    QString before; ///< empty: it has come
    QString after;  ///< empty: it has gone
    bool operator==(const ComparedItem&) const = default;
};

/// All items against others, those that are most alike beside each other. Any thread.
QList<ComparedItem> compared(const QList<ProtocolItem>& before, const QList<ProtocolItem>& after);

} // namespace murmeli
