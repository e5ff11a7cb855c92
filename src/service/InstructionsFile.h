#pragma once

#include <QString>

#include <optional>

/// The user's own instructions to the protocol, which the service follows. Waits for the disk; any thread.
namespace murmeli::instructionsFile {

/// Copies the beginning of a text file (UTF-8) to `target`, which is put in place whole. \return false when
/// the file is no text, empty or unreadable; the old instructions then stay.
bool load(const QString& source, const QString& target);

/// Bytes; nothing when there are no instructions.
std::optional<qint64> size(const QString& target);

} // namespace murmeli::instructionsFile
