#include "PanelPlacement.h"

#include <algorithm>

namespace murmeli {

namespace {

constexpr int minimumWidth = 340;
constexpr int leastSeriousHeight = 60;
constexpr int defaultHeight = 400;
constexpr int screenMargin = 8;
constexpr int gapToIcon = 3;
constexpr double arrowClearance = 32; // keeps the arrow off the rounded corners

} // namespace

PanelPlacement placePanel(const QRect& icon, const QRect& available, const QSize& content)
{
    const int width = std::max(content.width(), minimumWidth);
    const int height = content.height() > leastSeriousHeight ? content.height() : defaultHeight;
    const double middle = icon.x() + icon.width() / 2.0;

    int x = int(middle - width / 2.0);
    x = std::max(x, available.x() + screenMargin);
    x = std::min(x, available.x() + available.width() - width - screenMargin); // the right bound wins

    int y = icon.y() + icon.height() + gapToIcon;
    const bool iconAtBottom = icon.center().y() > available.center().y();
    if (iconAtBottom && y + height > available.y() + available.height()) {
        y = std::max(available.y() + screenMargin, icon.y() - gapToIcon - height);
    }
    const double arrow = std::min(std::max(middle - x, arrowClearance), width - arrowClearance);
    return {{x, y, width, height}, arrow};
}

} // namespace murmeli
