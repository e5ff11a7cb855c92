#include "Shadow.h"

#include <QPainter>

#include <vector>

namespace murmeli {

namespace {

/// Three passes of a running mean come close to a Gaussian blur.
void blurLine(std::vector<int>& line, std::vector<int>& scratch, int radius)
{
    const int length = int(line.size());
    for (int pass = 0; pass < 3; ++pass) {
        int sum = 0;
        for (int i = -radius; i <= radius; ++i)
            sum += i >= 0 && i < length ? line[size_t(i)] : 0;
        for (int i = 0; i < length; ++i) {
            scratch[size_t(i)] = sum / (2 * radius + 1);
            sum += i + radius + 1 < length ? line[size_t(i + radius + 1)] : 0;
            sum -= i - radius >= 0 ? line[size_t(i - radius)] : 0;
        }
        line.swap(scratch);
    }
}

void blurImage(QImage& alpha, int radius)
{
    const int side = alpha.width();
    std::vector<int> line(static_cast<size_t>(side));
    std::vector<int> scratch(static_cast<size_t>(side));
    for (const bool rows : {true, false}) {
        for (int i = 0; i < side; ++i) {
            const auto cell = [&](int k) { return rows ? alpha.scanLine(i) + k : alpha.scanLine(k) + i; };
            for (int k = 0; k < side; ++k)
                line[size_t(k)] = *cell(k);
            blurLine(line, scratch, radius);
            for (int k = 0; k < side; ++k)
                *cell(k) = uchar(line[size_t(k)]);
        }
    }
}

} // namespace

Shadow::Shadow(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    connect(this, &Shadow::lookChanged, this, [this] {
        m_patch = {};
        update();
    });
}

void Shadow::blurPatch()
{
    const int inner = int(2 * (m_extent + m_radius)) + 1;
    const int side = inner + int(2 * m_extent);
    QImage alpha{side, side, QImage::Format_Alpha8};
    alpha.fill(0);
    {
        QPainter painter{&alpha};
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(QRectF{m_extent, m_extent, double(inner), double(inner)}, m_radius, m_radius);
    }
    // Half of the blur length is two standard deviations; three means of width w have the deviation w / 2.
    blurImage(alpha, qMax(1, qRound(m_blur / 4)));
    m_patch = QImage{alpha.size(), QImage::Format_ARGB32_Premultiplied};
    m_patch.fill(Qt::transparent);
    QPainter painter{&m_patch};
    painter.drawImage(0, 0, alpha);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(m_patch.rect(), m_color);
}

void Shadow::paint(QPainter* painter)
{
    if (m_extent <= 0 || width() <= 0 || height() <= 0) return;
    if (m_patch.isNull()) blurPatch();
    const double corner = (m_patch.width() - 1) / 2.0;
    const double cornerX = qMin(corner, width() / 2);
    const double cornerY = qMin(corner, height() / 2);
    const double xs[] = {0, cornerX, width() - cornerX, width()};
    const double ys[] = {0, cornerY, height() - cornerY, height()};
    const double sourceXs[] = {0, cornerX, m_patch.width() - cornerX, double(m_patch.width())};
    const double sourceYs[] = {0, cornerY, m_patch.height() - cornerY, double(m_patch.height())};
    painter->translate(0, m_offset);
    for (size_t row = 0; row < 3; ++row) {
        for (size_t column = 0; column < 3; ++column) {
            const QRectF target{QPointF{xs[column], ys[row]}, QPointF{xs[column + 1], ys[row + 1]}};
            const QRectF from{QPointF{sourceXs[column], sourceYs[row]},
                              QPointF{sourceXs[column + 1], sourceYs[row + 1]}};
            if (!target.isEmpty()) painter->drawImage(target, m_patch, from);
        }
    }
}

} // namespace murmeli
