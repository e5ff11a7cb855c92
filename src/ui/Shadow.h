#pragma once

#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>

namespace murmeli {

/// A soft shadow around a rounded rectangle that lies `extent` inside of the item. Blurred once per look and
/// then stretched, so that a window may change its height without blurring again.
class Shadow : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double extent MEMBER m_extent NOTIFY lookChanged FINAL)
    Q_PROPERTY(double radius MEMBER m_radius NOTIFY lookChanged FINAL)
    Q_PROPERTY(double offset MEMBER m_offset NOTIFY lookChanged FINAL)
    Q_PROPERTY(double blur MEMBER m_blur NOTIFY lookChanged FINAL)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY lookChanged FINAL)

public:
    explicit Shadow(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

signals:
    void lookChanged();

private:
    void blurPatch();

    double m_extent = 0;
    double m_radius = 0;
    double m_offset = 0;
    double m_blur = 0;
    QColor m_color;
    QImage m_patch;
};

} // namespace murmeli
