import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Stands while the browser is waited for.
FocusScope {
    id: view

    required property SignInViewModel model

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
