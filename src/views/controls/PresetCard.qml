import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// One tile of the preset grid; wider than 160 it also shows the preset's description.
AbstractButton {
    id: root

    required property string name
    required property string symbol
    required property string description
    property bool isSelected: false

    readonly property bool isWide: width > 160

    Accessible.name: root.name
    padding: Theme.spacingLarge
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    // The name on one line, in the name's font.
    TextMetrics {
        id: nameWidth

        font.pixelSize: Theme.body
        font.weight: Font.Medium
        text: root.name
    }

    background: Rectangle {
        radius: Theme.radiusLarge
        color: root.isSelected ? Theme.border : Theme.raised
        border.width: root.isSelected ? 2 : 0
        border.color: Theme.selectionStroke
    }

    contentItem: RowLayout {
        spacing: Theme.spacing
        Item {
            Layout.alignment: Qt.AlignTop
            implicitWidth: root.isWide ? 40 : 32
            implicitHeight: implicitWidth

            Icon {
                objectName: "presetIcon"
                anchors.centerIn: parent
                symbol: root.symbol
                color: root.isSelected ? Theme.accent : Theme.gray
                size: root.isWide ? Theme.iconMedium : Theme.title2
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            // A narrow tile's name stands beside the middle of its icon.
            Layout.alignment: root.isWide ? Qt.AlignTop : Qt.AlignVCenter
            spacing: Theme.spacingHair
            // No spacing of the row's own: it would stand before the filler at its end too, and
            // take that room from the name.
            RowLayout {
                Layout.fillWidth: true
                spacing: 0
                Text {
                    objectName: "presetName"
                    // In a narrow tile a long name takes a second line rather than losing its end.
                    // Its one-line width is measured apart: a wrapped text's own implicit width
                    // would keep it narrow once wrapped.
                    Layout.fillWidth: true
                    Layout.maximumWidth: Math.ceil(nameWidth.advanceWidth)
                    text: root.name
                    textFormat: Text.PlainText
                    color: Theme.text
                    font: nameWidth.font
                    wrapMode: Text.Wrap
                }
                // Only where it fits beside the name on one line: the outline, the fill and the
                // accent icon already mark the chosen tile, and a name broken for the mark reads
                // worse than the mark is worth.
                Icon {
                    Layout.alignment: Qt.AlignTop
                    Layout.leftMargin: Theme.spacingTiny
                    visible: root.isSelected
                             && parent.width >= Math.ceil(nameWidth.advanceWidth) + Theme.spacingTiny + Theme.body
                    symbol: "checkmark.circle.fill"
                    color: Theme.accent
                    size: Theme.body
                }
                Item {
                    Layout.fillWidth: true
                }
            }
            Text {
                objectName: "presetDescription"
                Layout.fillWidth: true
                visible: root.isWide
                text: root.description
                textFormat: Text.PlainText
                color: Theme.gray
                font.pixelSize: Theme.caption2
                wrapMode: Text.Wrap
            }
        }
    }

    // The keyboard's place is ringed in white: in this grid the accent outline marks the chosen
    // preset, and a focused tile must not look chosen too.
    FocusRing {
        shown: root.visualFocus
        radius: Theme.radiusLarge + Theme.focusGap
        border.color: Theme.text
    }
}
