import QtQuick
import Zuvo

/// A symbol by its name, in one colour. A symbol of size n stands in a box of 1.2 n.
Item {
    id: symbol

    property string name: ""
    property real size: 16
    property color color: Theme.foreground
    property int weight: Font.Normal
    readonly property string boldness: weight >= Font.Bold ? "/bold" : weight >= Font.DemiBold ? "/semibold" : ""

    implicitWidth: Math.round(size * 1.2)
    implicitHeight: implicitWidth

    Image {
        anchors.centerIn: parent
        readonly property real edge: Math.round(symbol.size * 1.06)
        width: edge
        height: edge
        readonly property int pixels: Math.round(edge * Screen.devicePixelRatio)
        sourceSize.width: pixels
        sourceSize.height: pixels
        source: symbol.name === "" ? "" : "image://symbols/" + symbol.name + "/" + symbol.color + symbol.boldness
        smooth: true
    }
}
