pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The settings sheet: which yt-dlp is used and keeping it current, the JavaScript runtime and
// FFmpeg with help to install them, where downloads go and whether their end is announced. Made
// each time it opens, so the path field and the update result start empty.
Rectangle {
    id: root

    property string customYtDlpPath: ""
    readonly property ToolKeeper keeper: DownloadManager.keeper

    signal dismissed

    implicitWidth: 550
    implicitHeight: 720
    color: Theme.background
    radius: Theme.radiusLarge

    SettingsPresenter {
        id: presenter
    }

    component Caption: Text {
        textFormat: Text.PlainText
        Layout.fillWidth: true
        wrapMode: Text.Wrap
        color: Theme.secondaryText
        font.pixelSize: Theme.caption
    }

    component Divider: Rectangle {
        Layout.fillWidth: true
        implicitHeight: 1
        color: Theme.border
    }

    component StatusRow: RowLayout {
        id: statusRow

        property string symbol
        property color tint
        property string label
        property color labelColor: statusRow.tint
        property bool redetect: false

        signal redetectClicked

        Layout.fillWidth: true
        spacing: Theme.spacingMedium
        Icon {
            symbol: statusRow.symbol
            color: statusRow.tint
            size: Theme.headline
        }
        Text {
            objectName: "statusText"
            Layout.fillWidth: true
            text: statusRow.label
            textFormat: Text.PlainText
            color: statusRow.labelColor
            font.pixelSize: Theme.body
            font.weight: Font.Medium
            elide: Text.ElideRight
        }
        BorderedButton {
            objectName: "redetectButton"
            visible: statusRow.redetect
            symbol: "arrow.clockwise"
            text: qsTr("重新检测")
            onClicked: statusRow.redetectClicked()
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: Theme.spacingWide
            Text {
                text: qsTr("设置")
                color: Theme.text
                font.pixelSize: Theme.title2
                font.weight: Font.DemiBold
            }
            Item {
                Layout.fillWidth: true
            }
            IconButton {
                objectName: "closeSettingsButton"
                symbol: "xmark.circle.fill"
                fill: "transparent"
                iconSize: Theme.title2
                implicitWidth: 30
                implicitHeight: 30
                onClicked: root.dismissed()
            }
        }
        Divider {}

        ScrollView {
            id: scroll

            objectName: "settingsScroll"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            contentWidth: availableWidth

            ColumnLayout {
                objectName: "settingsGroups"
                x: 16
                width: scroll.availableWidth - 32
                spacing: Theme.spacingWide
                Item {
                    implicitHeight: 0
                }

                SettingsGroup {
                    objectName: "ytDlpGroup"
                    Layout.fillWidth: true
                    title: qsTr("yt-dlp 配置")
                    symbol: "terminal"

                    StatusRow {
                        id: ytDlpStatus

                        readonly property bool found: DownloadManager.tools.ytDlpVersion.length > 0

                        objectName: "ytDlpStatus"
                        symbol: ytDlpStatus.found ? "checkmark.circle.fill" : "xmark.circle.fill"
                        tint: ytDlpStatus.found ? Theme.green : Theme.red
                        label: qsTr("yt-dlp 状态")
                        labelColor: Theme.text

                        Text {
                            objectName: "ytDlpVersionText"
                            text: ytDlpStatus.found ? qsTr("已安装 (v%1)").arg(DownloadManager.tools.ytDlpVersion) : qsTr("未找到")
                            textFormat: Text.PlainText
                            color: ytDlpStatus.tint
                            font.pixelSize: Theme.caption
                        }
                    }
                    VerdictRow {
                        objectName: "ytDlpVerdict"
                        Layout.fillWidth: true
                        verdict: DownloadManager.tools.ytDlpVerdict
                        busy: root.keeper.busy
                        onActionClicked: action => presenter.repair(action)
                    }
                    ColumnLayout {
                        objectName: "installProgress"
                        Layout.fillWidth: true
                        visible: root.keeper.busy || root.keeper.statusText.length > 0
                        spacing: Theme.spacingTiny
                        RowLayout {
                            Layout.fillWidth: true
                            spacing: Theme.spacingMedium
                            Text {
                                objectName: "installStatusText"
                                Layout.fillWidth: true
                                text: root.keeper.statusText
                                textFormat: Text.PlainText
                                wrapMode: Text.Wrap
                                color: Theme.secondaryText
                                font.pixelSize: Theme.caption
                            }
                            BorderedButton {
                                objectName: "cancelInstallButton"
                                visible: root.keeper.canCancel
                                text: qsTr("取消")
                                onClicked: root.keeper.cancel()
                            }
                        }
                        Rectangle {
                            Layout.fillWidth: true
                            visible: root.keeper.busy
                            implicitHeight: 4
                            radius: 2
                            color: Theme.border

                            Rectangle {
                                width: root.keeper.progress < 0 ? parent.width : parent.width * root.keeper.progress
                                height: parent.height
                                radius: 2
                                color: Theme.accent
                                opacity: root.keeper.progress < 0 ? 0.4 : 1
                            }
                        }
                    }
                    Text {
                        text: qsTr("可执行文件路径")
                        color: Theme.gray
                        font.pixelSize: Theme.caption
                    }
                    RowLayout {
                        Layout.fillWidth: true
                        spacing: Theme.spacingMedium
                        TextInputField {
                            objectName: "pathField"
                            Layout.fillWidth: true
                            placeholderText: qsTr("输入 yt-dlp 路径")
                            text: root.customYtDlpPath
                            onTextEdited: root.customYtDlpPath = text
                        }
                        BorderedButton {
                            objectName: "browseYtDlpButton"
                            text: qsTr("浏览...")
                            onClicked: filePicker.open()
                        }
                        BorderedButton {
                            objectName: "probeButton"
                            implicitWidth: 34
                            symbol: "arrow.clockwise"
                            busy: presenter.isChecking
                            onClicked: presenter.verifyPath(root.customYtDlpPath)
                        }
                    }
                    Text {
                        objectName: "autoPathText"
                        Layout.fillWidth: true
                        text: (DownloadManager.tools.isYtDlpPathChosen ? qsTr("自动检测路径: %1（使用中，自选路径）")
                                                                   : qsTr("自动检测路径: %1（使用中，自动找到）")).arg(DownloadManager.tools.ytDlpPath)
                        textFormat: Text.PlainText
                        color: Theme.gray
                        font.pixelSize: Theme.caption2
                        elide: Text.ElideMiddle
                    }
                    RowLayout {
                        spacing: Theme.spacingMedium
                        BorderedButton {
                            objectName: "usePathButton"
                            text: qsTr("使用此路径")
                            prominent: true
                            fill: Theme.accent
                            enabled: root.customYtDlpPath.length > 0
                            onClicked: DownloadManager.setCustomYtDlpPath(root.customYtDlpPath)
                        }
                        BorderedButton {
                            objectName: "resetPathButton"
                            text: qsTr("重置为自动检测")
                            onClicked: {
                                root.customYtDlpPath = ""
                                presenter.resetToAutoDetect()
                            }
                        }
                    }
                    Divider {}
                    Text {
                        objectName: "updateResultText"
                        Layout.fillWidth: true
                        visible: presenter.updateResult.length > 0
                        text: presenter.updateResult
                        textFormat: Text.PlainText
                        color: Theme.tint(presenter.updateResultTint)
                        font.pixelSize: Theme.caption
                        wrapMode: Text.Wrap
                    }
                    Text {
                        objectName: "updateAdviceText"
                        Layout.fillWidth: true
                        visible: presenter.updateAdvice.length > 0
                        text: presenter.updateAdvice
                        textFormat: Text.PlainText
                        color: Theme.text
                        font.pixelSize: Theme.caption
                        wrapMode: Text.Wrap
                    }
                    Text {
                        objectName: "storyboardHint"
                        Layout.fillWidth: true
                        text: qsTr("⚠️ 如果下载 YouTube 时只看到图片格式（storyboard），通常是 yt-dlp 版本过旧，需要更新。")
                        color: Theme.orange
                        font.pixelSize: Theme.caption
                        wrapMode: Text.Wrap
                    }
                    BorderedButton {
                        objectName: "updateButton"
                        prominent: true
                        fill: Theme.blue
                        busy: presenter.isUpdating
                        symbol: "arrow.triangle.2.circlepath"
                        text: presenter.isUpdating ? qsTr("更新中...") : qsTr("更新 yt-dlp 到最新版")
                        onClicked: presenter.updateYtDlp()
                    }
                    BorderedButton {
                        objectName: "installYtDlpButton"
                        visible: !DownloadManager.tools.isYtDlpKept
                        enabled: !root.keeper.busy
                        symbol: "arrow.down.circle"
                        text: qsTr("安装最新 yt-dlp")
                        onClicked: DownloadManager.keeper.installYtDlp()
                    }
                    ToggleSwitch {
                        objectName: "autoUpdateSwitch"
                        Layout.fillWidth: true
                        text: qsTr("自动更新 yt-dlp")
                        checked: DownloadManager.keeper.autoUpdate
                        onToggled: DownloadManager.keeper.autoUpdate = checked
                    }
                    Caption {
                        text: qsTr("每天检查一次新版本；由 Quillbox 安装的 yt-dlp 会在没有下载进行时自动更新。")
                        font.pixelSize: Theme.caption2
                    }
                }

                SettingsGroup {
                    id: runtimeGroup

                    readonly property bool found: DownloadManager.tools.detectedJSRuntime.length > 0

                    objectName: "runtimeGroup"
                    Layout.fillWidth: true
                    title: qsTr("JS 运行时（YouTube EJS）")
                    symbol: "cpu"

                    StatusRow {
                        objectName: "runtimeStatus"
                        symbol: runtimeGroup.found ? "checkmark.circle.fill" : "exclamationmark.triangle.fill"
                        tint: runtimeGroup.found ? Theme.green : Theme.orange
                        label: runtimeGroup.found ? qsTr("%1 已就绪").arg(DownloadManager.tools.detectedJSRuntime) : qsTr("未检测到 JS 运行时")
                        redetect: true
                        onRedetectClicked: DownloadManager.detectJSRuntime()
                    }
                    VerdictRow {
                        objectName: "runtimeVerdict"
                        Layout.fillWidth: true
                        verdict: DownloadManager.tools.runtimeVerdict
                        busy: root.keeper.busy
                        onActionClicked: action => presenter.repair(action)
                    }
                    Text {
                        objectName: "runtimePathText"
                        Layout.fillWidth: true
                        visible: DownloadManager.tools.detectedJSRuntimePath.length > 0
                        text: DownloadManager.tools.detectedJSRuntimePath
                        textFormat: Text.PlainText
                        color: Theme.secondaryText
                        font.pixelSize: Theme.caption2
                        elide: Text.ElideMiddle
                    }
                    Divider {}
                    Caption {
                        text: qsTr("YouTube 下载需要 JS 运行时来解决 n-challenge（EJS）。支持 Deno（推荐）、Node.js（≥20）、Bun。")
                    }
                    RowLayout {
                        objectName: "runtimeInstallRow"
                        visible: !runtimeGroup.found
                        spacing: Theme.spacingMedium
                        BorderedButton {
                            objectName: "installDenoButton"
                            symbol: "arrow.up.right.square"
                            text: qsTr("安装 Deno（推荐）")
                            prominent: true
                            fill: Theme.purple
                            onClicked: Desktop.openUrl("https://docs.deno.com/runtime/getting_started/installation/")
                        }
                        BorderedButton {
                            objectName: "installNodeButton"
                            text: qsTr("安装 Node.js")
                            onClicked: Desktop.openUrl("https://nodejs.org/zh-cn/download")
                        }
                    }
                    Caption {
                        objectName: "runtimeBrewHint"
                        visible: !runtimeGroup.found
                        text: qsTr("通过 Homebrew 安装：brew install deno  或  brew install node")
                        font.pixelSize: Theme.caption2
                    }
                }

                SettingsGroup {
                    id: ffmpegGroup

                    readonly property bool found: DownloadManager.tools.detectedFfmpeg.length > 0

                    objectName: "ffmpegGroup"
                    Layout.fillWidth: true
                    title: qsTr("FFmpeg（音频转码）")
                    symbol: "waveform.path.ecg"

                    StatusRow {
                        objectName: "ffmpegStatus"
                        symbol: ffmpegGroup.found ? "checkmark.circle.fill" : "exclamationmark.triangle.fill"
                        tint: ffmpegGroup.found ? Theme.green : Theme.red
                        label: ffmpegGroup.found ? qsTr("FFmpeg 已就绪") : qsTr("未检测到 FFmpeg")
                        redetect: true
                        onRedetectClicked: DownloadManager.detectFfmpeg()
                    }
                    VerdictRow {
                        objectName: "ffmpegVerdict"
                        Layout.fillWidth: true
                        verdict: DownloadManager.tools.ffmpegVerdict
                        // Its one action puts the package manager's command on the clipboard.
                        onActionClicked: Desktop.setClipboardText(DownloadManager.tools.ffmpegInstallCommand)
                    }
                    Text {
                        objectName: "ffmpegVersionText"
                        Layout.fillWidth: true
                        visible: DownloadManager.tools.detectedFfmpegVersion.length > 0
                        text: DownloadManager.tools.detectedFfmpegVersion
                        textFormat: Text.PlainText
                        color: Theme.secondaryText
                        font.pixelSize: Theme.caption2
                        elide: Text.ElideRight
                    }
                    Divider {}
                    Caption {
                        text: qsTr("下载音频（最佳音质、仅音频）时，yt-dlp 需要 FFmpeg 进行音频提取和转码。")
                    }
                    BorderedButton {
                        objectName: "downloadFfmpegButton"
                        visible: !ffmpegGroup.found
                        symbol: "arrow.up.right.square"
                        text: qsTr("下载 FFmpeg")
                        prominent: true
                        fill: Theme.purple
                        onClicked: Desktop.openUrl("https://ffmpeg.org/download.html")
                    }
                    Row {
                        objectName: "ffmpegBrewHint"
                        visible: !ffmpegGroup.found
                        spacing: 0
                        Text {
                            text: qsTr("推荐通过 Homebrew 安装：")
                            color: Theme.secondaryText
                            font.pixelSize: Theme.caption2
                        }
                        Text {
                            text: "brew install ffmpeg"
                            color: Theme.green
                            font.family: Theme.fixedFont.family
                            font.pixelSize: Theme.caption2
                        }
                    }
                }

                SettingsGroup {
                    objectName: "downloadGroup"
                    Layout.fillWidth: true
                    title: qsTr("下载设置")
                    symbol: "folder"

                    Text {
                        text: qsTr("默认输出目录")
                        color: Theme.text
                        font.pixelSize: Theme.body
                    }
                    RowLayout {
                        Layout.fillWidth: true
                        spacing: Theme.spacingMedium
                        TextInputField {
                            objectName: "outputDirField"
                            Layout.fillWidth: true
                            placeholderText: qsTr("选择下载目录")
                            text: AppState.outputDirectory
                            onTextEdited: AppState.outputDirectory = text
                        }
                        BorderedButton {
                            objectName: "browseOutputButton"
                            text: qsTr("浏览...")
                            onClicked: folderDialog.open()
                        }
                    }
                    RowLayout {
                        Layout.fillWidth: true
                        spacing: Theme.spacingMedium
                        Text {
                            Layout.fillWidth: true
                            text: qsTr("同时下载数")
                            color: Theme.text
                            font.pixelSize: Theme.body
                        }
                        SpinBox {
                            id: concurrency

                            objectName: "concurrencySpin"
                            from: 1
                            to: 16
                            editable: true
                            value: DownloadManager.maxConcurrentDownloads
                            onValueModified: DownloadManager.maxConcurrentDownloads = concurrency.value
                        }
                    }
                    ToggleSwitch {
                        objectName: "notifySwitch"
                        Layout.fillWidth: true
                        text: qsTr("完成时通知")
                        checked: AppState.notifyOnFinish
                        onToggled: AppState.notifyOnFinish = checked
                    }
                    // Off holds the queue at start: what was left unfinished waits for "重试".
                    ToggleSwitch {
                        objectName: "resumeSwitch"
                        Layout.fillWidth: true
                        text: qsTr("启动时继续未完成的下载")
                        checked: DownloadManager.resumeAtStart
                        onToggled: DownloadManager.resumeAtStart = checked
                    }
                    Caption {
                        objectName: "storeNotice"
                        visible: text.length > 0
                        text: QueueMemory.storeNotice
                        color: Theme.orange
                    }
                }

                // How the windows are drawn; read once at start, so a change waits for the next.
                SettingsGroup {
                    objectName: "interfaceGroup"
                    Layout.fillWidth: true
                    title: qsTr("界面")
                    symbol: "cpu"

                    RowLayout {
                        Layout.fillWidth: true
                        spacing: Theme.spacingMedium
                        Text {
                            Layout.fillWidth: true
                            text: qsTr("界面渲染")
                            color: Theme.text
                            font.pixelSize: Theme.body
                        }
                        ChoiceBox {
                            id: rendererChoice

                            readonly property var choices: [
                                {
                                    key: "auto",
                                    label: qsTr("自动")
                                },
                                {
                                    key: "hardware",
                                    label: qsTr("硬件加速")
                                },
                                {
                                    key: "software",
                                    label: qsTr("软件")
                                }
                            ]

                            objectName: "rendererChoice"
                            Accessible.name: qsTr("界面渲染")
                            Layout.preferredWidth: 140
                            model: choices
                            textRole: "label"
                            valueRole: "key"
                            // From the list itself: indexOfValue() knows nothing before the popup's
                            // entries are made.
                            currentIndex: Math.max(0, choices.findIndex(choice => choice.key === RendererChoice.setting))
                            onActivated: RendererChoice.setting = rendererChoice.currentValue
                        }
                    }
                    Caption {
                        objectName: "rendererInUse"
                        readonly property var apiNames: ({
                                [GraphicsInfo.Software]: qsTr("软件"),
                                [GraphicsInfo.OpenGL]: "OpenGL",
                                [GraphicsInfo.Metal]: "Metal",
                                [GraphicsInfo.Vulkan]: "Vulkan",
                                [GraphicsInfo.Direct3D11]: "Direct3D 11"
                            })

                        text: qsTr("正在使用：%1（%2）").arg(apiNames[GraphicsInfo.api] ?? qsTr("未知")).arg(RendererChoice.reason)
                    }
                    Caption {
                        objectName: "rendererNextStart"
                        visible: RendererChoice.setting !== RendererChoice.settingAtStart
                        text: qsTr("下次启动 Quillbox 时生效")
                        color: Theme.orange
                    }
                    RowLayout {
                        Layout.fillWidth: true
                        Text {
                            Layout.fillWidth: true
                            text: qsTr("界面语言")
                            color: Theme.text
                            font.pixelSize: Theme.body
                        }
                        ChoiceBox {
                            id: languageChoice

                            // Each language is named in itself.
                            readonly property var choices: [
                                {
                                    key: "system",
                                    label: qsTr("跟随系统")
                                },
                                {
                                    key: "zh_CN",
                                    label: "简体中文"
                                },
                                {
                                    key: "en",
                                    label: "English"
                                }
                            ]

                            objectName: "languageChoice"
                            Accessible.name: qsTr("界面语言")
                            Layout.preferredWidth: 140
                            model: choices
                            textRole: "label"
                            valueRole: "key"
                            currentIndex: Math.max(0, choices.findIndex(choice => choice.key === InterfaceLanguage.setting))
                            onActivated: InterfaceLanguage.setting = languageChoice.currentValue
                        }
                    }
                }

                // A bookmark for the browser's bar: clicked on a page, it opens quillbox:// with the
                // page's address, which the launcher entry hands to Quillbox.
                SettingsGroup {
                    objectName: "browserGroup"
                    Layout.fillWidth: true
                    title: qsTr("从别处添加链接")
                    symbol: "arrow.up.right.square"

                    RowLayout {
                        Layout.fillWidth: true
                        Text {
                            Layout.fillWidth: true
                            text: qsTr("监视剪贴板")
                            color: Theme.text
                            font.pixelSize: Theme.body
                        }
                        ToggleSwitch {
                            objectName: "watchClipboardSwitch"
                            checked: AppState.watchClipboard
                            onToggled: AppState.watchClipboard = checked
                        }
                    }
                    Caption {
                        text: Desktop.seesBackgroundCopies
                            ? qsTr("复制的文字里有新链接时，下载页上方会提示添加；不会自动开始下载。")
                            : qsTr("复制的文字里有新链接时，下载页上方会提示添加。在 Wayland 下只能看到 Quillbox 在前台时复制的内容。")
                    }

                    Caption {
                        text: qsTr("复制下面的书签，在浏览器中新建一个书签并把它粘贴为网址；在视频页面点这个书签，页面链接就会加入 Quillbox 的链接框。")
                    }
                    RowLayout {
                        Layout.fillWidth: true
                        spacing: Theme.spacingMedium
                        Text {
                            objectName: "bookmarkletText"
                            Layout.fillWidth: true
                            text: presenter.bookmarklet
                            textFormat: Text.PlainText
                            color: Theme.gray
                            font.family: Theme.fixedFont.family
                            font.pixelSize: Theme.caption
                            elide: Text.ElideRight
                        }
                        TextButton {
                            id: copyBookmarklet

                            property bool copied: false

                            objectName: "copyBookmarkletButton"
                            text: copied ? qsTr("已复制") : qsTr("复制书签")
                            symbol: copied ? "checkmark" : "doc.on.doc"
                            onClicked: {
                                Desktop.setClipboardText(presenter.bookmarklet)
                                copied = true
                            }
                        }
                    }
                }

                Item {
                    implicitHeight: 0
                }
            }
        }
    }

    FilePickerView {
        id: filePicker

        objectName: "filePicker"
        onSelected: path => root.customYtDlpPath = path
    }

    OnDemand {
        id: folderDialog

        objectName: "settingsFolderDialog"
        source: "dialogs/FolderPicker.qml"
    }
}
