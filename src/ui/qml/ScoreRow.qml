import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// A figure beside what it is the figure of.
Item {
    id: score

    property alias title: scoreTitle.text
    property alias value: scoreLabel.text
    property int valueSize: 18
    width: parent ? parent.width : 0
    height: 24
    SectionLabel {
        id: scoreTitle
        anchors.verticalCenter: parent.verticalCenter
    }
    Label {
        id: scoreLabel
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        font: Theme.textFont(score.valueSize, Font.DemiBold)
        color: Theme.foreground
        Accessible.name: scoreTitle.text + " " + text
    }
}
