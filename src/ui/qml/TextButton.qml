import QtQuick
import Zuvo

/// A button that is only its text.
PlainButton {
    id: button

    property color textColor: Theme.textSecondary
    property font textFont: Theme.textFont(13, Font.Medium)

    padding: Theme.spacing8

    contentItem: Text {
        text: button.text
        textFormat: Text.PlainText
        font: button.textFont
        color: button.hovered && button.isAvailable ? Theme.foreground : button.textColor
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Behavior on color { ColorAnimation { duration: 150 } }
    }
}
