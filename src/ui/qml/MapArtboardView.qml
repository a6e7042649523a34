import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// The story as cards on a board, in a soft shape for each chapter. Moving a card changes only where it lies.
FocusScope {
    id: view

    required property ReviewPageModel model
    readonly property StoryMapModel map: model.map
    readonly property real boardScale: map.artboardScale
    property real restingScale: 1 ///< follows once a zoom pauses
    /// Pixels of a card's picture in a unit of the board: the next power of two above the scale at rest, so that no step
    /// of a zoom draws it anew.
    readonly property real sharpness: (restingScale > 1 ? 2 : restingScale > 0.5 ? 1 : 0.5) * Screen.devicePixelRatio
    readonly property real lineWidth: Hairline.width(Screen.devicePixelRatio)
    readonly property bool isDrawnBySoftware: GraphicsInfo.api === GraphicsInfo.Software
    /// Whether pictures are mixed from neighbouring pixels. Without a graphics card that costs several times as much as
    /// copying them: it is left out where a pixel of a picture is one of the screen, and while a zoom moves.
    readonly property bool isSmooth: boardScale === restingScale ? boardScale !== 1 || Screen.devicePixelRatio % 1 !== 0
                                                                 : !isDrawnBySoftware
    clip: true

    /// The length at which a pixel of the screen begins, at a scale of 1.
    function onPixel(length) { return Math.round(length * Screen.devicePixelRatio) / Screen.devicePixelRatio; }
    onBoardScaleChanged: pause.restart()
    Timer {
        id: pause
        interval: 150
        onTriggered: view.restingScale = view.boardScale
    }

    Accessible.role: Accessible.Pane
    Accessible.name: "Map"

    function place() {
        if (width <= 0 || height <= 0)
            return;
        map.setViewSize(width, height);
        map.initializePositions(width, height);
    }
    /// Gives the keyboard to the card at that place of the story, or to the nearest there is.
    function choose(index) {
        const card = cards.itemAt(Math.max(0, Math.min(index, cards.count - 1)));
        if (card)
            card.forceActiveFocus(Qt.TabFocusReason);
        else
            view.forceActiveFocus();
    }
    /// The place of the card that has the keyboard, or -1.
    function chosen() {
        for (let i = 0; i < cards.count; ++i) {
            if (cards.itemAt(i)?.activeFocus)
                return i;
        }
        return -1;
    }
    function remove(index) {
        const hadKeyboard = chosen() === index;
        model.deleteSegment(index);
        if (hadKeyboard)
            choose(index);
    }
    Keys.onUpPressed: choose(chosen() - 1)
    Keys.onDownPressed: choose(chosen() + 1)

    onWidthChanged: place()
    onHeightChanged: place()
    Component.onCompleted: {
        restingScale = boardScale;
        place();
    }
    Component.onDestruction: map.clear()

    Canvas {
        objectName: "dotGrid"
        anchors.fill: parent
        readonly property real step: 24
        readonly property real diameter: 1.5
        onPaint: {
            const context = getContext("2d");
            context.reset();
            context.fillStyle = Theme.faded(Theme.border, 0.15);
            for (let x = 0; x < width; x += step) {
                for (let y = 0; y < height; y += step)
                    context.ellipse(x - diameter / 2, y - diameter / 2, diameter, diameter);
            }
            context.fill();
        }
    }

    MouseArea {
        objectName: "mapBoard"
        anchors.fill: parent
        property real pressX: 0
        property real pressY: 0
        cursorShape: pressed ? Qt.ClosedHandCursor : Qt.ArrowCursor
        onPressed: mouse => {
            pressX = mouse.x;
            pressY = mouse.y;
            view.forceActiveFocus();
        }
        onPositionChanged: mouse => view.map.pan(mouse.x - pressX, mouse.y - pressY)
        onWheel: wheel => {
            if (wheel.modifiers & Qt.ControlModifier)
                view.map.zoomBy(wheel.angleDelta.y / 120);
            else
                wheel.accepted = false;
        }
    }
    PinchHandler {
        target: null
        onActiveScaleChanged: if (active) view.map.zoom(activeScale)
    }

    Item {
        id: board
        objectName: "mapContent"
        x: view.onPixel(view.map.offsetX)
        y: view.onPixel(view.map.offsetY)
        width: view.width
        height: view.height
        scale: view.boardScale
        Repeater {
            model: view.map.clusters
            delegate: Item {
                id: cluster
                required property var modelData
                readonly property color color: modelData.gem < 0 ? Theme.textMuted : Theme.chapterGems[modelData.gem]

                objectName: "cavernCluster"
                x: modelData.x
                y: modelData.y
                width: modelData.width
                height: modelData.height
                Rectangle {
                    anchors.fill: parent
                    radius: 24
                    color: Theme.faded(cluster.color, 0.02)
                    border.width: 1
                    border.color: Theme.faded(cluster.color, 0.15)
                }
                Rectangle {
                    x: 10
                    y: -height / 2
                    width: name.width + 16
                    height: name.implicitHeight
                    color: Theme.background
                    Label {
                        id: name
                        x: 8
                        width: Math.min(implicitWidth, cluster.width - 36)
                        text: cluster.modelData.name
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        font: Theme.textFont(12, Font.DemiBold)
                        color: cluster.color
                    }
                }
            }
        }

        Repeater {
            id: cards
            model: view.map
            delegate: MapSegmentCard {
                id: card
                required property int index
                required property double segmentId
                required property real centerX
                required property real centerY

                objectName: "mapCard" + index
                x: view.onPixel(centerX - width / 2)
                y: view.onPixel(centerY - height / 2)
                z: mover.isMoving ? 2 : isHovered ? 1 : 0
                sharpness: view.sharpness
                lineWidth: view.lineWidth
                isSmooth: view.isSmooth
                onPlayed: view.model.togglePlay(segmentId)
                onRemoved: view.remove(index)

                MouseArea {
                    id: mover
                    anchors.fill: parent
                    z: -1
                    property bool isMoving: false
                    property real pressX: 0
                    property real pressY: 0
                    onPressed: mouse => {
                        pressX = mouse.x;
                        pressY = mouse.y;
                        card.forceActiveFocus();
                    }
                    onPositionChanged: mouse => {
                        if (!isMoving && Math.hypot(mouse.x - pressX, mouse.y - pressY) <= 4)
                            return;
                        isMoving = true;
                        const at = mapToItem(board, mouse.x, mouse.y);
                        view.map.moveCard(card.segmentId, at.x, at.y);
                    }
                    onReleased: isMoving = false
                    onCanceled: isMoving = false
                }
            }
        }

        // Without a graphics card the renderer adds up what has changed piece by piece, in a time that grows with the
        // square of the pieces: hundreds of letters and faces cost more than their drawing. This covers all that moves
        // with the board, so that there is one piece to add up. Its opacity is less than a step of any colour.
        Rectangle {
            visible: view.isDrawnBySoftware
            x: view.map.seen.x
            y: view.map.seen.y
            z: 3
            width: view.map.seen.width
            height: view.map.seen.height
            color: "black"
            opacity: 0.0015
        }
    }
}
