#include "ShadowImages.h"

#include <QColor>
#include <QPainter>
#include <QStringList>

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

QImage ShadowImages::requestImage(const QString& id, QSize* size, const QSize&)
{
    const QStringList parts = id.split(u'/');
    const double extent = parts.value(0).toDouble();
    const double radius = parts.value(1).toDouble();
    const double blur = parts.value(2).toDouble();
    const QColor color = QColor::fromString(u'#' + parts.value(3));

    const int inner = int(2 * (extent + radius)) + 1;
    const int side = inner + int(2 * extent);
    QImage alpha{side, side, QImage::Format_Alpha8};
    alpha.fill(0);
    {
        QPainter painter{&alpha};
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(QRectF{extent, extent, double(inner), double(inner)}, radius, radius);
    }
    // Half of the blur length is two standard deviations; three means of width w have the deviation w / 2.
    blurImage(alpha, qMax(1, qRound(blur / 4)));
    QImage shadow{alpha.size(), QImage::Format_ARGB32_Premultiplied};
    shadow.fill(Qt::transparent);
    QPainter painter{&shadow};
    painter.drawImage(0, 0, alpha);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(shadow.rect(), color);
    *size = shadow.size();
    return shadow;
}

} // namespace murmeli
