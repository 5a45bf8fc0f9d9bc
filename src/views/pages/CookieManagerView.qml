pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// "Cookie 管理": where downloads take their cookies from, the Chrome export, and the hosts of
// the cookie file with their expiry, so cookies that have run out show before a download fails.
Rectangle {
    id: root

    readonly property bool browserChosen: AppState.cookieSource !== "none" && AppState.cookieSource !== "file"

    // The entry of the browser list that downloads use; while no browser is chosen, Chrome's, or
    // the first browser that has cookies.
    function chosenBrowserIndex(): int {
        const chosen = browserChoice.indexOfValue(root.browserChosen ? AppState.cookieSource : "chrome")
        if (chosen >= 0 && (root.browserChosen || presenter.browsers[chosen].usable))
            return chosen
        const usable = presenter.browsers.findIndex(browser => browser.usable)
        return usable >= 0 ? usable : Math.min(0, browserChoice.count - 1)
    }

    // A page on exporting cookies for yt-dlp, in the browser.
    function openChromeCookiesHelp() {
        Desktop.openUrl(CookieService.chromeCookiesHelpUrl)
    }

    color: Theme.background

    component SourceOption: RadioButton {
        id: option

        required property string source

        checked: option.source === "browser" ? root.browserChosen : AppState.cookieSource === option.source
        spacing: Theme.spacingMedium
        font.pixelSize: Theme.body

        contentItem: Text {
            leftPadding: option.indicator.width + option.spacing
            text: option.text
            textFormat: Text.PlainText
            color: Theme.text
            font: option.font
            verticalAlignment: Text.AlignVCenter
        }
        indicator: Rectangle {
            x: option.leftPadding
            y: (option.height - height) / 2
            implicitWidth: 16
            implicitHeight: 16
            radius: 8
            color: Theme.raised
            border.color: option.checked ? Theme.accent : Theme.border

            Rectangle {
                anchors.centerIn: parent
                width: 8
                height: 8
                radius: 4
                color: Theme.accent
                visible: option.checked
            }
        }
    }

    CookiePagePresenter {
        id: presenter
    }

    ScrollView {
        anchors.fill: parent
        contentWidth: availableWidth

        ColumnLayout {
            width: parent.width
            spacing: Theme.spacingPage
            ColumnLayout {
                Layout.fillWidth: true
                Layout.margins: Theme.spacingPage
                Layout.bottomMargin: 0
                spacing: Theme.spacingTiny
                Text {
                    text: qsTr("Cookie 管理")
                    color: Theme.text
                    font.pixelSize: Theme.title2
                    font.weight: Font.Bold
                }
                Text {
                    Layout.fillWidth: true
                    text: qsTr("需要登录的视频（会员、年龄限制、“确认你不是机器人”）要用已登录浏览器的 Cookie 下载。")
                    color: Theme.gray
                    font.pixelSize: Theme.caption
                    wrapMode: Text.Wrap
                }
            }

            SettingsGroup {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.spacingPage
                Layout.rightMargin: Theme.spacingPage
                title: qsTr("下载使用的 Cookie")
                symbol: "key.fill"

                ButtonGroup {
                    id: sources
                }
                SourceOption {
                    objectName: "sourceNone"
                    source: "none"
                    text: qsTr("不使用")
                    ButtonGroup.group: sources
                    onClicked: AppState.cookieSource = "none"
                }
                RowLayout {
                    Layout.fillWidth: true
                    spacing: Theme.spacing
                    SourceOption {
                        objectName: "sourceBrowser"
                        source: "browser"
                        text: qsTr("从浏览器读取")
                        ButtonGroup.group: sources
                        onClicked: AppState.cookieSource = browserChoice.currentValue
                    }
                    ChoiceBox {
                        id: browserChoice

                        objectName: "browserChoice"
                        Layout.preferredWidth: 180
                        model: presenter.browsers
                        textRole: "label"
                        valueRole: "name"
                        enabledRole: "usable"
                        // Read again when the list changes, as well as when the source does.
                        currentIndex: root.chosenBrowserIndex()
                        // A browser installed since, or used for the first time, is offered at once.
                        popup.onAboutToShow: presenter.refresh()
                        onActivated: index => {
                            if (presenter.browsers[index].usable)
                                AppState.cookieSource = browserChoice.currentValue
                            else
                                browserChoice.currentIndex = Qt.binding(() => root.chosenBrowserIndex())
                        }
                    }
                }
                Hint {
                    objectName: "browserNote"
                    Layout.fillWidth: true
                    visible: text.length > 0
                    text: presenter.browserNote
                }
                RowLayout {
                    Layout.fillWidth: true
                    spacing: Theme.spacing
                    SourceOption {
                        objectName: "sourceFile"
                        source: "file"
                        text: qsTr("使用 Cookie 文件")
                        ButtonGroup.group: sources
                        onClicked: AppState.cookieSource = "file"
                    }
                    TextInputField {
                        objectName: "cookieFileField"
                        Layout.fillWidth: true
                        placeholderText: qsTr("Netscape 格式的 cookies.txt")
                        text: AppState.cookiePath
                        onEditingFinished: AppState.cookiePath = text
                    }
                    BorderedButton {
                        objectName: "browseCookieFileButton"
                        text: qsTr("浏览...")
                        onClicked: fileDialog.open()
                    }
                }
                Text {
                    objectName: "switchOffHint"
                    Layout.fillWidth: true
                    visible: !AppState.useCookies
                    text: qsTr("输入面板的“Cookie”开关已关闭：下载暂不使用 Cookie。")
                    color: Theme.orange
                    font.pixelSize: Theme.caption
                    wrapMode: Text.Wrap
                }
                RowLayout {
                    Layout.fillWidth: true
                    spacing: Theme.spacing
                    BorderedButton {
                        objectName: "checkButton"
                        symbol: "checkmark.circle"
                        busy: presenter.checking
                        enabled: !presenter.checking && AppState.cookieSource !== "none"
                        text: presenter.checking ? qsTr("正在检查...") : qsTr("检查 Cookie")
                        onClicked: presenter.checkCookies()
                    }
                    Text {
                        text: qsTr("登录网站")
                        color: Theme.gray
                        font.pixelSize: Theme.caption
                    }
                    ChoiceBox {
                        id: siteChoice

                        objectName: "checkSiteChoice"
                        Layout.preferredWidth: 140
                        model: presenter.checkSites
                        textRole: "label"
                        valueRole: "key"
                        currentIndex: Math.max(0, siteChoice.indexOfValue(presenter.checkSite))
                        onActivated: presenter.checkSite = siteChoice.currentValue
                    }
                    Item {
                        Layout.fillWidth: true
                    }
                }
                Hint {
                    Layout.fillWidth: true
                    visible: AppState.cookieSource !== "none"
                    text: qsTr("让 yt-dlp 读取所选的 Cookie，不下载、不联网，看看它读到了什么。")
                }
                TextEdit {
                    objectName: "checkResult"
                    Layout.fillWidth: true
                    visible: text.length > 0
                    readOnly: true
                    selectByMouse: true
                    textFormat: TextEdit.PlainText
                    text: presenter.checkSummary
                    color: presenter.checkFailed ? Theme.red : Theme.green
                    font.pixelSize: Theme.caption
                    wrapMode: TextEdit.Wrap
                }
            }

            SettingsGroup {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.spacingPage
                Layout.rightMargin: Theme.spacingPage
                title: qsTr("导出 Chrome Cookie")
                symbol: "arrow.down.to.line"

                Text {
                    Layout.fillWidth: true
                    text: qsTr("把 Chrome（或 Chromium）保存的 Cookie 导出为 Cookie 文件，只有你自己能读取。")
                    color: Theme.gray
                    font.pixelSize: Theme.caption
                    wrapMode: Text.Wrap
                }
                RowLayout {
                    spacing: Theme.spacing
                    BorderedButton {
                        objectName: "exportButton"
                        prominent: true
                        fill: Theme.blue
                        busy: CookieService.isExtracting
                        enabled: !CookieService.isExtracting
                        text: CookieService.isExtracting ? qsTr("正在导出...") : qsTr("导出 Chrome Cookie")
                        onClicked: CookieService.exportChromeCookies()
                    }
                    BorderedButton {
                        objectName: "useExportButton"
                        visible: CookieService.extractedCookiesPath.length > 0 && !CookieService.isExtracting
                        text: qsTr("用于下载")
                        onClicked: presenter.useExportedFile()
                    }
                    BorderedButton {
                        objectName: "cookieHelpButton"
                        symbol: "arrow.up.right.square"
                        text: qsTr("如何获取 Cookie")
                        onClicked: root.openChromeCookiesHelp()
                    }
                }
                TextEdit {
                    objectName: "exportResult"
                    Layout.fillWidth: true
                    visible: text.length > 0 && !CookieService.isExtracting && CookieService.lastError.length === 0
                    readOnly: true
                    selectByMouse: true
                    text: presenter.exportSummary.length > 0
                          ? CookieService.extractedCookiesPath + "\n" + presenter.exportSummary : ""
                    textFormat: TextEdit.PlainText
                    color: Theme.green
                    font.pixelSize: Theme.caption
                    wrapMode: TextEdit.Wrap
                }
                Text {
                    objectName: "exportError"
                    Layout.fillWidth: true
                    visible: text.length > 0
                    text: CookieService.lastError
                    textFormat: Text.PlainText
                    color: Theme.red
                    font.pixelSize: Theme.caption
                    wrapMode: Text.Wrap
                }
            }

            SettingsGroup {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.spacingPage
                Layout.rightMargin: Theme.spacingPage
                Layout.bottomMargin: Theme.spacingPage
                title: qsTr("当前 Cookie 文件")
                symbol: "list.bullet"

                RowLayout {
                    Layout.fillWidth: true

                    Text {
                        objectName: "currentFile"
                        Layout.fillWidth: true
                        text: AppState.cookiePath.length > 0 ? AppState.cookiePath : qsTr("未选择 Cookie 文件")
                        textFormat: Text.PlainText
                        color: AppState.cookiePath.length > 0 ? Theme.text : Theme.gray
                        font.pixelSize: Theme.caption
                        elide: Text.ElideMiddle
                    }
                    BorderedButton {
                        objectName: "rereadButton"
                        symbol: "arrow.clockwise"
                        text: qsTr("重新读取")
                        onClicked: presenter.refresh()
                    }
                }
                Text {
                    objectName: "fileProblem"
                    Layout.fillWidth: true
                    visible: text.length > 0
                    text: presenter.fileProblem
                    textFormat: Text.PlainText
                    color: Theme.red
                    font.pixelSize: Theme.caption
                }
                Text {
                    objectName: "expiredSummary"
                    Layout.fillWidth: true
                    visible: presenter.expiredCount > 0
                    text: qsTr("%n 个网站的 Cookie 已过期，请重新登录后再导出。", "", presenter.expiredCount)
                    textFormat: Text.PlainText
                    color: Theme.orange
                    font.pixelSize: Theme.caption
                    wrapMode: Text.Wrap
                }
                Repeater {
                    objectName: "domainList"
                    model: presenter.domains

                    delegate: RowLayout {
                        id: domainRow

                        required property var modelData
                        readonly property bool expired: modelData.expired

                        objectName: "domainRow"
                        Layout.fillWidth: true
                        spacing: Theme.spacingMedium
                        Text {
                            Layout.preferredWidth: 200
                            text: domainRow.modelData.domain
                            textFormat: Text.PlainText
                            color: domainRow.expired ? Theme.gray : Theme.text
                            font.pixelSize: Theme.caption
                            font.strikeout: domainRow.expired
                            elide: Text.ElideRight
                        }
                        Text {
                            objectName: "domainDetail"
                            Layout.fillWidth: true
                            text: domainRow.modelData.detail
                            textFormat: Text.PlainText
                            color: domainRow.expired ? Theme.red : Theme.gray
                            font.pixelSize: Theme.caption
                            elide: Text.ElideRight
                        }
                        Rectangle {
                            objectName: "expiredBadge"
                            visible: domainRow.expired
                            implicitWidth: badgeText.implicitWidth + 12
                            implicitHeight: badgeText.implicitHeight + 4
                            radius: Theme.radiusTiny
                            color: Theme.red

                            Text {
                                id: badgeText

                                anchors.centerIn: parent
                                text: qsTr("已过期")
                                color: Theme.text
                                font.pixelSize: Theme.caption2
                            }
                        }
                    }
                }
            }
        }
    }

    OnDemand {
        id: fileDialog

        objectName: "cookieFileDialog"
        source: "dialogs/CookieFileDialog.qml"
    }

    Connections {
        target: fileDialog.item
        ignoreUnknownSignals: true

        function onChosen(path: string) {
            AppState.cookiePath = path
            AppState.cookieSource = "file"
        }
    }
}
