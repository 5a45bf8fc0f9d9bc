import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The output folder section: the folder as text, and a button to pick it in a folder dialog.
ColumnLayout {
    id: root

    // The folder button was pressed.
    signal browseClicked

    spacing: Theme.spacingMedium
    SectionHeader {
        text: qsTr("输出目录")
    }
    RowLayout {
        spacing: Theme.spacingMedium
        TextField {
            id: field

            objectName: "outputField"
            Layout.fillWidth: true
            text: AppState.outputDirectory
            onTextEdited: AppState.outputDirectory = text
            Accessible.name: qsTr("输出目录")
            placeholderText: qsTr("选择输出目录...")
            placeholderTextColor: Theme.gray
            color: Theme.text
            padding: Theme.spacing
            background: Rectangle {
                radius: Theme.radiusMedium
                color: Theme.raised
                border.width: field.activeFocus ? 2 : 0
                border.color: Theme.accent
            }
        }
        IconButton {
            objectName: "folderButton"
            Accessible.name: qsTr("选择输出目录")
            implicitWidth: 38
            implicitHeight: 38
            symbol: "folder"
            tint: Theme.text
            iconSize: Theme.title4
            onClicked: root.browseClicked()
        }
    }
}
