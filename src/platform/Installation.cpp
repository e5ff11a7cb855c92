#include "Installation.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr auto volumes = "/Volumes/"_L1;
constexpr auto insideBundle = ".app/Contents/MacOS/"_L1;

// The file system hierarchy gives /usr to the distribution and /usr/local to the administrator.
constexpr auto localFolder = "/usr/local/"_L1;
constexpr std::array packageFolders = {"/usr/"_L1, "/app/"_L1, "/snap/"_L1, "/nix/store/"_L1,
                                       "/gnu/store/"_L1};

} // namespace

Installation installationOf(const QString& executable)
{
    const qsizetype inside = executable.lastIndexOf(insideBundle);
    Installation installation;
    installation.bundlePath = inside < 0 ? executable : executable.left(inside + 4);
    installation.fromDiskImage = installation.bundlePath.startsWith(volumes);
    installation.packageManaged =
        !executable.startsWith(localFolder) &&
        std::ranges::any_of(packageFolders, [&](auto folder) { return executable.startsWith(folder); });
    return installation;
}

} // namespace murmeli
