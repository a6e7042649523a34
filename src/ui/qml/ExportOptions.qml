import QtQuick
import Zuvo

/// What the mine has written, and the forms in which other editing systems take the story.
PageSection {
    id: section

    required property DonePageModel pageModel
    /// The width of each of three items of a row.
    readonly property real third: (width - 2 * Theme.spacing12) / 3

    title: "EXPORT"
    contentSpacing: Theme.spacing12
    Row {
        width: parent.width
        spacing: Theme.spacing12
        Repeater {
            model: section.pageModel.plainExports
            SecondaryButtonStyle {
                required property var modelData
                required property int index
                objectName: "exportButton" + index
                width: section.third
                implicitHeight: 44
                cornerRadius: Theme.radiusSm
                leftPadding: Theme.spacing12
                rightPadding: Theme.spacing12
                text: modelData.label
                symbolName: modelData.symbol
                symbolSize: 14
                textSize: 13
                onClicked: section.pageModel.openExport(index)
            }
        }
    }
    SecondaryButtonStyle {
        objectName: "exportFolderButton"
        width: parent.width
        implicitHeight: 44
        cornerRadius: Theme.radiusSm
        text: "Open Export Folder"
        symbolName: "folder"
        symbolSize: 14
        textSize: 13
        onClicked: section.pageModel.openExportFolder()
    }
    Row {
        width: parent.width
        spacing: Theme.spacing12
        Repeater {
            model: section.pageModel.storyExports
            StoryExportButton {
                required property var modelData
                required property int index
                objectName: "storyExportButton" + index
                width: section.third
                text: modelData.label
                symbolName: modelData.symbol
                line: modelData.line
                onClicked: section.pageModel.exportStory(index)
            }
        }
    }
}
