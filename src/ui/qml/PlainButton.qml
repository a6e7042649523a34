import QtQuick
import QtQuick.Templates as T
import Zuvo

/// A control that is pressed: by the pointer, by the space bar and by Return. What it looks like is its content's.
T.AbstractButton {
    id: button

    property real ringRadius: Theme.radiusXs
    /// Whether there is something to press it for. What a button looks like follows this, not `enabled`: a page that
    /// leaves is disabled as a whole, and looks as before.
    property bool isAvailable: true

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    enabled: isAvailable

    Accessible.role: Accessible.Button
    Accessible.name: text

    // A button that rests while its work is done has the keyboard again afterwards, and shows it if it did before.
    property bool hadRing: false
    onVisualFocusChanged: if (enabled) hadRing = visualFocus
    onEnabledChanged: {
        if (enabled && hadRing && activeFocus)
            focusReason = Qt.TabFocusReason;
        if (enabled)
            hadRing = visualFocus;
    }

    Keys.onReturnPressed: event => press(event)
    Keys.onEnterPressed: event => press(event)

    function press(event) {
        if (event.isAutoRepeat)
            return;
        button.clicked();
    }

    HoverHandler { cursorShape: button.enabled ? Qt.PointingHandCursor : Qt.ArrowCursor }
    FocusRing { control: button; cornerRadius: button.ringRadius }
}
