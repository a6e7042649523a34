import QtQuick
import QtQuick.Shapes
import Zuvo

/// A rounded border whose colour changes from top to bottom, with nothing drawn inside of it.
Item {
    id: edge

    property real lineWidth: 1
    property real cornerRadius: Theme.radiusSm
    property color topColor: Theme.border
    property color bottomColor: topColor

    /// A rounded rectangle, so far within this item.
    function ring(inset) {
        const right = width - inset;
        const bottom = height - inset;
        const r = Math.max(0, Math.min(cornerRadius - inset, (right - inset) / 2, (bottom - inset) / 2));
        const arc = (x, y) => `A ${r} ${r} 0 0 1 ${x} ${y} `;
        return `M ${inset + r} ${inset} L ${right - r} ${inset} ` + arc(right, inset + r)
             + `L ${right} ${bottom - r} ` + arc(right - r, bottom)
             + `L ${inset + r} ${bottom} ` + arc(inset, bottom - r)
             + `L ${inset} ${inset + r} ` + arc(inset + r, inset) + "Z ";
    }

    Shape {
        anchors.fill: parent
        visible: edge.width > 0 && edge.height > 0
        // Smooth with a graphics card; without one the layer would stay empty, and the edge is smooth by itself.
        layer.enabled: GraphicsInfo.api !== GraphicsInfo.Software
        layer.samples: 4
        ShapePath {
            strokeWidth: -1
            strokeColor: "transparent"
            fillRule: ShapePath.OddEvenFill
            fillGradient: LinearGradient {
                x1: 0
                y1: 0
                x2: 0
                y2: edge.height
                GradientStop { position: 0; color: edge.topColor }
                GradientStop { position: 1; color: edge.bottomColor }
            }
            PathSvg { path: edge.ring(0) + edge.ring(edge.lineWidth) }
        }
    }
}
