import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// The account: who is signed in, credits, plan.
FocusScope {
    id: view

    required property DashboardViewModel model

    Component.onCompleted: model.refresh()

    PageGround {
        anchors.fill: parent
        depth: 0.2
    }
    ScrollPage {
        anchors.fill: parent
        focus: true

        Label {
            text: "Account"
            font: Theme.largeTitle()
            color: Theme.foreground
            bottomPadding: Theme.spacing8
        }

        GlassCard {
            id: userCard
            width: parent.width
            Item {
                width: parent.width
                height: 64
                Rectangle {
                    id: plate
                    width: 64
                    height: 64
                    radius: 32
                    border.width: 1
                    border.color: Theme.faded(Theme.accent, 0.4)
                    gradient: Gradient {
                        GradientStop { position: 0; color: Theme.faded(Theme.accent, 0.3) }
                        GradientStop { position: 1; color: Theme.faded(Theme.accent, 0.15) }
                    }
                    Label {
                        anchors.centerIn: parent
                        text: view.model.initial
                        visible: text !== ""
                        textFormat: Text.PlainText
                        font: Theme.textFont(24, Font.DemiBold)
                        color: Theme.accent
                    }
                }
                Column {
                    anchors.left: plate.right
                    anchors.leftMargin: Theme.spacing16
                    anchors.right: refreshButton.left
                    anchors.rightMargin: Theme.spacing12
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: 4
                    Label {
                        width: parent.width
                        text: view.model.name
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        font: Theme.headline()
                        color: Theme.foreground
                    }
                    Label {
                        width: parent.width
                        text: view.model.email
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        font: Theme.subheadline()
                        color: Theme.textMuted
                    }
                }
                PlainButton {
                    id: refreshButton
                    objectName: "refreshButton"
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    text: "Refresh account"
                    padding: Theme.spacing8
                    isAvailable: !view.model.isRefreshing
                    onClicked: view.model.refresh()
                    contentItem: Symbol {
                        id: refreshSymbol
                        name: "arrow.clockwise"
                        size: 14
                        color: refreshButton.hovered ? Theme.textSecondary : Theme.textMuted
                        RotationAnimation on rotation {
                            running: view.model.isRefreshing
                            loops: Animation.Infinite
                            from: 0
                            to: 360
                            duration: 800
                            onRunningChanged: if (!running) refreshSymbol.rotation = 0
                        }
                    }
                }
            }
        }

        GlassCard {
            id: creditsCard
            width: parent.width
            spacing: Theme.spacing12
            Row {
                spacing: Theme.spacing8
                Symbol {
                    name: "diamond.fill"
                    size: 13
                    color: Theme.accent
                    anchors.verticalCenter: parent.verticalCenter
                }
                Label {
                    text: "Credits"
                    font: Theme.textFont(12, Font.Medium)
                    color: Theme.textMuted
                }
            }
            Row {
                spacing: Theme.spacing12
                Label {
                    id: creditsNumber
                    objectName: "creditsNumber"
                    text: view.model.credits
                    font: Theme.textFont(56, Font.DemiBold)
                    fontSizeMode: Text.HorizontalFit
                    minimumPixelSize: 20
                    width: Math.min(implicitWidth, creditsCard.width - 2 * creditsCard.padding - 90)
                    color: Theme.foreground
                }
                Label {
                    anchors.baseline: creditsNumber.baseline
                    text: "credits"
                    font: Theme.headline()
                    color: Theme.textMuted
                }
            }
            PrimaryButtonStyle {
                objectName: "buyCreditsButton"
                width: parent.width
                text: "Buy Credits"
                symbolName: "plus.circle.fill"
                symbolSize: 14
                onClicked: view.model.openBilling()
            }
        }

        GlassCard {
            id: planCard
            width: parent.width
            Item {
                width: parent.width
                height: planColumn.implicitHeight
                Column {
                    id: planColumn
                    spacing: Theme.spacing4
                    anchors.left: parent.left
                    anchors.right: planBadge.left
                    anchors.rightMargin: Theme.spacing12
                    Label {
                        text: "Plan"
                        font: Theme.caption()
                        color: Theme.textMuted
                    }
                    Label {
                        width: parent.width
                        text: view.model.plan
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        font: Theme.title2()
                        color: Theme.foreground
                    }
                }
                Rectangle {
                    id: planBadge
                    readonly property color ink: view.model.isPro ? Theme.accent : Theme.textMuted
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    width: badgeText.implicitWidth + 24
                    height: 25
                    radius: Theme.radiusXs
                    color: Theme.faded(ink, 0.12)
                    border.width: Hairline.width(Screen.devicePixelRatio)
                    border.color: Theme.faded(ink, 0.3)
                    Label {
                        id: badgeText
                        objectName: "planBadge"
                        anchors.centerIn: parent
                        text: view.model.planBadge
                        font: Theme.textFont(10, Font.DemiBold, 1.2)
                        color: parent.ink
                    }
                }
            }
        }

        Row {
            id: actionButtons
            width: parent.width
            spacing: Theme.spacing12
            SecondaryButtonStyle {
                objectName: "manageBillingButton"
                width: (parent.width - parent.spacing) / 2
                text: "Manage Billing"
                symbolName: "creditcard.fill"
                onClicked: view.model.openBilling()
            }
            DestructiveButtonStyle {
                objectName: "signOutButton"
                width: (parent.width - parent.spacing) / 2
                text: "Sign Out"
                symbolName: "rectangle.portrait.and.arrow.right"
                onClicked: view.model.signOut()
            }
        }
    }
}
