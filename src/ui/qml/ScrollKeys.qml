import QtQuick
import Zuvo

/// The keys that scroll a page, for what no control leads to: `Keys.onPressed: event => scrollKeys.take(event)`.
QtObject {
    id: keys

    required property Flickable flick

    /// Scrolls by a key that scrolls, if there is anything to scroll; leaves any other to whoever else wants it. A field
    /// in which one writes keeps its keys, even those that lead nowhere in it.
    function take(event) {
        const pageful = flick.height - Theme.spacing48;
        const ways = {
            [Qt.Key_Up]: -Theme.spacing48, [Qt.Key_Down]: Theme.spacing48, [Qt.Key_PageUp]: -pageful,
            [Qt.Key_PageDown]: pageful, [Qt.Key_Home]: -flick.contentHeight, [Qt.Key_End]: flick.contentHeight
        };
        const way = ways[event.key];
        const isWriting = flick.Window.activeFocusItem?.cursorPosition !== undefined;
        event.accepted = way !== undefined && !isWriting && flick.contentHeight > flick.height;
        if (event.accepted)
            scrollTo((gliding.running ? gliding.to : flick.contentY) + way);
    }
    function stop() { gliding.stop(); }
    function scrollTo(place) {
        stop();
        gliding.to = Math.max(0, Math.min(place, flick.contentHeight - flick.height));
        gliding.start();
    }
    readonly property NumberAnimation gliding: NumberAnimation {
        target: keys.flick
        property: "contentY"
        duration: 150
        easing.type: Easing.OutQuad
    }
}
