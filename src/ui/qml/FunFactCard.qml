import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Something to read meanwhile. A new fact fades in over the old one.
Item {
    id: card

    required property string fact
    property real maximumWidth: 600
    property bool isFirstShown: true

    implicitHeight: 36
    implicitWidth: Math.min(maximumWidth,
                            Math.ceil(shown.implicitWidth) + bulb.width + Theme.spacing12 + 2 * Theme.spacing16)
    readonly property Label shown: isFirstShown ? first : second

    onFactChanged: {
        const next = isFirstShown ? second : first;
        next.text = fact;
        isFirstShown = !isFirstShown;
    }
    Component.onCompleted: shown.text = fact

    Behavior on implicitWidth { NumberAnimation { duration: 350; easing.type: Easing.InOutQuad } }

    CardSurface {
        anchors.fill: parent
        cornerRadius: Theme.radiusSm
        borderTop: Theme.faded(Theme.border, 0.2)
    }
    Symbol {
        id: bulb
        x: Theme.spacing16
        anchors.verticalCenter: parent.verticalCenter
        name: "lightbulb.fill"
        size: 12
        color: Theme.faded("#FFD60A", 0.8)
    }
    component Fact: Label {
        x: bulb.x + bulb.width + Theme.spacing12
        width: card.width - x - Theme.spacing16
        anchors.verticalCenter: parent.verticalCenter
        maximumLineCount: 1
        elide: Text.ElideRight
        font: Theme.textFont(13)
        color: Theme.textMuted
        visible: opacity > 0 // nobody is told of the fact of before
        Behavior on opacity { NumberAnimation { duration: 350; easing.type: Easing.InOutQuad } }
    }
    Fact {
        id: first
        opacity: card.isFirstShown ? 1 : 0
    }
    Fact {
        id: second
        opacity: card.isFirstShown ? 0 : 1
    }
}
