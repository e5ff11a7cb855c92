#pragma once

#include <QDir>
#include <QFile>

#include <sys/mount.h>
#include <unistd.h>

namespace murmeli {

/// A disk of a kind of its own, for as long as this lives. Only root can have one.
class Disk {
public:
    Disk(const QString& folder, const char* kind, const char* options = "")
        : m_folder(QFile::encodeName(folder))
    {
        QDir{}.mkpath(folder);
        m_there = ::mount("none", m_folder.constData(), kind, 0, options) == 0;
    }
    ~Disk()
    {
        if (m_there) ::umount(m_folder.constData());
    }
    Q_DISABLE_COPY_MOVE(Disk)

    [[nodiscard]] static bool possible() { return ::geteuid() == 0; }
    [[nodiscard]] bool isThere() const { return m_there; }

private:
    QByteArray m_folder;
    bool m_there = false;
};

} // namespace murmeli
