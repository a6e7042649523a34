import QtQuick
import QtQuick.Controls.Basic as Controls
import QtQuick.Templates as T
import QtQuick.Window
import Zuvo

/// A menu of which one row is chosen: by the pointer, by the arrow keys, by its first letters.
T.ComboBox {
    id: picker

    property string label: ""
    property int chosenRow: 0
    /// What stands there while the chosen row is none of the menu's.
    property string otherText: ""

    signal chosen(int row)

    implicitHeight: 40
    leftPadding: Theme.spacing16
    rightPadding: Theme.spacing40
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.name: label
    Accessible.description: displayText

    currentIndex: chosenRow
    displayText: currentIndex < 0 ? otherText : currentText
    // A new list begins at its first row, whatever was chosen.
    onModelChanged: currentIndex = Qt.binding(() => picker.chosenRow)
    onActivated: row => picker.chosen(row)

    Keys.onReturnPressed: popup.open()
    Keys.onEnterPressed: popup.open()

    HoverHandler { cursorShape: Qt.PointingHandCursor }

    background: Rectangle {
        radius: Theme.radiusSm
        color: picker.hovered ? Theme.surfaceHover : Theme.surface
        border.width: Hairline.width(Screen.devicePixelRatio)
        border.color: Theme.faded(Theme.border, 0.5)
        FocusRing { control: picker; cornerRadius: Theme.radiusSm }
    }
    contentItem: Text {
        text: picker.displayText
        textFormat: Text.PlainText
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        font: Theme.textFont(13)
        color: Theme.foreground
    }
    indicator: Symbol {
        x: picker.width - width - Theme.spacing12
        anchors.verticalCenter: parent.verticalCenter
        name: "chevron.up.chevron.down"
        size: 11
        color: Theme.textMuted
    }
    delegate: T.ItemDelegate {
        id: row
        required property int index
        required property string modelData
        objectName: "pickerRow" + index
        width: ListView.view.width
        implicitHeight: 32
        text: modelData
        highlighted: picker.highlightedIndex === index
        hoverEnabled: true
        Accessible.name: text
        Accessible.selectable: true
        Accessible.selected: picker.currentIndex === index
        background: Rectangle {
            radius: Theme.radiusXs
            color: row.highlighted ? Theme.faded(Theme.accent, 0.16) : Theme.faded(Theme.accent, 0)
        }
        contentItem: Item {
            Text {
                x: Theme.spacing12
                width: parent.width - 2 * Theme.spacing12 - 16
                anchors.verticalCenter: parent.verticalCenter
                text: row.text
                textFormat: Text.PlainText
                elide: Text.ElideRight
                font: Theme.textFont(13, picker.currentIndex === row.index ? Font.DemiBold : Font.Normal)
                color: Theme.foreground
            }
            Symbol {
                anchors.right: parent.right
                anchors.rightMargin: Theme.spacing8
                anchors.verticalCenter: parent.verticalCenter
                visible: picker.currentIndex === row.index
                name: "checkmark"
                size: 11
                color: Theme.accent
            }
        }
    }
    popup: T.Popup {
        y: picker.height + Theme.spacing4
        width: picker.width
        height: Math.min(list.contentHeight + 2 * padding, 300, Math.max(120, picker.Window.height - 2 * margins))
        margins: Theme.spacing16
        padding: Theme.spacing4
        contentItem: ListView {
            id: list
            clip: true
            model: picker.popup.visible ? picker.delegateModel : null
            currentIndex: picker.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
            Accessible.role: Accessible.List
            Accessible.name: picker.label
            Controls.ScrollBar.vertical: PageScrollBar { }
        }
        background: Item {
            SoftShadow {
                anchors.fill: parent
                cornerRadius: Theme.radiusSm
                color: Qt.rgba(0, 0, 0, 0.45)
            }
            Rectangle {
                anchors.fill: parent
                radius: Theme.radiusSm
                color: Theme.cardBg
                border.width: Hairline.width(Screen.devicePixelRatio)
                border.color: Theme.border
            }
        }
    }
}
