import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The left pane: links, preset, custom arguments, switches, output folder, and the two actions.
// Its components stay unbound (no ComponentBehavior pragma): a Loader of Qt 6.4 cannot make a
// bound component.
Rectangle {
    id: root

    // Fetches the information of the first link for "视频信息"; the page that shows the sheet
    // hands it over.
    property VideoInfoPresenter videoInfoPresenter: null
    // "视频信息" was pressed and its answer is awaited.
    property bool isFetchingVideoInfo: false

    // Dropped links or text join the editor, one per line.
    function addDropped(urls: list<url>, text: string) {
        links.addDropped(urls, text)
    }

    // Asks for a text file whose links join the box.
    function importLinks() {
        linksFileDialog.open()
    }

    // The form from its top, the cursor in the links box.
    function focusLinks() {
        scroller.contentItem.contentY = 0
        links.focusEditor()
    }

    color: Theme.background

    InputPresenter {
        id: inputPresenter

        onFormatsListed: text => formatsSheet.open({
                                                        formatsOutput: text,
                                                        picker: inputPresenter.formatPicker,
                                                        shown: true
                                                    })
        onFormatsFailed: description => errorAlert.open({ heading: qsTr("错误"), message: description })
        onQueued: count => {
            queuedNotice.text = qsTr("已加入 %n 个下载", "", count)
            queuedNotice.shown = true
            queuedNoticeTimer.restart()
        }
        onPlaylistQuestionAsked: count => {
            const message = count === 1 ? qsTr("这个视频链接还带有一个播放列表。")
                                        : qsTr("这 %1 个视频链接还带有播放列表。").arg(count)
            playlistQuestion.open({
                                      message: message,
                                      confirmText: qsTr("只下载这个视频"),
                                      alternativeText: qsTr("下载整个列表"),
                                      destructive: false
                                  })
        }
        onRepeatAsked: count => {
            const message = count === 1 ? qsTr("这个链接已在队列中，要再加入一次吗？")
                                        : qsTr("这 %1 个链接都已在队列中，要再加入一次吗？").arg(count)
            repeatDialog.open({ message: message, confirmText: qsTr("再次加入"), destructive: false })
        }
    }

    // Links from outside the window that are to be queued at once ("quillbox --start …").
    Connections {
        target: AppState

        function onLinksToStart(links: list<string>) {
            inputPresenter.startLinks(links)
        }
    }

    // A control the keyboard reaches is scrolled into sight, clear of the bar at the foot.
    Connections {
        target: root.Window.window

        function onActiveFocusItemChanged() {
            root.reveal(root.Window.activeFocusItem)
        }
    }

    function reveal(item: Item) {
        let inForm = false
        for (let up = item; up && !inForm; up = up.parent)
            inForm = up === formSurface
        if (!inForm)
            return
        const flickable = scroller.contentItem
        // The focus ring stands a little outside the control.
        const margin = Theme.spacingMedium
        const top = item.mapToItem(formSurface, 0, 0).y - margin
        const bottom = top + item.height + 2 * margin
        let y = flickable.contentY
        if (bottom > y + flickable.height)
            y = bottom - flickable.height
        if (top < y)
            y = top
        flickable.contentY = Math.max(0, Math.min(y, flickable.contentHeight - flickable.height))
    }

    Connections {
        target: root.videoInfoPresenter

        function onLoadingChanged() {
            if (!root.videoInfoPresenter.isLoading)
                root.isFetchingVideoInfo = false
        }
    }

    ScrollView {
        id: scroller

        objectName: "inputScroller"
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: footer.top
        contentWidth: availableWidth
        contentHeight: form.implicitHeight + 2 * Theme.spacingPage
        clip: true
        // When the form is taller than the pane, the bar says so without being hovered first.
        ScrollBar.vertical.policy: contentHeight > height ? ScrollBar.AlwaysOn : ScrollBar.AsNeeded

        Rectangle {
            id: formSurface

            width: scroller.availableWidth
            // The pane's surface reaches the bar at the foot however short the form is.
            height: Math.max(scroller.contentHeight, scroller.availableHeight)
            color: Theme.surface

            ColumnLayout {
                id: form

                anchors.left: parent.left
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.margins: Theme.spacingPage
                spacing: Theme.spacingSection
                Text {
                    text: qsTr("添加下载任务")
                    color: Theme.text
                    font.pixelSize: Theme.title2
                    font.weight: Font.DemiBold
                }

                // Links just copied elsewhere, offered while "监视剪贴板" is on; nothing is added
                // without a click.
                Rectangle {
                    objectName: "clipboardBar"
                    Layout.fillWidth: true
                    visible: clipboard.offered.length > 0
                    implicitHeight: clipboardRow.implicitHeight + 2 * Theme.spacingMedium
                    radius: Theme.radius
                    color: Theme.raised
                    border.color: Theme.accent

                    ClipboardWatcher {
                        id: clipboard
                    }

                    RowLayout {
                        id: clipboardRow

                        anchors.fill: parent
                        anchors.margins: Theme.spacingMedium
                        spacing: Theme.spacing
                        Icon {
                            symbol: "doc.on.clipboard"
                            color: Theme.accent
                            size: Theme.body
                        }
                        Text {
                            Layout.fillWidth: true
                            text: qsTr("剪贴板中有 %n 个新链接", "", clipboard.offered.length)
                            textFormat: Text.PlainText
                            color: Theme.text
                            font.pixelSize: Theme.caption
                            wrapMode: Text.Wrap
                        }
                        TextButton {
                            objectName: "clipboardAddButton"
                            text: qsTr("添加 %n 个链接", "", clipboard.offered.length)
                            tint: Theme.accent
                            onClicked: clipboard.add()
                        }
                        TextButton {
                            objectName: "clipboardIgnoreButton"
                            text: qsTr("忽略")
                            onClicked: clipboard.ignore()
                        }
                    }
                }

                LinksEditor {
                    id: links

                    Layout.fillWidth: true
                    presenter: inputPresenter
                }

                PresetGrid {
                    Layout.fillWidth: true
                }

                // Custom arguments, only under the custom preset; made when that preset is chosen.
                // The text lives in the application state, so it outlasts the field.
                Loader {
                    objectName: "customSection"
                    Layout.fillWidth: true
                    active: AppState.selectedPreset === Download.Custom
                    visible: active
                    // The field's own component cannot see the presenter; the error is handed in.
                    onLoaded: item.error = Qt.binding(() => inputPresenter.customArgumentsError)

                    sourceComponent: ColumnLayout {
                        id: customColumn

                        property string error

                        spacing: Theme.spacingMedium
                        SectionHeader {
                            text: qsTr("自定义参数")
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
                            padding: Theme.spacing
                            background: Rectangle {
                                radius: Theme.radius
                                color: Theme.raised
                                border.width: customField.activeFocus || customError.visible ? 2 : 0
                                border.color: customError.visible ? Theme.red : Theme.accent
                            }
                        }
                        // Said as the text is typed, before "开始下载" refuses it.
                        Problem {
                            id: customError

                            objectName: "customArgumentsError"
                            text: customColumn.error
                        }
                        Hint {
                            text: qsTr("输入 yt-dlp 的自定义参数，使用空格分隔")
                        }
                    }
                }

                DownloadOptionsPanel {
                    objectName: "optionsPanel"
                    Layout.fillWidth: true
                }

                // Switches
                RowLayout {
                    Layout.fillWidth: true
                    spacing: Theme.spacingHuge
                    ToggleSwitch {
                        objectName: "playlistSwitch"
                        text: qsTr("播放列表")
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

                OutputFolderField {
                    Layout.fillWidth: true
                    onBrowseClicked: folderDialog.open()
                }

                // Actions
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: Theme.spacing
                    RowLayout {
                        Layout.fillWidth: true
                        spacing: Theme.spacing
                        TextButton {
                            objectName: "listFormatsButton"
                            Layout.fillWidth: true
                            implicitHeight: 42
                            enabled: !inputPresenter.isListingFormats
                            text: qsTr("查看可用格式")
                            symbol: "list.bullet.rectangle.portrait"
                            tint: Theme.text
                            fill: Theme.border
                            cornerRadius: Theme.radius
                            fontSize: Theme.bodyLarge
                            spacing: Theme.spacingMedium
                            contentOpacity: 1
                            onClicked: inputPresenter.listFormats()
                            trailing: Icon {
                                objectName: "listingIndicator"
                                visible: inputPresenter.isListingFormats
                                symbol: "arrow.clockwise"
                                color: Theme.gray
                                size: Theme.bodyLarge

                                RotationAnimation on rotation {
                                    running: inputPresenter.isListingFormats
                                    from: 0
                                    to: 360
                                    duration: 900
                                    loops: Animation.Infinite
                                }
                            }
                        }

                        TextButton {
                            objectName: "videoInfoButton"
                            Layout.fillWidth: true
                            implicitHeight: 42
                            enabled: root.videoInfoPresenter !== null && !root.isFetchingVideoInfo
                            text: qsTr("视频信息")
                            symbol: "info.circle"
                            tint: Theme.text
                            fill: Theme.border
                            cornerRadius: Theme.radius
                            fontSize: Theme.bodyLarge
                            spacing: Theme.spacingMedium
                            contentOpacity: 1
                            onClicked: {
                                root.videoInfoPresenter.fetchFirstLink()
                                root.isFetchingVideoInfo = root.videoInfoPresenter.isLoading
                            }
                            trailing: Icon {
                                objectName: "videoInfoIndicator"
                                visible: root.isFetchingVideoInfo
                                symbol: "arrow.clockwise"
                                color: Theme.gray
                                size: Theme.bodyLarge

                                RotationAnimation on rotation {
                                    running: root.isFetchingVideoInfo
                                    from: 0
                                    to: 360
                                    duration: 900
                                    loops: Animation.Infinite
                                }
                            }
                        }
                    }
                }
            }
        }
    }

    // "开始下载" stays in sight at the foot of the pane, however tall the form above it grows.
    Rectangle {
        id: footer

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        implicitHeight: footerColumn.implicitHeight + 28
        color: Theme.surface

        // How many downloads the last press queued, for a few seconds: over the form just above
        // the bar, so that the button stays where the pointer is for a second press.
        Rectangle {
            anchors.bottom: parent.top
            anchors.bottomMargin: Theme.spacing
            anchors.horizontalCenter: parent.horizontalCenter
            visible: queuedNotice.shown && inputPresenter.startNotice.length === 0
            width: queuedNotice.implicitWidth + 2 * Theme.spacingLarge
            height: queuedNotice.implicitHeight + 2 * Theme.spacingSmall
            radius: height / 2
            color: Theme.raised
            border.color: Theme.border

            Text {
                id: queuedNotice

                property bool shown: false

                objectName: "queuedNotice"
                anchors.centerIn: parent
                textFormat: Text.PlainText
                color: Theme.green
                font.pixelSize: Theme.caption

                Timer {
                    id: queuedNoticeTimer

                    interval: 4000
                    onTriggered: queuedNotice.shown = false
                }
            }
        }

        ColumnLayout {
            id: footerColumn

            anchors.fill: parent
            anchors.leftMargin: Theme.spacingPage
            anchors.rightMargin: Theme.spacingPage
            anchors.topMargin: Theme.spacingMedium
            anchors.bottomMargin: Theme.spacingPage
            spacing: Theme.spacing
            // Said where downloads start: the toolchain would make sites such as YouTube fail.
            VerdictRow {
                objectName: "toolchainNotice"
                Layout.fillWidth: true
                verdict: DownloadManager.tools.notice
                onActionClicked: AppState.showSettings = true
            }
            TextButton {
                objectName: "startButton"
                Layout.fillWidth: true
                implicitHeight: 46
                text: qsTr("开始下载")
                symbol: "arrow.down.circle.fill"
                tint: Theme.text
                fill: Theme.accent
                gradientTo: Theme.orangeAccent
                cornerRadius: Theme.radiusLarge
                fontSize: Theme.headline
                fontWeight: Font.DemiBold
                spacing: Theme.spacingMedium
                contentOpacity: 1
                fillOpacity: down ? 0.85 : 1
                onClicked: inputPresenter.startDownload()
            }
            // A link is being looked at before its playlist sheet opens, or it is queued; a look
            // that takes too long (a site that does not answer) can be given up.
            RowLayout {
                Layout.alignment: Qt.AlignHCenter
                Layout.maximumWidth: footerColumn.width
                visible: inputPresenter.playlistPicker.listing && !inputPresenter.playlistPicker.active
                spacing: Theme.spacingSmall
                Text {
                    objectName: "listingNotice"
                    Layout.fillWidth: true
                    text: inputPresenter.playlistPicker.progressText
                    textFormat: Text.PlainText
                    color: Theme.gray
                    font.pixelSize: Theme.caption
                    elide: Text.ElideMiddle
                }
                TextButton {
                    objectName: "listingCancelButton"
                    text: qsTr("取消")
                    onClicked: inputPresenter.playlistPicker.cancel()
                }
            }
            Text {
                objectName: "startNotice"
                Layout.alignment: Qt.AlignHCenter
                Layout.maximumWidth: footerColumn.width
                visible: text.length > 0
                text: inputPresenter.startNotice
                textFormat: Text.PlainText
                color: Theme.orange
                font.pixelSize: Theme.caption
                wrapMode: Text.Wrap
            }
        }
    }

    OnDemand {
        id: repeatDialog

        objectName: "repeatDialog"
        source: "dialogs/ConfirmDialog.qml"
    }

    OnDemand {
        id: linksFileDialog

        objectName: "linksFileDialog"
        source: "dialogs/LinksFileDialog.qml"
    }

    Connections {
        target: linksFileDialog.item
        ignoreUnknownSignals: true

        function onChosen(path: string) {
            if (inputPresenter.importFile(path) > 0)
                links.focusEditor()
        }
    }

    OnDemand {
        id: playlistQuestion

        objectName: "playlistQuestion"
        source: "dialogs/ConfirmDialog.qml"
    }

    Connections {
        target: playlistQuestion.item
        ignoreUnknownSignals: true

        // Enter answers with the video alone: the whole list is never a surprise.
        function onConfirmed() {
            inputPresenter.answerPlaylistQuestion(false)
        }

        function onAlternative() {
            inputPresenter.answerPlaylistQuestion(true)
        }
    }

    // The sheet is made when the first playlist is found, and follows the picker from then on.
    OnDemand {
        id: playlistSheet

        objectName: "playlistSheet"
        source: "dialogs/PlaylistSheet.qml"
    }

    Connections {
        target: inputPresenter.playlistPicker

        function onActiveChanged() {
            if (inputPresenter.playlistPicker.active && !playlistSheet.item)
                playlistSheet.open({ picker: inputPresenter.playlistPicker })
        }
    }

    Connections {
        target: repeatDialog.item
        ignoreUnknownSignals: true

        function onConfirmed() {
            inputPresenter.startDownload(true)
        }
    }

    OnDemand {
        id: folderDialog

        objectName: "folderDialog"
        source: "dialogs/FolderPicker.qml"
    }

    OnDemand {
        id: formatsSheet

        objectName: "formatsSheet"
        source: "dialogs/FormatsSheet.qml"
    }

    OnDemand {
        id: errorAlert

        objectName: "formatsErrorAlert"
        source: "dialogs/MessageAlert.qml"
    }
}
