#pragma once

#include "Words.h"

namespace murmeli::personNames {

/// Whether two names may be those of one person: in any case form, in part or in short; also when one of them
/// is none, as "Speaker 2", or is written in another script. Pure; the keys are the caller's.
bool mayBeSame(QStringView left, QStringView right, words::Keys& keys);

/// Names that the bearer of one may go by as well, short or in full, as "саша" for "александр". \param name
/// in lower case, with е for ё.
QStringList othersFor(const QString& name);

/// Whether a word stands for a person without naming one, as "Speaker" or "гость". \param word in lower case.
bool isNobodysName(QStringView word);

} // namespace murmeli::personNames
