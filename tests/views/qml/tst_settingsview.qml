import QtQuick
import QtTest
import Quillbox
import QuillboxTest

// The settings sheet against the real engine, whose yt-dlp is the stand-in.
ViewTestCase {
    id: testCase

    readonly property string denoPath: TestHelper.tempDir() + "/home/.deno/bin/deno"

    name: "Settings"
    width: 550
    height: 720

    Component {
        id: sheetComponent

        SettingsView {
            anchors.fill: parent
        }
    }

    SignalSpy {
        id: urlSpy

        target: Desktop
        signalName: "urlOpened"
    }

    function init() {
        TestHelper.setEnv("FAKE_YTDLP_UPDATE_OUTPUT", "")
        TestHelper.setEnv("FAKE_YTDLP_UPDATE_EXIT", "")
        urlSpy.clear()
        view = createTemporaryObject(sheetComponent, testCase)
        verify(view)
    }

    function typeInto(field, text) {
        field.forceActiveFocus()
        field.selectAll()
        for (const character of text)
            keyClick(character)
    }

    // "使用此路径" is enabled only while the field holds a path.
    function test_usePathNeedsAPath() {
        const usePath = child("usePathButton")
        verify(!usePath.enabled)
        child("pathField").forceActiveFocus()
        keyClick(Qt.Key_A)
        verify(usePath.enabled)
        keyClick(Qt.Key_Backspace)
        verify(!usePath.enabled)
    }

    // Each case runs the stand-in's update; the message is coloured by what it contains, and an
    // up-to-date yt-dlp is no failure whatever its exit status.
    function test_updateResultColour_data() {
        return [
            { tag: "success", output: "Updated yt-dlp to 2025.11.12", exit: 0, tint: Download.Green, start: "✅ 更新成功" },
            { tag: "up-to-date", output: "yt-dlp is up-to-date (2025.11.12)", exit: 1, tint: Download.Green, start: "❌" },
            { tag: "failure", output: "ERROR: Unable to write to /usr/bin/yt-dlp", exit: 1, tint: Download.Red, start: "❌" },
        ]
    }

    function test_updateResultColour(data) {
        TestHelper.setEnv("FAKE_YTDLP_UPDATE_OUTPUT", data.output)
        TestHelper.setEnv("FAKE_YTDLP_UPDATE_EXIT", String(data.exit))
        const update = child("updateButton")
        const result = child("updateResultText")
        mouseClick(update)
        compare(result.text, "正在更新...")
        tryCompare(update, "text", "更新 yt-dlp 到最新版", 20000)
        verify(result.text.startsWith(data.start), result.text)
        compare(String(result.color), String(Theme.tint(data.tint)), result.text)
    }

    // No runtime: the sheet offers to install one; one written since is found by "重新检测".
    function test_redetectFindsANewRuntime() {
        TestHelper.removeFile(denoPath)
        const status = child("statusText", child("runtimeStatus"))
        const install = child("installDenoButton")
        const repair = child("verdictActionButton", child("runtimeVerdict"))
        DownloadManager.detectJSRuntime()
        tryCompare(status, "text", "未检测到 JS 运行时", 20000)
        verify(repair.visible)
        mouseClick(install)
        verify(String(urlSpy.signalArguments[0][0]).startsWith("https://docs.deno.com/"))

        verify(TestHelper.writeFile(denoPath, "#!/bin/sh\necho 'deno 2.5.0'\n", true))
        mouseClick(child("redetectButton", child("runtimeStatus")))
        tryCompare(status, "text", "deno 已就绪", 20000)
        verify(!repair.visible)
        verify(!install.visible)
        compare(child("runtimePathText").text, denoPath)
        TestHelper.removeFile(denoPath)
    }

    // Offline (the release server is a closed port here): the install says so and changes nothing.
    function test_installWhileOffline() {
        const before = DownloadManager.tools.ytDlpPath
        mouseClick(child("installYtDlpButton"))
        tryVerify(() => !DownloadManager.keeper.busy, 30000)
        verify(child("installStatusText").text.startsWith("无法连接"), child("installStatusText").text)
        compare(DownloadManager.tools.ytDlpPath, before)
    }

    function test_resetRemovesTheStoredPath() {
        const stored = TestHelper.setting("customYtDlpPath")
        verify(stored.length > 0)
        const field = child("pathField")
        field.forceActiveFocus()
        keyClick("/")
        keyClick("x")
        compare(DownloadManager.tools.ytDlpPath, stored)
        mouseClick(child("resetPathButton"))
        compare(field.text, "")
        compare(TestHelper.setting("customYtDlpPath"), undefined)
        // What is found is used at once.
        tryVerify(() => DownloadManager.tools.ytDlpPath !== stored, 20000)
        // "使用此路径" takes the stand-in back, also at once.
        typeInto(field, stored)
        mouseClick(child("usePathButton"))
        compare(DownloadManager.tools.ytDlpPath, stored)
        compare(TestHelper.setting("customYtDlpPath"), stored)
        tryCompare(DownloadManager.tools, "ytDlpVersion", "2025.11.12", 20000)
    }

    // What the download group sets reaches the application and is stored for the next start.
    function test_downloadSettingsAreStored() {
        const folder = TestHelper.tempDir() + "/chosen"
        typeInto(child("outputDirField"), folder)
        compare(AppState.outputDirectory, folder)

        const before = DownloadManager.maxConcurrentDownloads
        child("concurrencySpin").forceActiveFocus()
        keyClick(Qt.Key_Up)
        compare(Number(TestHelper.setting("maxConcurrentDownloads")), before + 1)
        keyClick(Qt.Key_Down)
        compare(DownloadManager.maxConcurrentDownloads, before)

        // Announcing finished downloads is on until switched off. The switch is at the bottom:
        // scrolled to first, as a person would.
        const flickable = child("settingsScroll").contentItem
        flickable.contentY = Math.max(0, flickable.contentHeight - flickable.height)
        waitForRendering(view)
        mouseClick(child("notifySwitch"))
        compare(String(TestHelper.setting("notifyOnFinish")), "false")
        mouseClick(child("notifySwitch"))
        compare(AppState.notifyOnFinish, true)
        // Unfinished downloads carry on at start until this holds them.
        verify(DownloadManager.resumeAtStart)
        mouseClick(child("resumeSwitch"))
        compare(String(TestHelper.setting("resumeDownloadsAtStart")), "false")
        mouseClick(child("resumeSwitch"))
        verify(DownloadManager.resumeAtStart)
    }

    // The picker offers the files that are there when it opens (a file that cannot be run is
    // not), with the one in use; choosing fills the field and stores nothing.
    function test_pickerOffersExistingFiles() {
        const homebrew = TestHelper.tempDir() + "/opt/homebrew/bin/yt-dlp"
        const local = TestHelper.tempDir() + "/usr/local/bin/yt-dlp"
        const inUse = DownloadManager.tools.ytDlpPath
        const stored = TestHelper.setting("customYtDlpPath")
        const picker = child("filePicker")
        const offered = () => {
            const choices = child("pickerChoices", picker.contentItem)
            return Array.from({ length: choices.count }, (_, i) => choices.itemAt(i).text)
        }
        const openPicker = () => {
            mouseClick(child("browseYtDlpButton"))
            tryCompare(picker, "opened", true)
            waitForRendering(picker.contentItem)
        }

        verify(TestHelper.writeFile(local, "#!/bin/sh\n", true))
        openPicker()
        compare(offered(), ["✅ " + local, "✅ " + inUse])
        mouseClick(child("pickerCancelButton", picker.contentItem))
        tryCompare(picker, "opened", false)

        verify(TestHelper.writeFile(homebrew, "#!/bin/sh\n", true))
        verify(TestHelper.removeFile(local) && TestHelper.writeFile(local, "not a program\n"))
        openPicker()
        compare(offered(), ["✅ " + homebrew, "✅ " + inUse])
        mouseClick(child("pickerChoices", picker.contentItem).itemAt(0))
        tryCompare(picker, "opened", false)
        compare(child("pathField").text, homebrew)
        compare(TestHelper.setting("customYtDlpPath"), stored)
        TestHelper.removeFile(homebrew)
        TestHelper.removeFile(local)
    }
}
