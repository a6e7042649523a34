import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window
import Zuvo

/// One mine of this footage.
Rectangle {
    id: row

    property string version: ""
    property string segments: ""
    property string date: ""
    property bool isCurrent: false

    height: 40
    radius: Theme.radiusSm
    color: isCurrent ? Theme.faded(Theme.success, 0.06) : Theme.faded(Theme.muted, 0.2)
    border.width: isCurrent ? Hairline.width(Screen.devicePixelRatio) : 0
    border.color: Theme.faded(Theme.success, 0.2)

    Label {
        id: versionLabel
        x: Theme.spacing16
        anchors.verticalCenter: parent.verticalCenter
        width: Math.max(40, implicitWidth + Theme.spacing8)
        text: row.version
        textFormat: Text.PlainText
        font: Theme.textFont(12, Font.DemiBold)
        color: Theme.accent
    }
    Label {
        id: segmentsLabel
        objectName: "versionSegments"
        anchors.left: versionLabel.right
        anchors.verticalCenter: parent.verticalCenter
        text: row.segments
        textFormat: Text.PlainText
        font: Theme.caption2()
        color: Theme.foreground
    }
    Rectangle {
        visible: row.isCurrent
        anchors.left: segmentsLabel.right
        anchors.leftMargin: Theme.spacing16
        anchors.verticalCenter: parent.verticalCenter
        width: currentLabel.implicitWidth + Theme.spacing16
        height: 18
        radius: 6
        color: Theme.faded(Theme.success, 0.15)
        Label {
            id: currentLabel
            anchors.centerIn: parent
            text: "current"
            font: Theme.textFont(10, Font.DemiBold)
            color: Theme.success
        }
    }
    Label {
        objectName: "versionDate"
        anchors.right: parent.right
        anchors.rightMargin: Theme.spacing16
        anchors.verticalCenter: parent.verticalCenter
        text: row.date
        textFormat: Text.PlainText
        font: Theme.textFont(10, Font.Normal)
        color: Theme.textMuted
    }
}
