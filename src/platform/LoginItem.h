#pragma once

#include <QString>

/// The desktop's own list of what is started when the user logs in.
namespace murmeli::loginItem {

/// Puts this program on the list of the user with that home folder, or takes it off. A failure is silent: the
/// preference itself is stored elsewhere. Main thread only.
void set(bool on, const QString& home);

} // namespace murmeli::loginItem
