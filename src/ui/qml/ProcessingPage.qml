import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// "The Dig": where the run stands.
FocusScope {
    id: page

    required property MineViewModel flow

    ProcessingPageModel {
        id: dig
        flow: page.flow
    }

    Column {
        id: head
        y: Theme.spacing12
        width: page.width
        spacing: Theme.spacing12

        Item {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 36
            height: 36
            PixelPickaxeAnimated { anchors.centerIn: parent }
        }
        Item {
            width: parent.width
            implicitHeight: heading.implicitHeight
            // The words stand still while the dots behind them come and go.
            Label {
                id: heading
                objectName: "digHeading"
                x: (parent.width - still.width) / 2
                text: dig.heading
                font: Theme.textFont(18, Font.DemiBold)
                color: Theme.foreground
                TextMetrics {
                    id: still
                    font: heading.font
                    text: "Descending into the mine"
                }
            }
        }
        Label {
            objectName: "stage"
            anchors.horizontalCenter: parent.horizontalCenter
            text: dig.stage
            font: Theme.textFont(13, Font.Medium)
            color: Theme.accent
        }
        DigProgress {
            x: Theme.spacing48
            width: parent.width - 2 * Theme.spacing48
            progress: dig.progress
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Theme.spacing8
            PixelGemView {
                anchors.verticalCenter: parent.verticalCenter
                size: 9
                color: Theme.accent
            }
            Label {
                objectName: "creditsUsed"
                text: dig.creditsUsed
                font: Theme.textFont(11)
                color: Theme.faded(Theme.textMuted, 0.6)
            }
        }
        FunFactCard {
            anchors.horizontalCenter: parent.horizontalCenter
            width: implicitWidth
            height: implicitHeight
            maximumWidth: page.width - 2 * 28
            fact: dig.funFact
        }
    }
    TerminalView {
        x: 28
        y: head.y + head.height + Theme.spacing16
        width: page.width - 2 * 28
        height: (banner.visible ? banner.y - Theme.spacing16 : cancelButton.y) - Theme.spacing12 - y
        model: dig
    }
    ErrorBanner {
        id: banner
        objectName: "errorBanner"
        x: 28
        y: cancelButton.y - Theme.spacing16 - height
        width: page.width - 2 * 28
        visible: dig.hasError
        message: dig.errorMessage
    }
    TextButton {
        id: cancelButton
        objectName: "cancelButton"
        anchors.horizontalCenter: parent.horizontalCenter
        y: page.height - height - Theme.spacing12
        focus: true
        text: "Cancel"
        textFont: Theme.textFont(13)
        textColor: Theme.faded(Theme.textMuted, 0.4)
        onClicked: cancelAlert.open()
    }
    ConfirmAlert {
        id: cancelAlert
        objectName: "cancelAlert"
        title: "Cancel mining?"
        message: "Progress will be lost."
        keepText: "Keep Mining"
        proceedText: "Cancel"
        onProceeded: dig.cancel()
    }
    Connections {
        target: page.flow
        // A run that ends well meanwhile leaves nothing to cancel.
        function onCurrentStepChanged() { cancelAlert.close(); }
    }
}
