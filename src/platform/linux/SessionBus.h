#pragma once

/// The desktop's session bus, looked at from outside of Qt.
namespace murmeli::sessionBus {

/// Whether the bus, if there is one, answers a greeting within a second. Also true where there is none and
/// for addresses that are no local socket: those fail or work at once.
bool answers();

/// Lets this process do without a bus, as on a desktop that has none.
void giveUp();

} // namespace murmeli::sessionBus
