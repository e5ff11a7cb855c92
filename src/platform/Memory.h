#pragma once

namespace murmeli::memory {

/// Gives back to the system what the program has freed. Takes a few milliseconds; any thread.
void giveBack();

} // namespace murmeli::memory
