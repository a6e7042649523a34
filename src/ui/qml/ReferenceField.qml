import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window
import Zuvo

/// A film whose style is meant.
Column {
    id: reference

    required property StylePageModel model

    spacing: Theme.spacing8

    Row {
        spacing: Theme.spacing6
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "link"
            size: 10
            color: Theme.textMuted
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: "Or paste a reference"
            font: Theme.textFont(11)
            color: Theme.textMuted
        }
    }
    TextField {
        id: field
        objectName: "referenceField"
        width: parent.width
        height: 36
        leftPadding: Theme.spacing12
        rightPadding: clearButton.visible ? 40 : Theme.spacing12
        placeholderText: "YouTube or Vimeo URL"
        placeholderTextColor: Theme.faded(Theme.textMuted, 0.5)
        text: reference.model.referenceURL
        font: Theme.textFont(13)
        color: Theme.foreground
        selectionColor: Theme.accent
        selectedTextColor: "white"
        selectByMouse: true
        inputMethodHints: Qt.ImhUrlCharactersOnly
        Accessible.name: "Reference"
        onTextEdited: reference.model.referenceURL = text
        background: Rectangle {
            radius: Theme.radiusXs
            color: Theme.background
            border.width: field.activeFocus ? 1 : Hairline.width(Screen.devicePixelRatio)
            border.color: field.activeFocus ? Theme.faded(Theme.accent, 0.5) : Theme.faded(Theme.border, 0.5)
        }
        PlainButton {
            id: clearButton
            objectName: "clearReferenceButton"
            anchors.right: parent.right
            anchors.rightMargin: Theme.spacing6
            anchors.verticalCenter: parent.verticalCenter
            width: 24
            height: 24
            visible: field.text !== ""
            text: "Clear the reference"
            onClicked: {
                reference.model.referenceURL = "";
                field.forceActiveFocus(Qt.OtherFocusReason);
            }
            contentItem: Item {
                Symbol {
                    anchors.centerIn: parent
                    name: "xmark.circle.fill"
                    size: 12
                    color: Theme.faded(Theme.textMuted, clearButton.hovered ? 0.9 : 0.5)
                }
            }
        }
    }
}
