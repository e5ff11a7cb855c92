#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace murmeli::accent {
Q_NAMESPACE
QML_NAMED_ELEMENT(Accent)

/// What a colour says; Theme.accents and Theme.accentInks have them in this order.
enum Accent { Progress, Success, News, Absence, Failure };
Q_ENUM_NS(Accent)

} // namespace murmeli::accent
