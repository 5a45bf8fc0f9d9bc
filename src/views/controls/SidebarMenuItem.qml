import QtQuick
import Quillbox

// One navigation entry of the sidebar.
TextButton {
    id: root

    required property string title
    property bool isSelected: false

    implicitHeight: 40
    leftPadding: Theme.spacingWide
    rightPadding: Theme.spacingWide
    leading: true
    spacing: Theme.spacing
    text: root.title
    tint: root.isSelected ? Theme.text : Theme.gray
    fill: root.isSelected ? Theme.border : root.hovered ? Theme.hoverFill : "transparent"
    cornerRadius: Theme.radiusMedium
    fontSize: Theme.bodyLarge
    iconSize: Theme.title4
    iconWidth: 20
    contentOpacity: 1
    fillOpacity: 1
    focusRadius: Theme.radiusMedium + Theme.focusGap
}
