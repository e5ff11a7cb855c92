#include "SymbolImage.h"

#include <QBuffer>
#include <QFile>
#include <QHash>
#include <QImageReader>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace murmeli::symbols {

namespace {

QByteArray source(const QString& name)
{
    QFile file{u":/qt/qml/Murmeli/Ui/symbols/"_s + name + u".svg"_s};
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
}

/// A picture that was drawn into keeps its painter's tools, which weigh many times what it shows; a copy has
/// none.
QImage withoutTools(const QImage& image) { return image.copy(); }

QImage rendered(QByteArray svg, int pixels)
{
    if (svg.isEmpty() || pixels <= 0) return {};
    QBuffer buffer{&svg};
    QImageReader reader{&buffer, "svg"};
    reader.setScaledSize({pixels, pixels});
    return withoutTools(reader.read().convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

/// The symbol in black, to be inked. A few dozen symbols in a handful of sizes at most.
const QImage& mask(const QString& name, int pixels)
{
    static QHash<std::pair<QString, int>, QImage> cache;
    const auto key = std::pair{name, pixels};
    auto found = cache.find(key);
    if (found == cache.end()) {
        found = cache.insert(key, rendered(source(name).replace("currentColor", "#000000"), pixels));
    }
    return *found;
}

} // namespace

QImage inked(const QString& name, int pixels, const QColor& ink)
{
    QImage image = mask(name, pixels);
    if (image.isNull()) return image;
    QPainter painter{&image};
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), ink);
    return image;
}

QImage onBar(const QString& name, int pixels, bool dark)
{
    return withoutTools(inked(name, pixels, dark ? QColor{0xff, 0xff, 0xff} : QColor{0x1b, 0x1c, 0x22}));
}

QImage onAnyBar(const QString& name, int pixels, bool dark)
{
    const QImage hair = onBar(name, pixels, !dark);
    QImage image{hair.size(), hair.format()};
    image.fill(Qt::transparent);
    QPainter painter{&image};
    for (const QPoint& aside : {QPoint{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}})
        painter.drawImage(aside, hair);
    painter.drawImage(QPoint{}, onBar(name, pixels, dark));
    return withoutTools(image);
}

QIcon program()
{
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64})
        icon.addPixmap(QPixmap::fromImage(rendered(source(u"murmeli"_s), side)));
    return icon;
}

QImage recording(int pixels, bool bright)
{
    static QHash<std::pair<int, bool>, QImage> cache; // the blink comes back to the same two looks
    QImage& image = cache[{pixels, bright}];
    if (!image.isNull()) return image;
    const QByteArray disc{R"(fill="#DA3E4F")"};
    const QByteArray dimmed = disc + R"( fill-opacity="0.4")";
    image = rendered(source(u"waveform.circle.fill.palette"_s).replace(disc, bright ? disc : dimmed), pixels);
    return image;
}

} // namespace murmeli::symbols
