import QtQuick
import QtQuick.Templates as T
import Zuvo

/// Stands until somebody is signed in.
FocusScope {
    id: view

    required property SignInViewModel model

    PageGround {
        anchors.fill: parent
        depth: 0.3
    }

    Flickable {
        id: flick
        anchors.fill: parent
        contentHeight: Math.max(height, column.height + 2 * Theme.spacing48)
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height

        Column {
            id: column
            width: 320
            anchors.horizontalCenter: parent.horizontalCenter
            // The same place for each of the three, so that nothing jumps when one follows another.
            readonly property real usualHeight: 453
            y: Math.max(Theme.spacing48, (flick.height - usualHeight) / 2 - 18)

            Item {
                id: logoSection
                anchors.horizontalCenter: parent.horizontalCenter
                width: 96
                height: 96
                SoftShadow {
                    anchors.fill: parent
                    cornerRadius: Theme.radiusLg
                    radius: 20
                    offsetY: 8
                    color: Theme.faded(Theme.accent, 0.3)
                }
                CardSurface {
                    anchors.fill: parent
                    cornerRadius: Theme.radiusLg
                    sheen: Theme.glassGradient
                    borderWidth: 1
                    borderTop: Qt.tint(Theme.cardBg, Theme.faded(Theme.foreground, 0.15))
                    borderBottom: Qt.tint(Theme.cardBg, Theme.faded(Theme.foreground, 0.05))
                }
                PixelPickaxe {
                    anchors.centerIn: parent
                    anchors.verticalCenterOffset: 4
                    size: 56
                }
            }
            Item { width: 1; height: 28 }
            T.Label {
                anchors.horizontalCenter: parent.horizontalCenter
                // The space behind the last letter is no part of the word.
                anchors.horizontalCenterOffset: 4
                text: "ZUVO"
                font: Theme.textFont(32, Font.Bold, 8)
                color: Theme.accent
            }
            Item { width: 1; height: 28 }
            T.Label {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Welcome to Zuvo"
                font: Theme.title()
                color: Theme.foreground
            }
            Item { width: 1; height: Theme.spacing12 }
            T.Label {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Sign in to manage your plugin and credits"
                font: Theme.subheadline()
                color: Theme.textMuted
            }
            Item { width: 1; height: 42 }
            Loader {
                id: middle
                objectName: "signInMiddle"
                width: parent.width
                focus: true
            }
            Item { width: 1; height: Theme.spacing20; visible: errorView.visible }
            ErrorLine {
                id: errorView
                objectName: "errorView"
                anchors.horizontalCenter: parent.horizontalCenter
                maximumWidth: 320
                text: view.model.errorMessage
            }
        }
    }

    NumberAnimation {
        id: flip
        target: middle
        property: "opacity"
        from: 0
        to: 1
        duration: 250
        easing.type: Easing.InOutQuad
    }

    /// Each in a file of its own, so that a start loads what it shows and no more.
    readonly property var middleFiles: ({
        "choices": "SignInChoices.qml", "token": "TokenInputSection.qml", "waiting": "CallbackWaitingView.qml"
    })

    function showStage() {
        middle.setSource(middleFiles[model.stage], { "model": model, "focus": true });
    }

    property string stageBefore: ""
    Connections {
        target: view.model
        function onStageChanged() {
            view.showStage();
            // The token field comes and goes gently; the waiting is there at once.
            if (view.stageBefore !== "waiting" && view.model.stage !== "waiting")
                flip.restart();
            else
                flip.complete();
            view.stageBefore = view.model.stage;
        }
    }
    Component.onCompleted: {
        stageBefore = model.stage;
        showStage();
    }
}
