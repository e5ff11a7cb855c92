#pragma once

#include <QByteArray>
#include <QString>

/// The request file that the service reads and consumes. A newer request replaces an unread older one.
namespace murmeli::commandFile {

enum class Action { Start, Stop };

/// {"action":"start","ts":1731690000.5}: `seconds` since 1970-01-01 UTC in plain decimal notation, in the
/// fewest digits that read back as the same number.
QByteArray text(Action action, double seconds);

/// Writes the request atomically. \return false when it could not be written.
[[nodiscard]] bool write(const QString& path, Action action, double seconds);

} // namespace murmeli::commandFile
