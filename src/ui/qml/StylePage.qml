import QtQuick
import Zuvo

StepFrame {
    id: page
    title: "The Lantern"
    Row {
        spacing: Theme.spacing16
        TextButton {
            objectName: "backButton"
            height: 48
            text: "Back"
            onClicked: page.flow.styleBack()
        }
        PrimaryButtonStyle {
            objectName: "actionButton"
            width: 320
            focus: true
            text: "Start Mining"
            onClicked: page.flow.styleNext()
        }
    }
}
