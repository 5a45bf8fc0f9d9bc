import QtQuick
import QtQuick.Layouts
import Quillbox

// The presets section: one tile per preset, as many columns of at least 160 as fit.
ColumnLayout {
    id: root

    spacing: Theme.spacingMedium
    SectionHeader {
        text: "下载预设"
    }
    GridLayout {
        id: grid

        readonly property int spacingBetween: 12
        readonly property int fitting: Math.max(1, Math.floor((width + spacingBetween) / (160 + spacingBetween)))

        Layout.fillWidth: true
        columns: fitting
        rowSpacing: spacingBetween
        columnSpacing: spacingBetween

        Repeater {
            model: PresetListModel {}

            PresetCard {
                required property int preset
                required property int index

                objectName: "preset" + index
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                isSelected: AppState.selectedPreset === preset
                onClicked: AppState.selectedPreset = preset
            }
        }
    }
}
