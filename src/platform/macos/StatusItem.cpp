#include "../TrayIcon.h"

namespace murmeli {

std::unique_ptr<StatusItem> makeStatusItem() { return std::make_unique<TrayIcon>(); }

} // namespace murmeli
