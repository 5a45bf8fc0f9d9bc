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

        // With the log panel away the whole form shows, as it would for a person reaching for it.
        AppState.showLogPanel = false
        const start = findChild(view, "startButton")
        const flickable = findChild(view, "inputScroller").contentItem
        tryVerify(() => {
            const bottom = start.mapToItem(flickable, 0, start.height).y
            return findChild(view, "logPanel") === null && !flickable.moving && bottom <= flickable.height
        })
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
    }
}
