pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The controls of "下载选项", each written back to the options at once.
GridLayout {
    id: root

    property DownloadOptionsPresenter options

    // A list of {key, label} shown by label; `value` is the key chosen.
    component KeyChoice: ChoiceBox {
        id: choice

        property var choices: []
        property string value
        signal chosen(string key)

        Layout.preferredWidth: 150
        width: Layout.preferredWidth
        model: choices
        textRole: "label"
        // From the list itself: indexOfValue() knows nothing before the popup's entries are made.
        currentIndex: Math.max(0, choices.findIndex(entry => entry.key === choice.value))
        onActivated: index => choice.chosen(choices[index].key)
    }

    component Label: Text {
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: 6
        textFormat: Text.PlainText
        color: Theme.gray
        font.pixelSize: Theme.caption
    }

    // A small word that is on or off (a language, a category) or puts something in (a field).
    component Chip: AbstractButton {
        id: chip

        property bool on: false

        implicitWidth: contentItem.implicitWidth + 2 * Theme.spacingMedium
        implicitHeight: contentItem.implicitHeight + Theme.spacingSmall
        focusPolicy: Qt.StrongFocus
        Keys.onReturnPressed: chip.clicked()
        Accessible.name: chip.text
        background: Rectangle {
            radius: height / 2
            color: chip.on ? Theme.accent : (chip.hovered ? Theme.border : Theme.raised)
            border.width: chip.visualFocus ? 2 : 1
            border.color: chip.visualFocus ? Theme.accent : Theme.border
        }
        contentItem: Text {
            text: chip.text
            textFormat: Text.PlainText
            color: Theme.text
            font.pixelSize: Theme.caption
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
        }
    }

    columns: 2
    columnSpacing: Theme.spacingLarge
    rowSpacing: Theme.spacing

    // --- Compatibility
    Label {
        text: qsTr("兼容性")
    }
    ColumnLayout {
        Layout.fillWidth: true
        Layout.preferredWidth: 0
        spacing: Theme.spacingTiny
        KeyChoice {
            objectName: "compatibilityChoice"
            Accessible.name: qsTr("兼容性")
            choices: [
                { key: "any", label: qsTr("不限", "any compatibility") },
                { key: "everywhere", label: qsTr("到处都能播放") },
                { key: "quality", label: qsTr("画质最佳") },
                { key: "smallest", label: qsTr("体积最小") }
            ]
            value: root.options.compatibility
            onChosen: key => root.options.compatibility = key
        }
        Hint {
            Layout.fillWidth: true
            visible: text.length > 0
            text: ({
                    everywhere: qsTr("优先 H.264 视频和 AAC 音频，合并为 MP4：QuickTime、剪辑软件和手机都能打开；没有时下载现有的格式"),
                    quality: qsTr("优先分辨率、帧率和码率最高的格式"),
                    smallest: qsTr("优先文件最小的格式")
                })[root.options.compatibility] ?? ""
        }
    }

    // --- Subtitles
    Label {
        text: qsTr("字幕")
    }
    ColumnLayout {
        Layout.fillWidth: true
        Layout.preferredWidth: 0
        spacing: Theme.spacingSmall
        Flow {
            Layout.fillWidth: true
            Layout.preferredWidth: 0
            spacing: Theme.spacing
            KeyChoice {
                objectName: "subtitlesChoice"
                Accessible.name: qsTr("字幕")
                choices: [
                    { key: "off", label: qsTr("不要") },
                    { key: "download", label: qsTr("下载字幕文件") },
                    { key: "embed", label: qsTr("嵌入视频") }
                ]
                value: root.options.subtitles
                onChosen: key => root.options.subtitles = key
            }
            KeyChoice {
                objectName: "subtitleFormatChoice"
                Accessible.name: qsTr("字幕格式")
                visible: root.options.subtitles !== "off"
                width: 110
                choices: [
                    { key: "srt", label: "SRT" },
                    { key: "", label: qsTr("原格式") }
                ]
                value: root.options.subtitleFormat
                onChosen: key => root.options.subtitleFormat = key
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.preferredWidth: 0
            visible: root.options.subtitles !== "off"
            spacing: Theme.spacingSmall
            TextInputField {
                objectName: "subtitleLanguagesField"
                Layout.fillWidth: true
                Accessible.name: qsTr("字幕语言")
                text: root.options.subtitleLanguages
                placeholderText: "zh.*,en"
                font.family: Theme.fixedFont.family
                onTextEdited: root.options.subtitleLanguages = text
            }
            Flow {
                Layout.fillWidth: true
                Layout.preferredWidth: 0
                spacing: Theme.spacingSmall
                Repeater {
                    model: [
                        { code: "zh.*", label: qsTr("中文") },
                        { code: "zh-Hans", label: qsTr("简体") },
                        { code: "zh-Hant", label: qsTr("繁体") },
                        { code: "en", label: qsTr("英语") },
                        { code: "ja", label: qsTr("日语") },
                        { code: "ko", label: qsTr("韩语") },
                        { code: "all", label: qsTr("全部") }
                    ]
                    delegate: Chip {
                        required property var modelData

                        text: modelData.label
                        on: root.options.languageCodes.includes(modelData.code)
                        onClicked: root.options.setSubtitleLanguage(modelData.code, !on)
                    }
                }
            }
            ToggleSwitch {
                objectName: "autoSubtitlesSwitch"
                text: qsTr("包括自动生成的字幕")
                checked: root.options.autoSubtitles
                onToggled: root.options.autoSubtitles = checked
            }
        }
    }

    // --- Embedding
    Label {
        text: qsTr("嵌入")
    }
    Flow {
        Layout.fillWidth: true
        Layout.preferredWidth: 0
        spacing: Theme.spacingWide
        ToggleSwitch {
            objectName: "embedThumbnailSwitch"
            text: qsTr("封面")
            checked: root.options.embedThumbnail
            onToggled: root.options.embedThumbnail = checked
        }
        ToggleSwitch {
            objectName: "embedMetadataSwitch"
            text: qsTr("元数据")
            checked: root.options.embedMetadata
            onToggled: root.options.embedMetadata = checked
        }
        ToggleSwitch {
            objectName: "embedChaptersSwitch"
            text: qsTr("章节")
            checked: root.options.embedChapters
            onToggled: root.options.embedChapters = checked
        }
    }

    // --- SponsorBlock
    Label {
        text: "SponsorBlock"
    }
    ColumnLayout {
        Layout.fillWidth: true
        Layout.preferredWidth: 0
        spacing: Theme.spacingSmall
        KeyChoice {
            objectName: "sponsorBlockChoice"
            Accessible.name: "SponsorBlock"
            choices: [
                { key: "off", label: qsTr("不用") },
                { key: "mark", label: qsTr("标记为章节") },
                { key: "remove", label: qsTr("移除片段") }
            ]
            value: root.options.sponsorBlock
            onChosen: key => root.options.sponsorBlock = key
        }
        Flow {
            Layout.fillWidth: true
            Layout.preferredWidth: 0
            visible: root.options.sponsorBlock !== "off"
            spacing: Theme.spacingSmall
            Repeater {
                model: [
                    { key: "sponsor", label: qsTr("赞助") },
                    { key: "intro", label: qsTr("片头") },
                    { key: "outro", label: qsTr("片尾") },
                    { key: "selfpromo", label: qsTr("自我推广") },
                    { key: "preview", label: qsTr("预告") },
                    { key: "filler", label: qsTr("题外话") },
                    { key: "interaction", label: qsTr("互动提醒") },
                    { key: "music_offtopic", label: qsTr("非音乐部分") }
                ]
                delegate: Chip {
                    required property var modelData

                    objectName: "category_" + modelData.key
                    text: modelData.label
                    on: root.options.sponsorCategories.includes(modelData.key)
                    onClicked: root.options.setSponsorCategory(modelData.key, !on)
                }
            }
        }
    }

    // --- Rate limit
    Label {
        text: qsTr("限速")
    }
    ColumnLayout {
        Layout.fillWidth: true
        Layout.preferredWidth: 0
        spacing: Theme.spacingTiny
        RowLayout {
            spacing: Theme.spacing
            TextInputField {
                id: rateField

                objectName: "rateField"
                Layout.preferredWidth: 100
                Accessible.name: qsTr("限速")
                text: root.options.rateLimit.slice(0, -1)
                placeholderText: qsTr("不限")
                inputMethodHints: Qt.ImhFormattedNumbersOnly
                onTextEdited: root.options.rateLimit = text.trim().length > 0 ? text.trim() + rateUnit.currentValue : ""
            }
            KeyChoice {
                id: rateUnit

                objectName: "rateUnitChoice"
                Accessible.name: qsTr("限速单位")
                Layout.preferredWidth: 90
                valueRole: "key"
                choices: [
                    { key: "M", label: "MB/s" },
                    { key: "K", label: "KB/s" }
                ]
                value: root.options.rateLimit.endsWith("K") ? "K" : "M"
                onChosen: key => {
                    if (rateField.text.trim().length > 0)
                        root.options.rateLimit = rateField.text.trim() + key
                }
            }
        }
        Problem {
            objectName: "rateError"
            text: root.options.rateLimitError
        }
    }

    // --- Proxy
    Label {
        text: qsTr("代理")
    }
    ColumnLayout {
        Layout.fillWidth: true
        Layout.preferredWidth: 0
        spacing: Theme.spacingTiny
        TextInputField {
            objectName: "proxyField"
            Layout.fillWidth: true
            Accessible.name: qsTr("代理")
            text: root.options.proxy
            placeholderText: qsTr("不用代理，例如 socks5://127.0.0.1:1080")
            font.family: Theme.fixedFont.family
            onTextEdited: root.options.proxy = text
        }
        Problem {
            objectName: "proxyError"
            text: root.options.proxyError
        }
        Hint {
            objectName: "proxyScheme"
            Layout.fillWidth: true
            visible: root.options.proxyError.length === 0 && root.options.proxyScheme.length > 0
            text: qsTr("%1 代理，链接信息、格式列表和下载都经过它").arg(root.options.proxyScheme)
        }
    }

    // --- File name
    Label {
        text: qsTr("文件名")
    }
    ColumnLayout {
        Layout.fillWidth: true
        Layout.preferredWidth: 0
        spacing: Theme.spacingSmall
        TextInputField {
            id: templateField

            objectName: "templateField"
            Layout.fillWidth: true
            Accessible.name: qsTr("文件名模板")
            text: root.options.fileTemplate
            placeholderText: "%(title)s.%(ext)s"
            font.family: Theme.fixedFont.family
            onTextEdited: root.options.fileTemplate = text
        }
        Flow {
            Layout.fillWidth: true
            Layout.preferredWidth: 0
            spacing: Theme.spacingSmall
            Repeater {
                model: [
                    { field: "%(title)s", label: qsTr("标题") },
                    { field: "%(id)s", label: "ID" },
                    { field: "%(uploader)s", label: qsTr("上传者") },
                    { field: "%(upload_date)s", label: qsTr("日期") },
                    { field: "%(resolution)s", label: qsTr("分辨率") },
                    { field: "%(playlist_index)s", label: qsTr("列表序号") },
                    { field: "%(ext)s", label: qsTr("扩展名") }
                ]
                delegate: Chip {
                    required property var modelData

                    text: modelData.label
                    onClicked: {
                        templateField.insert(templateField.cursorPosition, modelData.field)
                        root.options.fileTemplate = templateField.text
                        templateField.forceActiveFocus()
                    }
                }
            }
        }
        Problem {
            objectName: "templateError"
            text: root.options.templateError
        }
        Hint {
            objectName: "templatePreview"
            Layout.fillWidth: true
            visible: root.options.templateError.length === 0
            text: (root.options.previewIsExample ? qsTr("示例：%1") : qsTr("预览：%1")).arg(root.options.templatePreview)
            wrapMode: Text.WrapAnywhere
        }
    }

    // --- Archive
    Label {
        text: qsTr("下载存档")
    }
    ColumnLayout {
        Layout.fillWidth: true
        Layout.preferredWidth: 0
        spacing: Theme.spacingTiny
        ToggleSwitch {
            objectName: "archiveSwitch"
            text: qsTr("跳过已经下载过的视频")
            checked: root.options.useArchive
            onToggled: root.options.useArchive = checked
        }
        Hint {
            Layout.fillWidth: true
            visible: root.options.useArchive
            text: qsTr("记录在 %1").arg(root.options.archiveFile)
            wrapMode: Text.WrapAnywhere
        }
    }

    Item {
        implicitWidth: 1
    }
    TextButton {
        objectName: "resetOptionsButton"
        enabled: !root.options.isDefault
        symbol: "arrow.clockwise"
        text: qsTr("全部清除")
        onClicked: root.options.reset()
    }
}
