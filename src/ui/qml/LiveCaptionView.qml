import QtQuick
import QtQuick.Window
import Zuvo

/// The words around the one that is being said, and how far playback has come.
Rectangle {
    id: caption

    required property RowListModel words ///< `word` and `place`: below 0 said, 0 being said, above 0 to come
    required property string spoken  ///< the words as one text
    required property real progress  ///< 0 to 1

    implicitHeight: 54
    radius: 6
    color: Theme.faded(Theme.background, 0.9)
    border.width: Hairline.width(Screen.devicePixelRatio)
    border.color: Theme.faded(Theme.accent, 0.2)
    clip: true

    Accessible.role: Accessible.StaticText
    Accessible.name: spoken

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        y: Theme.spacing12
        spacing: Theme.spacing6
        Repeater {
            model: caption.words
            delegate: Text {
                required property string word
                required property int place
                readonly property bool isActive: place === 0

                text: word
                textFormat: Text.PlainText
                font: Theme.textFont(14, isActive ? Font.Bold : Font.Normal)
                color: isActive ? Theme.accent
                                : Theme.faded(Theme.foreground, place < 0 ? 0.6 : 0.4)
                scale: isActive ? 1.05 : 1
                Behavior on scale { NumberAnimation { duration: 100; easing.type: Easing.InOutQuad } }
            }
        }
    }
    Rectangle {
        x: Theme.spacing16
        y: parent.height - 12
        width: parent.width - 2 * x
        height: 2
        radius: 1
        color: Theme.faded(Theme.border, 0.6)
        Rectangle {
            width: parent.width * caption.progress
            height: parent.height
            radius: 1
            color: Theme.accent
            Behavior on width { NumberAnimation { duration: 1000 / 30 } }
        }
    }
}
