import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Looks for a newer plugin and installs it. The page of the plugin itself is opened from here.
FocusScope {
    id: view

    required property UpdateViewModel model

    Component.onCompleted: model.check()

    component VersionRow: Item {
        property alias name: nameLabel.text
        property alias version: versionLabel.text
        width: parent.width
        height: 33
        Label {
            id: nameLabel
            anchors.verticalCenter: parent.verticalCenter
            font: Theme.subheadline()
            color: Theme.textMuted
        }
        Label {
            id: versionLabel
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, parent.width - nameLabel.width - Theme.spacing16)
            textFormat: Text.PlainText
            elide: Text.ElideRight
            font: Theme.mono(12)
            color: Theme.foreground
        }
    }

    component Notice: Item {
        property alias symbolName: noticeSymbol.name
        property alias symbolColor: noticeSymbol.color
        property alias title: noticeTitle.text
        property alias detail: noticeDetail.text
        width: parent.width
        height: Math.max(40, noticeColumn.implicitHeight)
        Symbol {
            id: noticeSymbol
            anchors.verticalCenter: parent.verticalCenter
            size: 26
        }
        Column {
            id: noticeColumn
            anchors.left: noticeSymbol.right
            anchors.leftMargin: Theme.spacing16
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: 4
            Label {
                id: noticeTitle
                font: Theme.headline()
                color: Theme.foreground
            }
            Label {
                id: noticeDetail
                width: parent.width
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                font: Theme.subheadline()
                color: Theme.textMuted
            }
        }
    }

    PageGround {
        anchors.fill: parent
        depth: 0.2
    }
    ScrollPage {
        anchors.fill: parent
        visible: !view.model.showsPlugin
        focus: visible

        Item {
            width: parent.width
            height: 52
            Label {
                anchors.verticalCenter: parent.verticalCenter
                anchors.verticalCenterOffset: -4
                text: "Updates"
                font: Theme.largeTitle()
                color: Theme.foreground
            }
            SecondaryButtonStyle {
                objectName: "checkButton"
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                anchors.verticalCenterOffset: -4
                implicitHeight: 40
                leftPadding: 20
                rightPadding: 20
                text: view.model.checkText
                symbolName: "arrow.clockwise"
                symbolSize: 13
                isAvailable: !view.model.isChecking
                onClicked: view.model.check()
            }
        }

        GlassCard {
            width: parent.width
            Label {
                text: "Version Info"
                font: Theme.headline()
                color: Theme.foreground
                bottomPadding: Theme.spacing8
            }
            VersionRow {
                name: "Installed"
                version: view.model.installedVersion
            }
            Rectangle {
                width: parent.width
                height: Hairline.width(Screen.devicePixelRatio)
                color: Theme.faded(Theme.border, 0.3)
            }
            VersionRow {
                objectName: "latestRow"
                name: "Latest"
                version: view.model.latestVersion
            }
            Label {
                objectName: "unsignedNotice"
                width: parent.width
                topPadding: Theme.spacing8
                visible: text !== ""
                text: view.model.unsignedNotice
                wrapMode: Text.Wrap
                font: Theme.caption()
                color: Theme.textMuted
            }
        }

        CardLayout {
            id: available
            objectName: "availableCard"
            width: parent.width
            visible: view.model.updateAvailable
            spacing: Theme.spacing20
            Notice {
                symbolName: "arrow.down.circle.fill"
                symbolColor: Theme.accent
                title: "Update Available"
                detail: view.model.updateLine
            }
            PrimaryButtonStyle {
                objectName: "installButton"
                width: parent.width
                text: view.model.installText
                symbolName: "square.and.arrow.down.fill"
                isAvailable: !view.model.isInstalling
                onClicked: view.model.install()
            }
            Rectangle {
                parent: available
                z: -1
                anchors.fill: parent
                radius: Theme.radiusLg
                color: Theme.faded(Theme.accent, 0.06)
                border.width: 1
                border.color: Theme.faded(Theme.accent, 0.2)
            }
        }

        GlassCard {
            objectName: "upToDateCard"
            width: parent.width
            visible: view.model.isUpToDate
            Notice {
                symbolName: "checkmark.circle.fill"
                symbolColor: Theme.success
                title: "You're up to date!"
                detail: "The latest version is installed"
            }
        }

        Label {
            objectName: "installedNotice"
            width: parent.width
            visible: text !== ""
            text: view.model.installedNotice
            wrapMode: Text.Wrap
            font: Theme.subheadline()
            color: Theme.success
        }

        GlassCard {
            objectName: "notesCard"
            width: parent.width
            visible: view.model.releaseNotes !== ""
            spacing: Theme.spacing12
            Label {
                text: "Release Notes"
                font: Theme.headline()
                color: Theme.foreground
            }
            Label {
                width: parent.width
                text: view.model.releaseNotes
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                lineHeight: 1.3
                font: Theme.subheadline()
                color: Theme.textMuted
            }
        }

        GlassCard {
            width: parent.width
            spacing: Theme.spacing16
            Notice {
                symbolName: "puzzlepiece.extension.fill"
                symbolColor: view.model.isPluginInstalled ? Theme.success : Theme.accent
                title: "Plugin"
                detail: view.model.pluginText
            }
            SecondaryButtonStyle {
                objectName: "pluginButton"
                width: parent.width
                text: view.model.pluginButtonText
                symbolName: "square.and.arrow.down.fill"
                symbolSize: 13
                onClicked: view.model.openPlugin()
            }
        }

        ErrorLine {
            objectName: "errorView"
            maximumWidth: parent.width
            text: view.model.errorMessage
        }
    }

    // The plugin's page, in files of its own that only its first showing loads.
    Loader {
        id: pluginPage
        anchors.fill: parent
        anchors.topMargin: backButton.height + 2 * backButton.y
        focus: view.model.showsPlugin
        Connections {
            target: view.model
            function onPluginChanged() { pluginPage.follow(); }
        }
        function follow() {
            if (view.model.showsPlugin === (item !== null))
                return;
            if (view.model.showsPlugin)
                setSource("InstallView.qml", { "model": view.model.plugin, "focus": true });
            else
                source = "";
        }
    }
    SecondaryButtonStyle {
        id: backButton
        objectName: "pluginBackButton"
        x: Theme.spacing20
        y: Theme.spacing20
        visible: view.model.showsPlugin
        implicitHeight: 36
        leftPadding: 16
        rightPadding: 16
        text: "Back to Updates"
        symbolName: "arrow.left"
        symbolSize: 13
        onClicked: view.model.closePlugin()
    }
}
