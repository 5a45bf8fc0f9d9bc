import QtQuick
import QtQuick.Layouts
import Quillbox

// One line of the video information sheet: the label at the left edge, the value at the right.
RowLayout {
    id: root

    required property string title
    required property string value

    spacing: Theme.spacingLarge
    Text {
        objectName: "infoTitle"
        text: root.title
        textFormat: Text.PlainText
        color: Theme.gray
        font.pixelSize: Theme.body
    }
    Item {
        Layout.fillWidth: true
    }
    Text {
        objectName: "infoValue"
        Layout.maximumWidth: 260
        text: root.value
        textFormat: Text.PlainText
        color: Theme.text
        font.pixelSize: Theme.body
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignRight
    }
}
