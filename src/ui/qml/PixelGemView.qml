import QtQuick
import Zuvo

/// A cut gem with a glow of its colour behind it.
Item {
    id: gem

    property color color: Theme.accent
    property real size: 12
    readonly property real faceEdge: 0.7 * size

    implicitWidth: size
    implicitHeight: size

    SoftShadow {
        anchors.fill: parent
        cornerRadius: gem.size / 2
        radius: gem.size / 5
        offsetY: 0
        color: Theme.faded(gem.color, 0.15)
    }
    Rectangle {
        id: face
        anchors.centerIn: parent
        width: gem.faceEdge
        height: width
        rotation: 45
        antialiasing: true
        color: Theme.faded(gem.color, 0.95)
        Rectangle {
            // Turned with the face, its lower left quarter is the facet that looks to the upper left.
            width: parent.width / 2
            height: parent.height
            antialiasing: true
            gradient: Gradient {
                orientation: Gradient.Horizontal
                GradientStop { position: 0; color: Qt.rgba(1, 1, 1, 0.35) }
                GradientStop { position: 1; color: Qt.rgba(1, 1, 1, 0.35) }
            }
        }
    }
}
