#pragma once

#include <QColor>
#include <QImage>
#include <QString>

/// Our own symbols as pictures. Main thread only.
namespace murmeli::symbols {

/// The symbol in one ink, `pixels` wide and high; empty when there is none of that name. Drawn once and kept.
QImage inked(const QString& name, int pixels, const QColor& ink);

/// The recording symbol of the tray: white wave on a disc in `discColor`, whose alpha is that of the disc
/// alone.
QImage recording(int pixels, const QColor& discColor);

} // namespace murmeli::symbols
