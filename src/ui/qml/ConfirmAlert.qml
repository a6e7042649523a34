import QtQuick
import QtQuick.Controls.Basic as Controls
import QtQuick.Templates as T
import Zuvo

/// Asks before something that cannot be taken back, or gives a notice (`isDestructive` false, and no text to proceed by
/// where there is nothing to do). Escape keeps things as they are; Return presses the button that the
/// keyboard is on, which is the safe one at first.
Controls.Popup {
    id: alert

    property string title: ""
    property string message: ""
    property string keepText: "Cancel"
    property string proceedText: ""
    /// Whether proceeding loses something; its button then warns.
    property bool isDestructive: true

    signal kept()
    signal proceeded()

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: 300
    modal: true
    focus: true
    padding: Theme.spacing24
    closePolicy: Controls.Popup.CloseOnEscape

    property bool hasProceeded: false
    /// What has the keyboard when the question is asked, and has it again afterwards.
    property Item asker: null
    property int askerReason: Qt.OtherFocusReason
    onAboutToShow: {
        hasProceeded = false;
        asker = parent.Window.activeFocusItem;
        const control = asker as T.Control;
        askerReason = control && control.visualFocus ? Qt.TabFocusReason : Qt.OtherFocusReason;
    }
    onOpened: keepButton.forceActiveFocus(Qt.TabFocusReason)
    onClosed: {
        if (asker)
            asker.forceActiveFocus(askerReason);
        asker = null;
        if (hasProceeded)
            alert.proceeded();
        else
            alert.kept();
    }

    T.Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.5) }

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
        CardSurface {
            anchors.fill: parent
            cornerRadius: Theme.radiusMd
            borderTop: Theme.border
        }
    }

    contentItem: Column {
        spacing: Theme.spacing8
        Accessible.role: Accessible.AlertMessage
        Accessible.name: alert.title
        Accessible.description: alert.message
        PixelPickaxeView {
            anchors.horizontalCenter: parent.horizontalCenter
            size: 40
        }
        Item { width: 1; height: Theme.spacing2 }
        Controls.Label {
            width: parent.width
            text: alert.title
            textFormat: Text.PlainText
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            font: Theme.headline()
            color: Theme.foreground
        }
        Controls.Label {
            width: parent.width
            text: alert.message
            textFormat: Text.PlainText
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            font: Theme.subheadline()
            color: Theme.textMuted
        }
        Item { width: 1; height: Theme.spacing8 }
        Row {
            width: parent.width
            spacing: Theme.spacing12
            SecondaryButtonStyle {
                id: keepButton
                objectName: "keepButton"
                width: proceedButton.visible ? (parent.width - parent.spacing) / 2 : parent.width
                implicitHeight: 40
                leftPadding: 8
                rightPadding: 8
                cornerRadius: Theme.radiusSm
                text: alert.keepText
                onClicked: alert.close()
            }
            // Filled, so that nobody takes it for the harmless one where it is not.
            DestructiveButtonStyle {
                id: proceedButton
                objectName: "proceedButton"
                readonly property color ground: alert.isDestructive ? Theme.error : Theme.accent
                visible: alert.proceedText !== ""
                fill: down ? Qt.darker(ground, 1.15) : ground
                textColor: "white"
                textWeight: Font.DemiBold
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
