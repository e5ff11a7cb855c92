#pragma once

#include <QtGlobal>

namespace murmeli {

struct Paths;

/// All that Murmeli has written in folders of its own, and nothing else that lies there. Waits for the disk:
/// beside the main thread.
namespace ownData {

/// Bytes.
qint64 size(const Paths& paths);

/// Removes it. \return false when some of it stayed.
[[nodiscard]] bool removeAll(const Paths& paths);

} // namespace ownData

} // namespace murmeli
