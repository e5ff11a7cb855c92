#pragma once

#include <QColor>
#include <QImage>
#include <QString>

/// Our own symbols as pictures. Main thread only.
namespace murmeli::symbols {

/// The symbol in one ink, `pixels` wide and high; empty when there is none of that name. Drawn once and kept.
QImage inked(const QString& name, int pixels, const QColor& ink);

/// The same in the ink that is read on a dark or a light bar of the desktop.
QImage onBar(const QString& name, int pixels, bool dark);

/// The recording symbol of the tray: a white wave on a red disc, or on a faint one.
QImage recording(int pixels, bool bright);

} // namespace murmeli::symbols
