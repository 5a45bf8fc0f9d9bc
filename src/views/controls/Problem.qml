import QtQuick
import QtQuick.Layouts
import Quillbox

// Why what was typed cannot be used, in red under its field; nothing while there is no reason.
Text {
    Layout.fillWidth: true
    visible: text.length > 0
    textFormat: Text.PlainText
    color: Theme.red
    font.pixelSize: Theme.caption
    wrapMode: Text.Wrap
}
