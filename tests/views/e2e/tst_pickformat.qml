import QtQuick
import QtTest
import Quillbox
import QuillboxTest

// The format picker with Debian's yt-dlp: list the formats of a DASH manifest served on
// 127.0.0.1, choose its video-only and its audio-only format, download, and get one file that
// holds both streams.
TestCase {
    id: testCase

    name: "PickFormat"
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

    function test_videoAndAudioMergeIntoOneFile() {
        const folder = TestHelper.tempDir() + "/picked"
        AppState.outputDirectory = folder
        AppState.useCookies = false
        AppState.showLogPanel = false
        AppState.selectedPreset = Download.Default
        AppState.urlInput = TestHelper.baseUrl() + "dash/manifest.mpd"
        const view = createTemporaryObject(mainViewComponent, testCase)
        verify(view)
        tryCompare(view, "installationCheck", 0, 30000)
        waitForRendering(view)

        const list = findChild(view, "listFormatsButton")
        mouseClick(list)
        verify(list.enabled === false || findChild(view, "formatsSheet").opened, "the listing started")
        const sheet = findChild(view, "formatsSheet")
        tryCompare(sheet, "opened", true, 60000)
        const table = findChild(sheet, "formatTable")
        tryCompare(table, "count", 2, 60000)
        // yt-dlp lists the audio-only format first, then the video-only one.
        for (let i = 1; i >= 0; --i) {
            tryVerify(() => table.itemAtIndex(i) !== null)
            mouseClick(table.itemAtIndex(i))
        }
        const chosen = findChild(sheet, "pickerArguments").text
        verify(/^-f \S+\+\S+$/.test(chosen), chosen)
        mouseClick(findChild(sheet, "applyFormatButton"))
        tryCompare(sheet, "opened", false)
        compare(AppState.selectedPreset, Download.Custom)
        compare(AppState.customArguments, chosen)

        const before = DownloadManager.tasks.count
        waitForRendering(view)
        const start = findChild(view, "startButton")
        const flickable = findChild(view, "inputScroller").contentItem
        const bottom = start.mapToItem(flickable.contentItem, 0, start.height).y
        if (bottom > flickable.contentY + flickable.height)
            flickable.contentY = bottom - flickable.height
        waitForRendering(view)
        mouseClick(start)
        compare(DownloadManager.tasks.count, before + 1)
        tryVerify(() => ["已完成", "失败"].includes(TestHelper.taskStatuses()[before]), 120000)
        compare(TestHelper.taskStatuses()[before], "已完成")
        const files = TestHelper.filesIn(folder)
        compare(files.length, 1, files.join(", "))
        compare(TestHelper.streamsOf(folder + "/" + files[0]).sort(), ["audio", "video"])
    }
}
