import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The format table that yt-dlp printed, in a fixed-width font, selectable and copyable; beside
// it, when there is a picker, the same formats to choose from.
Rectangle {
    id: root

    required property string formatsOutput
    property FormatPicker picker: null
    property bool copied: false

    signal dismissed

    function copyToClipboard() {
        Desktop.setClipboardText(root.formatsOutput)
        root.copied = true
        copiedTimer.restart()
    }

    implicitWidth: root.picker ? 1000 + 520 : 800
    implicitHeight: 600
    color: Theme.background
    radius: Theme.radiusLarge

    Timer {
        id: copiedTimer

        interval: 2000
        onTriggered: root.copied = false
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 52
            color: Theme.surface
            radius: Theme.radiusLarge

            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: Theme.spacingWide
                anchors.rightMargin: Theme.spacingLarge
                Text {
                    text: qsTr("可用格式列表")
                    color: Theme.text
                    font.pixelSize: Theme.title3
                    font.weight: Font.DemiBold
                }
                Item {
                    Layout.fillWidth: true
                }
                TextButton {
                    objectName: "copyButton"
                    text: root.copied ? qsTr("已复制") : qsTr("复制")
                    symbol: root.copied ? "checkmark" : "doc.on.doc"
                    tint: root.copied ? Theme.green : Theme.gray
                    onClicked: root.copyToClipboard()
                }
                IconButton {
                    objectName: "closeFormatsButton"
                    symbol: "xmark.circle.fill"
                    fill: "transparent"
                    iconSize: Theme.title2
                    onClicked: root.dismissed()
                }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0
            ScrollView {
                id: textScroller

                objectName: "formatsScroller"
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.minimumWidth: 280
                Layout.margins: Theme.spacingLarge
                clip: true
                // Tables are wider than the pane beside the picker: their bar stays in sight.
                ScrollBar.horizontal: ScrollBar {
                    objectName: "formatsSideBar"
                    parent: textScroller
                    x: textScroller.leftPadding
                    y: textScroller.height - height
                    width: textScroller.availableWidth
                    policy: textScroller.contentWidth > textScroller.availableWidth ? ScrollBar.AlwaysOn : ScrollBar.AsNeeded
                }

                TextArea {
                    objectName: "formatsText"
                    text: root.formatsOutput
                    textFormat: TextEdit.PlainText
                    readOnly: true
                    selectByMouse: true
                    wrapMode: TextEdit.NoWrap
                    color: Theme.text
                    selectionColor: Theme.accent
                    font.family: Theme.fixedFont.family
                    font.pixelSize: Theme.monoBody
                    background: null
                }
            }

            FormatPickerPane {
                objectName: "formatPicker"
                Layout.preferredWidth: 520
                Layout.minimumWidth: 440
                Layout.fillHeight: true
                Layout.topMargin: Theme.spacingLarge
                Layout.bottomMargin: Theme.spacingLarge
                Layout.rightMargin: Theme.spacingLarge
                visible: root.picker !== null
                picker: root.picker
                onApplied: root.dismissed()
            }
        }
    }
}
