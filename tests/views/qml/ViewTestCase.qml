import QtQuick
import QtTest
import Quillbox
import QuillboxTest

// What the view tests share: the main view made afresh, its items found by name, the download
// form as a person first finds it, and the queue's rows.
TestCase {
    id: testCase

    property var view: null
    // The PATH the tests started with; a test that puts stand-ins on it gets it back in cleanup(),
    // also when it fails half-way.
    readonly property string originalPath: TestHelper.env("PATH")

    width: 1200
    height: 800
    visible: true
    when: windowShown

    // The download options, as the form's panel sets them.
    DownloadOptionsPresenter {
        id: formOptions
    }

    Component {
        id: mainViewComponent

        MainView {}
    }

    // A window-sized main view (`properties` may say otherwise), by default once its own
    // installation check has ended, so that it does not race a test's clicks.
    function showMainView(properties, unsettled) {
        view = createTemporaryObject(mainViewComponent, testCase,
                                     Object.assign({ width: width, height: height }, properties || {}))
        verify(view)
        if (!unsettled)
            tryCompare(view, "installationCheck", 0, 30000)
        return view
    }

    function child(name, parentItem) {
        const item = findChild(parentItem || view, name)
        verify(item, name)
        return item
    }

    // Downloads go to `folder` in the sandbox with the stand-in's plain success, each link one
    // download (the playlist switch off: nothing is listed first).
    function resetForm(folder) {
        formOptions.reset()
        AppState.downloadPlaylist = false
        AppState.urlInput = ""
        AppState.customArguments = ""
        AppState.selectedPreset = Download.Default
        AppState.useCookies = false
        AppState.showLogPanel = false
        AppState.outputDirectory = TestHelper.tempDir() + "/" + folder
        TestHelper.setScenario("[]", 0)
    }

    function stopDownloads() {
        DownloadManager.cancelAllDownloads()
        tryCompare(DownloadManager, "runningCount", 0, 20000)
    }

    // Presses "开始下载" as a person would: scrolled into view first if the form is taller than
    // the pane.
    function pressStart() {
        clickInForm(child("startButton"))
    }

    // Clicks `item` of the download form, scrolled into view first.
    function clickInForm(item) {
        waitForRendering(view)
        const flickable = child("inputScroller").contentItem
        const top = item.mapToItem(flickable.contentItem, 0, 0).y
        if (top < flickable.contentY)
            flickable.contentY = top
        else if (top + item.height > flickable.contentY + flickable.height)
            flickable.contentY = top + item.height - flickable.height
        waitForRendering(view)
        mouseClick(item)
    }

    // The row of the queue's task `index`, once it is laid out.
    function rowAt(index) {
        const list = child("taskList")
        let row = null
        tryVerify(() => {
            list.positionViewAtIndex(index, ListView.Contain)
            return (row = list.itemAtIndex(index)) !== null
        }, 20000)
        return row
    }

    // Types `text` into the item that has the focus, a key at a time.
    function typeText(text) {
        for (const character of text)
            keyClick(character)
    }

    // Scrolls the queue until `item`, inside one of its rows, is wholly in sight. Rows grow as
    // their texts arrive, so it is asked again until it holds.
    function bringIntoList(item) {
        const list = child("taskList")
        tryVerify(() => {
            const at = item.mapToItem(list, 0, 0)
            if (at.y >= 0 && at.y + item.height <= list.height)
                return true
            list.contentY += at.y < 0 ? at.y : at.y + item.height - list.height
            return false
        }, 20000)
        waitForRendering(view)
    }

    // Hovers `row` until its actions show, and clicks the one named `action`.
    function clickRowAction(row, action) {
        mouseMove(row, 20, 20)
        tryCompare(findChild(row, "rowActions"), "opacity", 1)
        mouseClick(findChild(row, action))
    }

    function inside(item) {
        const at = item.mapToItem(view, 0, 0)
        return item.visible && at.x >= 0 && at.y >= 0 && at.x + item.width <= view.width
            && at.y + item.height <= view.height
    }

    // Whether two colours of a grabbed image are told apart by eye.
    function differs(a, b) {
        return Math.abs(a.r - b.r) + Math.abs(a.g - b.g) + Math.abs(a.b - b.b) > 0.25
    }

    // How many pixels of `item` in `image` (a grab of `ancestor`) stand out from the one at the
    // item's top-left corner: its text or drawing; 0 where nothing was drawn.
    function inkOf(image, item, ancestor) {
        const at = item.mapToItem(ancestor, 0, 0)
        const left = Math.round(at.x), top = Math.round(at.y)
        const ground = image.pixel(left, top)
        let ink = 0
        for (let y = top; y < top + item.height && y < image.height; y += 2) {
            for (let x = left; x < left + item.width && x < image.width; x += 2) {
                if (differs(image.pixel(x, y), ground))
                    ++ink
            }
        }
        return ink
    }
}
