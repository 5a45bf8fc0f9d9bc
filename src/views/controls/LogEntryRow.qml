import QtQuick
import QtQuick.Layouts
import Quillbox

// One line of the log: the time, the type's icon and the message, which can be selected.
RowLayout {
    id: root

    required property string timeText
    required property string symbol
    required property int tint
    required property string message
    required property bool isError

    spacing: Theme.spacingSmall
    Text {
        objectName: "timeText"
        Layout.alignment: Qt.AlignTop
        text: root.timeText
        textFormat: Text.PlainText
        color: Theme.gray
        font.family: Theme.fixedFont.family
        font.pixelSize: Theme.monoCaption
    }
    Item {
        Layout.alignment: Qt.AlignTop
        implicitWidth: 14
        implicitHeight: 14

        Icon {
            anchors.centerIn: parent
            symbol: root.symbol
            color: Theme.tint(root.tint)
            size: Theme.monoCaption
        }
    }
    TextEdit {
        objectName: "messageText"
        Layout.fillWidth: true
        text: root.message
        textFormat: TextEdit.PlainText
        color: root.isError ? Theme.red : Theme.text
        font.family: Theme.fixedFont.family
        font.pixelSize: Theme.monoBody
        wrapMode: TextEdit.Wrap
        readOnly: true
        selectByMouse: true
        selectedTextColor: Theme.text
        selectionColor: Theme.accent
    }
}
