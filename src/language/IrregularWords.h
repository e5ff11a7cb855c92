#pragma once

#include <QString>

#include <optional>

/// Words whose forms no stem holds together.
namespace murmeli::irregular {

/// The form under which all forms of an irregular word are found; nothing for a regular one. \param word
/// folded. Any thread.
std::optional<QString> dictionaryForm(const QString& word);

} // namespace murmeli::irregular
