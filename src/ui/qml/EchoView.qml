import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window
import Zuvo

/// The whole transcript, to be searched and heard line by line.
FocusScope {
    id: view

    required property ReviewPageModel model
    readonly property real sideMargin: Theme.spacing32

    function focusSearch() {
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
    }

    Rectangle {
        id: search
        x: view.sideMargin
        y: Theme.spacing4
        width: parent.width - 2 * x
        height: 36
        radius: Theme.radiusSm
        color: Theme.surface
        border.width: field.activeFocus ? 1 : Hairline.width(Screen.devicePixelRatio)
        border.color: field.activeFocus ? Theme.faded(Theme.torchGlow, 0.6) : Theme.faded(Theme.border, 0.4)

        Symbol {
            x: Theme.spacing16
            anchors.verticalCenter: parent.verticalCenter
            name: "magnifyingglass"
            size: 12
            color: Theme.textMuted
        }
        TextField {
            id: field
            objectName: "searchField"
            x: 36
            width: parent.width - x - 40
            height: parent.height
            focus: true
            leftPadding: 6
            rightPadding: 6
            verticalAlignment: TextInput.AlignVCenter
            placeholderText: "Search transcript\u2026"
            placeholderTextColor: Theme.faded(Theme.textMuted, 0.6)
            font: Theme.textFont(13, Font.Normal)
            color: Theme.foreground
            selectionColor: Theme.faded(Theme.accent, 0.5)
            selectedTextColor: Theme.foreground
            selectByMouse: true
            background: null
            Accessible.name: placeholderText
            text: view.model.transcriptSearch
            onTextChanged: view.model.transcriptSearch = text
            Keys.onEscapePressed: text = ""
            Keys.onDownPressed: lines.forceActiveFocus(Qt.TabFocusReason)
        }
        SymbolButton {
            objectName: "clearSearchButton"
            anchors.right: parent.right
            anchors.rightMargin: Theme.spacing6
            anchors.verticalCenter: parent.verticalCenter
            visible: view.model.transcriptSearch !== ""
            leftPadding: Theme.spacing8
            rightPadding: Theme.spacing8
            implicitHeight: 28
            text: "Empty the search"
            showsText: false
            symbolName: "xmark.circle.fill"
            symbolSize: 13
            ink: Theme.textMuted
            hoverInk: Theme.textSecondary
            onClicked: {
                field.text = "";
                field.forceActiveFocus();
            }
        }
    }
    Label {
        id: matches
        objectName: "matchesLabel"
        x: view.sideMargin + Theme.spacing16
        anchors.top: search.bottom
        anchors.topMargin: Theme.spacing8
        visible: text !== ""
        text: view.model.matchesText
        font: Theme.caption2()
        color: Theme.textMuted
    }

    ListView {
        id: lines
        objectName: "echoList"
        anchors.top: matches.visible ? matches.bottom : search.bottom
        anchors.topMargin: Theme.spacing8
        anchors.bottom: parent.bottom
        width: parent.width
        model: view.model.echo
        clip: true
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        bottomMargin: Theme.spacing16
        highlightMoveDuration: 0
        reuseItems: true
        ScrollBar.vertical: PageScrollBar { policy: lines.contentHeight > lines.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff }

        Accessible.role: Accessible.List
        Accessible.name: "The Echo"

        Keys.onPressed: event => {
            const plays = [Qt.Key_Space, Qt.Key_K, Qt.Key_Return, Qt.Key_Enter].includes(event.key);
            if (!plays || event.isAutoRepeat || lines.currentIndex < 0)
                return;
            view.model.playTranscriptSegment(lines.currentIndex);
            event.accepted = true;
        }

        delegate: PlainButton {
            id: line
            required property int index
            required property string time
            required property string lineText
            required property string markup

            objectName: "transcriptLine" + index
            x: view.sideMargin
            width: lines.width - 2 * view.sideMargin
            height: Math.max(39, words.implicitHeight + 20)
            focusPolicy: Qt.NoFocus
            text: time + " " + lineText
            onClicked: {
                lines.currentIndex = index;
                view.model.playTranscriptSegment(index);
            }

            background: Rectangle {
                radius: Theme.radiusXs
                color: Theme.faded(Theme.foreground, line.hovered ? 0.03 : 0)
                border.width: lines.activeFocus && line.ListView.isCurrentItem ? 2 : 0
                border.color: Theme.torchGlow
            }
            contentItem: Item {
                Text {
                    x: Theme.spacing16
                    width: 44
                    y: words.y
                    horizontalAlignment: Text.AlignRight
                    text: line.time
                    font: Theme.mono(12)
                    color: Theme.faded(Theme.textMuted, 0.7)
                }
                Text {
                    id: words
                    x: 76
                    width: parent.width - x - Theme.spacing16
                    anchors.verticalCenter: parent.verticalCenter
                    text: line.markup
                    textFormat: Text.StyledText
                    wrapMode: Text.Wrap
                    font: Theme.textFont(13, Font.Normal)
                    color: Theme.foreground
                }
            }
        }
    }
    Component.onCompleted: model.echo.matchColor = Theme.accent
}
