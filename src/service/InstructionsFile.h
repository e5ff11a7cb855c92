#pragma once

#include <QString>

#include <optional>

/// The user's own instructions to the protocol, which the service follows. Waits for the disk; any thread.
namespace murmeli::instructionsFile {

/// Unless taken, the old instructions stay.
enum class Loaded {
    Taken,
    NoText,  ///< or empty, unreadable, beyond any reason in size
    NotSaved ///< `target` cannot be written
};

/// Copies the beginning of a text file (UTF-8) to `target`, which is put in place whole.
Loaded load(const QString& source, const QString& target);

/// Bytes; nothing when there are no instructions.
std::optional<qint64> size(const QString& target);

} // namespace murmeli::instructionsFile
