#include "PagePicture.h"

#include <QPainter>
#include <QQuickWindow>

#include <cmath>
#include <utility>

namespace murmeli {

PagePicture::PagePicture(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setOpaquePainting(true);
    setFillColor(Qt::white);
    connect(this, &PagePicture::pageChanged, this, &PagePicture::ask);
}

void PagePicture::setHandout(HandoutModel* handout)
{
    if (m_handout == handout) return;
    if (m_handout) disconnect(m_handout, nullptr, this, nullptr);
    m_handout = handout;
    if (handout) {
        connect(handout, &HandoutModel::changed, this, [this] {
            if (std::exchange(m_edition, m_handout->edition()) != m_handout->edition()) ask();
        });
    }
    emit handoutChanged();
    ask();
}

void PagePicture::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickPaintedItem::geometryChange(now, before);
    if (now.width() != before.width()) ask();
}

void PagePicture::componentComplete()
{
    QQuickPaintedItem::componentComplete();
    ask();
}

void PagePicture::ask()
{
    if (!isComponentComplete() || !m_handout || width() < 1) return;
    const double scale = window() ? window()->effectiveDevicePixelRatio() : 1;
    m_handout->draw(m_page, int(std::lround(width() * scale)), m_drawing.renew(),
                    [this](const HandoutPages::Picture& picture) {
                        m_picture = picture;
                        update();
                        emit drawn();
                    });
}

void PagePicture::paint(QPainter* painter)
{
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_picture.image.isNull()) painter->drawImage(boundingRect(), m_picture.image);
}

} // namespace murmeli
