#include "LoginItem.h"

namespace murmeli::loginItem {

// The login agent, which the settings load and unload, is all that this system needs.
void set(bool, const QString&) {}

} // namespace murmeli::loginItem
