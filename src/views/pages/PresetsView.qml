pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// "参数预设": the six built-in presets with their yt-dlp words, and the user's own presets — a
// name and arguments each — to add, rename, edit, delete, and choose for the download form.
Rectangle {
    id: root

    // The row the delete dialog asks about.
    property int removalRow: -1

    function askRemoval(row: int, name: string) {
        root.removalRow = row
        removeDialog.open({ message: qsTr("删除预设“%1”？删除后无法恢复。").arg(name) })
    }

    color: Theme.background

    component Caption: Text {
        textFormat: Text.PlainText
        Layout.fillWidth: true
        color: Theme.gray
        font.pixelSize: Theme.caption
        wrapMode: Text.Wrap
    }

    component Words: Text {
        textFormat: Text.PlainText
        Layout.fillWidth: true
        color: Theme.cyan
        font.family: Theme.fixedFont.family
        font.pixelSize: Theme.monoBody
        wrapMode: Text.WrapAnywhere
    }

    component Divider: Rectangle {
        Layout.fillWidth: true
        implicitHeight: 1
        color: Theme.separator
    }

    PresetListModel {
        id: builtIns
    }

    SavedPresetModel {
        id: saved
    }

    // The download options a new preset keeps with its words.
    DownloadOptionsPresenter {
        id: formOptions
    }

    ScrollView {
        id: scroll

        anchors.fill: parent
        contentWidth: availableWidth

        ColumnLayout {
            x: 20
            width: scroll.availableWidth - 40
            spacing: Theme.spacingPage
            ColumnLayout {
                Layout.fillWidth: true
                Layout.topMargin: Theme.spacingPage
                spacing: Theme.spacingTiny
                Text {
                    text: qsTr("参数预设")
                    color: Theme.text
                    font.pixelSize: Theme.title2
                    font.weight: Font.Bold
                }
                Caption {
                    text: qsTr("把常用的 yt-dlp 参数存为自己的预设。选用后，下载页切换到“自定义”并填入这些参数。")
                }
            }

            SettingsGroup {
                Layout.fillWidth: true
                title: qsTr("我的预设")
                symbol: "slider.horizontal.3"

                Caption {
                    objectName: "savedEmpty"
                    visible: saved.loaded && savedList.count === 0
                    text: qsTr("还没有自己的预设，在下面新建一个。")
                }
                Caption {
                    visible: !saved.loaded
                    text: qsTr("正在读取...")
                }

                Repeater {
                    id: savedList

                    objectName: "savedList"
                    model: saved

                    delegate: ColumnLayout {
                        id: savedRow

                        required property int index
                        required property string name
                        required property string arguments
                        required property string options
                        required property bool saving
                        property bool editing: false

                        function startEditing() {
                            nameEdit.text = savedRow.name
                            argumentsEdit.text = savedRow.arguments
                            editProblem.text = ""
                            savedRow.editing = true
                            nameEdit.forceActiveFocus()
                        }

                        // The name first, then the arguments; the form stays open on a refusal.
                        function finishEditing() {
                            let problem = saved.rename(savedRow.index, nameEdit.text)
                            if (problem.length === 0)
                                problem = saved.setArguments(savedRow.index, argumentsEdit.text)
                            editProblem.text = problem
                            savedRow.editing = problem.length > 0
                        }

                        objectName: "savedRow"
                        Layout.fillWidth: true
                        spacing: Theme.spacingMedium
                        Divider {
                            visible: savedRow.index > 0
                        }
                        RowLayout {
                            Layout.fillWidth: true
                            visible: !savedRow.editing
                            spacing: Theme.spacing
                            ColumnLayout {
                                Layout.fillWidth: true
                                spacing: Theme.spacingHair
                                Text {
                                    objectName: "savedName"
                                    Layout.fillWidth: true
                                    text: savedRow.name
                                    textFormat: Text.PlainText
                                    color: Theme.text
                                    font.pixelSize: Theme.body
                                    font.weight: Font.Medium
                                    elide: Text.ElideRight
                                }
                                Words {
                                    objectName: "savedArguments"
                                    visible: text.length > 0
                                    text: savedRow.arguments
                                }
                                Caption {
                                    objectName: "savedOptions"
                                    Layout.fillWidth: true
                                    visible: savedRow.options.length > 0
                                    text: qsTr("下载选项：%1").arg(savedRow.options)
                                    wrapMode: Text.Wrap
                                }
                            }
                            BorderedButton {
                                objectName: "chooseButton"
                                prominent: true
                                fill: Theme.accent
                                symbol: "checkmark"
                                text: qsTr("选用")
                                onClicked: saved.choose(savedRow.index)
                            }
                            BorderedButton {
                                objectName: "editButton"
                                enabled: !savedRow.saving
                                text: qsTr("编辑")
                                onClicked: savedRow.startEditing()
                            }
                            BorderedButton {
                                objectName: "removeButton"
                                enabled: !savedRow.saving
                                symbol: "trash"
                                text: qsTr("删除")
                                onClicked: root.askRemoval(savedRow.index, savedRow.name)
                            }
                        }
                        GridLayout {
                            Layout.fillWidth: true
                            visible: savedRow.editing
                            columns: 2
                            columnSpacing: Theme.spacing
                            rowSpacing: Theme.spacingMedium
                            Text {
                                text: qsTr("名称")
                                color: Theme.gray
                                font.pixelSize: Theme.caption
                            }
                            TextInputField {
                                id: nameEdit

                                objectName: "nameEdit"
                                Layout.fillWidth: true
                                Keys.onEscapePressed: savedRow.editing = false
                                onAccepted: savedRow.finishEditing()
                            }
                            Text {
                                text: qsTr("参数")
                                color: Theme.gray
                                font.pixelSize: Theme.caption
                            }
                            TextInputField {
                                id: argumentsEdit

                                objectName: "argumentsEdit"
                                Layout.fillWidth: true
                                Keys.onEscapePressed: savedRow.editing = false
                                font.family: Theme.fixedFont.family
                                onAccepted: savedRow.finishEditing()
                            }
                            Item {
                                implicitWidth: 1
                            }
                            RowLayout {
                                spacing: Theme.spacing
                                BorderedButton {
                                    objectName: "saveEditButton"
                                    prominent: true
                                    fill: Theme.blue
                                    text: qsTr("保存")
                                    onClicked: savedRow.finishEditing()
                                }
                                BorderedButton {
                                    objectName: "cancelEditButton"
                                    text: qsTr("取消")
                                    onClicked: savedRow.editing = false
                                }
                                Problem {
                                    id: editProblem

                                    objectName: "editProblem"
                                }
                            }
                        }
                    }
                }

                Problem {
                    objectName: "storeError"
                    text: saved.storeError
                }
            }

            SettingsGroup {
                Layout.fillWidth: true
                title: qsTr("新建预设")
                symbol: "doc.on.doc"

                GridLayout {
                    Layout.fillWidth: true
                    columns: 2
                    columnSpacing: Theme.spacing
                    rowSpacing: Theme.spacingMedium
                    Text {
                        text: qsTr("名称")
                        color: Theme.gray
                        font.pixelSize: Theme.caption
                    }
                    TextInputField {
                        id: newName

                        objectName: "newNameField"
                        Layout.fillWidth: true
                        placeholderText: qsTr("例如：1080p 带字幕")
                        onAccepted: addButton.clicked()
                    }
                    Text {
                        text: qsTr("参数")
                        color: Theme.gray
                        font.pixelSize: Theme.caption
                    }
                    TextInputField {
                        id: newArguments

                        objectName: "newArgumentsField"
                        Layout.fillWidth: true
                        font.family: Theme.fixedFont.family
                        placeholderText: "-f \"bv*[height<=1080]+ba\" --embed-subs"
                        onAccepted: addButton.clicked()
                    }
                }
                Caption {
                    objectName: "newPresetOptions"
                    Layout.fillWidth: true
                    visible: !formOptions.isDefault
                    text: qsTr("同时保存当前的下载选项：%1").arg(formOptions.summary)
                    wrapMode: Text.Wrap
                }
                RowLayout {
                    Layout.fillWidth: true
                    spacing: Theme.spacing
                    BorderedButton {
                        id: addButton

                        objectName: "addButton"
                        prominent: true
                        fill: Theme.blue
                        enabled: saved.loaded
                        text: qsTr("添加预设")
                        onClicked: {
                            addProblem.text = saved.add(newName.text, newArguments.text)
                            if (addProblem.text.length > 0)
                                return
                            newName.clear()
                            newArguments.clear()
                        }
                    }
                    Problem {
                        id: addProblem

                        objectName: "addProblem"
                    }
                }
            }

            SettingsGroup {
                Layout.fillWidth: true
                Layout.bottomMargin: Theme.spacingPage
                title: qsTr("内置预设")
                symbol: "list.bullet.rectangle"

                Caption {
                    text: qsTr("内置预设不能修改，在下载页直接选用。")
                }

                Repeater {
                    objectName: "builtInList"
                    model: builtIns

                    delegate: ColumnLayout {
                        id: builtInRow

                        required property int index
                        required property int preset
                        required property string name
                        required property string symbol
                        required property string description
                        required property string arguments

                        objectName: "builtInRow"
                        Layout.fillWidth: true
                        spacing: Theme.spacingMedium
                        Divider {
                            visible: builtInRow.index > 0
                        }
                        RowLayout {
                            Layout.fillWidth: true
                            spacing: Theme.spacingLarge
                            Icon {
                                Layout.alignment: Qt.AlignTop
                                symbol: builtInRow.symbol
                                color: Theme.gray
                                size: Theme.title3
                            }
                            ColumnLayout {
                                Layout.fillWidth: true
                                spacing: Theme.spacingHair
                                Text {
                                    text: builtInRow.name
                                    textFormat: Text.PlainText
                                    color: Theme.text
                                    font.pixelSize: Theme.body
                                    font.weight: Font.Medium
                                }
                                Caption {
                                    text: builtInRow.description
                                }
                                Words {
                                    objectName: "builtInWords"
                                    visible: builtInRow.arguments.length > 0
                                    text: builtInRow.arguments
                                }
                                Caption {
                                    objectName: "builtInNote"
                                    visible: builtInRow.arguments.length === 0
                                    font.italic: true
                                    text: builtInRow.preset === Download.Custom
                                          ? qsTr("参数：下载页“自定义参数”中填写的内容")
                                          : qsTr("参数：无，由 yt-dlp 自行选择")
                                }
                            }
                        }
                    }
                }
            }
        }
    }

    OnDemand {
        id: removeDialog

        objectName: "removeDialog"
        source: "dialogs/ConfirmDialog.qml"
    }

    Connections {
        target: removeDialog.item
        ignoreUnknownSignals: true

        function onConfirmed() {
            saved.remove(root.removalRow)
            root.removalRow = -1
        }
    }
}
