#pragma once

#include "Receipt.h"
#include "service/OwnFile.h"

#include <QList>

namespace murmeli {

struct Paths;

/// Where receipts are kept, a file a month. Everything here waits for the disk: beside the main thread.
class ReceiptFiles {
public:
    explicit ReceiptFiles(const Paths& paths);

    struct Read {
        QList<Receipt> receipts; ///< the newest first; of those with the same id the last one written
        bool unreadable = false; ///< some of it
    };
    /// Those of a meeting; of all that there are without one.
    [[nodiscard]] Read of(const QString& stem) const;

    [[nodiscard]] OwnWritten add(const Receipt& receipt) const;
    /// The same unless there is one of its kind on its day already.
    [[nodiscard]] OwnWritten addOnceADay(const Receipt& receipt) const;

private:
    [[nodiscard]] OwnLines month(const QString& name) const;

    QString m_folder;
};

} // namespace murmeli
