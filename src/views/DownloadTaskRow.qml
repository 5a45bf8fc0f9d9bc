import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// One task of the queue: its status badge, title, details, progress while it runs, and error. A
// failure that has an explanation shows it first; the tool's own lines are one click away.
AbstractButton {
    id: root

    required property string taskId
    required property string title
    required property string statusLabel
    required property string statusSymbol
    required property int statusTint
    required property string speed
    required property string size
    required property real progress
    required property bool showsProgress
    required property string percentText
    required property bool hasError
    required property var errorMessage
    required property string notice
    required property string explanation
    property bool isSelected: false
    property bool showsToolOutput: false
    property bool copied: false

    readonly property color tint: Theme.tint(statusTint)
    readonly property bool isExplained: explanation.length > 0

    // A reused row starts folded.
    onTaskIdChanged: {
        showsToolOutput = false
        copied = false
    }

    padding: 12
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    background: Rectangle {
        radius: Theme.radiusLarge
        color: root.isSelected ? Theme.border : Theme.raised
    }

    contentItem: RowLayout {
        spacing: 12

        Rectangle {
            Layout.alignment: Qt.AlignTop
            implicitWidth: 40
            implicitHeight: 40
            radius: height / 2
            color: Theme.badgeFill(root.tint)

            Icon {
                objectName: "statusIcon"
                anchors.centerIn: parent
                symbol: root.statusSymbol
                color: root.tint
                size: Theme.title3
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 4

            Text {
                objectName: "titleText"
                Layout.fillWidth: true
                text: root.title
                color: Theme.text
                font.pixelSize: Theme.bodyLarge
                font.weight: Font.Medium
                elide: Text.ElideMiddle
            }
            Row {
                objectName: "details"
                spacing: 6

                Text {
                    objectName: "statusText"
                    text: root.statusLabel
                    color: root.tint
                    font.pixelSize: Theme.caption2
                }
                Text {
                    visible: root.speed.length > 0
                    text: "•"
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                }
                Text {
                    objectName: "speedText"
                    visible: root.speed.length > 0
                    text: root.speed
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                }
                Text {
                    visible: root.size.length > 0
                    text: "•"
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                }
                Text {
                    objectName: "sizeText"
                    visible: root.size.length > 0
                    text: root.size
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                }
                Text {
                    visible: root.notice.length > 0
                    text: "•"
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                }
                Text {
                    objectName: "noticeText"
                    visible: root.notice.length > 0
                    text: root.notice
                    color: Theme.orange
                    font.pixelSize: Theme.caption2
                }
            }
            RowLayout {
                objectName: "progressRow"
                Layout.fillWidth: true
                visible: root.showsProgress
                spacing: 8

                Rectangle {
                    Layout.fillWidth: true
                    implicitHeight: 4
                    radius: Theme.radiusTiny
                    color: Theme.separator

                    Rectangle {
                        objectName: "progressFill"
                        width: parent.width * Math.max(0, Math.min(1, root.progress))
                        height: parent.height
                        radius: Theme.radiusTiny
                        gradient: Gradient {
                            orientation: Gradient.Horizontal

                            GradientStop {
                                position: 0
                                color: Theme.accent
                            }
                            GradientStop {
                                position: 1
                                color: Theme.cyan
                            }
                        }
                    }
                }
                Text {
                    objectName: "percentText"
                    text: root.percentText
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                }
            }
            Text {
                objectName: "explanationText"
                Layout.fillWidth: true
                visible: root.isExplained
                text: root.explanation
                color: Theme.red
                font.pixelSize: Theme.caption
                wrapMode: Text.Wrap
            }
            Text {
                objectName: "errorText"
                Layout.fillWidth: true
                visible: root.hasError && (!root.isExplained || root.showsToolOutput)
                text: root.hasError ? root.errorMessage : ""
                color: root.isExplained ? Theme.gray : Theme.red
                font.pixelSize: Theme.caption2
                font.family: root.isExplained ? Theme.fixedFont.family : root.font.family
                wrapMode: Text.WrapAnywhere
                textFormat: Text.PlainText
            }
            Row {
                visible: root.hasError
                spacing: 12

                TextButton {
                    objectName: "toolOutputButton"
                    visible: root.isExplained
                    text: root.showsToolOutput ? "隐藏原始输出" : "显示原始输出"
                    symbol: "terminal"
                    fontSize: Theme.caption2
                    onClicked: root.showsToolOutput = !root.showsToolOutput
                }
                TextButton {
                    objectName: "copyErrorButton"
                    text: root.copied ? "已复制" : "复制错误信息"
                    symbol: root.copied ? "checkmark" : "doc.on.doc"
                    tint: root.copied ? Theme.green : Theme.gray
                    fontSize: Theme.caption2
                    onClicked: {
                        Desktop.setClipboardText(root.errorMessage)
                        root.copied = true
                        copiedTimer.restart()
                    }
                }
            }
        }
    }

    Timer {
        id: copiedTimer

        interval: 2000
        onTriggered: root.copied = false
    }

    FocusRing {
        shown: root.visualFocus
        radius: Theme.radiusLarge + Theme.focusGap
    }
}
