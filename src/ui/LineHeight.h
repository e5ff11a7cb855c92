#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

/// Sets the height of all lines of a text that can be selected, which has no property for it.
class LineHeight : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument* document READ document WRITE setDocument NOTIFY documentChanged FINAL)
    Q_PROPERTY(qreal pixels MEMBER m_pixels WRITE setPixels NOTIFY pixelsChanged FINAL)

public:
    explicit LineHeight(QObject* parent = nullptr) : QObject(parent) {}

    [[nodiscard]] QQuickTextDocument* document() const;
    void setDocument(QQuickTextDocument* document);
    void setPixels(qreal pixels);

signals:
    void documentChanged();
    void pixelsChanged();

private:
    void apply();

    QPointer<QObject> m_document;
    qreal m_pixels = 0;
    bool m_applying = false;
};

} // namespace murmeli
