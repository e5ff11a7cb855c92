#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace murmeli {

/// Where the panel stands and where its arrow points, in device-independent pixels.
struct PanelPlacement {
    QRect panel;
    double arrowX = 0;  ///< from the panel's left edge
    bool above = false; ///< the icon
    bool operator==(const PanelPlacement&) const = default;
};

/// Under `icon`, or over it where the content finds more room there, inside `available` with a margin; lower
/// than its content where there is no room for all of it. A content height of 60 or less is not taken
/// seriously, nor a width under 340.
PanelPlacement placePanel(const QRect& icon, const QRect& available, const QSize& content);

} // namespace murmeli
