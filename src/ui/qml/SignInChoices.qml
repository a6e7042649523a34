import QtQuick
import QtQuick.Templates as T
import Zuvo

/// The two ways to sign in.
FocusScope {
    id: view

    required property SignInViewModel model

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
            T.Label {
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
