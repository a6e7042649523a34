import QtQuick
import QtQuick.Window
import QtQuick.Controls.Basic
import Zuvo

/// Stands until somebody is signed in.
FocusScope {
    id: view

    required property SignInViewModel model

    PageGround {
        anchors.fill: parent
        depth: 0.3
    }

    Flickable {
        id: flick
        anchors.fill: parent
        contentHeight: Math.max(height, column.height + 2 * Theme.spacing48)
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height

        Column {
            id: column
            width: 320
            anchors.horizontalCenter: parent.horizontalCenter
            // The same place for each of the three, so that nothing jumps when one follows another.
            readonly property real usualHeight: 453
            y: Math.max(Theme.spacing48, (flick.height - usualHeight) / 2 - 18)

            Item {
                id: logoSection
                anchors.horizontalCenter: parent.horizontalCenter
                width: 96
                height: 96
                SoftShadow {
                    anchors.fill: parent
                    cornerRadius: Theme.radiusLg
                    radius: 20
                    offsetY: 8
                    color: Theme.faded(Theme.accent, 0.3)
                }
                CardSurface {
                    anchors.fill: parent
                    cornerRadius: Theme.radiusLg
                    sheen: Theme.glassGradient
                    borderWidth: 1
                    borderTop: Qt.tint(Theme.cardBg, Theme.faded(Theme.foreground, 0.15))
                    borderBottom: Qt.tint(Theme.cardBg, Theme.faded(Theme.foreground, 0.05))
                }
                PixelPickaxe {
                    anchors.centerIn: parent
                    anchors.verticalCenterOffset: 4
                    size: 56
                }
            }
            Item { width: 1; height: 28 }
            Label {
                anchors.horizontalCenter: parent.horizontalCenter
                // The space behind the last letter is no part of the word.
                anchors.horizontalCenterOffset: 4
                text: "ZUVO"
                font: Theme.textFont(32, Font.Bold, 8)
                color: Theme.accent
            }
            Item { width: 1; height: 28 }
            Label {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Welcome to Zuvo"
                font: Theme.title()
                color: Theme.foreground
            }
            Item { width: 1; height: Theme.spacing12 }
            Label {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Sign in to manage your plugin and credits"
                font: Theme.subheadline()
                color: Theme.textMuted
            }
            Item { width: 1; height: 42 }
            Loader {
                id: middle
                width: parent.width
                focus: true
                sourceComponent: view.model.stage === "waiting" ? callbackWaitingView
                               : view.model.stage === "token" ? tokenInputSection : choices
                opacity: status === Loader.Ready ? 1 : 0
                Behavior on opacity { NumberAnimation { duration: 250; easing.type: Easing.InOutQuad } }
            }
            Item { width: 1; height: Theme.spacing20; visible: errorView.visible }
            ErrorLine {
                id: errorView
                objectName: "errorView"
                anchors.horizontalCenter: parent.horizontalCenter
                maximumWidth: 320
                text: view.model.errorMessage
            }
        }
    }

    Component {
        id: choices
        FocusScope {
            focus: true
            implicitHeight: choicesColumn.implicitHeight
            Column {
                id: choicesColumn
                width: parent.width
                spacing: Theme.spacing20
                PrimaryButtonStyle {
                    objectName: "browserButton"
                    width: parent.width
                    text: "Sign in with Google"
                    symbolName: "globe"
                    symbolSize: 15
                    focus: true
                    onClicked: view.model.signInWithBrowser()
                }
                Item {
                    width: parent.width
                    height: orLabel.implicitHeight
                    Rectangle {
                        anchors { left: parent.left; right: orLabel.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
                        height: Hairline.width(Screen.devicePixelRatio)
                        color: Theme.faded(Theme.border, 0.5)
                    }
                    Label {
                        id: orLabel
                        anchors.horizontalCenter: parent.horizontalCenter
                        text: "or"
                        font: Theme.caption()
                        color: Theme.textMuted
                    }
                    Rectangle {
                        anchors { left: orLabel.right; leftMargin: 12; right: parent.right; verticalCenter: parent.verticalCenter }
                        height: Hairline.width(Screen.devicePixelRatio)
                        color: Theme.faded(Theme.border, 0.5)
                    }
                }
                SecondaryButtonStyle {
                    objectName: "tokenChoiceButton"
                    width: parent.width
                    text: "Sign in with token"
                    symbolName: "key.fill"
                    symbolSize: 12
                    onClicked: view.model.toggleTokenField()
                }
            }
        }
    }

    Component {
        id: callbackWaitingView
        FocusScope {
            focus: true
            implicitHeight: waitingColumn.implicitHeight
            Keys.onEscapePressed: view.model.cancelWaiting()
            Column {
                id: waitingColumn
                width: parent.width
                spacing: Theme.spacing24
                Spinner { anchors.horizontalCenter: parent.horizontalCenter }
                Label {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: "Waiting for browser sign-in..."
                    font: Theme.subheadline()
                    color: Theme.textMuted
                }
                TextButton {
                    objectName: "cancelWaitingButton"
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: "Cancel"
                    focus: true
                    onClicked: view.model.cancelWaiting()
                }
            }
        }
    }

    Component {
        id: tokenInputSection
        FocusScope {
            focus: true
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
                    enabled: view.model.canSubmitToken
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
    }
}
