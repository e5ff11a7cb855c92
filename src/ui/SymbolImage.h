#pragma once

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QString>

/// Our own symbols as pictures. Main thread only.
namespace murmeli::symbols {

/// The symbol in one ink, `pixels` wide and high; empty when there is none of that name. Drawn once and kept.
QImage inked(const QString& name, int pixels, const QColor& ink);

/// The same in the ink that is read on a dark or a light bar of the desktop.
QImage onBar(const QString& name, int pixels, bool dark);

/// The same with a hairline of the opposite ink around it, so that it is seen on whatever the bar is.
QImage onAnyBar(const QString& name, int pixels, bool dark);

/// The program's own icon.
QIcon program();

/// The recording symbol of the tray: a white wave on a red disc, or on a faint one.
QImage recording(int pixels, bool bright);

} // namespace murmeli::symbols
