import QtQuick
import Quillbox

// A short explanation under a field.
Text {
    color: Theme.gray
    font.pixelSize: 11
    wrapMode: Text.Wrap
}
