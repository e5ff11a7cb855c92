#pragma once

namespace murmeli::memory {

/// Gives back to the system what the program has freed. Takes a few milliseconds; any thread.
void giveBack();

/// For a program that goes to rest: also lets go of code that has run its time. It is mapped again from the
/// system's cache where it is used again. Any thread.
void rest();

/// Has the system read what the views are made of, so that the first look at one need not wait for the disk.
/// Waits for nothing; any thread.
void readAhead();

} // namespace murmeli::memory
