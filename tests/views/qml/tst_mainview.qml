import QtQuick
import QtTest
import Quillbox
import QuillboxTest

TestCase {
    id: testCase

    name: "MainView"
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

    SignalSpy {
        id: urlSpy

        target: Desktop
        signalName: "urlOpened"
    }

    SignalSpy {
        id: checkSpy

        target: DownloadManager
        signalName: "installationChecked"
    }

    function makeView() {
        const view = createTemporaryObject(mainViewComponent, testCase)
        verify(view)
        return view
    }

    function panelOf(view) {
        return findChild(view, "logPanel")
    }

    function init() {
        AppState.showLogPanel = true
        AppState.showSettings = false
        AppState.clearLog()
        TestHelper.setEnv("FAKE_YTDLP_VERSION_EXIT", "")
        urlSpy.clear()
        checkSpy.clear()
    }

    function test_logButtonTogglesThePanel() {
        const view = makeView()
        verify(panelOf(view))
        compare(findChild(view, "logButtonIcon").symbol, "terminal.fill")
        mouseClick(findChild(view, "logButton"))
        compare(AppState.showLogPanel, false)
        tryVerify(() => panelOf(view) === null)
        compare(findChild(view, "logButtonIcon").symbol, "terminal")
        mouseClick(findChild(view, "logButton"))
        compare(AppState.showLogPanel, true)
        tryVerify(() => panelOf(view) !== null)

        // Two quick toggles leave the state of the last one.
        mouseClick(findChild(view, "logButton"))
        mouseClick(findChild(view, "logButton"))
        compare(AppState.showLogPanel, true)
        wait(400)
        verify(panelOf(view))
    }

    // The badge counts the entries; the trash empties the log, the close button hides the panel.
    function test_badgeTrashAndClose() {
        const view = makeView()
        const panel = panelOf(view)
        const badge = findChild(view, "logBadge")
        tryCompare(AppState.logEntries, "count", 0)
        compare(badge.visible, false)
        TestHelper.addLogs(5, "line", 3)
        tryCompare(badge, "visible", true)
        compare(badge.text, "5")
        tryCompare(findChild(panel, "logCount"), "text", "5 条")
        mouseClick(findChild(panel, "clearLogButton"))
        compare(AppState.logEntries.count, 0)
        compare(findChild(panel, "logCount").text, "0 条")
        compare(badge.visible, false)

        mouseClick(findChild(panel, "closeLogButton"))
        compare(AppState.showLogPanel, false)
        tryVerify(() => panelOf(view) === null)
    }

    // Errors in red; the time on a 24-hour clock.
    function test_entries() {
        const view = makeView()
        const list = findChild(panelOf(view), "logList")
        TestHelper.addLogs(1, "boom", 2)
        tryCompare(list, "count", 1) // added on the next turn of the event loop
        TestHelper.addLogAt(0, 0, 7, "midnight")
        TestHelper.addLogAt(13, 5, 9, "afternoon")
        tryCompare(list, "count", 3)
        tryVerify(() => list.itemAtIndex(2) !== null)
        const text = (i, name) => findChild(list.itemAtIndex(i), name)
        compare(text(0, "messageText").text, "boom 0")
        verify(Qt.colorEqual(text(0, "messageText").color, Theme.red))
        verify(Qt.colorEqual(text(1, "messageText").color, "white"))
        compare(text(1, "timeText").text, "00:00:07")
        compare(text(2, "timeText").text, "13:05:09")
    }

    SignalSpy {
        id: scrollSpy

        signalName: "scrolledToNewest"
    }

    function test_autoScroll() {
        const view = makeView()
        const panel = panelOf(view)
        scrollSpy.target = panel
        scrollSpy.clear()
        // "最新" on an empty log does nothing.
        mouseClick(findChild(panel, "newestButton"))
        wait(50)
        compare(scrollSpy.count, 0)
        TestHelper.addLogs(1, "first", 0)
        tryCompare(scrollSpy, "count", 1)

        // With auto-scroll off nothing moves.
        findChild(panel, "autoScrollSwitch").toggle()
        findChild(panel, "autoScrollSwitch").toggled()
        compare(panel.autoScroll, false)
        TestHelper.addLogs(1, "second", 0)
        tryCompare(AppState.logEntries, "count", 2)
        wait(50)
        compare(scrollSpy.count, 1)

        // "最新" switches it back on and shows the newest entry.
        mouseClick(findChild(panel, "newestButton"))
        tryCompare(panel, "autoScroll", true)
        tryCompare(scrollSpy, "count", 2)
    }

    function test_noScrollWhenTheCapReplacesTheOldest() {
        const view = makeView()
        const panel = panelOf(view)
        TestHelper.addLogs(500, "fill", 3)
        tryCompare(AppState.logEntries, "count", 500)
        scrollSpy.target = panel
        wait(50)
        scrollSpy.clear()
        TestHelper.addLogs(1, "newest", 0)
        const list = findChild(panel, "logList")
        tryVerify(() => AppState.logEntries.count === 500 && list.count === 500)
        wait(100)
        compare(scrollSpy.count, 0)
        compare(findChild(panel, "logCount").text, "500 条")
    }

    function test_settingsButtonOpensTheSheet() {
        const view = makeView()
        mouseClick(findChild(view, "settingsButton"))
        compare(AppState.showSettings, true)
        const sheet = findChild(view, "settingsSheet")
        tryCompare(sheet, "opened", true)
        // Its own close button is the only way out; a reopened sheet starts afresh.
        keyClick(Qt.Key_Escape)
        wait(50)
        verify(sheet.opened)
        const field = findChild(sheet.contentItem, "pathField")
        field.text = "/typed/yt-dlp"
        mouseClick(findChild(sheet.contentItem, "closeSettingsButton"))
        tryCompare(sheet, "opened", false)
        compare(AppState.showSettings, false)
        mouseClick(findChild(view, "settingsButton"))
        tryCompare(sheet, "opened", true)
        tryVerify(() => findChild(sheet.contentItem, "pathField") !== null)
        compare(findChild(sheet.contentItem, "pathField").text, "")
    }

    // Either answer closes the alert; only "打开安装说明" opens the instructions.
    function test_alertAnswers_data() {
        return [{ tag: "instructions", button: "openInstructionsButton", opened: 1 },
                { tag: "later", button: "laterButton", opened: 0 }]
    }

    function test_alertAnswers(data) {
        TestHelper.setEnv("FAKE_YTDLP_VERSION_EXIT", "1")
        const view = makeView()
        const alert = findChild(view, "installationAlert")
        tryCompare(alert, "opened", true, 20000)
        mouseClick(findChild(alert, data.button))
        compare(urlSpy.count, data.opened)
        if (data.opened)
            compare(String(urlSpy.signalArguments[0][0]), "https://github.com/yt-dlp/yt-dlp#installation")
        tryCompare(alert, "opened", false)

        // Once per appearance: a later check by someone else does not bring it back.
        const other = DownloadManager.checkInstallation()
        tryVerify(() => checkSpy.signalArguments.some(answer => answer[0] === other), 20000)
        wait(100)
        compare(alert.opened, false)
    }
}
