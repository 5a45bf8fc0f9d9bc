import QtQuick
import QtTest
import Quillbox
import QuillboxTest

// What a person can do to a queue row: the actions each status allows, on the row and in its
// menu; what they do to the engine's tasks and the desktop; and the queue at the smallest window.
TestCase {
    id: testCase

    name: "QueueRows"
    width: 1200
    height: 800
    visible: true
    when: windowShown

    Component {
        id: mainViewComponent

        MainView {}
    }

    Component {
        id: sampleList

        ListView {
            width: 500
            height: 780
            spacing: 4
            delegate: DownloadTaskRow {
                width: 500
            }
        }
    }

    property var view: null

    function init() {
        AppState.urlInput = ""
        AppState.selectedPreset = Download.Default
        AppState.useCookies = false
        AppState.showLogPanel = false
        AppState.outputDirectory = TestHelper.tempDir() + "/rows"
        TestHelper.setScenario("[]", 0)
    }

    function cleanup() {
        DownloadManager.cancelAllDownloads()
        tryCompare(DownloadManager, "runningCount", 0, 20000)
    }

    function showMainView(width, height) {
        view = createTemporaryObject(mainViewComponent, testCase, { width: width, height: height })
        verify(view)
        tryCompare(view, "installationCheck", 0, 20000)
    }

    function child(name) {
        const item = findChild(view, name)
        verify(item, name)
        return item
    }

    function start(links) {
        AppState.urlInput = links.join("\n")
        mouseClick(child("startButton"))
    }

    // The row of the task `index` in the real queue, once it is laid out.
    function rowAt(index) {
        const list = child("taskList")
        list.positionViewAtIndex(index, ListView.Contain)
        let row = null
        tryVerify(() => (row = list.itemAtIndex(index)) !== null, 20000)
        return row
    }

    function shownActions(row) {
        return ["stopAction", "retryAction", "openAction", "revealAction", "videoInfoAction", "copyLinkAction",
                "removeAction"]
            .filter(name => findChild(row, name).visible)
    }

    function test_actionsPerStatus() {
        const statuses = ["等待中", "准备中", "下载中", "已完成", "失败", "已取消", "已暂停"]
        const expected = [["stopAction"], ["stopAction"], ["stopAction"], [], ["retryAction"], ["retryAction"], []]
        const list = createTemporaryObject(sampleList, testCase,
            { model: TestHelper.sampleTasks(statuses, 0.5, "", "", "") })
        const withFile = createTemporaryObject(sampleList, testCase,
            { model: TestHelper.sampleTasks(["已完成"], 1, "", "", "/videos/a clip.mp4") })
        tryVerify(() => list.itemAtIndex(6) !== null && withFile.itemAtIndex(0) !== null)
        for (let i = 0; i < statuses.length; ++i) {
            const row = list.itemAtIndex(i)
            compare(shownActions(row), expected[i].concat(["videoInfoAction", "copyLinkAction", "removeAction"]),
                    statuses[i])
            const menu = findChild(row, "rowMenu")
            compare(findChild(menu, "stopMenuItem").enabled, expected[i].includes("stopAction"), statuses[i])
            compare(findChild(menu, "retryMenuItem").enabled, expected[i].includes("retryAction"), statuses[i])
            compare(findChild(menu, "openMenuItem").enabled, false)
            compare(findChild(row, "fileNameText").visible, false)
            // The bar only while preparing or downloading.
            compare(findChild(row, "progressRow").visible, i === 1 || i === 2, statuses[i])
        }
        const done = withFile.itemAtIndex(0)
        compare(shownActions(done), ["openAction", "revealAction", "videoInfoAction", "copyLinkAction",
                                     "removeAction"])
        compare(findChild(done, "fileNameText").text, "a clip.mp4")
        verify(findChild(findChild(done, "rowMenu"), "revealMenuItem").enabled)

        // The actions show on the row that is hovered or selected, not on every row at once.
        const quiet = list.itemAtIndex(4)
        compare(findChild(quiet, "rowActions").opacity, 0)
        mouseMove(quiet, 20, 20)
        tryCompare(findChild(quiet, "rowActions"), "opacity", 1)
    }

    // After the download, the step under way replaces "下载中 100%", over a bar that sweeps.
    function test_phaseInsteadOfPercent() {
        const list = createTemporaryObject(sampleList, testCase,
            { model: TestHelper.sampleTasks(["下载中"], 1, "", "合并中", "") })
        tryVerify(() => list.itemAtIndex(0) !== null)
        const row = list.itemAtIndex(0)
        compare(findChild(row, "statusText").text, "合并中")
        compare(findChild(row, "percentText").visible, false)
        const fill = findChild(row, "progressFill")
        verify(fill.indeterminate)
        verify(fill.width < fill.parent.width)
    }

    // A progress past the end is drawn full; a quiet download shows its notice; nothing but the
    // status on the details line while speed and size are unknown.
    function test_quietRowPastTheEnd() {
        const list = createTemporaryObject(sampleList, testCase,
            { model: TestHelper.sampleTasks(["下载中"], 1e18, "60 秒无响应") })
        tryVerify(() => list.itemAtIndex(0) !== null)
        const row = list.itemAtIndex(0)
        compare(findChild(row, "percentText").text, "100%")
        const fill = findChild(row, "progressFill")
        compare(fill.width, fill.parent.width)
        verify(findChild(row, "noticeText").visible)
        compare(findChild(row, "noticeText").text, "60 秒无响应")
        compare(findChild(row, "speedText").visible, false)
        compare(findChild(row, "sizeText").visible, false)
    }

    function test_actionsDriveTheQueue() {
        showMainView(1200, 800)
        const before = DownloadManager.tasks.count
        TestHelper.setScenario('[{"out": "[download]  10.0% of 1.00MiB at 1.00KiB/s ETA 10:00\\n"}, {"sleep": 30}]', 0)
        start(["https://act.example/1", "https://act.example/2"])
        tryVerify(() => TestHelper.taskStatuses().slice(before).every(s => s === "下载中"), 20000)
        const first = rowAt(before)
        tryCompare(findChild(first, "etaText"), "text", "剩余 10:00", 20000)
        // The stand-in's information, asked for beside the download, names the row.
        tryCompare(findChild(first, "titleText"), "text", "fake", 20000)
        compare(findChild(first, "durationText").text, "1:05")

        mouseMove(first, 20, 20)
        tryCompare(findChild(first, "rowActions"), "opacity", 1)
        mouseClick(findChild(first, "videoInfoAction"))
        tryCompare(view, "showVideoInfo", true, 20000)
        compare(view.videoInfo.title, "fake")
        view.showVideoInfo = false

        mouseMove(first, 20, 20)
        const stop = findChild(first, "stopAction")
        tryCompare(findChild(first, "rowActions"), "opacity", 1)
        mouseClick(stop)
        compare(TestHelper.taskStatuses().slice(before), ["已取消", "下载中"])
        tryCompare(DownloadManager, "runningCount", 1, 20000)

        // Retried in place, from its menu this time.
        mouseClick(first, 20, 20, Qt.RightButton)
        const menu = findChild(first, "rowMenu")
        tryCompare(menu, "opened", true)
        mouseClick(findChild(menu, "retryMenuItem"))
        tryCompare(DownloadManager, "runningCount", 2, 20000)
        compare(TestHelper.taskUrls().slice(before), ["https://act.example/1", "https://act.example/2"])

        Desktop.setClipboardText("")
        mouseClick(first, 20, 20, Qt.RightButton)
        tryCompare(menu, "opened", true)
        mouseClick(findChild(menu, "copyLinkMenuItem"))
        compare(Desktop.clipboardText(), "https://act.example/1")

        mouseMove(first, 20, 20)
        tryCompare(findChild(first, "rowActions"), "opacity", 1)
        mouseClick(findChild(first, "removeAction"))
        compare(TestHelper.taskUrls().slice(before), ["https://act.example/2"])
        tryCompare(DownloadManager, "runningCount", 1, 20000)
    }

    function inside(item) {
        const at = item.mapToItem(view, 0, 0)
        return item.visible && at.x >= 0 && at.y >= 0 && at.x + item.width <= view.width
            && at.y + item.height <= view.height
    }

    // The smallest window shows the whole queue pane: the stop button and a row's actions.
    function test_smallestWindow() {
        showMainView(900, 600)
        const before = DownloadManager.tasks.count
        TestHelper.setScenario('[{"out": "[download]  10.0% of 1.00MiB at 1.00KiB/s ETA 10:00\n"}, {"sleep": 30}]', 0)
        verify(inside(child("startButton")))
        start(["https://small.example/1"])
        tryCompare(child("stopButton"), "visible", true, 20000)
        waitForRendering(view)
        verify(inside(child("stopButton")))
        const row = rowAt(before)
        mouseMove(row, 20, 20)
        tryCompare(findChild(row, "rowActions"), "opacity", 1)
        verify(inside(findChild(row, "stopAction")))
        verify(inside(findChild(row, "removeAction")))
    }

    // With the log open, "开始下载" is still on screen.
    function test_startInSightWithTheLogOpen() {
        showMainView(1200, 800)
        AppState.selectedPreset = Download.Custom
        AppState.showLogPanel = true
        tryVerify(() => findChild(view, "logPanel") !== null)
        wait(400) // the panel slides in
        verify(inside(child("startButton")))
    }

    // "清除已完成" takes the completed rows away and leaves a running one.
    function test_clearCompleted() {
        showMainView(1200, 800)
        start(["https://done.example/1"])
        tryVerify(() => TestHelper.taskStatuses().includes("已完成"), 20000)
        TestHelper.setScenario('[{"sleep": 30}]', 0)
        start(["https://busy.example/1"])
        tryCompare(DownloadManager, "runningCount", 1, 20000)
        mouseClick(child("clearCompletedButton"))
        verify(!TestHelper.taskStatuses().includes("已完成"))
        verify(TestHelper.taskUrls().includes("https://busy.example/1"))
        compare(child("clearCompletedButton").visible, false)
    }

    // A failure the tools cause offers "修复", which opens the settings; other failures do not.
    function test_toolFixOpensSettings_data() {
        return [
            { tag: "no JavaScript runtime", fix: true, steps: '[{"err": "WARNING: [youtube] No supported JavaScript '
              + 'runtime could be found.\\nERROR: [youtube] x: Requested format is not available\\n"}]' },
            { tag: "missing page", fix: false, steps: '[{"err": "ERROR: HTTP Error 404: Not Found\\n"}]' },
        ]
    }

    function test_toolFixOpensSettings(data) {
        AppState.showSettings = false
        showMainView(1200, 800)
        const before = DownloadManager.tasks.count
        TestHelper.setScenario(data.steps, 1)
        start(["https://fix.example/" + before])
        tryVerify(() => TestHelper.taskStatuses()[before] === "失败", 20000)
        const row = rowAt(before)
        const fix = findChild(row, "toolFixButton")
        tryCompare(findChild(row, "explanationText"), "visible", true)
        compare(fix.visible, data.fix)
        if (!data.fix)
            return
        compare(fix.text, "修复")
        mouseClick(fix)
        compare(AppState.showSettings, true)
        AppState.showSettings = false
    }
}
