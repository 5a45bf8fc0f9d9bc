import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// One task of the queue: its status badge, title, details, progress while it runs, and error.
AbstractButton {
    id: root

    required property string taskId
    required property string title
    required property string statusLabel
    required property string statusSymbol
    required property string statusTint
    required property string speed
    required property string size
    required property real progress
    required property bool showsProgress
    required property string percentText
    required property bool hasError
    required property var errorMessage
    required property string notice
    property bool isSelected: false

    readonly property color tint: Theme.tint(statusTint)

    padding: 12

    background: Rectangle {
        radius: 12
        color: root.isSelected ? Theme.border : Theme.raised
    }

    contentItem: RowLayout {
        spacing: 12

        Rectangle {
            Layout.alignment: Qt.AlignTop
            implicitWidth: 40
            implicitHeight: 40
            radius: 20
            color: Qt.rgba(root.tint.r, root.tint.g, root.tint.b, 0.2)

            Icon {
                objectName: "statusIcon"
                anchors.centerIn: parent
                symbol: root.statusSymbol
                color: root.tint
                size: 18
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
                font.pixelSize: 14
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
                    font.pixelSize: 11
                }
                Text {
                    visible: root.speed.length > 0
                    text: "•"
                    color: Theme.gray
                    font.pixelSize: 11
                }
                Text {
                    objectName: "speedText"
                    visible: root.speed.length > 0
                    text: root.speed
                    color: Theme.gray
                    font.pixelSize: 11
                }
                Text {
                    visible: root.size.length > 0
                    text: "•"
                    color: Theme.gray
                    font.pixelSize: 11
                }
                Text {
                    objectName: "sizeText"
                    visible: root.size.length > 0
                    text: root.size
                    color: Theme.gray
                    font.pixelSize: 11
                }
                Text {
                    visible: root.notice.length > 0
                    text: "•"
                    color: Theme.gray
                    font.pixelSize: 11
                }
                Text {
                    objectName: "noticeText"
                    visible: root.notice.length > 0
                    text: root.notice
                    color: Theme.orange
                    font.pixelSize: 11
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
                    radius: 4
                    color: Qt.rgba(0.56, 0.56, 0.58, 0.3)

                    Rectangle {
                        objectName: "progressFill"
                        width: parent.width * Math.max(0, Math.min(1, root.progress))
                        height: parent.height
                        radius: 4
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
                    font.pixelSize: 11
                }
            }
            Text {
                objectName: "errorText"
                Layout.fillWidth: true
                visible: root.hasError
                text: root.hasError ? root.errorMessage : ""
                color: Theme.red
                font.pixelSize: 11
                wrapMode: Text.Wrap
            }
        }
    }
}
