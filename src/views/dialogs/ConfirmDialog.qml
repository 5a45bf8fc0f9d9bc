import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// Asks before doing something: a message, "取消", and a button that does it, red with a warning
// sign when it cannot be undone (`destructive`), the accent colour with an information sign when it
// only repeats or replaces. Enter does it too, unless the keyboard focus is on "取消"; Escape
// cancels.
Dialog {
    id: root

    property string message
    property string confirmText: qsTr("确定")
    property bool destructive: true
    // A second answer, beside "取消" and the one that does it; none when empty.
    property string alternativeText

    signal confirmed
    signal alternative

    function confirm() {
        root.accept()
        root.confirmed()
    }

    anchors.centerIn: parent
    width: 400
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape
    padding: Theme.spacingPage
    // A dialog opened again starts without a focused button.
    onOpened: root.contentItem.forceActiveFocus()
    background: Rectangle {
        color: Theme.surface
        radius: Theme.radiusLarge
        border.color: Theme.border
    }

    contentItem: ColumnLayout {
        focus: true
        spacing: Theme.spacingWide
        Keys.onReturnPressed: root.confirm()
        Keys.onEnterPressed: root.confirm()
        RowLayout {
            spacing: Theme.spacing
            Icon {
                symbol: root.destructive ? "exclamationmark.triangle.fill" : "info.circle"
                color: root.destructive ? Theme.orange : Theme.accent
                size: Theme.iconMedium
            }
            Text {
                objectName: "confirmMessage"
                Layout.fillWidth: true
                text: root.message
                textFormat: Text.PlainText
                color: Theme.text
                font.pixelSize: Theme.bodyLarge
                wrapMode: Text.Wrap
            }
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.spacing
            BorderedButton {
                objectName: "confirmCancelButton"
                text: qsTr("取消")
                onClicked: root.reject()
            }
            BorderedButton {
                objectName: "confirmAlternativeButton"
                visible: root.alternativeText.length > 0
                text: root.alternativeText
                onClicked: {
                    root.accept()
                    root.alternative()
                }
            }
            BorderedButton {
                objectName: "confirmButton"
                prominent: true
                fill: root.destructive ? Theme.red : Theme.accent
                text: root.confirmText
                onClicked: root.confirm()
            }
        }
    }
}
