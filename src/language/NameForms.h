#pragma once

#include <QString>
#include <QStringList>

/// The forms that names take in Russian and English texts. Pure functions, any thread.
namespace murmeli::nameForms {

/// As forms are compared: in lower case, with е for ё, and Latin letters without their marks.
QString plain(QStringView word);

/// All forms of one word of a name (first name, patronymic or family name, of a man or a woman), itself among
/// them: plain. Rather some that nobody says than one too few.
QStringList of(QStringView word);

/// What the bearers of a first name are called besides, and what is theirs ("Саша", "Саш", "Сашин"), in all
/// forms: plain.
QStringList relatedTo(QStringView word);

/// Whether a form is an ordinary word too, as "надежда" or "will", so that it is a name with a capital only.
bool isAlsoAWord(const QString& form);

} // namespace murmeli::nameForms
