pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbox

// One tool's verdict: what is there and whether it is good enough, in the verdict's colour, and
// the button of the one action that repairs it.
RowLayout {
    id: root

    required property toolVerdict verdict
    property bool busy: false

    signal actionClicked(int action)

    visible: root.verdict.text.length > 0
    spacing: Theme.spacingMedium
    Icon {
        Layout.alignment: Qt.AlignTop
        symbol: root.verdict.tint === Download.Green ? "checkmark.circle.fill" : "exclamationmark.triangle.fill"
        color: Theme.tint(root.verdict.tint)
        size: Theme.body
    }
    Text {
        objectName: "verdictText"
        Layout.fillWidth: true
        text: root.verdict.text
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        color: Theme.tint(root.verdict.tint)
        font.pixelSize: Theme.caption
    }
    BorderedButton {
        objectName: "verdictActionButton"
        Layout.alignment: Qt.AlignTop
        visible: root.verdict.actionLabel.length > 0
        text: root.verdict.actionLabel
        prominent: true
        fill: Theme.accent
        busy: root.busy
        onClicked: root.actionClicked(root.verdict.action)
    }
}
