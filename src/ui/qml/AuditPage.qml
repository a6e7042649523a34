import QtQuick
import Zuvo

StepFrame {
    id: page
    title: "The Discovery"
    SecondaryButtonStyle {
        objectName: "startOverButton"
        text: "Start Over"
        onClicked: page.flow.resetFlow()
    }
}
