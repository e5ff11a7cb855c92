#pragma once

#include "Lease.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QThreadPool>

namespace murmeli {

class Scheduler;

/// What was written and not carried out yet, by what it is about, such as a meeting. It outlives the program
/// in a file. Main thread only.
class Drafts final : public QObject {
    Q_OBJECT

public:
    /// \param file of their own, in a folder that is made.
    Drafts(QString file, Scheduler& scheduler, QObject* parent = nullptr);
    ~Drafts() override;
    Q_DISABLE_COPY_MOVE(Drafts)

    [[nodiscard]] QString of(const QString& about) const { return m_drafts.value(about); }

    void set(const QString& about, const QString& draft);

    /// Words that were carried out are wanted no more, unless others have come in their place.
    void carryOut(const QString& about, const QString& draft);

signals:
    void changed(const QString& about);
    void carriedOut();

private:
    void write();

    QString m_file;
    Scheduler& m_scheduler;
    QHash<QString, QString> m_drafts;
    Lease m_waiting;      ///< to be written, once the typing pauses
    QThreadPool m_writer; ///< one thread, so that the latest state is the last one
};

} // namespace murmeli
