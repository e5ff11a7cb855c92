#pragma once

#include <QString>

#include <optional>

/// What stands in a protocol (Markdown) of the service. Any thread.
namespace murmeli::protocolFile {

inline constexpr qint64 sizeLimit = 64 * 1024 * 1024; ///< bytes; a larger file is no protocol

/// The lines of the transcript in a protocol's text; nothing when it has none.
std::optional<QString> transcriptIn(const QString& protocol);

/// The same of a file; nothing also when that is larger than `limit` bytes, or not UTF-8. Waits for the disk.
std::optional<QString> transcript(const QString& path, qint64 limit = sizeLimit);
/// The same, but of a larger file the beginning; `cut` then becomes true.
std::optional<QString> transcript(const QString& path, qint64 limit, bool* cut);

} // namespace murmeli::protocolFile
