import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// What a run has failed of. Its words can be chosen and copied.
Rectangle {
    id: banner

    required property string message
    readonly property real longest: 120

    implicitHeight: Math.min(words.implicitHeight, longest) + 2 * Theme.spacing12
    radius: Theme.radiusSm
    color: Theme.faded(Theme.accent, 0.06)

    Symbol {
        x: Theme.spacing16
        y: Theme.spacing12 + 2
        name: "exclamationmark.triangle.fill"
        size: 12
        color: Theme.accent
    }
    Flickable {
        id: flick
        x: Theme.spacing40
        y: Theme.spacing12
        width: parent.width - x - Theme.spacing16
        height: parent.height - 2 * Theme.spacing12
        contentHeight: words.implicitHeight
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height
        ScrollBar.vertical: PageScrollBar { policy: flick.interactive ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff }
        TextEdit {
            id: words
            objectName: "errorText"
            width: flick.width
            text: banner.message
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap
            readOnly: true
            selectByMouse: true
            selectByKeyboard: true
            activeFocusOnTab: true
            font: Theme.textFont(14, Font.Medium)
            color: Theme.accent
            selectionColor: Theme.accent
            selectedTextColor: "white"
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
    }
    Rectangle {
        anchors.fill: parent
        radius: parent.radius
        visible: words.activeFocus
        color: "transparent"
        border.width: 1
        border.color: Theme.faded(Theme.torchGlow, 0.5)
    }
}
