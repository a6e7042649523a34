import QtQuick
import Zuvo

/// The pickaxe at work: it swings about its lower end for as long as it is shown.
Item {
    id: animated

    property real swing ///< degrees

    implicitWidth: 32
    implicitHeight: 32

    PixelPickaxe {
        size: 32
        transform: Rotation {
            origin.x: 32 / 24
            origin.y: 32 - 32 / 24
            angle: animated.swing
        }
    }

    SequentialAnimation on swing {
        running: animated.visible
        loops: Animation.Infinite
        NumberAnimation { from: 0; to: -20; duration: 800; easing.type: Easing.InOutQuad }
        NumberAnimation { from: -20; to: 0; duration: 800; easing.type: Easing.InOutQuad }
    }
}
