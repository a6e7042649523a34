import QtQuick
import Zuvo

StepFrame {
    id: page
    title: "The Discovery"
    Row {
        spacing: Theme.spacing16
        SecondaryButtonStyle {
            objectName: "reanalyzeButton"
            text: "Re-mine"
            onClicked: page.flow.reanalyze()
        }
        SecondaryButtonStyle {
            objectName: "skipButton"
            text: "Skip to Export"
            onClicked: page.flow.skipToExport()
        }
    }
}
