import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// The story as a list of cards: a card is opened by a tap and dragged to another place.
FocusScope {
    id: view

    required property ReviewPageModel model
    readonly property real sideMargin: Theme.spacing32
    property bool isByKeyboard: false

    ListView {
        id: list
        objectName: "segmentList"
        anchors.fill: parent
        focus: true
        activeFocusOnTab: true
        model: view.model.cards
        spacing: Theme.spacing8
        topMargin: Theme.spacing4
        bottomMargin: Theme.spacing24
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        cacheBuffer: 400
        keyNavigationEnabled: true
        highlightMoveDuration: 150
        highlightFollowsCurrentItem: true
        ScrollBar.vertical: PageScrollBar { policy: list.contentHeight > list.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff }

        Accessible.role: Accessible.List
        Accessible.name: "Gems"

        delegate: SegmentCard {
            id: card
            required property int index

            objectName: "segmentCard" + index
            x: view.sideMargin
            width: list.width - 2 * view.sideMargin
            height: implicitHeight
            clip: heightAnimation.running
            opacity: drag.isDragging && drag.segmentId === segmentId ? 0.25 : 1
            isChosen: list.activeFocus && view.isByKeyboard && ListView.isCurrentItem
            captionWords: isPlaying ? view.model.captionWords : null
            captionText: isPlaying ? view.model.captionText : ""
            captionProgress: isPlaying ? view.model.captionProgress : 0
            onTapped: {
                list.currentIndex = index;
                view.model.toggleExpanded(segmentId);
            }
            onPlayed: view.model.togglePlay(segmentId)
            onRemoved: {
                list.forceActiveFocus();
                view.model.deleteSegment(index);
            }

            property bool isReady: false
            Component.onCompleted: isReady = true
            Behavior on height {
                enabled: card.isReady
                NumberAnimation { id: heightAnimation; duration: 200; easing.type: Easing.InOutQuad }
            }
        }

        remove: Transition {
            NumberAnimation { property: "opacity"; to: 0; duration: 250; easing.type: Easing.InOutQuad }
        }
        removeDisplaced: Transition {
            NumberAnimation { property: "y"; duration: 250; easing.type: Easing.InOutQuad }
        }
        move: Transition {
            NumberAnimation { property: "y"; duration: 200; easing.type: Easing.InOutQuad }
        }
        moveDisplaced: Transition {
            NumberAnimation { property: "y"; duration: 200; easing.type: Easing.InOutQuad }
        }

        Keys.onPressed: event => {
            view.isByKeyboard = true;
            const item = list.currentItem as SegmentCard;
            const moves = event.modifiers & Qt.AltModifier;
            if (moves && (event.key === Qt.Key_Up || event.key === Qt.Key_Down)) {
                list.currentIndex = view.model.moveSegment(list.currentIndex, event.key === Qt.Key_Up ? -1 : 1);
                event.accepted = true;
            } else if (item && !event.isAutoRepeat && (event.key === Qt.Key_Space || event.key === Qt.Key_K)) {
                view.model.togglePlay(item.segmentId);
                event.accepted = true;
            } else if (item && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)) {
                view.model.toggleExpanded(item.segmentId);
                event.accepted = true;
            } else if (item && event.key === Qt.Key_Delete) {
                view.model.deleteSegment(list.currentIndex);
                event.accepted = true;
            }
        }

        // Beneath the cards, whose buttons take their own presses. It keeps the pointer whatever becomes of the cards.
        MouseArea {
            id: drag
            objectName: "segmentDragArea"
            parent: list.contentItem
            z: -1
            x: view.sideMargin
            width: list.width - 2 * view.sideMargin
            height: list.contentHeight
            // A finger moves the list, unless it has rested on a card before.
            property bool isMouse: false
            preventStealing: isDragging || isMouse
            pressAndHoldInterval: 500

            property bool isDragging: false
            property double segmentId: -1
            property double enteredId: -1     ///< the card that the pointer came over last
            property real grip: 0             ///< of the pointer below the card's upper edge
            property real pressX: 0
            property real pressY: 0
            property real pointerY: 0         ///< in the list
            readonly property int threshold: 6

            function cardAt(y) {
                return list.itemAt(list.width / 2, y) as SegmentCard;
            }
            function begin() {
                const item = cardAt(pressY);
                if (!item)
                    return;
                segmentId = item.segmentId;
                enteredId = item.segmentId;
                grip = pressY - item.y;
                lifted.showCard(item);
                isDragging = true;
                view.model.beginDrag(segmentId);
            }
            function follow() {
                const item = cardAt(pointerY + list.contentY);
                if (!item || item.segmentId === enteredId)
                    return;
                enteredId = item.segmentId;
                view.model.dropEntered(item.segmentId);
            }
            function end() {
                isMouse = false;
                if (!isDragging)
                    return;
                isDragging = false;
                segmentId = -1;
                view.model.performDrop();
            }

            onPressed: mouse => {
                isMouse = mouse.source === Qt.MouseEventNotSynthesized;
                view.isByKeyboard = false;
                list.forceActiveFocus();
                pressX = mouse.x;
                pressY = mouse.y;
                pointerY = mouse.y - list.contentY;
            }
            onPositionChanged: mouse => {
                pointerY = mouse.y - list.contentY;
                if (!isDragging && isMouse && Math.hypot(mouse.x - pressX, mouse.y - pressY) > threshold)
                    begin();
                if (isDragging)
                    follow();
            }
            onPressAndHold: mouse => {
                if (!isMouse && !isDragging)
                    begin();
                else
                    mouse.accepted = false; // a click after all
            }
            onReleased: end()
            onCanceled: end()
            onClicked: mouse => {
                const item = cardAt(mouse.y);
                if (item && Math.hypot(mouse.x - pressX, mouse.y - pressY) <= threshold)
                    item.tapped();
            }
        }
    }

    // At the edges the list moves under the card that is dragged.
    Timer {
        readonly property real edge: 48
        readonly property real step: drag.pointerY < edge ? (drag.pointerY - edge) / 4
                                     : drag.pointerY > list.height - edge ? (drag.pointerY - list.height + edge) / 4 : 0
        interval: 16
        repeat: true
        running: drag.isDragging && step !== 0
        onTriggered: {
            const top = list.originY - list.topMargin;
            const bottom = Math.max(top, list.originY + list.contentHeight + list.bottomMargin - list.height);
            list.contentY = Math.max(top, Math.min(bottom, list.contentY + step));
            drag.follow();
        }
    }

    Loader {
        id: lifted
        property var shownCard: ({})
        function showCard(item) {
            shownCard = {
                "position": item.position, "times": item.times, "length": item.length, "chapter": item.chapter,
                "gem": item.gem, "transcript": item.transcript, "translation": item.translation,
                "isExpanded": false, "isPlaying": item.isPlaying, "segmentId": item.segmentId
            };
        }
        active: drag.isDragging
        x: view.sideMargin
        y: drag.pointerY - Math.min(drag.grip, height - 8)
        width: list.width - 2 * view.sideMargin
        sourceComponent: SegmentCard {
            objectName: "liftedCard"
            segmentId: lifted.shownCard.segmentId
            position: lifted.shownCard.position
            times: lifted.shownCard.times
            length: lifted.shownCard.length
            chapter: lifted.shownCard.chapter
            gem: lifted.shownCard.gem
            transcript: lifted.shownCard.transcript
            translation: lifted.shownCard.translation
            isExpanded: false
            isPlaying: lifted.shownCard.isPlaying
            isLifted: true
            Drag.active: drag.isDragging
            Drag.mimeData: ({ "text/plain": String(lifted.shownCard.segmentId) })
        }
    }
}
