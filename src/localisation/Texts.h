#pragma once

#include <array>

namespace murmeli::texts {

// The texts of the interface, in Russian and English: the 211 texts shared by all screens,
// and beside them a second table of what single screens say, and of names that only
// assistive technology reads.
struct Text {
    const char* key;
    const char16_t* text;
};

extern const std::array<Text, 211> russian, english;

inline constexpr int ownTextCount = 430;
extern const std::array<Text, ownTextCount> russianOwn, englishOwn;

} // namespace murmeli::texts
