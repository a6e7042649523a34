import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Where the first files are dropped.
FocusScope {
    id: zone

    required property bool isTargeted
    signal browse()

    scale: isTargeted ? 1.01 : 1.0
    Behavior on scale { NumberAnimation { duration: 200; easing.type: Easing.InOutQuad } }

    DropFrame {
        anchors.fill: parent
        isTargeted: zone.isTargeted
    }
    Column {
        anchors.centerIn: parent
        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "arrow.down.doc"
            size: 32
            color: zone.isTargeted ? Theme.accent : Theme.faded(Theme.textMuted, 0.4)
        }
        Item { width: 1; height: Theme.spacing20 }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Drop your raw earth here"
            font: Theme.textFont(14, Font.Medium)
            color: zone.isTargeted ? Theme.accent : Theme.foreground
        }
        Item { width: 1; height: Theme.spacing6 }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "WAV, MP3, AIFF, FLAC, MOV, MP4, MXF"
            font: Theme.textFont(11)
            color: Theme.faded(Theme.textMuted, 0.5)
        }
        Item { width: 1; height: Theme.spacing20 }
        TintButton {
            objectName: "browseButton"
            anchors.horizontalCenter: parent.horizontalCenter
            focus: true
            leftPadding: Theme.spacing20
            rightPadding: Theme.spacing20
            textSize: 13
            text: "Browse…"
            onClicked: zone.browse()
        }
    }
}
