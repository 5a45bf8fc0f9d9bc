import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// A single-line text field on the raised surface, with a rounded border.
TextField {
    id: root

    placeholderTextColor: Theme.gray
    color: Theme.text
    selectByMouse: true
    padding: Theme.spacingMedium
    font.pixelSize: Theme.body

    background: Rectangle {
        radius: Theme.radiusSmall
        color: Theme.raised
        border.width: root.activeFocus ? 2 : 1
        border.color: root.activeFocus ? Theme.accent : Theme.border
    }
}
