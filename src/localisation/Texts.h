#pragma once

#include <array>

namespace murmeli::texts {

// The texts of the interface, in Russian and English: the 211 texts shared by all screens,
// and beside them a second small table of the panel's and the tray's own texts, so that
// the panel is English throughout too.
struct Text {
    const char* key;
    const char16_t* text;
};

extern const std::array<Text, 211> russian, english;

inline constexpr int panelTextCount = 49;
extern const std::array<Text, panelTextCount> russianPanel, englishPanel;

} // namespace murmeli::texts
