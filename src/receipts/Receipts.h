#pragma once

#include "ReceiptFiles.h"

#include <QObject>
#include <QSet>
#include <QThreadPool>

#include <functional>

namespace murmeli {

class Scheduler;

/// Notes what leaves this computer. Written beside the main thread, in the order of the calls; main thread
/// only.
class Receipts final : public QObject {
    Q_OBJECT

public:
    Receipts(const Paths& paths, const Scheduler& scheduler, QObject* parent = nullptr);
    ~Receipts() override;
    Q_DISABLE_COPY_MOVE(Receipts)

    [[nodiscard]] Receipt begun() const;

    /// Notes a receipt, also what has become of one that was noted before, and runs `then` once it stands on
    /// the disk, or cannot be.
    void note(const Receipt& receipt, QObject* context = nullptr, std::function<void()> then = {});
    /// A copy on the clipboard: of an "excerpt", the "transcript", the "sections".
    void noteCopied(const QString& stem, const QString& part, qint64 bytes);
    /// A file that was handed out; how large it is is looked at here.
    void noteFile(Receipt receipt, const QString& path);
    /// What carries nothing of a meeting is listed once a day by its kind.
    void noteOnceADay(const Receipt& receipt);

    [[nodiscard]] const ReceiptFiles& files() const { return m_files; }

signals:
    void changed();
    void notWritten(murmeli::OwnWritten why);

private:
    void written(OwnWritten why);

    ReceiptFiles m_files;
    const Scheduler& m_scheduler;
    QSet<QString> m_today; ///< days and kinds that are listed for sure
    bool m_said = false;   ///< that they cannot be written
    QThreadPool m_disk;    ///< one thread, so that lines stand in the order of the calls
};

} // namespace murmeli
