#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

/// What the view of a window without a frame asks of its window; the view emits, the window listens.
class WindowActions : public QObject {
    Q_OBJECT
    QML_ELEMENT

public:
    using QObject::QObject;

signals:
    void faded();         ///< nothing is to be seen any more
    void pressedBeside(); ///< a press on the shadow, which looks like the desktop
};

} // namespace murmeli
