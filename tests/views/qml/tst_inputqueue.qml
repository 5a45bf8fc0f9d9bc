import QtQuick
import QtTest
import Quillbox
import QuillboxTest

TestCase {
    id: testCase

    name: "InputAndQueue"
    width: 1200
    height: 800
    visible: true
    when: windowShown

    Component {
        id: mainViewComponent

        MainView {
            width: testCase.width
            height: testCase.height
        }
    }

    property var view: null

    function init() {
        AppState.urlInput = ""
        AppState.customArguments = ""
        AppState.selectedPreset = Download.Default
        AppState.useCookies = false
        AppState.showLogPanel = false
        AppState.outputDirectory = TestHelper.tempDir() + "/out"
        TestHelper.setScenario("[]", 0)
        TestHelper.setEnv("FAKE_YTDLP_FORMATS", "")
        TestHelper.setEnv("FAKE_YTDLP_FORMATS_EXIT", "")
        TestHelper.setEnv("FAKE_YTDLP_FORMATS_STDERR", "")
        view = createTemporaryObject(mainViewComponent, testCase)
        verify(view)
        // The view's own installation check must not race a test's clicks.
        tryCompare(view, "installationCheck", 0, 20000)
    }

    function cleanup() {
        DownloadManager.cancelAllDownloads()
        tryCompare(DownloadManager, "runningCount", 0, 20000)
    }

    function child(name) {
        const item = findChild(view, name)
        verify(item, name)
        return item
    }

    // Presses "开始下载" as a person would: scrolled into view first if the form is taller than
    // the pane.
    function pressStart() {
        waitForRendering(view)
        const start = child("startButton")
        const flickable = child("inputScroller").contentItem
        const bottom = start.mapToItem(flickable.contentItem, 0, start.height).y
        if (bottom > flickable.contentY + flickable.height)
            flickable.contentY = bottom - flickable.height
        waitForRendering(view)
        mouseClick(start)
    }

    function newTasks(before) {
        return TestHelper.taskUrls().slice(before)
    }

    // Without a JavaScript runtime YouTube would fail: the download page says so, and "修复"
    // opens the settings.
    function test_toolchainNoticeOpensTheSettings() {
        const deno = TestHelper.tempDir() + "/home/.deno/bin/deno"
        TestHelper.removeFile(deno)
        DownloadManager.detectJSRuntime()
        const notice = child("toolchainNotice")
        tryVerify(() => notice.visible, 20000)
        compare(findChild(notice, "verdictText").text, "没有可用的 JS 运行时，YouTube 等需要 JS 运行时的网站会下载失败。")
        AppState.showSettings = false
        mouseClick(findChild(notice, "verdictActionButton"))
        verify(AppState.showSettings)
        AppState.showSettings = false

        verify(TestHelper.writeExecutable(deno, "deno 2.5.0"))
        DownloadManager.detectJSRuntime()
        tryVerify(() => !notice.visible, 20000)
    }

    // What the view shows of the input rules, which tst_inputpresenter checks.
    function test_startShowsTheNoticeAndTheMarks() {
        const before = DownloadManager.tasks.count
        const notice = child("startNotice")
        const marks = child("rejectedLinks")
        compare(notice.visible, false)
        pressStart()
        verify(notice.visible)
        compare(notice.text, "请先输入视频链接")
        compare(DownloadManager.tasks.count, before)

        AppState.urlInput = "https://a.example/1\nhello world"
        compare(notice.visible, false)
        compare(marks.visible, false)
        pressStart()
        compare(newTasks(before), ["https://a.example/1"])
        compare(child("taskList").count, before + 1)
        verify(marks.visible)
        compare(marks.text, "不是有效的链接：hello world")
    }

    // Tab walks the pane top to bottom, each focused control ringed in the accent; Ctrl+Tab
    // types a tab into the links; Enter presses the focused button.
    function test_keyboard() {
        const before = DownloadManager.tasks.count
        const editor = child("linksEditor")
        mouseClick(editor)
        keySequence("a")
        keySequence(".")
        keySequence("b")
        keySequence("c")
        keyClick(Qt.Key_Tab, Qt.ControlModifier)
        compare(AppState.urlInput, "a.bc\t")
        keyClick(Qt.Key_Backtab, Qt.ShiftModifier)
        verify(child("clearButton").activeFocus)
        keyClick(Qt.Key_Tab)
        verify(editor.activeFocus)

        const order = ["preset0", "preset1", "preset2", "preset3", "preset4", "preset5", "playlistSwitch",
                       "cookieSwitch", "outputField", "folderButton", "listFormatsButton", "videoInfoButton"]
        // The toolchain notice's "修复", when there is one (no JavaScript runtime in the sandbox).
        if (child("toolchainNotice").visible)
            order.push("verdictActionButton")
        order.push("startButton")
        for (const name of order) {
            keyClick(Qt.Key_Tab)
            const item = child(name)
            verify(item.activeFocus, name)
            // A bordered button shows focus on its border instead of a ring.
            const ring = item.showsFocusRing ? findChild(item, "focusRing") : null
            if (ring) {
                verify(ring.visible, name)
                verify(Qt.colorEqual(ring.border.color, Theme.accent))
            }
        }
        keyClick(Qt.Key_Return)
        compare(newTasks(before), ["a.bc"])
    }

    function test_clear() {
        AppState.urlInput = "https://p.example/1"
        mouseClick(child("clearButton"))
        compare(AppState.urlInput, "")
        verify(child("linksEditor").activeFocus) // where the edit menu's undo goes
    }

    function test_customArgumentsOnlyUnderCustom() {
        const custom = child("customSection")
        compare(custom.visible, false)
        mouseClick(child("preset5"))
        compare(AppState.selectedPreset, Download.Custom)
        tryCompare(custom, "visible", true)
        mouseClick(child("customField"))
        keySequence("-")
        keySequence("-")
        for (const key of "limit-rate 500k")
            keySequence(key === " " ? "Space" : key)
        compare(AppState.customArguments, "--limit-rate 500k")

        // Another preset hides the field but keeps its text.
        mouseClick(child("preset1"))
        compare(custom.visible, false)
        compare(AppState.customArguments, "--limit-rate 500k")
    }

    function test_formatsSheetShowsTheTable() {
        TestHelper.setEnv("FAKE_YTDLP_FORMATS", "ID  EXT  RESOLUTION\n18  mp4  640x360")
        AppState.urlInput = "https://f.example/v\nhttps://f.example/other"
        mouseClick(child("listFormatsButton"))
        const sheet = child("formatsSheet")
        tryCompare(sheet, "opened", true, 20000)
        compare(findChild(sheet, "formatsText").text, "ID  EXT  RESOLUTION\n18  mp4  640x360\n")
        compare(child("listingIndicator").visible, false)

        const copy = findChild(sheet, "copyButton")
        mouseClick(copy)
        compare(Desktop.clipboardText(), "ID  EXT  RESOLUTION\n18  mp4  640x360\n")
        mouseClick(findChild(sheet, "closeFormatsButton"))
        tryCompare(sheet, "opened", false)

        // The sheet is made once; listing again shows it again, with the new table.
        TestHelper.setEnv("FAKE_YTDLP_FORMATS", "ID  EXT\n22  webm")
        mouseClick(child("listFormatsButton"))
        tryCompare(sheet, "opened", true, 20000)
        tryCompare(findChild(sheet, "formatsText"), "text", "ID  EXT\n22  webm\n")
        keyClick(Qt.Key_Escape)
        tryCompare(sheet, "opened", false)
    }

    function test_folderButtonChoosesTheOutputFolder() {
        const picker = child("folderDialog")
        compare(picker.opened, false)
        mouseClick(child("folderButton"))
        tryCompare(picker, "opened", true)
        const chosen = TestHelper.tempDir() + "/chosen"
        picker.item.selectedFolder = "file://" + chosen
        picker.item.accept()
        tryCompare(picker, "opened", false)
        compare(AppState.outputDirectory, chosen)
    }

    function test_formatsFailureShowsTheAlert() {
        TestHelper.setEnv("FAKE_YTDLP_FORMATS_EXIT", "1")
        TestHelper.setEnv("FAKE_YTDLP_FORMATS_STDERR", "ERROR: Unsupported URL: nope")
        AppState.urlInput = "nope"
        mouseClick(child("listFormatsButton"))
        const alert = child("formatsErrorAlert")
        tryCompare(alert, "opened", true, 20000)
        compare(findChild(alert, "alertHeading").text, "错误")
        compare(findChild(alert, "alertMessage").text, "ERROR: Unsupported URL: nope\n")
        compare(child("formatsSheet").opened, false)
        mouseClick(findChild(alert, "alertOkButton"))
        tryCompare(alert, "opened", false)
    }

    function test_rowsAndTheStopButton() {
        const before = DownloadManager.tasks.count
        TestHelper.setScenario('[{"out": "\\r[download]  42.9% of 10.00MiB at 1.50MiB/s ETA 00:05"}, {"sleep": 30}]', 0)
        const stop = child("stopButton")
        compare(stop.visible, false)
        compare(child("emptyState").visible, before === 0)
        AppState.urlInput = "https://s.example/1\nhttps://s.example/2"
        pressStart()
        tryCompare(stop, "visible", true, 20000)
        compare(child("emptyState").visible, false)

        const list = child("taskList")
        list.positionViewAtEnd()
        let row = null
        tryVerify(() => {
            row = list.itemAtIndex(before)
            return row !== null && findChild(row, "percentText").text === "42%"
        }, 20000)
        verify(findChild(row, "progressRow").visible)
        compare(findChild(row, "statusText").text, "下载中")
        compare(findChild(row, "speedText").text, "1.50MiB/s")
        compare(findChild(row, "sizeText").text, "10.00MiB")
        verify(findChild(row, "progressFill").width > 0)

        // Selection follows the task.
        mouseClick(row)
        verify(row.isSelected)

        mouseClick(stop)
        compare(TestHelper.taskStatuses().slice(before), ["已取消", "已取消"])
        tryCompare(DownloadManager, "runningCount", 0, 20000)
        tryCompare(stop, "visible", false)
        compare(findChild(row, "progressRow").visible, false)
    }

    function test_failedRowExplainsFirst() {
        const before = DownloadManager.tasks.count
        TestHelper.setScenario('[{"err": "ERROR: HTTP Error 404: Not Found\\n"}]', 1)
        AppState.urlInput = "https://e.example/missing"
        pressStart()
        const list = child("taskList")
        tryVerify(() => TestHelper.taskStatuses()[before] === "失败", 20000)
        list.positionViewAtEnd()
        let row = null
        tryVerify(() => (row = list.itemAtIndex(before)) !== null)
        const explanation = findChild(row, "explanationText")
        const error = findChild(row, "errorText")
        tryCompare(explanation, "visible", true)
        verify(explanation.text.startsWith("链接不存在或已删除"))
        verify(Qt.colorEqual(explanation.color, Theme.red))
        compare(error.visible, false)

        // The tool's own line, one click away, under the explanation; and copied as it is.
        // The row grew with its explanation: bring its buttons into view before clicking.
        const toggle = findChild(row, "toolOutputButton")
        list.positionViewAtEnd()
        tryVerify(() => {
            const at = toggle.mapToItem(list, 0, 0)
            return at.y >= 0 && at.y + toggle.height <= list.height
        })
        mouseClick(toggle)
        tryVerify(() => error.visible)
        compare(error.text, "ERROR: HTTP Error 404: Not Found")
        tryVerify(() => error.mapToItem(row, 0, 0).y > explanation.mapToItem(row, 0, 0).y)
        Desktop.setClipboardText("")
        mouseClick(findChild(row, "copyErrorButton"))
        compare(Desktop.clipboardText(), "ERROR: HTTP Error 404: Not Found")
    }
}
