import QtQuick
import QtQuick.Templates as T
import QtTest
import Quillbox
import QuillboxTest

// The download pane: its keyboard, presets, folder and notices, and the formats and video
// information it asks yt-dlp for.
ViewTestCase {
    id: testCase

    name: "InputPane"

    Component {
        id: thumbnailComponent

        Thumbnail {
            Rectangle {
                objectName: "statusIcon"
                anchors.fill: parent
            }
        }
    }

    function init() {
        resetForm("out")
        for (const name of ["FAKE_YTDLP_FORMATS", "FAKE_YTDLP_FORMATS_EXIT", "FAKE_YTDLP_FORMATS_STDERR",
                            "FAKE_YTDLP_INFO", "FAKE_YTDLP_INFO_EXIT", "FAKE_YTDLP_INFO_STDERR",
                            "FAKE_YTDLP_INFO_DELAY"])
            TestHelper.setEnv(name, "")
        showMainView()
    }

    function cleanup() {
        stopDownloads()
    }

    // "监视剪贴板": a copy with new links offers them above the box; adding takes them, ignoring
    // drops the offer, and what is already in the box is not offered. Off, nothing is offered.
    function test_clipboardOffer() {
        const bar = child("clipboardBar")
        AppState.watchClipboard = false
        Desktop.setClipboardText("https://copied.example/0")
        wait(50)
        verify(!bar.visible)
        AppState.watchClipboard = true
        // Words the links box would take, but nobody copies as links.
        Desktop.setClipboardText("alice@example.com report.pdf TODO:fix")
        wait(50)
        verify(!bar.visible)
        AppState.urlInput = "https://copied.example/1"
        Desktop.setClipboardText("https://copied.example/1 and https://copied.example/2 https://copied.example/3")
        tryVerify(() => bar.visible)
        compare(child("clipboardAddButton").text, "添加 2 个链接")
        mouseClick(child("clipboardAddButton"))
        verify(!bar.visible)
        compare(AppState.urlInput, "https://copied.example/1\nhttps://copied.example/2\nhttps://copied.example/3")
        Desktop.setClipboardText("https://copied.example/4")
        tryVerify(() => bar.visible)
        mouseClick(child("clipboardIgnoreButton"))
        verify(!bar.visible)
        compare(AppState.urlInput, "https://copied.example/1\nhttps://copied.example/2\nhttps://copied.example/3")
        AppState.watchClipboard = false
    }

    // "从文件导入链接…" opens the file dialog over the download page; the chosen file's links join
    // the box, and a file without any says so.
    function test_importLinksFromFile() {
        AppState.selectedTab = 1
        const file = TestHelper.tempDir() + "/import.txt"
        TestHelper.writeFile(file, "https://import.example/1\nnot a link\nimport.example/2\n")
        view.importLinks()
        compare(AppState.selectedTab, 0)
        const dialog = child("linksFileDialog")
        tryVerify(() => dialog.item !== null && dialog.item.visible)
        dialog.item.chosen(file)
        compare(AppState.urlInput, "https://import.example/1\nimport.example/2")
        dialog.item.close()
        TestHelper.writeFile(file, "nothing here\n")
        dialog.item.chosen(file)
        compare(child("startNotice").text, "文件中没有链接：import.txt")
    }

    // Without a JavaScript runtime YouTube would fail: the download page says so, and "修复"
    // opens the settings.
    function test_toolchainNoticeOpensTheSettings() {
        TestHelper.removeFile(TestHelper.tempDir() + "/home/.deno/bin/deno")
        DownloadManager.detectJSRuntime()
        const notice = child("toolchainNotice")
        tryVerify(() => notice.visible, 20000)
        AppState.showSettings = false
        mouseClick(child("verdictActionButton", notice))
        verify(AppState.showSettings)
        AppState.showSettings = false
    }

    // Whether `item` shows in the form's scroll view, not under the bar at the pane's foot.
    function inViewport(item) {
        const at = item.mapToItem(child("inputScroller"), 0, 0)
        return at.y >= 0 && at.y + item.height <= child("inputScroller").height
    }

    // Tab walks the pane top to bottom in the smallest window, each focused control scrolled into
    // sight and ringed in the accent (a preset card in white: the accent marks the chosen one);
    // Ctrl+Tab types a tab into the links; Enter presses the focused button.
    function test_keyboard() {
        showMainView({ width: 900, height: 600 })
        const before = DownloadManager.tasks.count
        const editor = child("linksEditor")
        mouseClick(editor)
        for (const key of "a.bc")
            keySequence(key)
        keyClick(Qt.Key_Tab, Qt.ControlModifier)
        compare(AppState.urlInput, "a.bc\t")
        keyClick(Qt.Key_Backtab, Qt.ShiftModifier)
        verify(child("clearButton").activeFocus)
        keyClick(Qt.Key_Tab)
        verify(editor.activeFocus)

        const order = ["preset0", "preset1", "preset2", "preset3", "preset4", "preset5", "optionsHeader", "playlistSwitch",
                       "cookieSwitch", "outputField", "folderButton", "listFormatsButton", "videoInfoButton"]
        // The toolchain notice's "修复", when there is one (no JavaScript runtime in the sandbox).
        if (child("toolchainNotice").visible)
            order.push("verdictActionButton")
        order.push("startButton")
        for (const name of order) {
            keyClick(Qt.Key_Tab)
            const item = child(name)
            verify(item.activeFocus, name)
            waitForRendering(view)
            verify(name === "startButton" || name === "verdictActionButton" || inViewport(item), name)
            if (name.startsWith("preset"))
                verify(findChild(item, "focusRing").visible && item.isSelected === (name === "preset0")
                       && !Qt.colorEqual(findChild(item, "focusRing").border.color, Theme.accent), name)
            // A bordered button shows focus on its border instead of a ring.
            const ring = item.showsFocusRing ? findChild(item, "focusRing") : null
            if (ring) {
                verify(ring.visible, name)
                verify(Qt.colorEqual(ring.border.color, Theme.accent))
            }
        }
        keyClick(Qt.Key_Return)
        compare(TestHelper.taskUrls().slice(before), ["a.bc"])
    }

    function test_customArgumentsOnlyUnderCustom() {
        const custom = child("customSection")
        compare(custom.visible, false)
        mouseClick(child("preset5"))
        compare(AppState.selectedPreset, Download.Custom)
        tryCompare(custom, "visible", true)
        mouseClick(child("customField"))
        for (const key of "-x")
            keySequence(key)
        compare(AppState.customArguments, "-x")

        // What the download could not split is said as it is typed, and "开始下载" refuses it.
        const before = DownloadManager.tasks.count
        AppState.urlInput = "https://custom.example/1"
        for (const key of " 'best")
            keyClick(key)
        const error = child("customArgumentsError")
        compare(error.text, "自定义参数中的单引号没有闭合")
        pressStart()
        compare(child("startNotice").text, error.text)
        compare(DownloadManager.tasks.count, before)
        AppState.customArguments += "'"
        compare([error.visible, child("startNotice").visible], [false, false])
        pressStart()
        compare(TestHelper.taskUrls().slice(before), ["https://custom.example/1"])

        // Another preset hides the field but keeps its text.
        mouseClick(child("preset1"))
        compare(custom.visible, false)
        compare(AppState.customArguments, "-x 'best'")
    }

    // "开始下载" says how many it queued, and a full queue shows them; the same links again are
    // queued only once the question is answered "再次加入".
    function test_startAndRepeat() {
        const before = DownloadManager.tasks.count
        AppState.urlInput = Array.from({ length: 10 }, (_, i) => "https://many.example/" + i).join("\n")
        pressStart()
        compare(child("queuedNotice").text, "已加入 10 个下载")
        verify(child("queuedNotice").visible)
        AppState.urlInput = "https://again.example/1\nhttps://again.example/2"
        pressStart()
        compare(child("queuedNotice").text, "已加入 2 个下载")
        const list = child("taskList")
        const newest = () => list.itemAtIndex(list.count - 1)
        tryVerify(() => newest() && newest().y >= list.contentY
                  && newest().y + newest().height <= list.contentY + list.height)
        const dialog = child("repeatDialog")
        for (const answer of ["confirmCancelButton", "confirmButton"]) {
            pressStart()
            tryCompare(dialog, "opened", true)
            compare(child("confirmMessage", dialog.item).text, "这 2 个链接都已在队列中，要再加入一次吗？")
            compare(DownloadManager.tasks.count, before + 12)
            mouseClick(child(answer, dialog.item))
            tryCompare(dialog, "opened", false)
        }
        compare(TestHelper.taskUrls().slice(before + 12), ["https://again.example/1", "https://again.example/2"])
    }

    // "下载选项", folded, says what is set in one line and is not made until opened; its controls
    // change the options at once; a value that cannot be used keeps "开始下载" from queuing, and the
    // row of a download shows the outcome asked for.
    function test_downloadOptions() {
        const body = child("optionsBody")
        const summary = child("optionsSummary")
        compare(body.item, null)
        compare(summary.text, "未设置")
        mouseClick(child("optionsHeader"))
        tryVerify(() => body.item !== null)
        child("compatibilityChoice").forceActiveFocus()
        keyClick(Qt.Key_Down)
        clickInForm(child("embedThumbnailSwitch"))
        compare(summary.text, "嵌入封面 · 到处都能播放")

        const proxy = child("proxyField")
        proxy.forceActiveFocus()
        typeText("127.0.0.1:8080")
        verify(child("proxyError").visible)
        const before = DownloadManager.tasks.count
        AppState.urlInput = "https://options.example/1"
        pressStart()
        compare(child("startNotice").text, "下载选项：代理地址应形如 http://127.0.0.1:7890 或 socks5://127.0.0.1:1080")
        compare(DownloadManager.tasks.count, before)
        proxy.forceActiveFocus()
        proxy.selectAll()
        typeText("socks5://127.0.0.1:1080")
        compare(proxy.text, "socks5://127.0.0.1:1080")
        verify(!child("proxyError").visible)
        compare(summary.text, "嵌入封面 · 代理 SOCKS5 · 到处都能播放")
        pressStart()
        compare(DownloadManager.tasks.count, before + 1)
        verify(child("detailsText", rowAt(before)).text.includes("H.264 · AAC · MP4"))
        // Once the first link's information is in, the preview names its file, not an example's.
        compare(child("templatePreview").text, "示例：示例视频.mp4")
        clickInForm(child("videoInfoButton"))
        tryVerify(() => child("templatePreview").text.startsWith("预览："), 20000)
        tryCompare(child("videoInfoSheet"), "opened", true)
        keyClick(Qt.Key_Escape)
        tryCompare(child("videoInfoSheet"), "opened", false)

        clickInForm(child("resetOptionsButton"))
        compare(summary.text, "未设置")
        compare(proxy.text, "")
    }

    // Every row of presets is full, and as many show before any scrolling as the window allows; a
    // wide tile's name is on one line; the links box shows five whole lines and scrolls the rest.
    function test_formFitsItsWindow_data() {
        return [{ tag: "1200x800", width: 1200, height: 800, shown: 6, oneLine: true },
                { tag: "900x600", width: 900, height: 600, shown: 4, oneLine: false },
                { tag: "1920x1080", width: 1920, height: 1080, shown: 6, oneLine: true }]
    }

    function test_formFitsItsWindow(data) {
        // Grown from the smallest window, as a window that is enlarged.
        showMainView({ width: 900, height: 600 })
        view.width = data.width
        view.height = data.height
        waitForRendering(view)
        const cards = [0, 1, 2, 3, 4, 5].map(i => child("preset" + i))
        compare(cards.filter(card => card.y === cards[5].y).length, cards.filter(card => card.y === 0).length)
        verify(cards.filter(card => inViewport(card)).length >= data.shown)
        verify(!data.oneLine || cards.every(card => findChild(card, "presetName").lineCount === 1))
        verify(inside(child("startButton")))

        AppState.urlInput = [1, 2, 3, 4, 5, 6].map(i => "https://lines.example/" + i).join("\n")
        const editor = child("linksEditor")
        const bottomOf = line => editor.mapToItem(child("linksScroller"), 0, editor.positionToRectangle(
            editor.text.indexOf("/" + line)).y).y + editor.positionToRectangle(0).height
        tryVerify(() => bottomOf(5) <= child("linksScroller").height && bottomOf(6) > child("linksScroller").height)
    }

    function test_formatsSheetShowsTheTable() {
        TestHelper.setEnv("FAKE_YTDLP_FORMATS", "ID  EXT  RESOLUTION\n18  mp4  640x360")
        AppState.urlInput = "https://f.example/v\nhttps://f.example/other"
        mouseClick(child("listFormatsButton"))
        const sheet = child("formatsSheet")
        tryCompare(sheet, "opened", true, 20000)
        compare(child("formatsText", sheet).text, "ID  EXT  RESOLUTION\n18  mp4  640x360\n")
        mouseClick(child("copyButton", sheet))
        compare(Desktop.clipboardText(), "ID  EXT  RESOLUTION\n18  mp4  640x360\n")
        mouseClick(child("closeFormatsButton", sheet))
        tryCompare(sheet, "opened", false)

        // The sheet is made once; listing again shows it again, with the new table. A table wider
        // than its pane gets a bar in sight that scrolls to the table's end.
        const wide = "ID  EXT  " + "MORE INFO ".repeat(40)
        TestHelper.setEnv("FAKE_YTDLP_FORMATS", wide)
        mouseClick(child("listFormatsButton"))
        tryCompare(sheet, "opened", true, 20000)
        tryCompare(child("formatsText", sheet), "text", wide + "\n")
        const bar = child("formatsSideBar", sheet)
        const text = child("formatsScroller", sheet).contentItem
        verify(bar.visible && bar.contentItem.opacity > 0)
        verify(text.contentWidth > text.width)
        bar.position = 1 - bar.size
        verify(text.contentX + text.width >= text.contentWidth - 1)
    }

    // "使用所选格式" replaces custom arguments the user wrote only once the user agrees (the
    // question shows them with secrets masked); with none, or this very choice, it asks nothing.
    function test_chosenFormatKeepsCustomArguments_data() {
        return [
            { tag: "none written", written: "", asks: false },
            { tag: "the same choice", written: "-f 18", asks: false },
            { tag: "declined", written: "--limit-rate 1M", asks: true, agree: false, shows: "--limit-rate 1M" },
            { tag: "agreed", written: "--password hunter2", asks: true, agree: true, shows: "--password ••••••" },
        ]
    }

    function test_chosenFormatKeepsCustomArguments(data) {
        AppState.customArguments = data.written
        AppState.urlInput = "https://f.example/v"
        mouseClick(child("listFormatsButton"))
        const sheet = child("formatsSheet")
        tryCompare(sheet, "opened", true, 20000)
        const table = child("formatTable", sheet)
        tryVerify(() => table.itemAtIndex(4) !== null, 20000)
        mouseClick(table.itemAtIndex(4)) // 18, audio and video
        mouseClick(child("applyFormatButton", sheet))
        const question = child("replaceArgumentsQuestion", sheet)
        tryCompare(question, "opened", data.asks)
        if (data.asks) {
            const message = child("confirmMessage", question).text
            verify(message.includes(data.shows) && !message.includes("hunter2"), message)
            mouseClick(child(data.agree ? "confirmButton" : "confirmCancelButton", question))
        }
        const applied = !data.asks || data.agree
        tryCompare(sheet, "opened", !applied)
        compare(AppState.customArguments, applied ? "-f 18" : data.written)
        compare(AppState.selectedPreset, applied ? Download.Custom : Download.Default)
    }

    // When yt-dlp cannot read the link, what it said is shown in an alert, and nothing else opens
    // or spins.
    function test_toolFailureAlert_data() {
        return [
            { tag: "formats", button: "listFormatsButton", alert: "formatsErrorAlert", sheet: "formatsSheet",
              variable: "FAKE_YTDLP_FORMATS", says: "ERROR: Unsupported URL: nope\n" },
            { tag: "information", button: "videoInfoButton", alert: "videoInfoErrorAlert", sheet: "videoInfoSheet",
              variable: "FAKE_YTDLP_INFO", says: "ERROR: Unsupported URL: nope" },
        ]
    }

    function test_toolFailureAlert(data) {
        TestHelper.setEnv(data.variable + "_EXIT", "1")
        TestHelper.setEnv(data.variable + "_STDERR", "WARNING: slow\nERROR: Unsupported URL: nope")
        AppState.urlInput = "nope"
        mouseClick(child(data.button))
        const alert = child(data.alert)
        tryCompare(alert, "opened", true, 20000)
        verify(child("alertMessage", alert).text.endsWith(data.says), child("alertMessage", alert).text)
        compare(child(data.sheet).opened, false)
        compare(child("videoInfoIndicator").visible, false)
        mouseClick(child("alertOkButton", alert))
        tryCompare(alert, "opened", false)
    }

    // The folder dialog opens in the form's folder, or the nearest one above it that is there (else
    // home). Drawn by Qt (offscreen) under the window's white text, its title and path are dark on
    // light, and it chooses the folder it shows.
    function test_folderButtonChoosesTheOutputFolder_data() {
        const root = TestHelper.tempDir()
        return [
            { tag: "the folder", folder: root, opensIn: root },
            { tag: "not made yet", folder: root + "/新建/视频", opensIn: root },
            { tag: "none", folder: "", opensIn: TestHelper.env("HOME") },
        ]
    }

    function test_folderButtonChoosesTheOutputFolder(data) {
        AppState.outputDirectory = data.folder
        view.Window.window.palette.windowText = Theme.text
        const picker = child("folderDialog")
        compare(picker.opened, false)
        mouseClick(child("folderButton"))
        tryCompare(picker, "opened", true)
        const drawn = FileDialogs.fallbackOf(picker.item)
        verify(drawn)
        compare(drawn.currentFolder, Desktop.fileUrl(data.opensIn))
        const lightness = c => 0.3 * c.r + 0.59 * c.g + 0.11 * c.b
        const title = findChild(drawn.header, "dialogTitleBarLabel")
        compare(title.text, "选择输出目录")
        verify(lightness(drawn.header.palette.window) - lightness(title.color) > 0.6)
        verify(lightness(drawn.palette.windowText) < 0.3)
        const choose = drawn.footer.standardButton(T.Dialog.Open)
        verify(choose.text === "选择" && choose.enabled)
        mouseClick(choose)
        tryCompare(picker, "opened", false)
        compare(AppState.outputDirectory, data.opensIn)
        view.Window.window.palette = undefined
    }

    // The sheet once open, and its rows a person sees, as "label value".
    function openedSheet() {
        tryCompare(child("videoInfoSheet"), "opened", true, 20000)
        return child("videoInfoView")
    }

    function shownRows(sheet) {
        return ["durationRow", "uploaderRow", "viewCountRow", "likeCountRow"].map(name => child(name, sheet))
            .filter(row => row.visible).map(row => child("infoTitle", row).text + " " + child("infoValue", row).text)
    }

    // A record's counts only where it has them, with all their digits; a length or uploader
    // yt-dlp did not give reads "未知".
    function test_records_data() {
        return [
            { tag: "without counts", title: "没有计数的视频", shows: ["时长 1:05", "作者 某人"],
              json: '{"url": "u", "title": "没有计数的视频", "duration": 65, "uploader": "某人", "formats": []}' },
            { tag: "no length, closed with Enter", title: "直播", shows: ["时长 未知", "作者 某人"], enter: true,
              json: '{"url": "u", "title": "直播", "duration": 0, "uploader": "某人", "formats": []}' },
            { tag: "all digits", title: "t", shows: ["时长 1:00:00", "作者 未知", "播放量 12345678901", "点赞数 0"],
              json: '{"url": "u", "title": "t", "duration": 3600, "uploader": "", "viewCount": 12345678901, '
                    + '"likeCount": 0, "formats": []}' },
        ]
    }

    function test_records(data) {
        view.videoInfo = TestHelper.videoInfo(data.json)
        view.showVideoInfo = true
        const sheet = openedSheet()
        compare(child("videoTitle", sheet).text, data.title)
        compare(shownRows(sheet), data.shows)
        if (data.enter)
            keyClick(Qt.Key_Return)
        else
            mouseClick(child("closeVideoInfoButton", sheet))
        compare(view.showVideoInfo, false)
        tryCompare(child("videoInfoSheet"), "opened", false)
    }

    // "视频信息" asks for the first line, spins meanwhile, and shows what yt-dlp -J printed.
    function test_openedFromTheInputPane() {
        TestHelper.setEnv("FAKE_YTDLP_INFO", String(Qt.resolvedUrl("../../data/videoinfo/page.json")).slice(7))
        TestHelper.setEnv("FAKE_YTDLP_INFO_DELAY", "1")
        AppState.urlInput = "https://i.example/page\nhttps://i.example/other"
        const button = child("videoInfoButton")
        const indicator = child("videoInfoIndicator")
        compare(indicator.visible, false)
        mouseClick(button)
        verify(indicator.visible)
        verify(!button.enabled)
        const sheet = openedSheet()
        compare(child("videoTitle", sheet).text, "测试视频 Quillbox")
        verify(button.enabled)
        compare(view.videoInfo.url, "https://i.example/page")
    }

    // A thumbnail that cannot load leaves what stands in for it.
    function test_thumbnailFallsBack() {
        const thumbnail = createTemporaryObject(thumbnailComponent, testCase, { source: "http://127.0.0.1:9/none.jpg" })
        tryCompare(child("thumbnailImage", thumbnail), "status", Image.Error, 20000)
        verify(child("thumbnailFallback", thumbnail).visible)
        compare(thumbnail.loaded, false)
    }
}
