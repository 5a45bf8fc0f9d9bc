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
            spacing: Theme.spacingHair
            RowLayout {
                spacing: Theme.spacingTiny
                Text {
                    text: root.name
                    textFormat: Text.PlainText
                    color: Theme.text
                    font.pixelSize: Theme.body
                    font.weight: Font.Medium
                }
                Icon {
                    visible: root.isSelected
                    symbol: "checkmark.circle.fill"
                    color: Theme.accent
                    size: Theme.body
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

    FocusRing {
        shown: root.visualFocus
        radius: Theme.radiusLarge + Theme.focusGap
    }
}
