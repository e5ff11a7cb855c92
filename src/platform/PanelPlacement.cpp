#include "PanelPlacement.h"

#include <algorithm>
#include <cmath>

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
    const int wanted = content.height() > leastSeriousHeight ? content.height() : defaultHeight;
    const double middle = icon.x() + icon.width() / 2.0;

    int x = int(std::floor(middle - width / 2.0)); // to the left also on a screen left of the main one
    x = std::max(x, available.x() + screenMargin);
    x = std::min(x, available.x() + available.width() - width - screenMargin); // the right bound wins

    const int below = icon.y() + icon.height() + gapToIcon;
    const int roomBelow = available.y() + available.height() - screenMargin - below;
    const int roomAbove = icon.y() - gapToIcon - available.y() - screenMargin;
    const bool over = wanted > roomBelow && roomAbove > roomBelow;
    const int height = std::min(wanted, over ? roomAbove : roomBelow);
    const int y = over ? icon.y() - gapToIcon - height : below;
    const double arrow = std::min(std::max(middle - x, arrowClearance), width - arrowClearance);
    return {{x, y, width, height}, arrow, over};
}

} // namespace murmeli
