import QtQuick
import QtQuick.Shapes
import Zuvo

/// Turns for as long as something is awaited.
Item {
    id: spinner

    property color color: Theme.accent
    property real thickness: 3

    implicitWidth: 26
    implicitHeight: 26
    Accessible.role: Accessible.Animation
    Accessible.name: qsTr("Busy")

    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: "transparent"
        border.width: spinner.thickness
        border.color: Theme.faded(spinner.color, 0.2)
    }
    Shape {
        anchors.fill: parent
        // Smooth with a graphics card; without one the layer would stay empty, and the edge is smooth by itself.
        layer.enabled: GraphicsInfo.api !== GraphicsInfo.Software
        layer.samples: 4
        ShapePath {
            strokeColor: spinner.color
            strokeWidth: spinner.thickness
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            PathAngleArc {
                centerX: spinner.width / 2
                centerY: spinner.height / 2
                radiusX: (spinner.width - spinner.thickness) / 2
                radiusY: radiusX
                startAngle: -90
                sweepAngle: 90
            }
        }
        RotationAnimation on rotation {
            running: spinner.visible
            loops: Animation.Infinite
            from: 0
            to: 360
            duration: 800
        }
    }
}
