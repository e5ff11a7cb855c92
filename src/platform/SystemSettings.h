#pragma once

namespace murmeli::systemSettings {

enum class Page { Microphone, ScreenRecording };

/// Shows the desktop's own page for a permission. \return false where the desktop has no such page.
bool open(Page page);

} // namespace murmeli::systemSettings
