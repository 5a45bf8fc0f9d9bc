import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// A small square button showing one icon on a rounded background.
AbstractButton {
    id: root

    property string symbol
    property color tint: Theme.gray
    property color fill: Theme.border
    property real iconSize: Theme.bodyLarge

    implicitWidth: 26
    implicitHeight: 26
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    background: Rectangle {
        radius: Theme.radiusSmall
        color: root.fill
        opacity: root.down ? 0.7 : root.hovered ? 1 : 0.85
    }

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            symbol: root.symbol
            color: root.tint
            size: root.iconSize
        }
    }

    FocusRing {
        shown: root.visualFocus
        radius: Theme.radiusSmall + Theme.focusGap
    }
}
