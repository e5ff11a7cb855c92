#include "Files.h"

#include <QFile>
#include <QSaveFile>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace murmeli::files {

namespace {

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

bool writeAll(int fd, const QByteArray& bytes, bool atStart)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const char* from = bytes.constData() + done;
        const size_t left = size_t(bytes.size() - done);
        const ssize_t written = atStart ? ::pwrite(fd, from, left, off_t(done)) : ::write(fd, from, left);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        done += written;
    }
    return true;
}

} // namespace

std::optional<QByteArray> readWhole(const QString& path, qint64 limit)
{
    const QByteArray name = encoded(path);
    if (!regularAt(name)) return std::nullopt;
    const Descriptor file{name, O_RDONLY};
    const auto info = file.regular();
    if (!info || info->st_size > limit) return std::nullopt;

    // One byte more than stated, to see whether the file has grown since; sizes may lie (as in /proc).
    QByteArray bytes(qsizetype(qMin<qint64>(qMax<qint64>(info->st_size, 4096), limit)) + 1, Qt::Uninitialized);
    qsizetype filled = 0;
    for (;;) {
        const ssize_t got = ::read(file.get(), bytes.data() + filled, size_t(bytes.size() - filled));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt;
        if (got == 0) break;
        filled += got;
        if (filled > limit) return std::nullopt;
        if (filled == bytes.size()) bytes.resize(qsizetype(qMin<qint64>(2 * qint64(filled), limit) + 1));
    }
    bytes.truncate(filled);
    return bytes;
}

bool isReadable(const QString& path)
{
    const QByteArray name = encoded(path);
    return regularAt(name) && ::access(name.constData(), R_OK) == 0;
}

Identity identity(const QString& path)
{
    const auto info = regularAt(encoded(path));
    if (!info) return {};
#ifdef __APPLE__
    const auto& modified = info->st_mtimespec;
    const auto& changed = info->st_ctimespec;
#else
    const auto& modified = info->st_mtim;
    const auto& changed = info->st_ctim;
#endif
    return {quint64(info->st_dev), quint64(info->st_ino), qint64(info->st_size), nanoseconds(modified),
            nanoseconds(changed)};
}

bool writeInPlace(const QString& path, const QByteArray& bytes)
{
    const QByteArray name = encoded(path);
    if (!nothingElseThan(name)) return false;
    // Not O_TRUNC: the service may read in the moment in which the file would be empty.
    const Descriptor file{name, O_WRONLY | O_CREAT};
    const auto info = file.regular();
    if (!info) return false;
    // White space up to the old length, so that no tail of the old content shows before the cut.
    const QByteArray covering = bytes.leftJustified(qsizetype(info->st_size), ' ');
    return writeAll(file.get(), covering, true) && ::ftruncate(file.get(), off_t(bytes.size())) == 0;
}

bool writeAtomic(const QString& path, const QByteArray& bytes)
{
    if (!nothingElseThan(encoded(path))) return false;
    QSaveFile file{path};
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

bool writePrivate(const QString& path, const QByteArray& bytes)
{
    QByteArray temporary = encoded(path) + ".XXXXXX";
    const int fd = ::mkstemp(temporary.data()); // made 0600
    if (fd < 0) return false;
    const bool written = writeAll(fd, bytes, false) && ::fsync(fd) == 0;
    const bool closed = ::close(fd) == 0;
    if (written && closed && ::rename(temporary.constData(), encoded(path).constData()) == 0) return true;
    ::unlink(temporary.constData());
    return false;
}

bool append(const QString& path, const QByteArray& bytes)
{
    const QByteArray name = encoded(path);
    if (!nothingElseThan(name)) return false;
    const Descriptor file{name, O_WRONLY | O_CREAT | O_APPEND};
    return file.regular() && writeAll(file.get(), bytes, false);
}

} // namespace murmeli::files
