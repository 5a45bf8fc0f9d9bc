import QtQuick
import QtQuick.Layouts
import Quillbox

// A titled group of settings: its title and symbol above a rounded box holding its rows.
ColumnLayout {
    id: root

    property string title
    property string symbol
    default property alias rows: box.data

    spacing: Theme.spacingMedium
    Row {
        spacing: Theme.spacingSmall
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            symbol: root.symbol
            color: Theme.text
            size: Theme.headline
        }
        Text {
            objectName: "groupTitle"
            anchors.verticalCenter: parent.verticalCenter
            text: root.title
            textFormat: Text.PlainText
            color: Theme.text
            font.pixelSize: Theme.headline
            font.weight: Font.DemiBold
        }
    }
    Rectangle {
        Layout.fillWidth: true
        implicitHeight: box.implicitHeight + 24
        radius: Theme.radius
        color: Theme.surface
        border.color: Theme.border

        ColumnLayout {
            id: box

            anchors.fill: parent
            anchors.margins: Theme.spacingLarge
            spacing: Theme.spacingMedium
        }
    }
}
