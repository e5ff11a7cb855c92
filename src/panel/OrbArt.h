#pragma once

#include <QHash>
#include <QImage>
#include <QQuickPaintedItem>
#include <QVariantMap>

namespace murmeli {

/// One layer of the orb. What grows, shrinks or turns is painted anew: the software renderer scales and
/// rotates pictures without smoothing, and the edges of a disc would show it. Colours and measures come with
/// the style, so that they live where all others do.
class OrbArt : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Part part MEMBER m_part NOTIFY lookChanged FINAL)
    Q_PROPERTY(QVariantMap style MEMBER m_style NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY lookChanged FINAL)
    Q_PROPERTY(double strokeWidth MEMBER m_strokeWidth NOTIFY lookChanged FINAL)
    Q_PROPERTY(double zoom MEMBER m_zoom NOTIFY lookChanged FINAL)
    Q_PROPERTY(double inset MEMBER m_inset NOTIFY lookChanged FINAL) ///< left free on all sides, to grow into
    Q_PROPERTY(int turned MEMBER m_turned NOTIFY lookChanged FINAL)  ///< degrees, clockwise

public:
    enum class Part { Wash, Halo, Ring, Arc, Core };
    Q_ENUM(Part)

    explicit OrbArt(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

signals:
    void styleChanged();
    void lookChanged();

private:
    [[nodiscard]] QRectF body() const
    {
        return boundingRect().adjusted(m_inset, m_inset, -m_inset, -m_inset);
    }
    void paintWash(QPainter& painter) const;
    void paintHalo(QPainter& painter) const;
    void paintRing(QPainter& painter, const QBrush& brush) const;
    void paintArc(QPainter& painter) const;
    void paintCore(QPainter& painter) const;
    void paintPart(QPainter& painter) const;

    Part m_part = Part::Core;
    QVariantMap m_style;
    QColor m_color;
    double m_strokeWidth = 1.5;
    double m_zoom = 1;
    double m_inset = 0;
    int m_turned = 0;
    QHash<std::pair<int, double>, QImage> m_beats; ///< of the core, by zoom and scale: it comes back to a few
};

} // namespace murmeli
