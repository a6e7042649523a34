import QtQuick
import Zuvo

/// Holds the page of the current step and changes it: a page comes in from the right and leaves to the left, whichever
/// way the user goes; Daylight grows and shrinks.
FocusScope {
    id: stack

    required property MineViewModel flow
    property int duration: 350 ///< of a change of page, in ms
    /// The page that stands, or is coming in.
    property Item current: null
    property string currentName: ""
    clip: true

    component PageHolder: FocusScope {
        id: holder
        property bool grows: false
        property real shift: 0     ///< in widths of the page, to the right
        property Item page: null

        width: stack.width
        height: stack.height
        x: shift * width

        ParallelAnimation {
            id: entering
            NumberAnimation {
                target: holder; property: holder.grows ? "scale" : "shift"
                from: holder.grows ? 0.8 : 1; to: holder.grows ? 1 : 0
                duration: stack.duration; easing.type: Easing.InOutQuad
            }
            NumberAnimation {
                target: holder; property: "opacity"; from: 0; to: 1
                duration: stack.duration; easing.type: Easing.InOutQuad
            }
        }
        SequentialAnimation {
            id: leaving
            ParallelAnimation {
                NumberAnimation {
                    target: holder; property: holder.grows ? "scale" : "shift"
                    to: holder.grows ? 0.8 : -1
                    duration: stack.duration; easing.type: Easing.InOutQuad
                }
                NumberAnimation {
                    target: holder; property: "opacity"; to: 0
                    duration: stack.duration; easing.type: Easing.InOutQuad
                }
            }
            ScriptAction { script: holder.destroy() }
        }

        function enter() { entering.start(); }
        function leave() {
            entering.stop();
            enabled = false; // which buttons do not show: they look as `isAvailable` says
            focus = false;
            leaving.start();
        }
    }
    Component { id: holderComponent; PageHolder { } }

    function show(isAnimated) {
        if (flow.pageName === currentName)
            return;
        const pageComponent = Qt.createComponent(flow.pageName + ".qml");
        if (pageComponent.status !== Component.Ready) {
            console.error(pageComponent.errorString());
            return;
        }
        const left = current;
        const holder = holderComponent.createObject(stack, { "grows": flow.pageName === "DonePage" });
        holder.page = pageComponent.createObject(holder, {
            "flow": flow, "focus": true,
            "width": Qt.binding(() => holder.width), "height": Qt.binding(() => holder.height)
        });
        current = holder;
        currentName = flow.pageName;
        holder.focus = true;
        if (isAnimated)
            holder.enter();
        if (left)
            left.leave();
    }

    Connections {
        target: stack.flow
        function onPageNameChanged() { stack.show(true); }
    }
    Component.onCompleted: show(false)
}
