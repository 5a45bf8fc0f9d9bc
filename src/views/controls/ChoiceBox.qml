pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// A drop-down list drawn in the window's dark colours, its entries (objects, named by textRole)
// as plain text. An entry whose `enabledRole` field is false is greyed and cannot be clicked; the
// keys still reach it, so the page decides what choosing it does.
ComboBox {
    id: root

    // The field of an entry that says whether it can be chosen; empty: every entry can.
    property string enabledRole: ""

    implicitHeight: 30
    leftPadding: Theme.spacing
    rightPadding: Theme.spacing + root.indicator.width + Theme.spacingSmall
    font.pixelSize: Theme.body

    contentItem: Text {
        text: root.displayText
        textFormat: Text.PlainText
        font: root.font
        color: Theme.text
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }

    indicator: Text {
        x: root.width - width - Theme.spacing
        y: (root.height - height) / 2
        text: "▾"
        color: Theme.gray
        font.pixelSize: Theme.body
    }

    background: Rectangle {
        radius: Theme.radiusSmall
        color: root.down ? Theme.border : Theme.raised
        border.width: root.visualFocus ? 2 : 1
        border.color: root.visualFocus ? Theme.accent : Theme.border
    }

    delegate: ItemDelegate {
        id: entry

        required property var modelData
        required property int index

        width: ListView.view.width
        enabled: root.enabledRole.length === 0 || entry.modelData[root.enabledRole] !== false
        text: entry.modelData[root.textRole]
        font.pixelSize: Theme.body
        font.weight: root.currentIndex === entry.index ? Font.DemiBold : Font.Normal
        highlighted: root.highlightedIndex === entry.index
        hoverEnabled: root.hoverEnabled

        contentItem: Text {
            text: entry.text
            textFormat: Text.PlainText
            font: entry.font
            color: entry.enabled ? Theme.text : Theme.gray
            elide: Text.ElideRight
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            color: entry.highlighted && entry.enabled ? Theme.selectionStroke : "transparent"
            radius: Theme.radiusTiny
        }
    }

    popup: Popup {
        y: root.height + Theme.spacingHair
        width: root.width
        implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
        padding: Theme.spacingTiny

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: root.popup.visible ? root.delegateModel : null
            currentIndex: root.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds

            ScrollIndicator.vertical: ScrollIndicator {}
        }
        background: Rectangle {
            color: Theme.surface
            radius: Theme.radiusSmall
            border.color: Theme.border
        }
    }
}
