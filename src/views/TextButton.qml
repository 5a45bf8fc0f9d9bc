import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// A plain button of an icon and a word.
AbstractButton {
    id: root

    property string symbol
    property color tint: Theme.gray
    property real fontSize: 12

    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()
    padding: 4

    contentItem: Row {
        spacing: 4
        opacity: root.down ? 0.6 : root.hovered ? 1 : 0.85

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.symbol.length > 0
            symbol: root.symbol
            color: root.tint
            size: root.fontSize + 1
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: root.text
            color: root.tint
            font.pixelSize: root.fontSize
        }
    }

    FocusRing {
        shown: root.visualFocus
        radius: 6
    }
}
