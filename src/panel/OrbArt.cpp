#include "OrbArt.h"

#include <QConicalGradient>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

QColor faded(QColor color, double strength)
{
    color.setAlphaF(float(color.alphaF() * strength));
    return color;
}

QGradientStops stopsOf(const QVariant& list)
{
    QGradientStops stops;
    for (const QVariant& entry : list.toList()) {
        const QVariantList pair = entry.toList();
        stops.append({pair.value(0).toDouble(), pair.value(1).value<QColor>()});
    }
    return stops;
}

/// From `color` in the middle to nothing at the edge, over an ellipse.
void glow(QPainter& painter, QPointF middle, double radiusX, double radiusY, const QColor& color)
{
    QRadialGradient gradient{0, 0, 1};
    gradient.setColorAt(0, color);
    gradient.setColorAt(1, faded(color, 0));
    painter.save();
    painter.translate(middle);
    painter.scale(radiusX, radiusY);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawEllipse(QPointF{0, 0}, 1, 1);
    painter.restore();
}

} // namespace

OrbArt::OrbArt(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    connect(this, &OrbArt::lookChanged, this, [this] { update(); });
    connect(this, &OrbArt::styleChanged, this, [this] {
        m_beats.clear();
        update();
    });
}

void OrbArt::paint(QPainter* painter)
{
    if (m_part != Part::Core) {
        paintPart(*painter);
        return;
    }
    const double scale = painter->device()->devicePixelRatioF();
    constexpr int enough = 40; // a pointer that comes and goes makes others
    if (m_beats.size() > enough) m_beats.clear();
    QImage& beat = m_beats[{qRound(m_zoom * 1000), scale}];
    if (beat.isNull()) {
        beat = QImage{(boundingRect().size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied};
        beat.setDevicePixelRatio(scale);
        beat.fill(Qt::transparent);
        QPainter into{&beat};
        paintPart(into);
    }
    painter->drawImage(QPointF{}, beat);
}

void OrbArt::paintPart(QPainter& painter) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(boundingRect().center());
    painter.scale(m_zoom, m_zoom);
    painter.translate(-boundingRect().center());
    switch (m_part) {
    case Part::Wash:
        paintWash(painter);
        break;
    case Part::Halo:
        paintHalo(painter);
        break;
    case Part::Ring:
        paintRing(painter, m_color);
        break;
    case Part::Arc:
        paintArc(painter);
        break;
    case Part::Core:
        paintCore(painter);
        break;
    }
}

void OrbArt::paintWash(QPainter& painter) const
{
    const QColor accent = m_style.value(u"accent"_s).value<QColor>();
    QRadialGradient gradient{0, 0, 1};
    gradient.setColorAt(0, faded(accent, 0.20));
    gradient.setColorAt(0.58, faded(accent, 0.06));
    gradient.setColorAt(1, faded(accent, 0));
    painter.translate(boundingRect().center());
    painter.scale(width() / 2, height() / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawEllipse(QPointF{0, 0}, 1, 1);
}

void OrbArt::paintHalo(QPainter& painter) const
{
    const QColor accent = m_style.value(u"accent"_s).value<QColor>();
    QRadialGradient gradient{boundingRect().center(), width() / 2};
    gradient.setColorAt(0, faded(accent, 0.42));
    gradient.setColorAt(0.55, faded(accent, 0.16));
    gradient.setColorAt(1, faded(accent, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawEllipse(boundingRect());
}

void OrbArt::paintRing(QPainter& painter, const QBrush& brush) const
{
    const double half = m_strokeWidth / 2;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen{brush, m_strokeWidth});
    painter.drawEllipse(body().adjusted(half, half, -half, -half));
}

void OrbArt::paintArc(QPainter& painter) const
{
    // Stops are given clockwise from the top; a conical gradient runs the other way round from the right.
    QConicalGradient gradient{boundingRect().center(),
                              90 - m_style.value(u"arcStart"_s).toDouble() - m_turned};
    QGradientStops stops;
    for (const auto& [position, color] : stopsOf(m_style.value(u"arc"_s))) {
        stops.prepend({1 - position, color});
    }
    gradient.setStops(stops);
    paintRing(painter, gradient);
}

void OrbArt::paintCore(QPainter& painter) const
{
    const QRectF disc = body();
    const double side = disc.width();
    QPainterPath outline;
    outline.addEllipse(disc);

    QLinearGradient fill{disc.topLeft(), disc.bottomRight()};
    fill.setStops(stopsOf(m_style.value(u"core"_s)));
    painter.fillPath(outline, fill);

    painter.save();
    painter.setClipPath(outline);
    painter.translate(disc.topLeft());
    glow(painter, {side * 0.5, side * 1.28}, 120, 120, m_style.value(u"shade"_s).value<QColor>());
    if (const QVariantMap low = m_style.value(u"glow"_s).toMap(); !low.isEmpty()) {
        const double radius = low.value(u"radius"_s).toDouble();
        glow(painter, {side * low.value(u"x"_s).toDouble(), side * low.value(u"y"_s).toDouble()}, radius * 2,
             radius * 1.8, low.value(u"color"_s).value<QColor>());
    }
    glow(painter, {side * 0.34, side * 0.20}, 70, 54, m_style.value(u"light"_s).value<QColor>());
    painter.restore();

    QLinearGradient rim{disc.topLeft(), disc.bottomLeft()};
    rim.setStops(stopsOf(m_style.value(u"rim"_s)));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen{rim, 1});
    painter.drawEllipse(disc.adjusted(0.5, 0.5, -0.5, -0.5));
}

} // namespace murmeli
