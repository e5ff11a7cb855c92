#pragma once

#include <QString>

/// Keyboard layouts: ЙЦУКЕН and QWERTY. Pure functions; any thread.
namespace murmeli::layouts {

/// What the same keys would have written in the other layout, each character for itself.
QString exchanged(const QString& text);

} // namespace murmeli::layouts
