#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

/// Small files, read and written whole. Nothing here waits for another program: pipes, devices and folders
/// are refused before a byte is touched. Folders are never created. Any thread.
namespace murmeli::files {

/// Which content a path holds, as far as the file system tells without reading: its file, size and time.
struct Identity {
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = -1; ///< bytes; -1 when there is no regular file
    qint64 modifiedNs = 0;
    qint64 changedNs = 0;
    bool operator==(const Identity&) const = default;
};
/// The content of the regular file at `path`; nothing when it is missing, unreadable, no regular file or
/// larger than `limit` bytes.
std::optional<QByteArray> readWhole(const QString& path, qint64 limit);
/// The same for a path as the file system spells it; `identity`, when asked for, is that of what was read.
std::optional<QByteArray> readWhole(const QByteArray& nativePath, qint64 limit, Identity* identity);

/// The same, but of a larger file its first `limit` bytes.
std::optional<QByteArray> readBeginning(const QString& path, qint64 limit);

/// Whether a regular file stands at `path` that we may read, whatever its size.
bool isReadable(const QString& path);

Identity identity(const QString& path);
Identity identity(const QByteArray& nativePath); ///< as the file system spells it
Identity identityOfFolder(const QString& path);  ///< another one once a name in it has come or gone

/// The names in a folder as the file system spells and orders them, without those of the folder itself and of
/// the one above; nothing when it cannot be listed.
std::optional<QList<QByteArray>> namesIn(const QByteArray& nativeFolder);

/// How long ago the file was changed, by the clock that file systems stamp with, which nobody can hand in;
/// negative when that clock was set back meanwhile.
qint64 nsSinceChange(const Identity& identity);
/// The same of its content alone, as whoever wrote it may have set it.
qint64 nsSinceWritten(const Identity& identity);

/// Whether an equal identity means equal content. File systems tell time in ticks, so a file changed a moment
/// ago may change again without a trace.
bool isSettled(const Identity& identity);

inline constexpr qint64 largestInPlace = 4 * 1024 * 1024; ///< bytes

/// Over the same file, in one write that covers all old bytes, then cut to length: a reader of JSON sees the
/// old content or the new one, never an empty file. Of a larger one than largestInPlace it may see a mixture.
/// \return false when anything failed.
[[nodiscard]] bool writeInPlace(const QString& path, const QByteArray& bytes);

/// Puts `from` in the place of `to` on the same disk, in one step; `to` may be missing. \return false when it
/// failed.
[[nodiscard]] bool moveOver(const QString& from, const QString& to);

enum class Durable { Yes, No };

/// Beside the file and then moved over it: readers see the old content or the new one, also when the disk is
/// full or, with Durable::Yes, after a power cut (for which it waits for the disk). Permissions stay, unless
/// they are the very thing that forbids writing: then the folder's count. \return false when anything failed;
/// the old content is then intact.
[[nodiscard]] bool writeAtomic(const QString& path, const QByteArray& bytes, Durable durable = Durable::Yes);

enum class Written { Yes, Overtaken, Failed };

/// As writeAtomic with Durable::Yes, but only if `stillWanted`, asked when all but the move is done, agrees;
/// otherwise it is overtaken.
[[nodiscard]] Written writeAtomicIf(const QString& path, const QByteArray& bytes,
                                    const std::function<bool()>& stillWanted);

/// As writeAtomic, but readable by the owner alone from the first byte on, whatever stood there before, and
/// only if `stillWanted`, asked when all but the move is done, agrees; otherwise it is overtaken.
[[nodiscard]] Written writePrivate(const QString& path, const QByteArray& bytes,
                                   const std::function<bool()>& stillWanted = {});

/// Removes what a kill left of earlier writes to `path` that were not in place; of programs that live,
/// nothing.
void removeUnfinished(const QString& path);

/// Whether a regular file stands at `path` that nobody but its owner may read or write.
bool isPrivate(const QString& path);

/// At the end of the file, which is made when missing.
[[nodiscard]] bool append(const QString& path, const QByteArray& bytes);

/// `line` and a line feed at the end of a file that the owner alone may read, and that is made when missing;
/// after a line that was cut off it begins a new one. With Durable::Yes it waits for the disk. \return false
/// when anything failed; a part of the line may then stand there.
[[nodiscard]] bool appendLine(const QString& path, const QByteArray& line, Durable durable);

/// Bytes that the user may still write on the disk of a folder, or of the nearest one above it that is there.
std::optional<qint64> freeBytes(const QString& folder);

/// Makes the folder, and those above it that are missing, for the owner alone. \return whether it is there.
[[nodiscard]] bool makePrivateFolder(const QString& path);

/// An advisory lock between processes and threads: whoever holds a lock on the same file keeps others from
/// theirs until it goes, also by being killed.
class Lock {
public:
    /// Waits up to `patience` for the others. The file is made when missing, its folder is not.
    Lock(const QString& path, std::chrono::milliseconds patience);
    ~Lock();
    Q_DISABLE_COPY_MOVE(Lock)

    [[nodiscard]] bool held() const { return m_held; }

private:
    int m_fd = -1;
    bool m_held = false;
};

} // namespace murmeli::files
