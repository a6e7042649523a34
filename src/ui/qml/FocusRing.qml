import QtQuick
import QtQuick.Templates as T
import Zuvo

/// Drawn around a control that the keyboard has reached.
Rectangle {
    property T.Control control: null
    property real cornerRadius: Theme.radiusSm

    anchors.fill: parent
    anchors.margins: -3
    radius: cornerRadius + 3
    color: "transparent"
    border.width: 2
    border.color: Theme.torchGlow
    visible: control !== null && control.visualFocus
}
