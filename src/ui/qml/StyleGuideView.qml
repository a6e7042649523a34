import QtQuick
import Zuvo

/// Presets, a reference, and the sliders behind a toggle.
SolidCard {
    id: guide

    required property StylePageModel model

    padding: Theme.spacing20
    spacing: Theme.spacing16

    SymbolHeader {
        symbolName: "slider.horizontal.3"
        symbolSize: 12
        tracking: 1.5
        text: "STYLE GUIDE"
        symbolColor: Theme.textMuted
    }
    Grid {
        id: presetGrid
        width: parent.width
        columns: 4
        spacing: Theme.spacing8
        Repeater {
            model: guide.model.presets
            PresetButton {
                required property int index
                required property var modelData
                objectName: "preset" + index
                width: (presetGrid.width - 3 * presetGrid.spacing) / 4
                text: modelData.name
                description: modelData.description
                symbolName: modelData.symbol
                isSelected: guide.model.selectedPresetId === modelData.id
                onClicked: guide.model.pressPreset(modelData.id)
            }
        }
    }
    ReferenceField {
        width: parent.width
        model: guide.model
    }
    PlainButton {
        id: toggle
        objectName: "fineTuneToggle"
        text: "Fine-tune"
        topPadding: Theme.spacing4
        bottomPadding: Theme.spacing4
        Accessible.checkable: true
        Accessible.checked: guide.model.showSliders
        onClicked: guide.model.toggleSliders()
        contentItem: Row {
            spacing: Theme.spacing8
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: toggle.text
                font: Theme.textFont(12, Font.Medium)
                color: toggle.hovered ? Theme.foreground : Theme.textSecondary
            }
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                name: guide.model.showSliders ? "chevron.up" : "chevron.down"
                size: 10
                color: Theme.textMuted
            }
        }
    }
    // Opens and closes as a drawer does.
    Item {
        width: parent.width
        height: guide.model.showSliders ? sliders.implicitHeight : 0
        opacity: guide.model.showSliders ? 1 : 0
        visible: height > 0
        enabled: guide.model.showSliders
        Behavior on height { NumberAnimation { duration: 200; easing.type: Easing.InOutQuad } }
        Behavior on opacity { NumberAnimation { duration: 200; easing.type: Easing.InOutQuad } }
        Grid {
            id: sliders
            objectName: "slidersSection"
            width: parent.width
            columns: 2
            columnSpacing: Theme.spacing32
            rowSpacing: Theme.spacing20
            Repeater {
                model: guide.model.sliderDefinitions
                StyleSliderRow {
                    required property int index
                    required property var modelData
                    sliderName: "slider" + index
                    width: (sliders.width - sliders.columnSpacing) / 2
                    label: modelData.label
                    low: modelData.low
                    high: modelData.high
                    value: guide.model.sliderValues[index]
                    valueText: guide.model.sliderTexts[index]
                    onChosen: place => guide.model.moveSlider(index, place)
                }
            }
        }
    }
}
