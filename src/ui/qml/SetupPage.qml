import QtQuick
import Zuvo

StepFrame {
    id: page
    title: "Into the Mine"
    PrimaryButtonStyle {
        objectName: "actionButton"
        width: 320
        focus: true
        text: "Choose Style"
        onClicked: page.flow.setupNext()
    }
}
