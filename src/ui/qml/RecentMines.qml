import QtQuick
import QtQuick.Window
import Zuvo

/// Mines that can be opened again.
Column {
    id: section

    required property SetupPageModel model

    spacing: Theme.spacing12

    SymbolHeader {
        symbolName: "clock.arrow.circlepath"
        text: "RECENT MINES"
    }
    Column {
        width: parent.width
        spacing: Theme.spacing8
        Accessible.role: Accessible.List
        Accessible.name: "Recent mines"
        Repeater {
            id: rows
            model: section.model.recentMines
            Item {
                id: row
                required property int index
                required property string name
                required property bool hasResults
                required property string countText
                required property string targetText
                required property string presetId
                property alias deleteButton: deleteButton
                width: section.width
                height: 56

                PlainButton {
                    id: openButton
                    objectName: "recentMine" + row.index
                    width: parent.width - deleteButton.width - Theme.spacing4
                    height: parent.height
                    text: row.name
                    Accessible.description: `${row.countText} ${row.targetText} ${row.presetId}`
                    ringRadius: Theme.radiusSm
                    onClicked: section.model.loadMine(row.index)
                    background: Rectangle {
                        radius: Theme.radiusSm
                        color: openButton.hovered ? Theme.surfaceHover : Theme.surface
                        border.width: Hairline.width(Screen.devicePixelRatio)
                        border.color: Theme.faded(Theme.border, 0.3)
                    }
                    contentItem: Item {
                        PixelGemView {
                            id: gem
                            x: Theme.spacing16
                            anchors.verticalCenter: parent.verticalCenter
                            size: 12
                            color: Theme.accent
                        }
                        Column {
                            anchors.left: gem.right
                            anchors.leftMargin: Theme.spacing12
                            anchors.right: chevron.left
                            anchors.rightMargin: Theme.spacing8
                            anchors.verticalCenter: parent.verticalCenter
                            spacing: Theme.spacing2
                            Text {
                                width: parent.width
                                text: row.name
                                textFormat: Text.PlainText
                                elide: Text.ElideRight
                                maximumLineCount: 1
                                font: Theme.textFont(13, Font.Medium)
                                color: Theme.foreground
                            }
                            Row {
                                id: details
                                spacing: Theme.spacing12
                                component Detail: Text {
                                    visible: text !== ""
                                    textFormat: Text.PlainText
                                    font: Theme.textFont(11)
                                    color: Theme.faded(Theme.textMuted, 0.7)
                                }
                                readonly property real room: parent.width - counted.width - target.width - 2 * spacing
                                Detail {
                                    id: counted
                                    text: row.countText
                                    color: row.hasResults ? Theme.faded(Theme.success, 0.8)
                                                          : Theme.faded(Theme.textMuted, 0.7)
                                }
                                Detail {
                                    id: target
                                    text: row.targetText
                                }
                                Detail {
                                    visible: text !== "" && details.room >= Theme.spacing24
                                    width: Math.min(implicitWidth, details.room)
                                    elide: Text.ElideRight
                                    text: row.presetId
                                }
                            }
                        }
                        Symbol {
                            id: chevron
                            anchors.right: parent.right
                            anchors.rightMargin: Theme.spacing16
                            anchors.verticalCenter: parent.verticalCenter
                            name: "chevron.right"
                            size: 11
                            color: Theme.faded(Theme.textMuted, 0.3)
                        }
                    }
                }
                PlainButton {
                    id: deleteButton
                    objectName: "deleteMine" + row.index
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    width: 32
                    height: 32
                    text: "Delete " + row.name
                    onClicked: {
                        const reason = visualFocus ? Qt.TabFocusReason : Qt.OtherFocusReason;
                        const hadKeyboard = activeFocus;
                        const place = row.index;
                        const list = rows;
                        section.model.deleteMine(place);
                        if (hadKeyboard && list.count > 0)
                            list.itemAt(Math.min(place, list.count - 1)).deleteButton.forceActiveFocus(reason);
                    }
                    contentItem: Item {
                        Symbol {
                            anchors.centerIn: parent
                            name: "trash"
                            size: 11
                            color: deleteButton.hovered ? Theme.error : Theme.faded(Theme.textMuted, 0.3)
                        }
                    }
                }
            }
        }
    }
}
