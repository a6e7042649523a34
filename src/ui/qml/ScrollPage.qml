import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// A page that scrolls: one centred column on the page's ground.
FocusScope {
    id: page

    default property alias content: column.data
    property real columnWidth: 560
    property real topMargin: 56

    Flickable {
        id: flick
        anchors.fill: parent
        contentWidth: width
        contentHeight: column.height + page.topMargin + Theme.spacing48
        boundsBehavior: Flickable.StopAtBounds
        onMovementStarted: scrollKeys.stop()
        ScrollBar.vertical: PageScrollBar { policy: flick.contentHeight > flick.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff }

        Column {
            id: column
            objectName: "pageColumn"
            y: page.topMargin
            width: Math.min(page.columnWidth, flick.width - 2 * Theme.spacing32)
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Theme.spacing16
        }
    }

    Keys.onPressed: event => scrollKeys.take(event)
    ScrollKeys {
        id: scrollKeys
        flickable: flick
    }

    // A control that the keyboard reaches comes into view.
    readonly property Item focused: Window.activeFocusItem
    onFocusedChanged: {
        // Under the pointer the page stands still: what is pressed must be there when the button is let go.
        if (focused === null || (focused.focusReason !== Qt.TabFocusReason && focused.focusReason !== Qt.BacktabFocusReason)
                || !isInColumn(focused))
            return;
        scrollKeys.stop();
        const top = focused.mapToItem(flick.contentItem, 0, 0).y - Theme.spacing24;
        const bottom = top + focused.height + 2 * Theme.spacing24;
        if (top < flick.contentY)
            flick.contentY = Math.max(0, top);
        else if (bottom > flick.contentY + flick.height)
            flick.contentY = Math.min(bottom, flick.contentHeight) - flick.height;
    }
    function isInColumn(item) {
        for (let at = item; at; at = at.parent) {
            if (at === column)
                return true;
        }
        return false;
    }
}
