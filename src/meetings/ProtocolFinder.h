#pragma once

#include "Meeting.h"

#include <QMutex>
#include <QStringList>

namespace murmeli {

/// Finds the protocol of a meeting, also when the service has moved it. Lists the folder of protocols once
/// and never again. Waits for the disk; any thread.
class ProtocolFinder final {
public:
    explicit ProtocolFinder(QString folder) : m_folder(std::move(folder)) {}

    /// The path that the meeting names when a file stands there, else the first file in the folder whose name
    /// holds the meeting's title; nothing when there is none.
    std::optional<QString> find(const Meeting& meeting);

private:
    std::optional<QString> byTitle(const QString& title);

    QString m_folder;
    QMutex m_mutex;
    std::optional<QStringList> m_names;
};

} // namespace murmeli
