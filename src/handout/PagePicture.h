#pragma once

#include "HandoutModel.h"
#include "base/Lease.h"

#include <QImage>
#include <QPointer>
#include <QQuickPaintedItem>

namespace murmeli {

/// A page of a handout as it will be, drawn beside the main thread at the size of the item.
class PagePicture : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(murmeli::HandoutModel* handout READ handout WRITE setHandout NOTIFY handoutChanged FINAL)
    Q_PROPERTY(int page MEMBER m_page NOTIFY pageChanged FINAL)
    Q_PROPERTY(QString text READ text NOTIFY drawn FINAL) ///< what stands on it

public:
    explicit PagePicture(QQuickItem* parent = nullptr);

    [[nodiscard]] HandoutModel* handout() const { return m_handout; }
    void setHandout(HandoutModel* handout);
    [[nodiscard]] const QString& text() const { return m_picture.text; }

    void paint(QPainter* painter) override;

signals:
    void handoutChanged();
    void pageChanged();
    void drawn();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void componentComplete() override;

private:
    void ask();

    QPointer<HandoutModel> m_handout;
    int m_page = 0;
    int m_edition = -1;
    HandoutPages::Picture m_picture;
    Lease m_drawing;
};

} // namespace murmeli
