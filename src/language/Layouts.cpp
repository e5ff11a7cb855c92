#include "Layouts.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace murmeli::layouts {

namespace {

// The same keys in the same order, without and with Shift.
const QString latin = uR"(`qwertyuiop[]asdfghjkl;'zxcvbnm,./~QWERTYUIOP{}ASDFGHJKL:"ZXCVBNM<>?)"_s;
const QString cyrillic = uR"(ёйцукенгшщзхъфывапролджэячсмитьбю.ЁЙЦУКЕНГШЩЗХЪФЫВАПРОЛДЖЭЯЧСМИТЬБЮ,)"_s;

bool isRussian(const QString& text)
{
    qsizetype here = 0, there = 0;
    for (const QChar c : text) {
        here += c.isLetter() && cyrillic.contains(c) ? 1 : 0;
        there += c.isLetter() && latin.contains(c) ? 1 : 0;
    }
    return here > there;
}

} // namespace

QString exchanged(const QString& text)
{
    const bool russian = isRussian(text); // decides for the signs that both have
    QString result = text;
    for (QChar& c : result) {
        const bool there = c.isLetter() ? !latin.contains(c) : russian;
        const qsizetype key = (there ? cyrillic : latin).indexOf(c);
        if (key >= 0) c = (there ? latin : cyrillic)[key];
    }
    return result;
}

} // namespace murmeli::layouts
