import QtQuick
import Zuvo

/// How far the run has come.
Rectangle {
    id: track

    required property real progress
    /// What the bar shows: it glides to each progress, and follows the window's width at once.
    property real shown: Math.max(0, Math.min(1, progress))
    Behavior on shown { NumberAnimation { duration: 500; easing.type: Easing.InOutQuad } }

    implicitHeight: 6
    radius: 5
    color: Theme.faded(Theme.border, 0.3)
    Accessible.role: Accessible.ProgressBar
    Accessible.name: "Progress"
    Accessible.description: Math.round(100 * progress) + "%"

    SoftShadow {
        anchors.fill: bar
        visible: bar.width >= 1
        cornerRadius: 3
        radius: 8
        offsetY: 2
        color: Theme.faded(Theme.torchGlow, 0.4)
    }
    Rectangle {
        id: bar
        objectName: "progressBar"
        width: track.width * track.shown
        height: parent.height
        radius: 5
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: Theme.torchGlow }
            GradientStop { position: 1; color: Theme.accent }
        }
    }
}
