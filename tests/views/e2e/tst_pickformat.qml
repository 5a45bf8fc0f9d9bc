import QtQuick
import QtTest
import Quillbox
import QuillboxTest
import "../qml"

// The format picker with Debian's yt-dlp: list the formats of a DASH manifest served on
// 127.0.0.1, choose its video-only and its audio-only format, download, and get one file that
// holds both streams.
ViewTestCase {
    name: "PickFormat"

    function test_videoAndAudioMergeIntoOneFile() {
        const folder = TestHelper.tempDir() + "/picked"
        resetForm("picked")
        AppState.urlInput = TestHelper.baseUrl() + "dash/manifest.mpd"
        showMainView()
        waitForRendering(view)

        const list = child("listFormatsButton")
        mouseClick(list)
        const sheet = child("formatsSheet")
        verify(list.enabled === false || sheet.opened, "the listing started")
        tryCompare(sheet, "opened", true, 60000)
        const table = child("formatTable", sheet)
        tryCompare(table, "count", 2, 60000)
        // yt-dlp lists the audio-only format first, then the video-only one.
        for (let i = 1; i >= 0; --i) {
            tryVerify(() => table.itemAtIndex(i) !== null)
            mouseClick(table.itemAtIndex(i))
        }
        const chosen = child("pickerArguments", sheet).text
        verify(child("formatsText", sheet).text.length > 0) // the printed table stays beside it
        verify(/^-f \S+\+\S+$/.test(chosen), chosen)
        mouseClick(child("applyFormatButton", sheet))
        tryCompare(sheet, "opened", false)
        compare(AppState.selectedPreset, Download.Custom)
        compare(AppState.customArguments, chosen)

        const before = DownloadManager.tasks.count
        pressStart()
        compare(DownloadManager.tasks.count, before + 1)
        tryVerify(() => ["已完成", "失败"].includes(TestHelper.taskStatuses()[before]), 120000)
        compare(TestHelper.taskStatuses()[before], "已完成")
        const files = TestHelper.filesIn(folder)
        compare(files.length, 1, files.join(", "))
        compare(TestHelper.streamsOf(folder + "/" + files[0]).sort(), ["audio", "video"])
    }
}
