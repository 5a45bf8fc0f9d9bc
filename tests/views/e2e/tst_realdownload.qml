import QtQuick
import QtTest
import Quillbox
import QuillboxTest
import "../qml"

// The whole way through the real window with Debian's yt-dlp: paste a link served on
// 127.0.0.1, press "开始下载", and watch the row reach "已完成" with the file in the folder.
ViewTestCase {
    id: testCase

    name: "RealDownload"

    Component {
        id: windowComponent

        Main {
            visible: true
        }
    }

    // The application's window, active, its main view `view` once its installation check is done.
    function showWindow() {
        const window = createTemporaryObject(windowComponent, testCase)
        verify(window)
        window.requestActivate()
        tryVerify(() => window.active)
        waitForRendering(window.contentItem)
        view = findChild(window.contentItem, "mainView")
        verify(view)
        tryCompare(view, "installationCheck", 0, 30000)
    }

    function test_pasteStartAndComplete() {
        showWindow()
        const folder = TestHelper.tempDir() + "/真实 下载"
        resetForm("真实 下载")
        Desktop.setClipboardText(TestHelper.baseUrl() + "video.mp4")
        mouseClick(child("pasteButton"))
        compare(AppState.urlInput, TestHelper.baseUrl() + "video.mp4")

        const start = child("startButton")
        tryVerify(() => findChild(view, "logPanel") === null)
        verify(start.mapToItem(view, 0, start.height).y <= view.height)
        const before = DownloadManager.tasks.count
        mouseClick(start)
        compare(DownloadManager.tasks.count, before + 1)

        const row = rowAt(before)
        tryCompare(child("statusText", row), "text", "已完成", 60000)
        compare(TestHelper.filesIn(folder), ["video.mp4"])

        // The downloaded file, opened and shown in its folder through the desktop's opener ("open"
        // on macOS), here a stand-in that writes what it was given.
        const bin = TestHelper.tempDir() + "/opener"
        for (const name of ["xdg-open", "open"])
            TestHelper.writeFile(bin + "/" + name, "#!/bin/sh\necho \"$*\" >> '" + bin + "/opened'\n", true)
        TestHelper.setEnv("PATH", bin + ":" + TestHelper.env("PATH"))
        compare(child("fileNameText", row).text, "video.mp4")
        clickRowAction(row, "openAction")
        mouseClick(child("revealAction", row))
        const opened = () => TestHelper.readFile(bin + "/opened")
        tryVerify(() => opened().split("\n").length === 3, 5000, opened())
        // Each opener runs on its own, so either may write first.
        compare(opened().split("\n").sort(), ["", folder, folder + "/video.mp4"])

    }

    // A page that names its video: the row takes the title, the length and the picture from it.
    function test_rowShowsTheVideo() {
        showWindow()
        resetForm("page")
        AppState.selectedPreset = Download.BestVideoAudio
        const before = DownloadManager.tasks.count
        AppState.urlInput = TestHelper.baseUrl() + "page.html"
        mouseClick(child("startButton"))
        const row = rowAt(before)
        tryCompare(child("titleText", row), "text", "端到端 测试视频", 60000)
        verify(child("detailsText", row).text.startsWith("1:05"))
        tryCompare(child("rowThumbnail", row), "loaded", true, 30000)
        tryCompare(child("statusText", row), "text", "已完成", 60000)
        compare(child("fileNameText", row).text, "端到端 测试视频.mp4")
    }
}
