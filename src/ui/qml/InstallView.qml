import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Installs and removes the Resolve plugin.
FocusScope {
    id: view

    required property InstallViewModel model

    component Requirement: Item {
        property alias title: titleLabel.text
        property alias detail: detailLabel.text
        width: parent.width
        height: 46
        Symbol {
            id: mark
            anchors.verticalCenter: parent.verticalCenter
            name: "checkmark.circle.fill"
            size: 15
            color: Theme.success
        }
        Column {
            anchors.left: mark.right
            anchors.leftMargin: Theme.spacing12
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2
            Label {
                id: titleLabel
                width: parent.width
                elide: Text.ElideRight
                font: Theme.textFont(14, Font.Medium)
                color: Theme.foreground
            }
            Label {
                id: detailLabel
                width: parent.width
                elide: Text.ElideRight
                font: Theme.caption()
                color: Theme.textMuted
            }
        }
    }
    component Rule: Rectangle {
        width: parent.width
        height: Hairline.width(Screen.devicePixelRatio)
        color: Theme.faded(Theme.border, 0.3)
    }

    PageGround {
        anchors.fill: parent
        depth: 0.2
    }
    ScrollPage {
        anchors.fill: parent
        focus: true

        Item {
            width: parent.width
            height: 72
            Item {
                id: plate
                width: 64
                height: 64
                CardSurface {
                    anchors.fill: parent
                    cornerRadius: Theme.radiusMd
                    sheen: Theme.glassGradient
                    borderTop: Qt.tint(Theme.cardBg, Theme.faded(Theme.foreground, 0.15))
                    borderBottom: Qt.tint(Theme.cardBg, Theme.faded(Theme.foreground, 0.05))
                }
                Symbol {
                    anchors.centerIn: parent
                    name: "puzzlepiece.extension.fill"
                    size: 28
                    color: Theme.accent
                }
            }
            Column {
                anchors.left: plate.right
                anchors.leftMargin: 20
                anchors.right: parent.right
                anchors.verticalCenter: plate.verticalCenter
                spacing: 4
                Label {
                    text: "Zuvo Plugin"
                    font: Theme.title()
                    color: Theme.foreground
                }
                Label {
                    width: parent.width
                    elide: Text.ElideRight
                    text: "DaVinci Resolve Workflow Integration"
                    font: Theme.subheadline()
                    color: Theme.textMuted
                }
            }
        }

        GlassCard {
            width: parent.width
            spacing: Theme.spacing12
            Label {
                text: "Installation Status"
                font: Theme.headline()
                color: Theme.foreground
            }
            Item {
                width: parent.width
                height: 24
                Rectangle {
                    id: dot
                    anchors.verticalCenter: parent.verticalCenter
                    width: 8
                    height: 8
                    radius: 4
                    color: view.model.isInstalled ? Theme.success : Theme.textMuted
                }
                Label {
                    objectName: "statusLabel"
                    anchors.left: dot.right
                    anchors.leftMargin: Theme.spacing8
                    anchors.verticalCenter: parent.verticalCenter
                    text: view.model.statusText
                    font: Theme.body()
                    color: dot.color
                }
                Label {
                    objectName: "versionLabel"
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.min(implicitWidth, parent.width / 2)
                    elide: Text.ElideRight
                    text: view.model.versionText
                    visible: text !== ""
                    textFormat: Text.PlainText
                    font: Theme.mono(12)
                    color: Theme.textMuted
                }
            }
        }

        Row {
            width: parent.width
            spacing: Theme.spacing12
            PrimaryButtonStyle {
                objectName: "reinstallButton"
                visible: view.model.isInstalled
                width: (parent.width - parent.spacing) / 2
                text: view.model.reinstallText
                symbolName: "arrow.triangle.2.circlepath"
                isAvailable: !view.model.isBusy
                onClicked: view.model.reinstall()
            }
            DestructiveButtonStyle {
                objectName: "uninstallButton"
                visible: view.model.isInstalled
                width: (parent.width - parent.spacing) / 2
                text: "Uninstall Plugin"
                symbolName: "trash.fill"
                isAvailable: !view.model.isBusy
                onClicked: view.model.askToUninstall()
            }
            PrimaryButtonStyle {
                objectName: "installButton"
                visible: !view.model.isInstalled
                width: parent.width
                text: view.model.installText
                symbolName: "square.and.arrow.down.fill"
                isAvailable: !view.model.isBusy
                onClicked: view.model.install()
            }
        }

        GlassCard {
            width: parent.width
            spacing: Theme.spacing4
            Label {
                text: "Requirements"
                font: Theme.headline()
                color: Theme.foreground
                bottomPadding: Theme.spacing4
            }
            Requirement {
                title: "DaVinci Resolve Studio " + view.model.minimumResolve + "+"
                detail: "Free version not supported"
            }
            Rule { }
            Requirement {
                title: "macOS 12 or later"
                detail: "Monterey, Ventura, Sonoma, Sequoia"
            }
            Rule { }
            Requirement {
                title: "Admin privileges"
                detail: "Required for plugin installation"
            }
        }

        ErrorLine {
            objectName: "errorView"
            maximumWidth: parent.width
            text: view.model.errorMessage
        }
    }

    ConfirmAlert {
        id: uninstallAlert
        objectName: "uninstallAlert"
        visible: view.model.confirmsUninstall
        title: "Uninstall Zuvo?"
        message: "This will remove the Zuvo plugin from DaVinci Resolve. You can reinstall it at any time."
        keepText: "Cancel"
        proceedText: "Uninstall"
        onKept: view.model.cancelUninstall()
        onProceeded: view.model.uninstall()
    }
}
