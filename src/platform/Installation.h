#pragma once

#include <QString>

namespace murmeli {

/// Where the running program's own files lie, and so who may replace them.
struct Installation {
    QString bundlePath;          ///< the application bundle; without one, the executable
    bool fromDiskImage = false;  ///< run from where it was only meant to be copied from
    bool packageManaged = false; ///< its files belong to a package manager, which alone updates them
    bool operator==(const Installation&) const = default;
};

/// \param executable absolute path without links. Any thread; looks at the path alone.
Installation installationOf(const QString& executable);

} // namespace murmeli
