#pragma once

#include <QQuickImageProvider>

namespace murmeli {

/// The soft shadow of a rounded square as small as can be, to be stretched: "extent/radius/blur/aarrggbb",
/// where the square lies `extent` inside of the image. Any thread.
class ShadowImages final : public QQuickImageProvider {
public:
    ShadowImages() : QQuickImageProvider(QQuickImageProvider::Image) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& wanted) override;
};

} // namespace murmeli
