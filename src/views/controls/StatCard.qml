import QtQuick
import QtQuick.Layouts
import Quillbox

// One counter of the sidebar: an icon, the value and its title.
Rectangle {
    id: root

    required property string title
    required property string value
    required property string symbol
    required property color tint

    implicitHeight: column.implicitHeight + 24
    radius: Theme.radius
    color: Theme.raised

    ColumnLayout {
        id: column

        anchors.centerIn: parent
        spacing: Theme.spacingTiny
        Icon {
            Layout.alignment: Qt.AlignHCenter
            symbol: root.symbol
            color: root.tint
            size: Theme.title2
        }
        Text {
            objectName: "statValue"
            Layout.alignment: Qt.AlignHCenter
            text: root.value
            textFormat: Text.PlainText
            color: Theme.text
            font.pixelSize: Theme.title2
            font.bold: true
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: root.title
            textFormat: Text.PlainText
            color: Theme.gray
            font.pixelSize: Theme.caption3
        }
    }
}
