import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window
import Zuvo

/// One dropped file.
Rectangle {
    id: row

    required property int place ///< in the list, from 0
    required property string filename
    required property string symbol
    required property bool isProbing
    required property string durationText
    required property string sampleRateText
    required property string sizeText
    property alias removeButton: removeButton

    signal removed()

    implicitHeight: 56
    radius: Theme.radiusSm
    color: Theme.surface
    border.width: Hairline.width(Screen.devicePixelRatio)
    border.color: Theme.faded(Theme.border, 0.3)
    Accessible.role: Accessible.ListItem
    Accessible.name: filename

    Item {
        id: symbolBox
        x: Theme.spacing16
        width: 18
        height: parent.height
        Symbol {
            anchors.centerIn: parent
            name: row.symbol
            size: 12
            color: Theme.faded(Theme.accent, 0.7)
        }
    }
    Column {
        anchors.left: symbolBox.right
        anchors.leftMargin: Theme.spacing12
        anchors.right: removeButton.left
        anchors.rightMargin: Theme.spacing8
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.spacing2
        Label {
            objectName: "fileName" + row.place
            width: parent.width
            text: row.filename
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            maximumLineCount: 1
            font: Theme.textFont(13, Font.Medium)
            color: Theme.foreground
        }
        Row {
            spacing: Theme.spacing8
            component Detail: Label {
                visible: text !== ""
                textFormat: Text.PlainText
                font: Theme.textFont(11)
                color: Theme.faded(Theme.textMuted, 0.6)
            }
            Detail {
                text: row.isProbing ? "Probing…" : ""
                color: Theme.faded(Theme.accent, 0.7)
            }
            Detail {
                text: row.durationText
                color: Theme.faded(Theme.success, 0.8)
            }
            Detail { text: row.sampleRateText }
            Detail { text: row.sizeText }
        }
    }
    PlainButton {
        id: removeButton
        objectName: "removeFile" + row.place
        anchors.right: parent.right
        anchors.rightMargin: Theme.spacing12
        anchors.verticalCenter: parent.verticalCenter
        width: 24
        height: 24
        ringRadius: 4
        text: "Remove " + row.filename
        onClicked: row.removed()
        background: Rectangle {
            radius: 4
            color: removeButton.hovered ? Theme.surfaceHover : Theme.surface
        }
        contentItem: Item {
            Symbol {
                anchors.centerIn: parent
                name: "xmark"
                size: 10
                color: Theme.faded(Theme.textMuted, removeButton.hovered ? 0.8 : 0.4)
            }
        }
    }
}
