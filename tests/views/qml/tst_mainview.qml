import QtQuick
import QtTest
import Quillbox
import QuillboxTest

ViewTestCase {
    name: "MainView"

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

    SignalSpy {
        id: scrollSpy

        signalName: "scrolledToNewest"
    }

    function init() {
        AppState.showLogPanel = true
        AppState.showSettings = false
        AppState.clearLog()
        TestHelper.setEnv("FAKE_YTDLP_VERSION_EXIT", "")
        urlSpy.clear()
        checkSpy.clear()
    }

    function panel() {
        return findChild(view, "logPanel")
    }

    // The log button shows and hides the panel, its icon filled while it shows; two quick toggles
    // leave the state of the last one. The badge counts the entries; the trash empties the log,
    // the close button hides the panel.
    function test_logPanel() {
        showMainView()
        const button = child("logButton")
        compare(child("logButtonIcon").symbol, "terminal.fill")
        mouseClick(button)
        compare(AppState.showLogPanel, false)
        tryVerify(() => panel() === null)
        compare(child("logButtonIcon").symbol, "terminal")
        mouseClick(button)
        compare(AppState.showLogPanel, true)
        tryVerify(() => panel() !== null)
        mouseClick(button)
        mouseClick(button)
        compare(AppState.showLogPanel, true)
        wait(400)
        verify(panel())

        const badge = child("logBadge")
        const count = child("logCount", panel())
        tryCompare(AppState.logEntries, "count", 0)
        compare(badge.visible, false)
        TestHelper.addLogs(5, "line", 3)
        tryCompare(badge, "visible", true)
        compare(badge.text, "5")
        tryCompare(count, "text", "5 条")
        mouseClick(child("clearLogButton", panel()))
        compare(AppState.logEntries.count, 0)
        compare(count.text, "0 条")
        compare(badge.visible, false)
        mouseClick(child("closeLogButton", panel()))
        compare(AppState.showLogPanel, false)
        tryVerify(() => panel() === null)
    }

    // Errors in red; the time on a 24-hour clock.
    function test_entries() {
        showMainView()
        const list = child("logList", panel())
        TestHelper.addLogs(1, "boom", 2)
        tryCompare(list, "count", 1) // added on the next turn of the event loop
        TestHelper.addLogAt(0, 0, 7, "midnight")
        TestHelper.addLogAt(13, 5, 9, "afternoon")
        tryCompare(list, "count", 3)
        tryVerify(() => list.itemAtIndex(2) !== null)
        const text = (i, name) => child(name, list.itemAtIndex(i))
        compare(text(0, "messageText").text, "boom 0")
        verify(Qt.colorEqual(text(0, "messageText").color, Theme.red))
        verify(Qt.colorEqual(text(1, "messageText").color, "white"))
        compare(text(1, "timeText").text, "00:00:07")
        compare(text(2, "timeText").text, "13:05:09")
    }

    function test_autoScroll() {
        showMainView()
        scrollSpy.target = panel()
        scrollSpy.clear()
        // "最新" on an empty log does nothing.
        mouseClick(child("newestButton", panel()))
        wait(50)
        compare(scrollSpy.count, 0)
        TestHelper.addLogs(1, "first", 0)
        tryCompare(scrollSpy, "count", 1)

        // With auto-scroll off nothing moves.
        child("autoScrollSwitch", panel()).toggle()
        child("autoScrollSwitch", panel()).toggled()
        compare(panel().autoScroll, false)
        TestHelper.addLogs(1, "second", 0)
        tryCompare(AppState.logEntries, "count", 2)
        wait(50)
        compare(scrollSpy.count, 1)

        // "最新" switches it back on and shows the newest entry.
        mouseClick(child("newestButton", panel()))
        tryCompare(panel(), "autoScroll", true)
        tryCompare(scrollSpy, "count", 2)

        // Nor when the cap replaces the oldest entry.
        TestHelper.addLogs(498, "fill", 3)
        tryCompare(AppState.logEntries, "count", 500)
        wait(50)
        scrollSpy.clear()
        TestHelper.addLogs(1, "newest", 0)
        tryVerify(() => AppState.logEntries.count === 500 && child("logList", panel()).count === 500)
        wait(100)
        compare(scrollSpy.count, 0)
        compare(child("logCount", panel()).text, "500 条")
    }

    function test_settingsButtonOpensTheSheet() {
        showMainView()
        mouseClick(child("settingsButton"))
        compare(AppState.showSettings, true)
        const sheet = child("settingsSheet")
        tryCompare(sheet, "opened", true)
        // Its own close button is the only way out; a reopened sheet starts afresh.
        keyClick(Qt.Key_Escape)
        wait(50)
        verify(sheet.opened)
        child("pathField", sheet.contentItem).text = "/typed/yt-dlp"
        mouseClick(child("closeSettingsButton", sheet.contentItem))
        tryCompare(sheet, "opened", false)
        compare(AppState.showSettings, false)
        mouseClick(child("settingsButton"))
        tryCompare(sheet, "opened", true)
        tryVerify(() => findChild(sheet.contentItem, "pathField") !== null)
        compare(child("pathField", sheet.contentItem).text, "")
    }

    // Either answer closes the alert; only "打开安装说明" opens the instructions.
    function test_alertAnswers_data() {
        return [{ tag: "instructions", button: "openInstructionsButton", opened: 1 },
                { tag: "later", button: "laterButton", opened: 0 }]
    }

    function test_alertAnswers(data) {
        TestHelper.setEnv("FAKE_YTDLP_VERSION_EXIT", "1")
        showMainView({}, true)
        const alert = child("installationAlert")
        tryCompare(alert, "opened", true, 20000)
        mouseClick(child(data.button, alert))
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
