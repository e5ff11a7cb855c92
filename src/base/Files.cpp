#include "Files.h"

#include <QFile>
#include <QRandomGenerator>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <thread>
#include <tuple>
#include <unistd.h>

namespace murmeli::files {

namespace {

constexpr qint64 clockTick = 50'000'000; // nanoseconds; well above any file system's tick in use

const QByteArray unfinished = ".murmeli-"; ///< between a file's name and what makes that beside it unique

class Descriptor {
public:
    // O_NONBLOCK, since opening a pipe would otherwise wait for its other end.
    Descriptor(const QByteArray& path, int flags, mode_t mode = 0644)
        : m_fd(::open(path.constData(), flags | O_NONBLOCK | O_CLOEXEC, mode))
    {
    }
    ~Descriptor()
    {
        if (m_fd >= 0) ::close(m_fd);
    }
    Q_DISABLE_COPY_MOVE(Descriptor)

    [[nodiscard]] int get() const { return m_fd; }
    [[nodiscard]] std::optional<struct stat> regular() const
    {
        struct stat info {};
        if (m_fd < 0 || ::fstat(m_fd, &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
        return info;
    }

private:
    int m_fd;
};

std::optional<struct stat> regularAt(const QByteArray& path)
{
    struct stat info {};
    if (::stat(path.constData(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
    return info;
}

/// A name that the kernel would take for another, shorter one is no name of ours.
QByteArray encoded(const QString& path)
{
    return path.contains(QChar::Null) ? QByteArray{} : QFile::encodeName(path);
}

bool nothingElseThan(const QByteArray& path)
{
    struct stat info {};
    return ::stat(path.constData(), &info) != 0 ? errno == ENOENT : S_ISREG(info.st_mode);
}

qint64 nanoseconds(const timespec& time) { return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec; }

qint64 kernelNow()
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return nanoseconds(now);
}

Identity identityOf(const struct stat& info)
{
#ifdef __APPLE__
    const auto& modified = info.st_mtimespec;
    const auto& changed = info.st_ctimespec;
#else
    const auto& modified = info.st_mtim;
    const auto& changed = info.st_ctim;
#endif
    return {quint64(info.st_dev), quint64(info.st_ino), qint64(info.st_size), nanoseconds(modified),
            nanoseconds(changed)};
}

/// At `offset`, or where the file stands when there is none.
bool writeAll(int fd, const QByteArray& bytes, std::optional<qsizetype> offset = std::nullopt)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const char* from = bytes.constData() + done;
        const size_t left = size_t(bytes.size() - done);
        const ssize_t written =
            offset ? ::pwrite(fd, from, left, off_t(*offset + done)) : ::write(fd, from, left);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        done += written;
    }
    return true;
}

/// The file that a chain of links ends at; `path` itself when it is no link, or one to nothing.
QByteArray behindLinks(const QByteArray& path)
{
    const std::unique_ptr<char, decltype(&std::free)> real{::realpath(path.constData(), nullptr), &std::free};
    return real ? QByteArray{real.get()} : path;
}

/// A new file beside `target`, which is removed again unless it is moved over it.
class Beside {
public:
    Beside(const QByteArray& target, mode_t mode) : m_target(target)
    {
        for (int tries = 0; m_fd < 0 && tries < 100; ++tries) {
            m_name = target + unfinished + QByteArray::number(::getpid()) + '-' +
                     QByteArray::number(QRandomGenerator::global()->generate(), 36);
            m_fd = ::open(m_name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            if (m_fd < 0 && errno != EEXIST) return;
        }
    }
    ~Beside()
    {
        if (m_fd < 0) return;
        ::close(m_fd);
        if (!m_moved) ::unlink(m_name.constData());
    }
    Q_DISABLE_COPY_MOVE(Beside)

    // Not every file system has modes to keep.
    void setMode(mode_t mode) const
    {
        if (m_fd >= 0) std::ignore = ::fchmod(m_fd, mode);
    }
    // Written at once, not when it is closed: a full disk must be known before the old content goes.
    [[nodiscard]] bool write(const QByteArray& bytes, Durable durable) const
    {
        return m_fd >= 0 && writeAll(m_fd, bytes) && (durable == Durable::No || ::fsync(m_fd) == 0);
    }
    [[nodiscard]] bool moveOver()
    {
        m_moved = ::rename(m_name.constData(), m_target.constData()) == 0;
        return m_moved;
    }

private:
    QByteArray m_target;
    QByteArray m_name;
    int m_fd = -1;
    bool m_moved = false;
};

} // namespace

std::optional<QByteArray> readWhole(const QString& path, qint64 limit)
{
    return readWhole(encoded(path), limit, nullptr);
}

std::optional<QByteArray> readWhole(const QByteArray& nativePath, qint64 limit, Identity* identity)
{
    if (!regularAt(nativePath)) return std::nullopt;
    const Descriptor file{nativePath, O_RDONLY};
    const auto info = file.regular();
    if (!info || info->st_size > limit) return std::nullopt;
    if (identity) *identity = identityOf(*info);

    // In a single read with room to spare, since a file written in place between two reads would come out
    // mixed. Sizes may lie (as in /proc), and the file may have grown: then once more with more room.
    for (qint64 room = qMax<qint64>(info->st_size, 4096);; room *= 2) {
        QByteArray bytes(qsizetype(qMin(room, limit)) + 1, Qt::Uninitialized);
        ssize_t got = -1;
        do {
            got = ::pread(file.get(), bytes.data(), size_t(bytes.size()), 0);
        } while (got < 0 && errno == EINTR);
        if (got < 0 || got > limit) return std::nullopt;
        if (got < bytes.size()) {
            bytes.truncate(got);
            return bytes;
        }
    }
}

std::optional<QByteArray> readBeginning(const QString& path, qint64 limit)
{
    if (auto bytes = readWhole(path, limit)) return bytes;
    const QByteArray name = encoded(path);
    if (!regularAt(name)) return std::nullopt;
    const Descriptor file{name, O_RDONLY};
    if (!file.regular()) return std::nullopt;
    QByteArray bytes(qsizetype(limit), Qt::Uninitialized);
    qsizetype size = 0;
    while (size < bytes.size()) {
        const ssize_t got = ::pread(file.get(), bytes.data() + size, size_t(bytes.size() - size), size);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt;
        if (got == 0) break;
        size += got;
    }
    bytes.truncate(size);
    return bytes;
}

bool isReadable(const QString& path)
{
    const QByteArray name = encoded(path);
    return regularAt(name) && ::access(name.constData(), R_OK) == 0;
}

Identity identity(const QString& path) { return identity(encoded(path)); }

std::optional<QList<QByteArray>> namesIn(const QByteArray& nativeFolder)
{
    QList<QByteArray> names;
    DIR* folder = ::opendir(nativeFolder.constData());
    if (!folder) return std::nullopt;
    while (const dirent* entry = ::readdir(folder)) {
        if (qstrcmp(entry->d_name, ".") != 0 && qstrcmp(entry->d_name, "..") != 0)
            names.append(entry->d_name);
    }
    ::closedir(folder);
    return names;
}

Identity identity(const QByteArray& nativePath)
{
    const auto info = regularAt(nativePath);
    return info ? identityOf(*info) : Identity{};
}

Identity identityOfFolder(const QString& path)
{
    struct stat info {};
    const bool folder = ::stat(encoded(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
    return folder ? identityOf(info) : Identity{};
}

qint64 nsSinceChange(const Identity& identity) { return kernelNow() - identity.changedNs; }

qint64 nsSinceWritten(const Identity& identity) { return kernelNow() - identity.modifiedNs; }

bool isSettled(const Identity& identity) { return std::abs(nsSinceChange(identity)) > clockTick; }

bool writeInPlace(const QString& path, const QByteArray& bytes)
{
    const QByteArray name = encoded(path);
    if (!nothingElseThan(name)) return false;
    // Not O_TRUNC: the service may read in the moment in which the file would be empty.
    const Descriptor file{name, O_WRONLY | O_CREAT};
    const auto info = file.regular();
    if (!info) return false;
    // White space is part of no content, so it makes both of one length: first behind the old content, which
    // then is replaced in one write, and last behind the new content until the cut. What is so large that no
    // reader of ours takes it has nothing to be kept from showing.
    const auto oldSize = qsizetype(qMin<qint64>(info->st_size, largestInPlace + 1));
    const bool cover = oldSize <= largestInPlace;
    if (cover && bytes.size() > oldSize &&
        !writeAll(file.get(), QByteArray(bytes.size() - oldSize, ' '), oldSize)) {
        return false;
    }
    return writeAll(file.get(), cover ? bytes.leftJustified(oldSize, ' ') : bytes, 0) &&
           ::ftruncate(file.get(), off_t(bytes.size())) == 0;
}

bool moveOver(const QString& from, const QString& to)
{
    return ::rename(encoded(from).constData(), encoded(to).constData()) == 0;
}

namespace {

Written put(Beside& file, const QByteArray& bytes, Durable durable, const std::function<bool()>& stillWanted)
{
    if (!file.write(bytes, durable)) return Written::Failed;
    if (stillWanted && !stillWanted()) return Written::Overtaken;
    return file.moveOver() ? Written::Yes : Written::Failed;
}

Written replace(const QString& path, const QByteArray& bytes, Durable durable,
                const std::function<bool()>& stillWanted)
{
    const QByteArray name = behindLinks(encoded(path));
    if (!nothingElseThan(name)) return Written::Failed;
    const auto old = regularAt(name);
    Beside file{name, 0666}; // what the user's mask leaves of it
    if (old) file.setMode(old->st_mode & 07777);
    return put(file, bytes, durable, stillWanted);
}

} // namespace

bool writeAtomic(const QString& path, const QByteArray& bytes, Durable durable)
{
    return replace(path, bytes, durable, {}) == Written::Yes;
}

Written writeAtomicIf(const QString& path, const QByteArray& bytes, const std::function<bool()>& stillWanted)
{
    return replace(path, bytes, Durable::Yes, stillWanted);
}

Written writePrivate(const QString& path, const QByteArray& bytes, const std::function<bool()>& stillWanted)
{
    Beside file{encoded(path), 0600};
    return put(file, bytes, Durable::Yes, stillWanted);
}

void removeUnfinished(const QString& path)
{
    const QByteArray target = encoded(path);
    const qsizetype slash = target.lastIndexOf('/') + 1;
    const QByteArray folder = target.left(slash);
    const QByteArray begin = target.sliced(slash) + unfinished;
    for (const QByteArray& name : namesIn(folder).value_or(QList<QByteArray>{})) {
        if (!name.startsWith(begin)) continue;
        const pid_t writer = name.sliced(begin.size()).split('-').first().toInt();
        const bool lives = writer > 0 && (::kill(writer, 0) == 0 || errno == EPERM);
        if (!lives) ::unlink((folder + name).constData());
    }
}

bool isPrivate(const QString& path)
{
    const auto info = regularAt(encoded(path));
    return info && (info->st_mode & 077) == 0;
}

bool append(const QString& path, const QByteArray& bytes)
{
    const QByteArray name = encoded(path);
    if (!nothingElseThan(name)) return false;
    const Descriptor file{name, O_WRONLY | O_CREAT | O_APPEND};
    return file.regular() && writeAll(file.get(), bytes);
}

bool appendLine(const QString& path, const QByteArray& line, Durable durable)
{
    const QByteArray name = encoded(path);
    if (!nothingElseThan(name)) return false;
    const Descriptor file{name, O_RDWR | O_CREAT | O_APPEND, 0600};
    const auto info = file.regular();
    if (!info) return false;
    char last = '\n';
    if (info->st_size > 0 && ::pread(file.get(), &last, 1, info->st_size - 1) != 1) return false;
    const QByteArray whole = (last == '\n' ? QByteArray{} : QByteArray{"\n"}) + line + '\n';
    return writeAll(file.get(), whole) && (durable == Durable::No || ::fsync(file.get()) == 0);
}

std::optional<qint64> freeBytes(const QString& folder)
{
    struct statvfs disk = {};
    QByteArray path = QFile::encodeName(folder);
    while (::statvfs(path.constData(), &disk) != 0) {
        const auto end = path.lastIndexOf('/');
        if (end <= 0) return std::nullopt;
        path.truncate(end);
    }
    return qint64(disk.f_bavail) * qint64(disk.f_frsize);
}

bool makePrivateFolder(const QString& path)
{
    const QByteArray folder = encoded(path);
    if (!folder.startsWith('/')) return false;
    for (qsizetype end = folder.indexOf('/', 1);; end = folder.indexOf('/', end + 1)) {
        const QByteArray part = folder.first(end < 0 ? folder.size() : end);
        if (::mkdir(part.constData(), 0700) != 0 && errno != EEXIST && errno != EROFS && errno != EACCES)
            return false;
        if (end < 0) break;
    }
    struct stat info {};
    return ::stat(folder.constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

Lock::Lock(const QString& path, std::chrono::milliseconds patience)
{
    using namespace std::chrono_literals;
    const QByteArray name = encoded(path);
    if (!nothingElseThan(name)) return;
    m_fd = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (m_fd < 0) return;
    const auto end = std::chrono::steady_clock::now() + patience;
    // Asked again and again, since a wait for a lock cannot be given up.
    while (!(m_held = ::flock(m_fd, LOCK_EX | LOCK_NB) == 0) && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(5ms);
}

Lock::~Lock()
{
    if (m_fd >= 0) ::close(m_fd);
}

} // namespace murmeli::files
