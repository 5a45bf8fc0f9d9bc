pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbox

// "播放列表": a playlist's items as they are read, to pick from. Open while the picker shows a
// playlist; closing it any other way than "下载所选" cancels that link.
SheetHost {
    id: root

    property PlaylistPicker picker: null

    parent: T.Overlay.overlay
    margins: Theme.spacingPage
    shown: root.picker !== null && root.picker.active
    // Only Escape or "取消" give the playlist up: a stray click beside the sheet would lose the picks.
    closePolicy: Popup.CloseOnEscape
    onDismissed: root.picker.cancel()

    // The next playlist starts with empty fields.
    Connections {
        target: root.picker

        function onActiveChanged() {
            if (root.picker.active)
                return
            filterField.text = ""
            rangeField.text = ""
            rangeError.text = ""
        }
    }

    Rectangle {
        objectName: "playlistSheetBody"
        width: Window.width > 0 ? Math.min(680, Window.width - 40) : 680
        height: Window.height > 0 ? Math.min(640, Window.height - 40) : 640
        color: Theme.background
        radius: Theme.radiusLarge

        ColumnLayout {
            anchors.fill: parent
            anchors.margins: Theme.spacingWide
            spacing: Theme.spacingMedium

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.spacing
                Icon {
                    symbol: "list.bullet.rectangle"
                    color: Theme.accent
                    size: Theme.title3
                }
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: Theme.spacingTiny
                    Text {
                        objectName: "playlistTitle"
                        Layout.fillWidth: true
                        text: root.picker ? root.picker.title : ""
                        textFormat: Text.PlainText
                        color: Theme.text
                        font.pixelSize: Theme.title3
                        font.weight: Font.DemiBold
                        elide: Text.ElideRight
                    }
                    RowLayout {
                        spacing: Theme.spacingSmall
                        Icon {
                            visible: root.picker !== null && root.picker.listing
                            symbol: "arrow.clockwise"
                            color: Theme.gray
                            size: Theme.caption

                            RotationAnimation on rotation {
                                running: root.shown && root.picker !== null && root.picker.listing
                                from: 0
                                to: 360
                                duration: 900
                                loops: Animation.Infinite
                            }
                        }
                        Text {
                            objectName: "playlistProgress"
                            Layout.fillWidth: true
                            text: root.picker ? root.picker.progressText : ""
                            textFormat: Text.PlainText
                            color: Theme.gray
                            font.pixelSize: Theme.caption
                            elide: Text.ElideRight
                        }
                    }
                }
            }

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.spacing
                TextInputField {
                    id: filterField

                    objectName: "playlistFilter"
                    Layout.fillWidth: true
                    placeholderText: qsTr("筛选标题")
                    onTextEdited: root.picker.filterText = text
                }
                TextInputField {
                    id: rangeField

                    objectName: "playlistRange"
                    Layout.preferredWidth: 170
                    placeholderText: qsTr("序号，如 1-20, 25")
                    onAccepted: rangeError.text = root.picker.selectRange(text)
                    onTextEdited: rangeError.text = ""
                }
                BorderedButton {
                    objectName: "playlistRangeButton"
                    text: qsTr("按序号选择")
                    enabled: rangeField.text.trim().length > 0
                    onClicked: rangeError.text = root.picker.selectRange(rangeField.text)
                }
            }
            Problem {
                id: rangeError

                objectName: "playlistRangeError"
                Layout.fillWidth: true
            }

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.spacingSmall
                TextButton {
                    objectName: "selectAllButton"
                    text: qsTr("全选")
                    onClicked: root.picker.selectAll()
                }
                TextButton {
                    objectName: "selectNoneButton"
                    text: qsTr("全不选")
                    onClicked: root.picker.selectNone()
                }
                TextButton {
                    objectName: "invertSelectionButton"
                    text: qsTr("反选")
                    onClicked: root.picker.invertSelection()
                }
                Item {
                    Layout.fillWidth: true
                }
                Text {
                    objectName: "selectedCount"
                    text: root.picker ? qsTr("已选 %1 / %2 项").arg(root.picker.selectedCount).arg(root.picker.listedCount) : ""
                    textFormat: Text.PlainText
                    color: Theme.gray
                    font.pixelSize: Theme.caption
                }
            }

            Rectangle {
                Layout.fillWidth: true
                Layout.fillHeight: true
                color: Theme.surface
                radius: Theme.radius

                ListView {
                    id: items

                    objectName: "playlistItems"
                    anchors.fill: parent
                    anchors.margins: Theme.spacingSmall
                    clip: true
                    model: root.picker
                    reuseItems: true
                    boundsBehavior: Flickable.StopAtBounds
                    currentIndex: -1
                    highlightFollowsCurrentItem: false
                    ScrollBar.vertical: ScrollBar {}

                    delegate: Rectangle {
                        id: item

                        required property int index
                        required property int number
                        required property string title
                        required property string duration
                        required property bool selected
                        required property string mark

                        width: ListView.view.width
                        height: 34
                        radius: Theme.radiusSmall
                        color: itemArea.containsMouse ? Theme.raised : "transparent"

                        MouseArea {
                            id: itemArea

                            anchors.fill: parent
                            hoverEnabled: true
                            onClicked: root.picker.setSelected(item.index, !item.selected)
                        }
                        RowLayout {
                            anchors.fill: parent
                            anchors.leftMargin: Theme.spacing
                            anchors.rightMargin: Theme.spacing
                            spacing: Theme.spacing
                            Rectangle {
                                objectName: "itemCheck"
                                implicitWidth: 16
                                implicitHeight: 16
                                radius: 4
                                color: item.selected ? Theme.accent : "transparent"
                                border.width: item.selected ? 0 : 1
                                border.color: Theme.gray
                                Icon {
                                    anchors.centerIn: parent
                                    visible: item.selected
                                    symbol: "checkmark"
                                    color: Theme.text
                                    size: 12
                                }
                            }
                            Text {
                                Layout.preferredWidth: 40
                                text: item.number
                                textFormat: Text.PlainText
                                color: Theme.gray
                                font.pixelSize: Theme.caption
                                font.family: Theme.fixedFont.family
                                horizontalAlignment: Text.AlignRight
                            }
                            Text {
                                objectName: "itemTitle"
                                Layout.fillWidth: true
                                text: item.title
                                textFormat: Text.PlainText
                                color: Theme.text
                                font.pixelSize: Theme.body
                                elide: Text.ElideRight
                            }
                            Text {
                                objectName: "itemMark"
                                visible: item.mark.length > 0
                                text: item.mark
                                textFormat: Text.PlainText
                                color: Theme.orange
                                font.pixelSize: Theme.caption2
                            }
                            Text {
                                text: item.duration
                                textFormat: Text.PlainText
                                color: Theme.gray
                                font.pixelSize: Theme.caption
                                font.family: Theme.fixedFont.family
                            }
                        }
                    }
                }
            }

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.spacing
                Text {
                    Layout.fillWidth: true
                    visible: root.picker !== null && root.picker.waitingLinks > 0
                    text: root.picker ? qsTr("之后还有 %n 个链接待检查", "", root.picker.waitingLinks) : ""
                    textFormat: Text.PlainText
                    color: Theme.gray
                    font.pixelSize: Theme.caption
                }
                Item {
                    Layout.fillWidth: true
                }
                BorderedButton {
                    objectName: "playlistCancelButton"
                    text: qsTr("取消")
                    onClicked: root.picker.cancel()
                }
                BorderedButton {
                    objectName: "playlistConfirmButton"
                    prominent: true
                    fill: Theme.accent
                    enabled: root.picker !== null && root.picker.selectedCount > 0
                    text: root.picker ? qsTr("下载所选 (%1)").arg(root.picker.selectedCount) : qsTr("下载所选")
                    onClicked: root.picker.confirm()
                }
            }
        }
    }
}
