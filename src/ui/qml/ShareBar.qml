import QtQuick
import Zuvo

/// A bar that is filled to a share of its width.
Item {
    id: bar

    property real share: 0            ///< 0 to 1
    property real cornerRadius: 4
    property color startColor: Theme.accent
    property color endColor: Theme.accent
    property string label: ""

    implicitHeight: 2 * cornerRadius
    Accessible.role: Accessible.ProgressBar
    Accessible.name: label

    Rectangle {
        anchors.fill: parent
        radius: bar.cornerRadius
        color: Theme.faded(Theme.border, 0.3)
    }
    Rectangle {
        objectName: "shareFill"
        width: parent.width * bar.share
        height: parent.height
        visible: width > 0
        radius: Math.min(bar.cornerRadius, width / 2)
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: bar.startColor }
            GradientStop { position: 1; color: bar.endColor }
        }
    }
}
