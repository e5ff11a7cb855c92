#include "Symbol.h"

#include "SymbolImage.h"

#include <QPainter>

#include <algorithm>

namespace murmeli {

Symbol::Symbol(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    connect(this, &Symbol::nameChanged, this, [this] { update(); });
    connect(this, &Symbol::inkChanged, this, [this] { update(); });
}

void Symbol::setSize(double size) { QQuickItem::setSize({size, size}); }

void Symbol::paint(QPainter* painter)
{
    const double ratio = painter->device()->devicePixelRatioF() * painter->transform().m11();
    const int pixels = qRound(width() * std::max(ratio, 1.0));
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(boundingRect(), symbols::inked(m_name, pixels, m_ink));
}

} // namespace murmeli
