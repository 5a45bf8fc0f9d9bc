import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// One of a queue row's actions: an icon button that names itself in a tooltip.
IconButton {
    id: root

    fill: "transparent"
    Accessible.name: text

    // Its own tooltip rather than the attached one, whose label would take markup for rich text.
    ToolTip {
        id: tip

        objectName: "rowActionTip"
        visible: root.hovered
        delay: 500
        text: root.text

        contentItem: Text {
            text: tip.text
            textFormat: Text.PlainText
            font: tip.font
            wrapMode: Text.Wrap
            color: tip.palette.toolTipText
        }
    }
}
