import QtQuick
import Quillbox

// A short explanation under a field.
Text {
    textFormat: Text.PlainText
    color: Theme.gray
    font.pixelSize: Theme.caption2
    wrapMode: Text.Wrap
}
