#pragma once

#include "Words.h"

namespace murmeli::personNames {

/// Whether two names may be those of one person: in any case form, in part or in short; also when one of them
/// is none, as "Speaker 2", or is written in another script. Pure; the keys are the caller's.
bool mayBeSame(QStringView left, QStringView right, words::Keys& keys);

} // namespace murmeli::personNames
