import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// A push button with an optional icon: filled with its tint when prominent, otherwise a grey
// fill with a thin border. While busy it shows a small spinner in place of the icon.
AbstractButton {
    id: root

    property string symbol
    property bool prominent: false
    property color tint: Theme.blue
    property bool busy: false

    implicitWidth: content.implicitWidth + 24
    implicitHeight: 30
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    background: Rectangle {
        radius: Theme.radiusSmall
        color: root.prominent ? root.tint : Theme.raised
        border.width: root.visualFocus ? 2 : root.prominent ? 0 : 1
        border.color: root.visualFocus ? Theme.accent : Theme.border
        opacity: !root.enabled ? 0.4 : root.down ? 0.7 : root.hovered ? 1 : 0.9
    }

    contentItem: Item {
        Row {
            id: content

            anchors.centerIn: parent
            spacing: 6
            opacity: root.enabled ? 1 : 0.5

            BusyIndicator {
                objectName: "busySpinner"
                anchors.verticalCenter: parent.verticalCenter
                visible: root.busy
                running: root.busy
                implicitWidth: 16
                implicitHeight: 16
                padding: 0
            }
            Icon {
                anchors.verticalCenter: parent.verticalCenter
                visible: !root.busy && root.symbol.length > 0
                symbol: root.symbol
                color: Theme.text
                size: Theme.caption + 1
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: root.text
                color: Theme.text
                font.pixelSize: Theme.body
            }
        }
    }
}
