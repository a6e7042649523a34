import QtQuick
import Zuvo

/// The keys that scroll a page, for what no control leads to: `Keys.onPressed: event => scrollKeys.take(event)`.
QtObject {
    id: keys

    required property Flickable flickable

    /// Scrolls by a key that scrolls, if there is anything to scroll; leaves any other to whoever else wants it. A field
    /// in which one writes keeps its keys, even those that lead nowhere in it.
    function take(event) {
        const pageful = flickable.height - Theme.spacing48;
        const ways = {
            [Qt.Key_Up]: -Theme.spacing48, [Qt.Key_Down]: Theme.spacing48, [Qt.Key_PageUp]: -pageful,
            [Qt.Key_PageDown]: pageful, [Qt.Key_Home]: -flickable.contentHeight, [Qt.Key_End]: flickable.contentHeight
        };
        const way = ways[event.key];
        const isWriting = flickable.Window.activeFocusItem?.cursorPosition !== undefined;
        event.accepted = way !== undefined && !isWriting && flickable.contentHeight > flickable.height;
        if (event.accepted)
            scrollTo((gliding.running ? gliding.to : flickable.contentY) + way);
    }
    function stop() { gliding.stop(); }
    function scrollTo(place) {
        stop();
        gliding.to = Math.max(0, Math.min(place, flickable.contentHeight - flickable.height));
        gliding.start();
    }
    readonly property NumberAnimation gliding: NumberAnimation {
        target: keys.flickable
        property: "contentY"
        duration: 150
        easing.type: Easing.OutQuad
    }
}
