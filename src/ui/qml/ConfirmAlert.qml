import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window
import Zuvo

/// Asks before something that cannot be taken back. Escape keeps things as they are; Return presses the button that the
/// keyboard is on, which is the safe one at first.
Popup {
    id: alert

    property string title: ""
    property string message: ""
    property string keepText: "Cancel"
    property string proceedText: ""

    signal kept()
    signal proceeded()

    parent: Overlay.overlay
    anchors.centerIn: parent
    width: 300
    modal: true
    focus: true
    padding: Theme.spacing24
    closePolicy: Popup.CloseOnEscape

    property bool hasProceeded: false
    onAboutToShow: hasProceeded = false
    onOpened: keepButton.forceActiveFocus(Qt.TabFocusReason)
    onClosed: hasProceeded ? alert.proceeded() : alert.kept()

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.5) } // qmllint disable

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: 120 }
        NumberAnimation { property: "scale"; from: 0.96; to: 1; duration: 120 }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: 100 }
    }

    background: Item {
        SoftShadow {
            anchors.fill: parent
            color: Qt.rgba(0, 0, 0, 0.5)
            radius: 16
            offsetY: 6
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusMd
            color: Theme.cardBg
            border.width: Hairline.width(Screen.devicePixelRatio)
            border.color: Theme.border
        }
    }

    contentItem: Column {
        spacing: Theme.spacing8
        Accessible.role: Accessible.AlertMessage
        Accessible.name: alert.title
        Accessible.description: alert.message
        Label {
            width: parent.width
            text: alert.title
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            font: Theme.headline()
            color: Theme.foreground
        }
        Label {
            width: parent.width
            text: alert.message
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            font: Theme.subheadline()
            color: Theme.textMuted
        }
        Item { width: 1; height: Theme.spacing8 }
        Row {
            width: parent.width
            spacing: Theme.spacing8
            SecondaryButtonStyle {
                id: keepButton
                objectName: "keepButton"
                width: (parent.width - parent.spacing) / 2
                implicitHeight: 40
                leftPadding: 8
                rightPadding: 8
                cornerRadius: Theme.radiusSm
                text: alert.keepText
                onClicked: alert.close()
            }
            DestructiveButtonStyle {
                objectName: "proceedButton"
                width: (parent.width - parent.spacing) / 2
                implicitHeight: 40
                leftPadding: 8
                rightPadding: 8
                cornerRadius: Theme.radiusSm
                text: alert.proceedText
                onClicked: {
                    alert.hasProceeded = true;
                    alert.close();
                }
            }
        }
    }
}
