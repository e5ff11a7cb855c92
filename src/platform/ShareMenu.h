#pragma once

#include <QPoint>
#include <QString>

class QWindow;

namespace murmeli::shareMenu {

struct Texts {
    QString mail;
    QString open;
    QString folder;
    QString copy;
};

/// Offers what the desktop can do with a file, at a place in `window`. Returns at once. Main thread only.
void present(const QString& path, const Texts& texts, QWindow* window, const QPoint& at);

} // namespace murmeli::shareMenu
