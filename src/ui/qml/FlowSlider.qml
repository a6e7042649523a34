import QtQuick
import QtQuick.Templates as T
import Zuvo

/// A horizontal slider: by the pointer, by the arrow keys, by Home and End.
T.Slider {
    id: slider

    property string label: ""
    property string valueText: ""

    /// The value is bound to what the page's model says, which changes by this.
    signal chosen(real place)
    onMoved: chosen(value)

    implicitWidth: 200
    implicitHeight: 18
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.name: label
    Accessible.description: valueText

    HoverHandler { cursorShape: Qt.PointingHandCursor }

    Keys.onPressed: event => {
        if (event.key !== Qt.Key_Home && event.key !== Qt.Key_End)
            return;
        slider.chosen(event.key === Qt.Key_Home ? slider.from : slider.to);
        event.accepted = true;
    }

    background: Item {
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            height: 4
            radius: 2
            color: Theme.border
        }
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: slider.visualPosition * (slider.width - 18) + 9
            height: 4
            radius: 2
            color: Theme.accent
        }
    }
    handle: Item {
        x: slider.visualPosition * (slider.width - width)
        width: 18
        height: 18
        SoftShadow {
            anchors.fill: parent
            cornerRadius: 9
            radius: 2
            offsetY: 1
            color: Qt.rgba(0, 0, 0, 0.4)
        }
        Rectangle {
            anchors.fill: parent
            radius: 9
            color: slider.pressed ? "white" : Theme.foreground
        }
        FocusRing { control: slider; cornerRadius: 9 }
    }
}
