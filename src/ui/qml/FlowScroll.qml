import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// A part of a page that scrolls where it is too low for what it holds. It spans the page's height, so that nothing but
/// the page's own edge cuts it off; what it holds is inset.
Flickable {
    id: flick

    default property alias content: column.data
    property alias columnSpacing: column.spacing
    property real columnX: 0
    property real columnWidth: width
    property real inset: Theme.spacing32 ///< above and below
    readonly property real freeHeight: height - 2 * inset

    contentWidth: width
    contentHeight: column.height + 2 * inset
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height

    ScrollBar.vertical: PageScrollBar {
        policy: flick.contentHeight > flick.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
    }

    Column {
        id: column
        x: flick.columnX
        y: flick.inset
        width: flick.columnWidth
    }

    // A control that the keyboard reaches comes into view.
    readonly property Item focused: Window.activeFocusItem
    onFocusedChanged: {
        // A page that has just come begins at its top, wherever the keyboard stands.
        if (focused === null || (focused.focusReason !== Qt.TabFocusReason && focused.focusReason !== Qt.BacktabFocusReason)
                || !holds(focused))
            return;
        const top = focused.mapToItem(contentItem, 0, 0).y - Theme.spacing16;
        const bottom = top + focused.height + 2 * Theme.spacing16;
        if (top < contentY)
            contentY = Math.max(0, top);
        else if (bottom > contentY + height)
            contentY = Math.max(0, Math.min(bottom, contentHeight) - height);
    }
    function holds(item) {
        for (let at = item; at; at = at.parent) {
            if (at === column)
                return true;
        }
        return false;
    }
}
