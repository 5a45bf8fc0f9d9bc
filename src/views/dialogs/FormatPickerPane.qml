pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The formats of the listed video as a table: choosing one combined format, or a video-only and
// an audio-only one, and "使用所选格式" make the choice the custom preset's "-f" argument. Custom
// arguments the user wrote are replaced only once the user agrees.
Rectangle {
    id: root

    property FormatPicker picker: null
    readonly property int rows: root.picker ? root.picker.count : 0
    readonly property string arguments: root.picker ? root.picker.arguments : ""

    signal applied

    function apply() {
        if (root.picker && root.picker.apply())
            root.applied()
    }

    color: Theme.surface
    radius: Theme.radius

    // Column widths; the codecs take what is left.
    readonly property var columns: [
        { title: "", role: "mark", width: 12 },
        { title: "ID", role: "formatId", width: 64 },
        { title: qsTr("格式"), role: "ext", width: 44 },
        { title: qsTr("分辨率"), role: "resolution", width: 76 },
        { title: qsTr("帧率"), role: "fps", width: 44 },
        { title: qsTr("编码"), role: "codecs", width: -1 },
        { title: qsTr("大小"), role: "size", width: 84 },
        { title: qsTr("说明"), role: "note", width: 80 }
    ]

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.spacingLarge
        spacing: Theme.spacingMedium
        Text {
            text: qsTr("选择格式")
            color: Theme.text
            font.pixelSize: Theme.headline
            font.weight: Font.DemiBold
        }
        Hint {
            Layout.fillWidth: true
            text: qsTr("选择一个视频格式和一个音频格式，或一个音视频合一的格式")
        }
        Hint {
            objectName: "outcomeHint"
            Layout.fillWidth: true
            visible: text.length > 0
            text: root.picker ? root.picker.outcomeHint : ""
            color: Theme.green
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.spacingSmall
            Repeater {
                model: root.columns

                Text {
                    required property var modelData

                    Layout.preferredWidth: modelData.width > 0 ? modelData.width : -1
                    Layout.fillWidth: modelData.width < 0
                    text: modelData.title
                    textFormat: Text.PlainText
                    color: Theme.gray
                    font.pixelSize: Theme.caption
                }
            }
        }

        ListView {
            id: table

            objectName: "formatTable"
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: root.rows > 0
            clip: true
            spacing: Theme.spacingHair
            model: root.picker
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {}

            delegate: AbstractButton {
                id: row

                required property int index
                required property string formatId
                required property string ext
                required property string resolution
                required property string fps
                required property string codecs
                required property string size
                required property string note
                required property int kind
                required property bool selected
                required property bool fits
                readonly property string mark: fits ? "✓" : ""

                objectName: "formatRow" + formatId
                width: table.width
                implicitHeight: 28
                enabled: kind !== FormatPicker.Other
                hoverEnabled: true
                onClicked: root.picker.toggle(index)

                background: Rectangle {
                    radius: Theme.radiusSmall
                    color: row.selected ? Theme.border : row.hovered ? Theme.hoverFill : "transparent"
                    border.width: row.selected ? 1 : 0
                    border.color: Theme.selectionStroke
                }

                contentItem: RowLayout {
                    spacing: Theme.spacingSmall
                    opacity: row.enabled ? 1 : 0.5

                    Repeater {
                        model: root.columns

                        Text {
                            required property var modelData

                            Layout.preferredWidth: modelData.width > 0 ? modelData.width : -1
                            Layout.fillWidth: modelData.width < 0
                            text: row[modelData.role]
                            textFormat: Text.PlainText
                            color: modelData.role === "mark" ? Theme.green : row.selected ? Theme.text : Theme.secondaryText
                            font.family: Theme.fixedFont.family
                            font.pixelSize: Theme.monoCaption
                            elide: Text.ElideRight
                        }
                    }
                }
            }
        }

        Text {
            objectName: "pickerStatus"
            Layout.fillWidth: true
            Layout.fillHeight: root.rows === 0
            visible: root.rows === 0
            verticalAlignment: Text.AlignVCenter
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: !root.picker ? "" : root.picker.isLoading ? qsTr("正在读取格式...") : root.picker.errorText
            textFormat: Text.PlainText
            color: root.picker && root.picker.isLoading ? Theme.gray : Theme.orange
            font.pixelSize: Theme.caption
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.spacing
            Text {
                objectName: "pickerArguments"
                Layout.fillWidth: true
                text: root.arguments
                textFormat: Text.PlainText
                color: Theme.text
                font.family: Theme.fixedFont.family
                font.pixelSize: Theme.monoBody
                elide: Text.ElideRight
            }
            TextButton {
                objectName: "applyFormatButton"
                implicitHeight: 30
                enabled: root.arguments.length > 0
                opacity: enabled ? 1 : 0.5
                text: qsTr("使用所选格式")
                symbol: "checkmark"
                tint: Theme.text
                fill: Theme.accent
                cornerRadius: Theme.radiusSmall
                fontSize: Theme.body
                onClicked: {
                    const question = root.picker ? root.picker.replaceQuestion() : ""
                    if (question.length > 0)
                        replaceDialog.open({ message: question, confirmText: qsTr("替换"), destructive: false })
                    else
                        root.apply()
                }
            }
        }
    }

    OnDemand {
        id: replaceDialog

        objectName: "replaceArgumentsQuestion"
        source: "dialogs/ConfirmDialog.qml"
    }

    Connections {
        target: replaceDialog.item
        ignoreUnknownSignals: true

        function onConfirmed() {
            root.apply()
        }
    }
}
