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

    // The log button shows and hides the panel; two quick toggles leave the state of the last
    // one. Errors are red, the trash empties the log, the close button hides the panel.
    function test_logPanel() {
        showMainView()
        const button = child("logButton")
        mouseClick(button)
        tryVerify(() => panel() === null)
        mouseClick(button)
        tryVerify(() => panel() !== null)
        mouseClick(button)
        mouseClick(button)
        compare(AppState.showLogPanel, true)
        wait(400)
        verify(panel())

        tryCompare(AppState.logEntries, "count", 0)
        TestHelper.addLogs(5, "line", 2)
        const list = child("logList", panel())
        tryVerify(() => list.itemAtIndex(0) !== null)
        verify(Qt.colorEqual(child("messageText", list.itemAtIndex(0)).color, Theme.red))
        mouseClick(child("clearLogButton", panel()))
        compare(AppState.logEntries.count, 0)
        mouseClick(child("closeLogButton", panel()))
        tryVerify(() => panel() === null)
    }

    // Closed, the panel stays closed at the next start, its badge counting the lines that come;
    // opened, it shows the newest of them and the badge goes.
    function test_logPanelAcrossRestart() {
        showMainView()
        mouseClick(child("closeLogButton", panel()))
        compare(TestHelper.setting("showLogPanel"), false)
        AppState.showLogPanel = true
        TestHelper.setSetting("showLogPanel", false)
        TestHelper.readPreferences()
        showMainView()
        tryVerify(() => !AppState.showLogPanel && panel() === null)
        const badge = child("logBadge")
        TestHelper.addLogs(40, "unseen", 0)
        tryVerify(() => AppState.unseenLogCount >= 40 && badge.visible && badge.text === String(AppState.unseenLogCount))
        mouseClick(child("logButton"))
        tryVerify(() => panel() !== null && !badge.visible)
        const list = child("logList", panel())
        tryVerify(() => list.contentHeight > list.height && list.atYEnd)
    }

    function test_autoScroll() {
        showMainView()
        scrollSpy.target = panel()
        scrollSpy.clear()
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
    }

    function test_settingsButtonOpensTheSheet() {
        showMainView()
        mouseClick(child("settingsButton"))
        const sheet = child("settingsSheet")
        tryCompare(sheet, "opened", true)
        // A click beside it leaves it open; Escape closes a picker over it, then the sheet. Its
        // close button closes it too, and a reopened sheet starts afresh.
        mouseClick(view, 5, 5)
        mouseClick(child("browseYtDlpButton", sheet.contentItem))
        const picker = child("filePicker", child("settingsLoader", sheet.contentItem).item)
        tryCompare(picker, "opened", true)
        keyClick(Qt.Key_Escape)
        tryCompare(picker, "opened", false)
        verify(sheet.opened)
        keyClick(Qt.Key_Escape)
        tryCompare(sheet, "opened", false)
        mouseClick(child("settingsButton"))
        tryCompare(sheet, "opened", true)
        tryVerify(() => findChild(sheet.contentItem, "pathField") !== null)
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
        tryCompare(alert, "opened", false)

        // Once per appearance: a later check by someone else does not bring it back.
        const other = DownloadManager.checkInstallation()
        tryVerify(() => checkSpy.signalArguments.some(answer => answer[0] === other), 20000)
        wait(100)
        compare(alert.opened, false)
    }
}
