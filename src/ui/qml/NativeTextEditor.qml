import QtQuick
import QtQuick.Controls.Basic as Controls
import QtQuick.Window
import Zuvo

/// A plain text of several lines. It writes every change, and shows what is changed elsewhere. Tab leaves it.
Controls.ScrollView {
    id: editor

    property string text: ""
    property string placeholder: ""
    property string label: ""
    property font textFont: Theme.textFont(14)
    property color textColor: Qt.rgba(0.96, 0.9, 0.78, 1)

    signal edited(string text)

    implicitHeight: 96
    contentWidth: availableWidth

    Controls.ScrollBar.vertical: PageScrollBar {
        parent: editor
        x: editor.width - width
        y: editor.topPadding
        height: editor.availableHeight
    }
    Controls.ScrollBar.horizontal: PageScrollBar {
        parent: editor
        policy: Controls.ScrollBar.AlwaysOff
    }

    // Only what differs is put in: the cursor stays where it is while the user types.
    onTextChanged: {
        if (area.text !== text)
            area.text = text;
    }

    Controls.TextArea {
        id: area
        objectName: "notesEditor"
        focus: true
        leftPadding: Theme.spacing16
        rightPadding: Theme.spacing16
        topPadding: Theme.spacing12
        bottomPadding: Theme.spacing12
        textFormat: TextEdit.PlainText
        wrapMode: TextEdit.Wrap
        selectByMouse: true
        persistentSelection: true
        font: editor.textFont
        color: editor.textColor
        selectionColor: Theme.accent
        selectedTextColor: "white"
        Accessible.name: editor.label
        KeyNavigation.priority: KeyNavigation.BeforeItem
        Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
        Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
        onTextChanged: {
            if (text !== editor.text)
                editor.edited(text);
        }
        background: null
        Controls.Label {
            x: area.leftPadding
            y: area.topPadding
            width: area.width - area.leftPadding - area.rightPadding
            visible: area.text === "" && area.preeditText === ""
            text: editor.placeholder
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            lineHeight: 1.2
            font: Theme.textFont(13)
            color: Theme.faded(Theme.foreground, 0.3)
        }
    }
    Component.onCompleted: area.text = text

    background: Rectangle {
        radius: Theme.radiusMd
        color: Theme.surface
        border.width: editor.text !== "" || area.activeFocus ? 1 : Hairline.width(Screen.devicePixelRatio)
        border.color: editor.text !== "" ? Theme.faded(Theme.accent, 0.3)
                    : area.activeFocus ? Theme.faded(Theme.torchGlow, 0.4) : Theme.faded(Theme.border, 0.5)
    }
}
