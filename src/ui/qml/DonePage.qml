import QtQuick
import Zuvo

StepFrame {
    id: page
    title: "Daylight"
    Row {
        spacing: Theme.spacing16
        SecondaryButtonStyle {
            objectName: "backToReviewButton"
            text: "Back to Review"
            onClicked: page.flow.backToReview()
        }
        SecondaryButtonStyle {
            objectName: "startOverButton"
            text: "Start Over"
            onClicked: page.flow.resetFlow()
        }
    }
}
