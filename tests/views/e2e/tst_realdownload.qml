import QtQuick
import QtTest
import Quillbox
import QuillboxTest

// The whole way through the real window with Debian's yt-dlp: paste a link served on
// 127.0.0.1, press "开始下载", and watch the row reach "已完成" with the file in the folder.
TestCase {
    id: testCase

    name: "RealDownload"
    when: windowShown

    Component {
        id: windowComponent

        Main {
            visible: true
        }
    }

    function test_pasteStartAndComplete() {
        const window = createTemporaryObject(windowComponent, testCase)
        verify(window)
        window.requestActivate()
        tryVerify(() => window.active)
        waitForRendering(window.contentItem)
        const view = findChild(window.contentItem, "mainView")
        verify(view)
        tryCompare(view, "installationCheck", 0, 30000)

        const folder = TestHelper.tempDir() + "/真实 下载"
        AppState.outputDirectory = folder
        AppState.useCookies = false
        AppState.urlInput = ""
        Desktop.setClipboardText(TestHelper.baseUrl() + "video.mp4")
        mouseClick(findChild(view, "pasteButton"))
        compare(AppState.urlInput, TestHelper.baseUrl() + "video.mp4")

        AppState.showLogPanel = false
        const start = findChild(view, "startButton")
        tryVerify(() => findChild(view, "logPanel") === null)
        verify(start.mapToItem(view, 0, start.height).y <= view.height)
        const before = DownloadManager.tasks.count
        mouseClick(start)
        compare(DownloadManager.tasks.count, before + 1)

        const list = findChild(view, "taskList")
        let row = null
        tryVerify(() => (row = list.itemAtIndex(before)) !== null, 10000)
        tryCompare(findChild(row, "statusText"), "text", "已完成", 60000)
        compare(findChild(row, "progressRow").visible, false)
        compare(findChild(row, "errorText").visible, false)
        compare(TestHelper.filesIn(folder), ["video.mp4"])
        compare(findChild(view, "completedCard").value, String(DownloadManager.tasks.completedCount))

        // The downloaded file, opened and shown in its folder through the desktop's opener.
        TestHelper.replaceOpener()
        compare(findChild(row, "fileNameText").text, "video.mp4")
        mouseMove(row, 20, 20)
        tryCompare(findChild(row, "rowActions"), "opacity", 1)
        mouseClick(findChild(row, "openAction"))
        mouseClick(findChild(row, "revealAction"))
        tryVerify(() => TestHelper.openedWith().length === 2)
        compare(TestHelper.openedWith(), [folder + "/video.mp4", folder])
    }

    // A page that names its video: the row takes the title, the length and the picture from it.
    function test_rowShowsTheVideo() {
        const view = findChild(createTemporaryObject(windowComponent, testCase).contentItem, "mainView")
        tryCompare(view, "installationCheck", 0, 30000)
        AppState.outputDirectory = TestHelper.tempDir() + "/page"
        AppState.useCookies = false
        AppState.selectedPreset = Download.BestVideoAudio
        const before = DownloadManager.tasks.count
        AppState.urlInput = TestHelper.baseUrl() + "page.html"
        mouseClick(findChild(view, "startButton"))
        let row = null
        tryVerify(() => (row = findChild(view, "taskList").itemAtIndex(before)) !== null, 10000)
        tryCompare(findChild(row, "titleText"), "text", "端到端 测试视频", 60000)
        compare(findChild(row, "durationText").text, "1:05")
        tryCompare(findChild(row, "rowThumbnail"), "loaded", true, 30000)
        tryCompare(findChild(row, "statusText"), "text", "已完成", 60000)
        compare(findChild(row, "fileNameText").text, "端到端 测试视频.mp4")
    }
}
