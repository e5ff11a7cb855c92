#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QString>

namespace murmeli {

/// One of our symbols, drawn sharp at the size of the item and in one ink.
class Symbol : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name MEMBER m_name NOTIFY nameChanged FINAL)
    Q_PROPERTY(QColor ink MEMBER m_ink NOTIFY inkChanged FINAL)
    Q_PROPERTY(double size READ width WRITE setSize NOTIFY widthChanged FINAL)

public:
    explicit Symbol(QQuickItem* parent = nullptr);

    void setSize(double size);
    void paint(QPainter* painter) override;

signals:
    void nameChanged();
    void inkChanged();

private:
    QString m_name;
    QColor m_ink;
};

} // namespace murmeli
