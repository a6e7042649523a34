import QtQuick
import Zuvo

/// The dashed edge of a place where files can be dropped, and the fill within it.
Item {
    id: frame

    required property bool isTargeted

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusMd
        color: frame.isTargeted ? Theme.faded(Theme.accent, 0.04) : Theme.faded(Theme.surface, 0.5)
    }
    // A Rectangle knows no dashes.
    Canvas {
        anchors.fill: parent
        readonly property real lineWidth: frame.isTargeted ? 1.5 : 1
        readonly property color ink: frame.isTargeted ? Theme.accent : Theme.faded(Theme.border, 0.3)
        onInkChanged: requestPaint()
        onPaint: {
            const context = getContext("2d");
            context.reset();
            context.strokeStyle = ink;
            context.lineWidth = lineWidth;
            // A canvas counts dashes in widths of the line.
            context.setLineDash([8 / lineWidth, 4 / lineWidth]);
            const edge = lineWidth / 2;
            const corner = Theme.radiusMd - edge;
            context.beginPath();
            context.roundedRect(edge, edge, width - lineWidth, height - lineWidth, corner, corner);
            context.stroke();
        }
    }
}
