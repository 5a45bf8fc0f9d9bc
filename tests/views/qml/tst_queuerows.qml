import QtQuick
import QtTest
import Quillbox
import QuillboxTest

// What a person can do to a queue row: the actions each status allows, on the row and in its
// menu; what they do to the engine's tasks and the desktop; and the queue at the smallest window.
ViewTestCase {
    id: testCase

    name: "QueueRows"

    Component {
        id: sampleList

        ListView {
            readonly property int graphicsApi: GraphicsInfo.api

            width: 500
            height: 780
            spacing: 4
            delegate: DownloadTaskRow {
                width: 500
            }
        }
    }

    function init() {
        resetForm("rows")
    }

    function cleanup() {
        stopDownloads()
        TestHelper.setEnv("PATH", originalPath)
    }

    function start(links) {
        AppState.urlInput = links.join("\n")
        mouseClick(child("startButton"))
    }

    // Rows of tasks the engine never produces on cue (paused) or only for an instant (preparing).
    function sampleRows(statuses, progress, notice, phase, outputPath) {
        const list = createTemporaryObject(sampleList, testCase,
            { model: TestHelper.sampleTasks(statuses, progress, notice || "", phase || "", outputPath || "") })
        tryVerify(() => list.itemAtIndex(statuses.length - 1) !== null)
        return list
    }

    function shownActions(row) {
        return ["stopAction", "retryAction", "openAction", "revealAction", "videoInfoAction", "copyLinkAction",
                "removeAction"].filter(name => findChild(row, name).visible)
    }

    function test_actionsPerStatus() {
        const statuses = ["等待中", "准备中", "下载中", "已完成", "失败", "已取消", "已暂停"]
        const expected = [["stopAction"], ["stopAction"], ["stopAction"], [], ["retryAction"], ["retryAction"],
                          ["retryAction"]]
        const list = sampleRows(statuses, 0.5)
        for (let i = 0; i < statuses.length; ++i) {
            const row = list.itemAtIndex(i)
            compare(shownActions(row), expected[i].concat(["videoInfoAction", "copyLinkAction", "removeAction"]),
                    statuses[i])
            // The bar only while preparing or downloading.
            compare(findChild(row, "progressRow").visible, i === 1 || i === 2, statuses[i])
        }
        // A row paused at start goes on; a failed or stopped one starts again.
        compare(findChild(list.itemAtIndex(6), "retryAction").text, "继续")
        compare(findChild(list.itemAtIndex(5), "retryAction").text, "重试")
        const done = sampleRows(["已完成"], 1, "", "", "/videos/a clip.mp4").itemAtIndex(0)
        compare(shownActions(done), ["openAction", "revealAction", "videoInfoAction", "copyLinkAction",
                                     "removeAction"])
        compare(findChild(done, "fileNameText").text, "a clip.mp4")
        // The menu offers what the row does.
        mouseClick(done, 20, 20, Qt.RightButton)
        const doneMenu = findChild(done, "rowMenu")
        tryCompare(doneMenu, "opened", true)
        verify(findChild(doneMenu, "revealMenuItem").enabled)
        verify(!findChild(doneMenu, "stopMenuItem").enabled)
        doneMenu.close()

        // The actions show on the row that is hovered or selected, not on every row at once.
        const quiet = list.itemAtIndex(4)
        compare(findChild(quiet, "rowActions").opacity, 0)
        mouseMove(quiet, 20, 20)
        tryCompare(findChild(quiet, "rowActions"), "opacity", 1)
    }

    // After the download, the step under way replaces "下载中 100%", over a bar that sweeps. A
    // progress past the end is drawn full; a quiet download shows its notice.
    function test_progressLine() {
        let row = sampleRows(["下载中"], 1, "", "合并中").itemAtIndex(0)
        compare(findChild(row, "statusText").text, "合并中")
        compare(findChild(row, "percentText").visible, false)
        let fill = findChild(row, "progressFill")
        verify(fill.indeterminate)
        verify(fill.width < fill.parent.width)

        row = sampleRows(["下载中"], 1e18, "60 秒无响应").itemAtIndex(0)
        compare(findChild(row, "percentText").text, "100%")
        fill = findChild(row, "progressFill")
        compare(fill.width, fill.parent.width)
        verify(findChild(row, "noticeText").visible)
        compare(findChild(row, "noticeText").text, "60 秒无响应")
    }

    // Drawn by the software scene graph, as where OpenGL would be drawn in software: each state's
    // row shows its title, status and icon; the bar is filled to its progress; the sweep of a step
    // after the download moves along its track; the focus ring is there.
    function test_drawnInSoftware() {
        const statuses = ["等待中", "准备中", "下载中", "已完成", "失败", "已取消", "已暂停"]
        const list = sampleRows(statuses, 0.5)
        compare(list.graphicsApi, GraphicsInfo.Software)
        // Half way along a fill, its gradient is half the accent and half cyan.
        const blend = Qt.rgba((Theme.accent.r + Theme.cyan.r) / 2, (Theme.accent.g + Theme.cyan.g) / 2,
                              (Theme.accent.b + Theme.cyan.b) / 2, 1)
        for (let i = 0; i < statuses.length; ++i) {
            const row = list.itemAtIndex(i)
            // Icons are read in the background.
            for (const part of ["titleText", "statusText", "statusIcon", "rowThumbnail"])
                tryVerify(() => inkOf(grabImage(row), findChild(row, part), row) > 10, 5000, statuses[i] + " " + part)
            if (!findChild(row, "progressRow").visible)
                continue
            const image = grabImage(row)
            const fill = findChild(row, "progressFill")
            const middle = fill.mapToItem(row, fill.width / 2, fill.height / 2)
            verify(!differs(image.pixel(middle.x, middle.y), blend), statuses[i])
        }

        // The sweep, caught wholly inside its track, is drawn where it is.
        const sweeping = sampleRows(["下载中"], 1, "", "合并中").itemAtIndex(0)
        const sweep = findChild(sweeping, "progressFill")
        tryVerify(() => sweep.x > 0 && sweep.x + sweep.width < sweep.parent.width * 0.9)
        const image = grabImage(sweeping)
        const middle = sweep.mapToItem(sweeping, sweep.width / 2, sweep.height / 2)
        verify(!differs(image.pixel(middle.x, middle.y), blend))

        const focused = list.itemAtIndex(3)
        const ring = findChild(focused, "rowFocusRing")
        focused.forceActiveFocus(Qt.TabFocusReason)
        tryVerify(() => ring.visible)
        verify(!differs(grabImage(focused).pixel(1, focused.height / 2), Theme.accent))
    }

    // A running row's progress, then its actions and what they do to the engine's tasks; the
    // stop button stops what is left.
    function test_actionsDriveTheQueue() {
        showMainView()
        const before = DownloadManager.tasks.count
        const stop = child("stopButton")
        compare(stop.visible, false)
        TestHelper.setScenario('[{"out": "\\r[download]  42.9% of 10.00MiB at 1.50MiB/s ETA 10:00"}, {"sleep": 30}]', 0)
        start(["https://act.example/1", "https://act.example/2", "https://act.example/3"])
        tryCompare(stop, "visible", true, 20000)
        tryVerify(() => TestHelper.taskStatuses().slice(before).every(s => s === "下载中"), 20000)
        const first = rowAt(before)
        tryCompare(child("percentText", first), "text", "42%", 20000)
        // The stand-in's information, asked for beside the download, names the row.
        tryCompare(child("titleText", first), "text", "fake", 20000)
        tryCompare(child("detailsText", first), "text", "1:05 • 1.50MiB/s • 10.00MiB • 剩余 10:00")
        clickRowAction(first, "stopAction")
        compare(TestHelper.taskStatuses().slice(before), ["已取消", "下载中", "下载中"])
        compare(child("detailsText", first).text, "1:05 • 已下载 42% / 10.00MiB")
        tryCompare(DownloadManager, "runningCount", 2, 20000)

        // Retried, from its menu this time.
        mouseClick(first, 20, 20, Qt.RightButton)
        const menu = child("rowMenu", first)
        tryCompare(menu, "opened", true)
        mouseClick(child("retryMenuItem", menu))
        tryCompare(DownloadManager, "runningCount", 3, 20000)

        Desktop.setClipboardText("")
        mouseClick(first, 20, 20, Qt.RightButton)
        tryCompare(menu, "opened", true)
        mouseClick(child("copyLinkMenuItem", menu))
        compare(Desktop.clipboardText(), "https://act.example/1")
        verify(child("linkCopiedNotice", first).visible)

        clickRowAction(first, "removeAction")
        compare(TestHelper.taskUrls().slice(before), ["https://act.example/2", "https://act.example/3"])
        tryCompare(DownloadManager, "runningCount", 2, 20000)
        mouseClick(stop)
        compare(TestHelper.taskStatuses().slice(before), ["已取消", "已取消"])
        tryCompare(DownloadManager, "runningCount", 0, 20000)
        tryCompare(stop, "visible", false)
    }

    // While a download merges, its bar sweeps only where it can be seen: scrolled out of sight, or
    // kept aside for reuse, the row keeps still, and it sweeps again once scrolled back.
    function test_sweepOnlyInSight() {
        showMainView()
        const list = child("taskList"), first = DownloadManager.tasks.count
        // Every row the list holds, those kept aside for reuse too.
        const sweeping = () => {
            const rows = list.contentItem.children
            let count = 0
            for (let i = 0; i < rows.length; ++i)
                count += rows[i].taskId !== undefined && findChild(rows[i], "sweepAnimation").running ? 1 : 0
            return count
        }
        TestHelper.setScenario('[{"out": "[Merger] Merging formats into \\"fake.mp4\\"\\n"}, {"sleep": 30}]', 0)
        const links = []
        for (let i = 0; i < 30; ++i)
            links.push("https://sweep.example/" + i)
        start(links)
        tryCompare(DownloadManager, "runningCount", 3, 20000)
        tryVerify(() => {
            list.positionViewAtIndex(first, ListView.Beginning)
            return sweeping() === 3
        }, 20000)
        // Just above the list's edge, where it keeps them made (asked again while rows settle
        // their heights); then far away, kept for reuse.
        tryVerify(() => {
            list.positionViewAtIndex(first + 3, ListView.Beginning)
            return sweeping() === 0
        }, 20000)
        list.positionViewAtEnd()
        tryCompare(child("statusText", rowAt(first + 29)), "text", "等待中")
        compare(sweeping(), 0)
        list.positionViewAtIndex(first, ListView.Beginning)
        tryVerify(() => sweeping() === 3)
    }

    // A long title ends before the actions over the row's corner; Tab shows on the row, then
    // reaches its actions, which stay while one of them has the focus.
    function test_titleAndFocus() {
        const row = sampleRows(["已完成"], 1).itemAtIndex(0)
        row.title = "一个很长很长的视频标题，".repeat(8)
        const title = findChild(row, "titleText"), actions = findChild(row, "rowActions")
        row.forceActiveFocus(Qt.TabFocusReason)
        verify(findChild(row, "rowFocusRing").visible)
        tryVerify(() => title.truncated && title.mapToItem(row, title.width, 0).x < actions.x)
        keyClick(Qt.Key_Tab)
        compare(row.Window.activeFocusItem, findChild(row, "videoInfoAction"))
        compare(actions.opacity, 1)
    }

    // While the file downloads only its folder opens, without a warning; an opener that fails
    // says why on the row, until the file is there and opens.
    function test_openingTheFile() {
        showMainView()
        const bin = TestHelper.tempDir() + "/opener", folder = TestHelper.tempDir() + "/rows"
        const path = TestHelper.env("PATH"), opened = () => TestHelper.readFile(bin + "/opened")
        // The desktop's opener ("open" on macOS) records what it opens, or finds no application
        // while "broken" exists.
        for (const name of ["xdg-open", "open"])
            TestHelper.writeFile(`${bin}/${name}`, `#!/bin/sh\n[ -e ${bin}/broken ] && { echo "xdg-open: no method `
                                 + `available" >&2; exit 3; }\necho "$*" >> ${bin}/opened\n`, true)
        TestHelper.setEnv("PATH", bin + ":" + path)
        TestHelper.setScenario(JSON.stringify([{ out: "[download] Destination: fake.mp4\n" },
                                               { wait_for: bin + "/go" }, { write_output: true }]), 0)
        start(["https://open.example/1"])
        const row = rowAt(DownloadManager.tasks.count - 1), warning = child("openErrorText", row)
        tryCompare(child("fileNameText", row), "text", "fake.mp4", 20000)
        compare(child("openAction", row).visible, false)
        clickRowAction(row, "revealAction")
        tryVerify(() => opened() === folder + "\n")
        TestHelper.writeFile(bin + "/broken", "")
        mouseClick(child("revealAction", row))
        tryVerify(() => warning.text.startsWith("没有可以打开此文件夹的程序") && warning.text.includes("no method"))
        TestHelper.removeFile(bin + "/broken")
        TestHelper.writeFile(bin + "/go", "")
        tryCompare(child("statusText", row), "text", "已完成", 20000)
        verify(!warning.visible)
        clickRowAction(row, "openAction")
        tryVerify(() => opened().endsWith(folder + "/fake.mp4\n"), 5000, opened())
    }

    // The smallest window shows the whole queue pane: the stop button and a row's actions; with
    // the log open, "开始下载" is still on screen.
    function test_smallestWindow() {
        showMainView({ width: 900, height: 600 })
        const before = DownloadManager.tasks.count
        TestHelper.setScenario('[{"out": "[download]  10.0% of 1.00MiB at 1.00KiB/s ETA 10:00\\n"}, {"sleep": 30}]', 0)
        verify(inside(child("startButton")))
        start(["https://small.example/1"])
        tryCompare(child("stopButton"), "visible", true, 20000)
        waitForRendering(view)
        verify(inside(child("stopButton")))
        const row = rowAt(before)
        mouseMove(row, 20, 20)
        tryCompare(child("rowActions", row), "opacity", 1)
        verify(inside(child("stopAction", row)))
        verify(inside(child("removeAction", row)))

        showMainView()
        AppState.selectedPreset = Download.Custom
        AppState.showLogPanel = true
        tryVerify(() => findChild(view, "logPanel") !== null)
        wait(400) // the panel slides in
        verify(inside(child("startButton")))
    }

    // "清除已完成" takes the completed rows away, and then itself.
    function test_clearCompleted() {
        showMainView()
        start(["https://done.example/1"])
        tryVerify(() => TestHelper.taskStatuses().includes("已完成"), 20000)
        mouseClick(child("clearCompletedButton"))
        verify(!TestHelper.taskStatuses().includes("已完成"))
        compare(child("clearCompletedButton").visible, false)
    }

    // A failed row explains first, the tool's own line one click away and copied as it is; a
    // failure the tools cause offers "修复", which opens the settings, other failures do not.
    function test_failedRow_data() {
        return [
            { tag: "missing page", fix: false, steps: '[{"err": "ERROR: HTTP Error 404: Not Found\\n"}]' },
            { tag: "no JavaScript runtime", fix: true, steps: '[{"err": "WARNING: [youtube] No supported JavaScript '
              + 'runtime could be found.\\nERROR: [youtube] x: Requested format is not available\\n"}]' },
        ]
    }

    function test_failedRow(data) {
        AppState.showSettings = false
        showMainView()
        const before = DownloadManager.tasks.count
        TestHelper.setScenario(data.steps, 1)
        start(["https://fail.example/" + before])
        tryVerify(() => TestHelper.taskStatuses()[before] === "失败", 20000)
        const row = rowAt(before)
        const explanation = child("explanationText", row)
        const error = child("errorText", row)
        tryCompare(explanation, "visible", true)
        compare(error.visible, false)
        compare(child("toolFixButton", row).visible, data.fix)
        if (data.fix) {
            bringIntoList(child("toolFixButton", row))
            mouseClick(child("toolFixButton", row))
            compare(AppState.showSettings, true)
            AppState.showSettings = false
            return
        }

        const toggle = child("toolOutputButton", row)
        bringIntoList(toggle)
        mouseClick(toggle)
        tryVerify(() => error.visible)
        tryVerify(() => error.mapToItem(row, 0, 0).y > explanation.mapToItem(row, 0, 0).y)
        Desktop.setClipboardText("")
        bringIntoList(child("copyErrorButton", row))
        mouseClick(child("copyErrorButton", row))
        compare(Desktop.clipboardText(), "ERROR: HTTP Error 404: Not Found")
    }
}
