import QtQuick
import QtQuick.Templates as T
import Zuvo

/// Where to go, and which version this is.
FocusScope {
    id: sidebar

    required property ContentViewModel content

    component Rule: Rectangle {
        x: 20
        width: sidebar.width - 40
        height: Hairline.width(Screen.devicePixelRatio)
    }

    Row {
        id: logo
        x: 20
        y: 56
        height: 26
        spacing: 10
        ZuvoLogo {
            size: 22
            anchors.verticalCenter: parent.verticalCenter
        }
        T.Label {
            anchors.verticalCenter: parent.verticalCenter
            text: "Zuvo"
            color: Theme.foreground
            font: Qt.font({ "family": Fonts.rounded, "pixelSize": 20, "weight": Font.Bold })
        }
    }
    T.Label {
        id: claim
        x: 20
        anchors.top: logo.bottom
        anchors.topMargin: 4
        text: "Story Mining"
        font: Theme.caption()
        color: Theme.faded(Theme.textMuted, 0.5)
    }
    Rule {
        id: upperRule
        anchors.top: claim.bottom
        anchors.topMargin: 20
        color: Theme.faded(Theme.border, 0.3)
    }
    Column {
        anchors.top: upperRule.bottom
        anchors.topMargin: Theme.spacing16
        x: 12
        width: sidebar.width - 24
        spacing: 4
        Repeater {
            model: sidebar.content.sidebar
            SidebarItem {
                required property var modelData
                objectName: "tab" + modelData.tab
                width: parent.width
                label: modelData.label
                iconName: modelData.icon
                isSelected: sidebar.content.selectedTab === modelData.tab
                onClicked: sidebar.content.selectedTab = modelData.tab
            }
        }
    }
    Rule {
        anchors.bottom: connection.top
        anchors.bottomMargin: Theme.spacing16
        color: Theme.faded(Theme.border, 0.2)
    }
    Row {
        id: connection
        x: 20
        anchors.bottom: version.top
        anchors.bottomMargin: 6
        spacing: 8
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 6
            height: 6
            radius: 3
            color: Theme.success
        }
        T.Label {
            text: "Connected"
            font: Theme.textFont(11, Font.Medium)
            color: Theme.faded(Theme.textMuted, 0.7)
        }
    }
    T.Label {
        id: version
        x: 20
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 20
        text: sidebar.content.appVersion
        font: Theme.mono(10)
        color: Theme.faded(Theme.textMuted, 0.4)
    }
}
