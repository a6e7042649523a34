import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// The Discovery: what was found, to be heard, read, put in order and sent on.
FocusScope {
    id: page

    required property MineViewModel flow
    property alias model: review
    readonly property real sideMargin: Theme.spacing32

    ReviewPageModel {
        id: review
        flow: page.flow
    }

    Item {
        id: header
        y: Theme.spacing12
        width: parent.width
        height: 36
        Label {
            id: title
            x: page.sideMargin
            anchors.verticalCenter: parent.verticalCenter
            text: "The Discovery"
            font: Theme.textFont(24, Font.DemiBold)
            color: Theme.foreground
            Accessible.role: Accessible.Heading
        }
        PixelGemView {
            id: gem
            anchors.left: title.right
            anchors.leftMargin: Theme.spacing16
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.torchGlow
            size: 10
        }
        Label {
            objectName: "summaryLabel"
            anchors.left: gem.right
            anchors.leftMargin: Theme.spacing8
            anchors.verticalCenter: parent.verticalCenter
            text: review.summary
            font: Theme.mono(12)
            color: Theme.faded(Theme.textMuted, 0.6)
        }
    }

    Item {
        id: tabs
        anchors.top: header.bottom
        anchors.topMargin: Theme.spacing12
        width: parent.width
        height: 32
        Row {
            x: page.sideMargin
            spacing: Theme.spacing8
            visible: review.hasTranscript
            ReviewTab {
                objectName: "gemsTab"
                text: "Gems"
                symbolName: "rectangle.stack"
                isChosen: !review.showTranscript
                onClicked: review.showTranscript = false
            }
            ReviewTab {
                objectName: "echoTab"
                text: "The Echo"
                symbolName: "doc.text.magnifyingglass"
                isChosen: review.showTranscript
                onClicked: review.showTranscript = true
            }
        }
        Row {
            anchors.right: parent.right
            anchors.rightMargin: page.sideMargin
            spacing: Theme.spacing4
            ReviewTab {
                objectName: "listButton"
                text: "List"
                textSize: 12
                symbolName: "list.bullet"
                isChosen: review.viewMode === ReviewPageModel.ReviewViewMode.list
                onClicked: review.viewMode = ReviewPageModel.ReviewViewMode.list
            }
            ReviewTab {
                objectName: "mapButton"
                text: "Map"
                textSize: 12
                symbolName: "rectangle.on.rectangle.angled"
                isChosen: review.viewMode === ReviewPageModel.ReviewViewMode.map
                onClicked: review.viewMode = ReviewPageModel.ReviewViewMode.map
            }
        }
    }

    FocusScope {
        id: area
        objectName: "reviewArea"
        anchors.top: tabs.bottom
        anchors.topMargin: Theme.spacing12
        anchors.bottom: bar.top
        width: parent.width
        focus: true

        Loader {
            id: stories
            anchors.fill: parent
            focus: !review.showTranscript
            active: !review.showTranscript
            sourceComponent: review.viewMode === ReviewPageModel.ReviewViewMode.map ? mapView : listView
            onLoaded: if (page.activeFocus) (item as FocusScope).forceActiveFocus()
        }
        Loader {
            id: echo
            anchors.fill: parent
            focus: review.showTranscript
            active: review.showTranscript
            sourceComponent: echoView
        }
    }
    // Whatever led here, the keys are the page's.
    Component.onCompleted: area.forceActiveFocus()

    Component { id: listView; SegmentList { model: review; focus: true } }
    Component { id: mapView; MapArtboardView { model: review; focus: true } }
    Component { id: echoView; EchoView { model: review; focus: true } }

    Shortcut {
        sequences: [StandardKey.Find]
        enabled: page.enabled && review.hasTranscript
        onActivated: {
            review.showTranscript = true;
            (echo.item as EchoView).focusSearch();
        }
    }

    Rectangle {
        id: bar
        anchors.bottom: parent.bottom
        width: parent.width
        height: 76
        color: Theme.surface
        Rectangle {
            width: parent.width
            height: 1
            color: Theme.faded(Theme.border, 0.15)
        }
        SymbolButton {
            objectName: "reanalyzeButton"
            x: page.sideMargin - leftPadding
            anchors.verticalCenter: parent.verticalCenter
            implicitHeight: 44
            text: "Re-mine"
            symbolName: "paintbrush"
            symbolSize: 13
            textFont: Theme.textFont(13, Font.Medium)
            ink: Theme.textMuted
            hoverInk: Theme.foreground
            onClicked: review.reanalyze()
        }
        PrimaryButtonStyle {
            objectName: "sendButton"
            anchors.centerIn: parent
            implicitHeight: 44
            leftPadding: Theme.spacing32
            rightPadding: Theme.spacing32
            cornerRadius: Theme.radiusMd
            shadowRadius: 16
            text: "Send to Resolve"
            onClicked: review.sendToResolve()
        }
        TextButton {
            objectName: "skipButton"
            anchors.right: parent.right
            anchors.rightMargin: page.sideMargin - rightPadding
            anchors.verticalCenter: parent.verticalCenter
            implicitHeight: 44
            text: "Skip to exports"
            textColor: Theme.textMuted
            onClicked: review.skipToExport()
        }
    }
}
