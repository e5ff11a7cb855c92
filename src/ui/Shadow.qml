import QtQuick

// A soft shadow around a rounded rectangle that lies `extent` inside of the item. Blurred once per look and then
// stretched, so that a window may change its height without blurring again.
Item {
    id: root

    property real extent
    property real radius
    property real offset
    property real blur
    property color color

    BorderImage {
        readonly property real corner: 2 * root.extent + root.radius

        y: root.offset
        width: root.width
        height: root.height
        visible: root.extent > 0
        source: `image://shadow/${root.extent}/${root.radius}/${root.blur}/${argb(root.color)}`
        border {
            left: Math.min(corner, width / 2)
            right: Math.min(corner, width / 2)
            top: Math.min(corner, height / 2)
            bottom: Math.min(corner, height / 2)
        }

        // An opaque colour spells no alpha by itself.
        function argb(color: color): string {
            const two = part => Math.round(part * 255).toString(16).padStart(2, "0");
            return two(color.a) + two(color.r) + two(color.g) + two(color.b);
        }
    }
}
