import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// One navigation entry of the sidebar.
AbstractButton {
    id: root

    required property string title
    required property string symbol
    property bool isSelected: false

    implicitHeight: 40
    leftPadding: 16
    rightPadding: 16
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    background: Rectangle {
        radius: 8
        color: root.isSelected ? Theme.border : root.hovered ? Qt.rgba(1, 1, 1, 0.04) : "transparent"
    }

    contentItem: Row {
        spacing: 10

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            width: 20
            symbol: root.symbol
            color: root.isSelected ? Theme.text : Theme.gray
            size: 16
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: root.title
            color: root.isSelected ? Theme.text : Theme.gray
            font.pixelSize: 14
        }
    }

    FocusRing {
        shown: root.visualFocus
        radius: 11
    }
}
