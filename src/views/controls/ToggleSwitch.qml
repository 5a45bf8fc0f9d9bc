import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// A switch with its label, tinted with the accent when on.
Switch {
    id: root

    property string symbol

    spacing: Theme.spacingMedium
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: {
        root.toggle()
        root.toggled()
    }
    Keys.onEnterPressed: {
        root.toggle()
        root.toggled()
    }
    font.pixelSize: Theme.body

    indicator: Rectangle {
        x: root.width - width
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: 36
        implicitHeight: 20
        radius: height / 2
        color: root.checked ? Theme.accent : Theme.border

        Rectangle {
            x: root.checked ? parent.width - width - 2 : 2
            anchors.verticalCenter: parent.verticalCenter
            width: 16
            height: 16
            radius: height / 2
            color: Theme.text

            Behavior on x {
                NumberAnimation {
                    duration: 120
                }
            }
        }
    }

    contentItem: Row {
        spacing: Theme.spacingSmall
        rightPadding: root.indicator.width + root.spacing

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.symbol.length > 0
            symbol: root.symbol
            color: Theme.text
            size: Theme.bodyLarge
        }

        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: root.text
            textFormat: Text.PlainText
            font: root.font
            color: Theme.text
        }
    }

    FocusRing {
        shown: root.visualFocus
        radius: Theme.radiusMedium
    }
}
