import QtQuick
import Zuvo

StepFrame {
    id: page
    title: "Descending into the mine"
    TextButton {
        objectName: "cancelButton"
        text: "Cancel"
        onClicked: page.flow.cancelMining()
    }
}
