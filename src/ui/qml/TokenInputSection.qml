import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Takes a token that is typed or pasted.
FocusScope {
    id: view

    required property SignInViewModel model

    implicitHeight: tokenColumn.implicitHeight
    Keys.onEscapePressed: view.model.toggleTokenField()
    Column {
        id: tokenColumn
        width: parent.width
        Label {
            text: "API Token"
            font: Theme.textFont(12, Font.Medium)
            color: Theme.textMuted
        }
        Item { width: 1; height: Theme.spacing8 }
        TextField {
            id: tokenField
            objectName: "tokenField"
            width: parent.width
            height: 44
            leftPadding: Theme.spacing16
            rightPadding: Theme.spacing16
            focus: true
            text: view.model.manualToken
            placeholderText: "zuvo_xxxxxxxxxxxx"
            placeholderTextColor: Theme.faded(Theme.textMuted, 0.5)
            font: Theme.mono(12)
            color: Theme.foreground
            selectionColor: Theme.accent
            selectedTextColor: "white"
            // A token is no word of any language.
            inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase | Qt.ImhSensitiveData
            Accessible.name: "API Token"
            onTextEdited: view.model.manualToken = text
            onAccepted: view.model.submitToken()
            background: Rectangle {
                radius: Theme.radiusSm
                color: Theme.muted
                border.width: tokenField.activeFocus ? 1 : Hairline.width(Screen.devicePixelRatio)
                border.color: tokenField.activeFocus ? Theme.faded(Theme.accent, 0.5)
                                                     : Theme.faded(Theme.border, 0.5)
            }
        }
        Item { width: 1; height: Theme.spacing16 }
        PrimaryButtonStyle {
            objectName: "submitTokenButton"
            width: parent.width
            text: view.model.tokenButtonText
            isAvailable: view.model.canSubmitToken
            onClicked: view.model.submitToken()
        }
        Item { width: 1; height: Theme.spacing12 }
        TextButton {
            objectName: "tokenBackButton"
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Back"
            onClicked: view.model.toggleTokenField()
        }
    }
}
