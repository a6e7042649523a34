import QtQuick

/// The blurred shadow of a rounded rectangle that this item covers: put it beneath, filling the same area. It is drawn
/// once for a shape and stretched along its edges, so that it looks the same with and without a graphics card.
Item {
    id: shadow

    property color color: Qt.rgba(0, 0, 0, 0.25)
    property real radius: 16        ///< standard deviation of the blur
    property real cornerRadius: 18
    property real offsetY: 6        ///< downwards
    property bool isHollow: false   ///< clear where the rectangle itself lies, for one that can be seen through

    readonly property int reach: Math.ceil(3 * radius)
    /// Farther in than this a corner is not felt: from there to the opposite corner the shadow's edge is even.
    readonly property int inner: Math.ceil(cornerRadius) + reach
    readonly property int tileWidth: Math.min(Math.round(width), 2 * inner + 2)
    readonly property int tileHeight: Math.min(Math.round(height), 2 * inner + 2)

    BorderImage {
        x: -shadow.reach
        y: -shadow.reach + shadow.offsetY
        width: shadow.width + 2 * shadow.reach
        height: shadow.height + 2 * shadow.reach
        visible: shadow.width > 0 && shadow.height > 0
        border {
            left: shadow.reach + Math.floor((shadow.tileWidth - 1) / 2)
            right: border.left
            top: shadow.reach + Math.floor((shadow.tileHeight - 1) / 2)
            bottom: border.top
        }
        source: shadow.tileWidth > 0 && shadow.tileHeight > 0
                ? `image://shadows/${shadow.tileWidth}x${shadow.tileHeight}/${shadow.cornerRadius}/${shadow.radius}/${shadow.color}`
                  + (shadow.isHollow ? `/${shadow.offsetY}` : "")
                : ""
    }
}
