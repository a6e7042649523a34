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
    }
    // The facet that looks to the upper left.
    Item {
        objectName: "gemHighlight"
        width: gem.width / 2
        height: gem.height / 2
        clip: true
        Rectangle {
            x: face.x
            y: face.y
            width: face.width
            height: face.height
            rotation: face.rotation
            antialiasing: true
            color: Qt.rgba(1, 1, 1, 0.35)
        }
    }
}
