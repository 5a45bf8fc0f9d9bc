import QtQuick
import QtQuick.Layouts
import Quillbox

// The presets section: one tile per preset, in as many columns of at least 160 as fit, taken so
// that every row is full (six tiles: 6, 3 or 2 columns). A pane too narrow for two such columns
// still gets two of narrower tiles, which leave out the descriptions, so that the presets fit a
// small window; one column only where even those do not fit.
ColumnLayout {
    id: root

    spacing: Theme.spacingMedium
    SectionHeader {
        text: qsTr("下载预设")
    }
    GridLayout {
        id: grid

        readonly property int spacingBetween: 12
        readonly property int wideMinimum: 160
        readonly property int narrowMinimum: 120
        readonly property int fitting: Math.floor((width + spacingBetween) / (wideMinimum + spacingBetween))
        readonly property int fittingNarrow: Math.floor((width + spacingBetween) / (narrowMinimum + spacingBetween))

        // The most columns, up to `fit`, that divide `count` tiles into full rows.
        function evenColumns(count: int, fit: int): int {
            for (let columns = Math.min(count, fit); columns > 1; --columns) {
                if (count % columns === 0)
                    return columns
            }
            return 1
        }

        Layout.fillWidth: true
        columns: evenColumns(cards.count, fitting >= 2 ? fitting : Math.min(fittingNarrow, 2))
        rowSpacing: spacingBetween
        columnSpacing: spacingBetween

        Repeater {
            id: cards

            model: PresetListModel {}

            PresetCard {
                required property int preset
                required property int index

                objectName: "preset" + index
                Layout.fillWidth: true
                // The tiles of a row are as tall as its tallest.
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                isSelected: AppState.selectedPreset === preset
                onClicked: AppState.selectedPreset = preset
            }
        }
    }
}
