import QtQuick
import Quillbox

// A push button: a grey fill with a thin border, or filled with `fill` alone when prominent. The
// keyboard focus shows on its border.
TextButton {
    id: root

    property bool prominent: false

    implicitHeight: 30
    leftPadding: Theme.spacingLarge
    rightPadding: Theme.spacingLarge
    spacing: Theme.spacingSmall
    tint: Theme.text
    fill: Theme.raised
    outline: root.visualFocus ? Theme.accent : Theme.border
    outlineWidth: root.visualFocus ? 2 : root.prominent ? 0 : 1
    fontSize: Theme.body
    iconSize: Theme.body
    fillOpacity: !root.enabled ? 0.4 : root.down ? 0.7 : root.hovered ? 1 : 0.9
    contentOpacity: root.enabled ? 1 : 0.5
    showsFocusRing: false
}
