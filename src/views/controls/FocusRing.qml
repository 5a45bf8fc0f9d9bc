import QtQuick
import Quillbox

// The outline around a control that has the keyboard focus, in the accent colour.
Rectangle {
    property bool shown: false

    objectName: "focusRing"
    anchors.fill: parent
    anchors.margins: -Theme.focusGap
    radius: Theme.radius
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
    visible: shown
}
