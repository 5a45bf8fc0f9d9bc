pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// One of a queue row's actions: an icon button that names itself in a tooltip.
IconButton {
    id: root

    // Its own tooltip rather than the attached one, whose label would take markup for rich text.
    // Made the first time the pointer rests on the button: most never have it there.
    property ToolTip tip: null

    fill: "transparent"
    Accessible.name: text
    onHoveredChanged: {
        if (hovered && !tip)
            tip = tipMaker.createObject(root) as ToolTip
    }

    Component {
        id: tipMaker

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
}
