import QtQuick
import QtTest
import Quillbox
import QuillboxTest

// "播放列表": a playlist's items read into the sheet and picked there, the question a video's link
// with a list asks, and the queue's group of what was picked.
ViewTestCase {
    id: testCase

    name: "Playlist"

    readonly property string listFile: TestHelper.tempDir() + "/playlist.json"

    function init() {
        resetForm("lists")
        AppState.downloadPlaylist = true
        TestHelper.writeFile(listFile, JSON.stringify({ title: "周末厨房", count: 30 }))
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST", listFile)
        // The picked downloads stay running, so they are "已在队列中" when listed again.
        TestHelper.setScenario('[{"sleep": 30}]', 0)
        showMainView()
    }

    function cleanup() {
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST", "")
        const sheet = child("playlistSheet")
        if (sheet.item && sheet.item.picker.active)
            sheet.item.picker.cancel()
        stopDownloads()
        DownloadManager.clearCompleted()
    }

    // Presses "开始下载" with `link` and waits for the sheet with all `count` items.
    function openSheet(link, count) {
        AppState.urlInput = link
        pressStart()
        const sheet = child("playlistSheet")
        tryVerify(() => sheet.item !== null && sheet.item.visible, 20000)
        tryCompare(sheet.item.picker, "listedCount", count, 20000)
        tryCompare(sheet.item.picker, "listing", false, 20000)
        waitForRendering(sheet.item.contentItem)
        return sheet.item
    }

    function sheetChild(sheet, name) {
        const item = findChild(sheet.contentItem, name)
        verify(item, name)
        return item
    }

    // The queue's header of the playlist titled `title`, once made.
    function headerOf(title) {
        const items = child("taskList").contentItem.children
        for (let i = 0; i < items.length; ++i) {
            const item = items[i]
            const shown = findChild(item, "groupTitle")
            if (shown && shown.text === title && item.visible)
                return item
        }
        return null
    }

    // Select none, a range, a wrong range, the filter, then "下载所选": one task per picked item,
    // in the playlist's group, the sheet closed.
    function test_pickAndQueue() {
        const before = DownloadManager.tasks.count
        TestHelper.writeFile(listFile, JSON.stringify({ title: "精选", count: 30 }))
        const sheet = openSheet("https://lists.example/playlist?list=pick", 30)
        compare(sheetChild(sheet, "playlistTitle").text, "精选")
        compare(sheetChild(sheet, "playlistProgress").text, "共 30 项")
        compare(sheet.picker.selectedCount, 30)
        mouseClick(sheetChild(sheet, "selectNoneButton"))
        compare(sheet.picker.selectedCount, 0)
        verify(!sheetChild(sheet, "playlistConfirmButton").enabled)

        const range = sheetChild(sheet, "playlistRange")
        mouseClick(range)
        typeText("2, 5-6")
        mouseClick(sheetChild(sheet, "playlistRangeButton"))
        compare(sheet.picker.selectedCount, 3)
        compare(sheetChild(sheet, "selectedCount").text, "已选 3 / 30 项")
        mouseClick(range)
        range.selectAll()
        typeText("40")
        keyClick(Qt.Key_Return)
        verify(sheetChild(sheet, "playlistRangeError").text.indexOf("1-30") >= 0)
        compare(sheet.picker.selectedCount, 3) // a range that cannot be read changes nothing

        // The filter narrows the rows; invert works on those shown only.
        mouseClick(sheetChild(sheet, "playlistFilter"))
        typeText("1")
        const items = sheetChild(sheet, "playlistItems")
        tryCompare(items, "count", 12) // 1, 10-19 and 21
        mouseClick(sheetChild(sheet, "invertSelectionButton"))
        compare(sheet.picker.selectedCount, 3 + 12)
        mouseClick(sheetChild(sheet, "invertSelectionButton"))
        compare(sheet.picker.selectedCount, 3)

        mouseClick(sheetChild(sheet, "playlistConfirmButton"))
        tryCompare(sheet, "visible", false)
        compare(DownloadManager.tasks.count, before + 3)
        compare(TestHelper.taskUrls().slice(-3), ["https://lists.example/playlist?list=pick/item=2",
                                                  "https://lists.example/playlist?list=pick/item=5",
                                                  "https://lists.example/playlist?list=pick/item=6"])
        const row = rowAt(before)
        compare(findChild(row, "titleText").text, "2. 第 2 个视频")
        // The group's header: its title and figures; it stops the whole group at once, retries
        // it, and folds it to nothing but itself.
        let header = null
        tryVerify(() => (header = headerOf("精选")) !== null, 20000)
        compare(findChild(header, "groupFigures").text, "3 项")
        mouseClick(findChild(header, "stopGroupButton"))
        tryCompare(DownloadManager, "runningCount", 0, 20000)
        tryCompare(findChild(header, "groupFigures"), "text", "3 项 · 3 未完成")
        verify(!findChild(header, "stopGroupButton").visible)
        mouseClick(findChild(header, "retryGroupButton"))
        tryCompare(DownloadManager, "runningCount", 3, 20000)
        mouseClick(findChild(header, "foldGroupButton"))
        tryCompare(child("queueFilter"), "count", before + 1)
        compare(findChild(header, "foldGroupButton").text, "展开")
        mouseClick(findChild(header, "foldGroupButton"))
        tryCompare(child("queueFilter"), "count", before + 3)

        // The queue's search finds a row by its link and by its status.
        const search = child("queueSearch")
        mouseClick(search)
        typeText("pick/item=5")
        tryCompare(child("queueFilter"), "count", 1)
        search.text = ""
        tryCompare(child("queueFilter"), "count", DownloadManager.tasks.count)
    }

    // What is already queued is marked and left unpicked; "取消" queues nothing.
    function test_alreadyQueuedAndCancel() {
        let sheet = openSheet("https://lists.example/playlist?list=kitchen", 30)
        sheet.picker.selectRange("1-2")
        mouseClick(sheetChild(sheet, "playlistConfirmButton"))
        tryCompare(sheet, "visible", false)
        const queued = DownloadManager.tasks.count

        sheet = openSheet("https://lists.example/playlist?list=kitchen", 30)
        compare(sheet.picker.selectedCount, 28)
        const items = sheetChild(sheet, "playlistItems")
        const first = items.itemAtIndex(0)
        compare(findChild(first, "itemMark").text, "已在队列中")
        verify(!findChild(items.itemAtIndex(2), "itemMark").visible)
        mouseClick(sheetChild(sheet, "playlistCancelButton"))
        tryCompare(sheet, "visible", false)
        wait(300)
        compare(DownloadManager.tasks.count, queued)
    }

    // A range chosen while the list is still read holds for the items read after it.
    function test_rangeWhileReading() {
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST_DELAY", "0.05")
        AppState.urlInput = "https://lists.example/playlist?list=slowly"
        pressStart()
        const sheet = child("playlistSheet")
        tryVerify(() => sheet.item !== null && sheet.item.visible && sheet.item.picker.listedCount >= 2, 20000)
        verify(sheet.item.picker.listing)
        compare(sheet.item.picker.selectRange("1-2"), "")
        tryCompare(sheet.item.picker, "listing", false, 20000)
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST_DELAY", "")
        compare(sheet.item.picker.listedCount, 30)
        compare(sheet.item.picker.selectedCount, 2)
    }

    // A look at a link that takes long says so under "开始下载" and can be given up: nothing of it
    // is queued.
    function test_cancelWhileChecking() {
        const before = DownloadManager.tasks.count
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST", "")
        TestHelper.setEnv("FAKE_YTDLP_INFO_DELAY", "30")
        AppState.urlInput = "https://lists.example/slow"
        pressStart()
        const notice = child("listingNotice")
        tryVerify(() => notice.visible, 20000)
        compare(notice.text, "正在检查链接：https://lists.example/slow")
        mouseClick(child("listingCancelButton"))
        tryCompare(notice, "visible", false)
        TestHelper.setEnv("FAKE_YTDLP_INFO_DELAY", "")
        wait(300)
        compare(DownloadManager.tasks.count, before)
    }

    // A link that is one video is queued without a sheet; one that cannot be listed runs as one
    // task and the log says why.
    function test_notAPlaylist() {
        const before = DownloadManager.tasks.count
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST", "")
        AppState.urlInput = "https://lists.example/video/1"
        pressStart()
        tryCompare(DownloadManager.tasks, "count", before + 1, 20000)
        verify(!child("playlistSheet").item)

        TestHelper.writeFile(listFile, JSON.stringify({ title: "x", count: 0 }))
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST", listFile)
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST_EXIT", "1")
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST_STDERR", "ERROR: Unable to download webpage")
        AppState.urlInput = "https://lists.example/broken"
        pressStart()
        tryCompare(DownloadManager.tasks, "count", before + 2, 20000)
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST_EXIT", "")
        TestHelper.setEnv("FAKE_YTDLP_PLAYLIST_STDERR", "")
        compare(TestHelper.taskUrls()[before + 1], "https://lists.example/broken")
    }

    // A video's link that names a list asks first; "只下载这个视频" queues the video alone.
    function test_videoWithList() {
        const before = DownloadManager.tasks.count
        AppState.urlInput = "https://lists.example/watch?v=a1&list=kitchen"
        pressStart()
        const question = child("playlistQuestion")
        tryVerify(() => question.item !== null && question.item.opened)
        compare(findChild(question.item.contentItem, "confirmMessage").text, "这个视频链接还带有一个播放列表。")
        mouseClick(findChild(question.item.contentItem, "confirmButton"))
        tryCompare(DownloadManager.tasks, "count", before + 1, 20000)
        compare(TestHelper.taskUrls()[before], "https://lists.example/watch?v=a1")
        verify(!child("playlistSheet").item || !child("playlistSheet").item.visible)
    }
}
