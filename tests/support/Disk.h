#pragma once

#include <QDir>
#include <QFile>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#endif

namespace murmeli {

/// A disk of a kind of its own at `folder`, for as long as this lives. Only Linux lets us have one, and only
/// root.
class Disk {
public:
    Disk(const QString& folder, [[maybe_unused]] const char* kind, [[maybe_unused]] const char* options = "")
        : m_folder(QFile::encodeName(folder))
    {
        QDir{}.mkpath(folder);
#ifdef Q_OS_LINUX
        m_there = ::mount("none", m_folder.constData(), kind, 0, options) == 0;
#endif
    }
    ~Disk()
    {
#ifdef Q_OS_LINUX
        if (m_there) ::umount(m_folder.constData());
#endif
    }
    Q_DISABLE_COPY_MOVE(Disk)

    [[nodiscard]] bool isThere() const { return m_there; }

private:
    QByteArray m_folder;
    bool m_there = false;
};

} // namespace murmeli
