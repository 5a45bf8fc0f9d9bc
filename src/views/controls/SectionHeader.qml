import QtQuick
import Quillbox

// The title of a section of the input pane.
Text {
    textFormat: Text.PlainText
    color: Theme.text
    font.pixelSize: Theme.body
    font.weight: Font.DemiBold
}
