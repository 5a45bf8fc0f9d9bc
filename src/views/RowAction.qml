import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// One of a queue row's actions: an icon button that names itself in a tooltip.
IconButton {
    id: root

    fill: "transparent"
    Accessible.name: text
    ToolTip.visible: hovered
    ToolTip.delay: 500
    ToolTip.text: text
}
