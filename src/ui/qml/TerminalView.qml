import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// The log, as a terminal shows it. Rows are made where they are seen. Whole lines can be chosen and copied.
FocusScope {
    id: terminal

    required property ProcessingPageModel model
    // The chosen lines, from where the choice began to where it ends; -1 for none.
    property int firstChosen: -1
    property int lastChosen: -1

    function choose(row) { firstChosen = row; lastChosen = row; }
    function extendTo(row) {
        if (firstChosen < 0)
            firstChosen = row;
        lastChosen = row;
    }
    function isChosen(row) {
        return firstChosen >= 0 && row >= Math.min(firstChosen, lastChosen) && row <= Math.max(firstChosen, lastChosen);
    }
    function walk(by, extends_) {
        if (list.count === 0)
            return;
        const from = lastChosen < 0 ? (by < 0 ? list.count : -1) : lastChosen;
        const to = Math.max(0, Math.min(list.count - 1, from + by));
        if (extends_)
            extendTo(to);
        else
            choose(to);
        list.positionViewAtIndex(to, ListView.Contain);
    }
    function chooseNone() { firstChosen = lastChosen = -1; }
    function logColor(name) {
        switch (name) {
        case "accent": return Theme.accent;
        case "green": return "#30D158";
        case "blue": return "#0A84FF";
        case "dim": return Qt.rgba(1, 1, 1, 0.35);
        default: return Theme.textMuted;
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusSm
        color: "#110E0B"
        border.width: list.activeFocus ? 1 : 0
        border.color: Theme.faded(Theme.torchGlow, 0.5)
    }
    Item {
        id: titleRow
        width: parent.width
        height: 32
        Row {
            x: 14
            anchors.verticalCenter: parent.verticalCenter
            spacing: 7
            Repeater {
                model: [Qt.rgba(1.0, 0.37, 0.34, 1), Qt.rgba(0.99, 0.74, 0.18, 1), Qt.rgba(0.16, 0.78, 0.25, 1)]
                Rectangle {
                    required property color modelData
                    width: 10
                    height: 10
                    radius: 5
                    color: modelData
                }
            }
        }
        Text {
            anchors.centerIn: parent
            text: "zuvo"
            font: Theme.mono(11)
            color: Theme.faded(Theme.textMuted, 0.3)
        }
    }
    ListView {
        id: list
        objectName: "terminalList"
        anchors { left: parent.left; right: parent.right; top: titleRow.bottom; bottom: parent.bottom }
        anchors.bottomMargin: Theme.spacing6
        focus: true
        activeFocusOnTab: true
        clip: true
        reuseItems: true
        keyNavigationEnabled: false
        currentIndex: -1
        boundsBehavior: Flickable.StopAtBounds
        model: terminal.model.log
        Accessible.role: Accessible.List
        Accessible.name: "Log"
        ScrollBar.vertical: PageScrollBar { }

        header: Item { width: 1; height: Theme.spacing16 }
        delegate: Item {
            id: row
            required property int index
            required property string timestamp
            required property string line
            required property string colorName
            width: ListView.view.width
            implicitHeight: words.implicitHeight
            Rectangle {
                anchors.fill: parent
                visible: terminal.isChosen(row.index)
                color: Theme.faded(Theme.torchGlow, 0.18)
            }
            Text {
                x: Theme.spacing16
                text: row.timestamp
                textFormat: Text.PlainText
                lineHeightMode: Text.FixedHeight
                lineHeight: 20
                font.family: Fonts.mono
                font.pixelSize: 12
                color: Theme.faded(Theme.textMuted, 0.25)
            }
            Label {
                id: words
                x: Theme.spacing16 + 48
                width: row.width - x - Theme.spacing16
                text: row.line
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                lineHeightMode: Text.FixedHeight
                lineHeight: 20
                font.family: Fonts.mono
                font.pixelSize: 12
                font.preferShaping: false // a "<-" of the log is no arrow
                color: terminal.logColor(row.colorName)
                Accessible.role: Accessible.ListItem
                Accessible.name: row.timestamp + " " + row.line
            }
        }
        footer: Item {
            width: 1
            height: 20 + Theme.spacing16 - list.anchors.bottomMargin
            Text {
                objectName: "cursor"
                x: Theme.spacing16
                text: "▊"
                font: Theme.mono(12)
                color: Theme.faded(Theme.accent, 0.5)
            }
        }

        Keys.onPressed: event => {
            const extends_ = (event.modifiers & Qt.ShiftModifier) !== 0;
            if (event.matches(StandardKey.SelectAll)) {
                terminal.firstChosen = list.count > 0 ? 0 : -1;
                terminal.lastChosen = list.count - 1;
            } else if (event.matches(StandardKey.Copy)) {
                terminal.model.copyLines(terminal.firstChosen, terminal.lastChosen);
            } else if (event.key === Qt.Key_Up) {
                terminal.walk(-1, extends_);
            } else if (event.key === Qt.Key_Down) {
                terminal.walk(1, extends_);
            } else if (event.key === Qt.Key_PageUp) {
                terminal.walk(-10, extends_);
            } else if (event.key === Qt.Key_PageDown) {
                terminal.walk(10, extends_);
            } else if (event.key === Qt.Key_Home) {
                terminal.walk(-list.count, extends_);
            } else if (event.key === Qt.Key_End) {
                terminal.walk(list.count, extends_);
            } else {
                return;
            }
            event.accepted = true;
        }
        NumberAnimation {
            id: scrolling
            target: list
            property: "contentY"
            duration: 350
            easing.type: Easing.InOutQuad
            onFinished: list.positionViewAtEnd() // rows that came into sight may be higher than was thought
        }
        /// Down to the cursor. Of a long way only the last two screens are shown: rows that would pass by unread need
        /// not be made.
        function scrollToCursor() {
            if (count === 0)
                return;
            scrolling.stop();
            const before = contentY;
            positionViewAtEnd();
            const end = contentY;
            if (end <= before)
                return;
            contentY = Math.max(before, end - 2 * height);
            scrolling.from = contentY;
            scrolling.to = end;
            scrolling.start();
        }
        onCountChanged: Qt.callLater(scrollToCursor) // qmllint disable
        onHeightChanged: Qt.callLater(positionViewAtEnd) // qmllint disable
        Component.onCompleted: Qt.callLater(positionViewAtEnd) // qmllint disable
        Connections {
            target: list.model
            function onModelReset() { terminal.chooseNone(); }
        }
    }
    // The pointer chooses lines, by a click or by a drag; it turns the list by wheel and bar. A finger drags the list.
    MouseArea {
        id: pointer
        anchors.fill: list
        anchors.rightMargin: Theme.spacing12
        preventStealing: true

        function rowAt(y) {
            const row = list.indexAt(width / 2, y + list.contentY);
            return row >= 0 ? row : y + list.contentY < list.originY + Theme.spacing16 ? 0 : list.count - 1;
        }
        function dragTo(y) {
            if (list.count === 0)
                return;
            if (y < 0 || y > height) {
                const by = y < 0 ? y : y - height;
                const lowest = list.originY + list.contentHeight - list.height;
                list.contentY = Math.max(list.originY, Math.min(lowest, list.contentY + by));
            }
            terminal.extendTo(rowAt(Math.max(1, Math.min(height - 1, y))));
        }
        onPressed: mouse => {
            if (mouse.source !== Qt.MouseEventNotSynthesized) {
                mouse.accepted = false;
                return;
            }
            list.forceActiveFocus(Qt.MouseFocusReason);
            const row = list.indexAt(mouse.x, mouse.y + list.contentY);
            if (row < 0)
                terminal.chooseNone();
            else if (mouse.modifiers & Qt.ShiftModifier)
                terminal.extendTo(row);
            else
                terminal.choose(row);
        }
        onPositionChanged: mouse => dragTo(mouse.y)
        // Held beyond an edge, the list goes on.
        Timer {
            interval: 50
            repeat: true
            running: pointer.pressed && (pointer.mouseY < 0 || pointer.mouseY > pointer.height)
            onTriggered: pointer.dragTo(pointer.mouseY)
        }
    }
}
