import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The left pane: links, preset, custom arguments, switches, output folder, and the two actions.
// Its components stay unbound (no ComponentBehavior pragma): a Loader of Qt 6.4 cannot make a
// bound component.
Rectangle {
    id: root

    readonly property InputPresenter presenter: presenter

    // Dropped links or text join the editor, one per line.
    function addDropped(urls: list<url>, text: string) {
        if (presenter.dropLinks(urls, text))
            linksEditor.forceActiveFocus()
    }

    function pasteFromClipboard() {
        if (presenter.paste(Desktop.clipboardText()))
            linksEditor.forceActiveFocus()
    }

    // Cleared through the editor itself, so the edit menu's undo brings the links back.
    function clearLinks() {
        linksEditor.remove(0, linksEditor.length)
        linksEditor.forceActiveFocus()
    }

    color: Theme.background

    InputPresenter {
        id: presenter

        onFormatsListed: text => formatsSheet.open({ formatsOutput: text, shown: true })
        onFormatsFailed: description => errorAlert.open({ heading: "错误", message: description })
    }

    ScrollView {
        id: scroller

        objectName: "inputScroller"
        anchors.fill: parent
        contentWidth: availableWidth
        clip: true

        Rectangle {
            width: scroller.availableWidth
            implicitHeight: form.implicitHeight + 40
            color: Theme.surface

            ColumnLayout {
                id: form

                anchors.fill: parent
                anchors.margins: 20
                spacing: 18

                Text {
                    text: "添加下载任务"
                    color: Theme.text
                    font.pixelSize: 20
                    font.weight: Font.DemiBold
                }

                // Links
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 8

                    RowLayout {
                        SectionHeader {
                            text: "视频链接"
                        }
                        Item {
                            Layout.fillWidth: true
                        }
                        TextButton {
                            objectName: "pasteButton"
                            text: "粘贴"
                            symbol: "doc.on.clipboard"
                            onClicked: root.pasteFromClipboard()
                        }
                        TextButton {
                            objectName: "clearButton"
                            text: "清空"
                            symbol: "xmark.circle"
                            onClicked: root.clearLinks()
                        }
                    }
                    TextArea {
                        id: linksEditor

                        objectName: "linksEditor"
                        Layout.fillWidth: true
                        Layout.preferredHeight: 120
                        text: AppState.urlInput
                        onTextChanged: {
                            if (text !== AppState.urlInput)
                                AppState.urlInput = text
                        }
                        // Tab moves the focus on, as everywhere else; Ctrl+Tab (or a pasted
                        // tab) still puts a tab into the text.
                        Keys.onPressed: event => {
                            if (event.key === Qt.Key_Tab && (event.modifiers & Qt.ControlModifier)) {
                                linksEditor.insert(linksEditor.cursorPosition, "\t")
                                event.accepted = true
                            } else if (event.key === Qt.Key_Tab || event.key === Qt.Key_Backtab) {
                                const forward = event.key === Qt.Key_Tab && !(event.modifiers & Qt.ShiftModifier)
                                linksEditor.nextItemInFocusChain(forward).forceActiveFocus(
                                    forward ? Qt.TabFocusReason : Qt.BacktabFocusReason)
                                event.accepted = true
                            }
                        }
                        placeholderText: "请输入视频链接，每行一个..."
                        placeholderTextColor: Theme.gray
                        color: Theme.text
                        selectionColor: Theme.accent
                        font.pixelSize: 14
                        wrapMode: TextEdit.WrapAnywhere
                        padding: 12
                        background: Rectangle {
                            radius: 10
                            color: Theme.raised
                            border.width: linksEditor.activeFocus || presenter.rejectedNotice.length > 0 ? 2 : 0
                            border.color: presenter.rejectedNotice.length > 0 ? Theme.red : Theme.accent
                        }
                    }
                    Text {
                        objectName: "rejectedLinks"
                        Layout.fillWidth: true
                        visible: text.length > 0
                        text: presenter.rejectedNotice
                        color: Theme.red
                        font.pixelSize: 12
                        wrapMode: Text.WrapAnywhere
                        textFormat: Text.PlainText
                    }
                    Hint {
                        text: "支持多个链接，每行一个"
                    }
                }

                // Presets
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 8

                    SectionHeader {
                        text: "下载预设"
                    }
                    GridLayout {
                        id: presetGrid

                        readonly property int spacingBetween: 12
                        // As many columns of at least 160 as fit.
                        readonly property int fitting: Math.max(1, Math.floor((width + spacingBetween) / (160 + spacingBetween)))

                        Layout.fillWidth: true
                        columns: fitting
                        rowSpacing: spacingBetween
                        columnSpacing: spacingBetween

                        Repeater {
                            model: PresetListModel {}

                            PresetCard {
                                required property int preset
                                required property int index

                                objectName: "preset" + index
                                Layout.fillWidth: true
                                Layout.preferredWidth: 1
                                isSelected: AppState.selectedPreset === preset
                                onClicked: AppState.selectedPreset = preset
                            }
                        }
                    }
                }

                // Custom arguments, only under the custom preset; made when that preset is chosen.
                // The text lives in the application state, so it outlasts the field.
                Loader {
                    objectName: "customSection"
                    Layout.fillWidth: true
                    active: AppState.selectedPreset === Download.Custom
                    visible: active

                    sourceComponent: ColumnLayout {
                        spacing: 8

                        SectionHeader {
                            text: "自定义参数"
                        }
                        TextField {
                            id: customField

                            objectName: "customField"
                            Layout.fillWidth: true
                            text: AppState.customArguments
                            onTextEdited: AppState.customArguments = text
                            placeholderText: "-f best -x --audio-format mp3"
                            placeholderTextColor: Theme.gray
                            color: Theme.text
                            font.family: Theme.fixedFont.family
                            padding: 10
                            background: Rectangle {
                                radius: 10
                                color: Theme.raised
                                border.width: customField.activeFocus ? 2 : 0
                                border.color: Theme.accent
                            }
                        }
                        Hint {
                            text: "输入 yt-dlp 的自定义参数，使用空格分隔"
                        }
                    }
                }

                // Switches
                RowLayout {
                    Layout.fillWidth: true
                    spacing: 24

                    ToggleSwitch {
                        objectName: "playlistSwitch"
                        text: "播放列表"
                        symbol: "list.bullet.rectangle"
                        checked: AppState.downloadPlaylist
                        onToggled: AppState.downloadPlaylist = checked
                    }
                    ToggleSwitch {
                        objectName: "cookieSwitch"
                        text: "Cookie"
                        symbol: "key.fill"
                        checked: AppState.useCookies
                        onToggled: AppState.useCookies = checked
                    }
                }

                // Output folder
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 8

                    SectionHeader {
                        text: "输出目录"
                    }
                    RowLayout {
                        spacing: 8

                        TextField {
                            id: outputField

                            objectName: "outputField"
                            Layout.fillWidth: true
                            text: AppState.outputDirectory
                            onTextEdited: AppState.outputDirectory = text
                            placeholderText: "选择输出目录..."
                            placeholderTextColor: Theme.gray
                            color: Theme.text
                            padding: 10
                            background: Rectangle {
                                radius: 8
                                color: Theme.raised
                                border.width: outputField.activeFocus ? 2 : 0
                                border.color: Theme.accent
                            }
                        }
                        IconButton {
                            objectName: "folderButton"
                            implicitWidth: 38
                            implicitHeight: 38
                            symbol: "folder"
                            tint: Theme.text
                            iconSize: 16
                            onClicked: folderDialog.open()
                        }
                    }
                }

                // Actions
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 10

                    AbstractButton {
                        id: formatsButton

                        objectName: "listFormatsButton"
                        Layout.fillWidth: true
                        implicitHeight: 42
                        enabled: !presenter.isListingFormats
                        focusPolicy: Qt.StrongFocus
                        Keys.onReturnPressed: clicked()
                        Keys.onEnterPressed: clicked()
                        onClicked: presenter.listFormats()

                        FocusRing {
                            shown: formatsButton.visualFocus
                            radius: 13
                        }

                        background: Rectangle {
                            radius: 10
                            color: Theme.border
                            opacity: formatsButton.down ? 0.8 : 1
                        }
                        contentItem: Item {
                            Row {
                                anchors.centerIn: parent
                                spacing: 8

                                Icon {
                                    anchors.verticalCenter: parent.verticalCenter
                                    symbol: "list.bullet.rectangle.portrait"
                                    size: 15
                                }
                                Text {
                                    anchors.verticalCenter: parent.verticalCenter
                                    text: "查看可用格式"
                                    color: Theme.text
                                    font.pixelSize: 14
                                }
                                Icon {
                                    objectName: "listingIndicator"
                                    anchors.verticalCenter: parent.verticalCenter
                                    visible: presenter.isListingFormats
                                    symbol: "arrow.clockwise"
                                    color: Theme.gray
                                    size: 14

                                    RotationAnimation on rotation {
                                        running: presenter.isListingFormats
                                        from: 0
                                        to: 360
                                        duration: 900
                                        loops: Animation.Infinite
                                    }
                                }
                            }
                        }
                    }

                    AbstractButton {
                        id: startButton

                        objectName: "startButton"
                        Layout.fillWidth: true
                        implicitHeight: 46
                        focusPolicy: Qt.StrongFocus
                        Keys.onReturnPressed: clicked()
                        Keys.onEnterPressed: clicked()
                        onClicked: presenter.startDownload()

                        FocusRing {
                            shown: startButton.visualFocus
                            radius: 15
                        }

                        background: Rectangle {
                            radius: 12
                            opacity: startButton.down ? 0.85 : 1
                            gradient: Gradient {
                                orientation: Gradient.Horizontal

                                GradientStop {
                                    position: 0
                                    color: Theme.accent
                                }
                                GradientStop {
                                    position: 1
                                    color: Theme.orangeAccent
                                }
                            }
                        }
                        contentItem: Item {
                            Row {
                                anchors.centerIn: parent
                                spacing: 8

                                Icon {
                                    anchors.verticalCenter: parent.verticalCenter
                                    symbol: "arrow.down.circle.fill"
                                    size: 16
                                }
                                Text {
                                    anchors.verticalCenter: parent.verticalCenter
                                    text: "开始下载"
                                    color: Theme.text
                                    font.pixelSize: 15
                                    font.weight: Font.DemiBold
                                }
                            }
                        }
                    }
                    Text {
                        objectName: "startNotice"
                        Layout.alignment: Qt.AlignHCenter
                        visible: text.length > 0
                        text: presenter.startNotice
                        color: Theme.orange
                        font.pixelSize: 12
                    }
                }
            }
        }
    }

    OnDemand {
        id: folderDialog

        objectName: "folderDialog"
        source: "FolderPicker.qml"
    }

    OnDemand {
        id: formatsSheet

        objectName: "formatsSheet"
        source: "FormatsSheet.qml"
    }

    OnDemand {
        id: errorAlert

        objectName: "formatsErrorAlert"
        source: "MessageAlert.qml"
    }
}
