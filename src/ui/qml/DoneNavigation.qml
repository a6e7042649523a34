import QtQuick
import Zuvo

/// Where the flow goes from its last page.
Column {
    id: navigation

    required property MineViewModel flow
    /// The width of each of two items of a row.
    readonly property real half: (width - Theme.spacing12) / 2

    spacing: Theme.spacing12
    Row {
        width: parent.width
        spacing: Theme.spacing12
        SecondaryButtonStyle {
            objectName: "backToReviewButton"
            width: navigation.half
            text: "Review Segments"
            symbolName: "list.bullet"
            onClicked: navigation.flow.backToReview()
        }
        SecondaryButtonStyle {
            objectName: "restyleButton"
            width: navigation.half
            text: "Re-mine"
            symbolName: "paintbrush"
            onClicked: navigation.flow.restyle()
        }
    }
    SecondaryButtonStyle {
        objectName: "startOverButton"
        width: parent.width
        text: "Mine another story"
        onClicked: navigation.flow.resetFlow()
    }
    StyledButton {
        objectName: "startFreshButton"
        anchors.horizontalCenter: parent.horizontalCenter
        implicitHeight: 36
        cornerRadius: Theme.radiusSm
        text: "Clear caches & start fresh"
        textSize: 12
        textWeight: Font.Normal
        symbolName: "trash"
        symbolSize: 12
        Accessible.description: "Removes what was kept of all mines but their paid transcripts"
        textColor: hovered ? Theme.foreground : Theme.textMuted
        onClicked: navigation.flow.startFresh()
    }
}
