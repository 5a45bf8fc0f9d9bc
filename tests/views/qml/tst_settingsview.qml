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
        mouseClick(child("resumeSwitch"))
        compare(String(TestHelper.setting("resumeDownloadsAtStart")), "false")
        DownloadManager.resumeAtStart = true
    }

    // The renderer is chosen for the next start, and the sheet says what draws now and why.
    function test_rendererForTheNextStart() {
        compare(child("rendererInUse").text, "正在使用：软件（环境变量 QT_QUICK_BACKEND=software）")
        const choice = child("rendererChoice")
        compare(choice.displayText, "自动")
        verify(!child("rendererNextStart").visible)
        choice.forceActiveFocus()
        keyClick(Qt.Key_Down)
        keyClick(Qt.Key_Down)
        compare(choice.displayText, "软件")
        compare(TestHelper.setting("interfaceRenderer"), "software")
        verify(child("rendererNextStart").visible)
        // A stored choice is shown as it was stored.
        view.destroy()
        view = createTemporaryObject(sheetComponent, testCase)
        compare(child("rendererChoice").displayText, "软件")
        child("rendererChoice").forceActiveFocus()
        keyClick(Qt.Key_Up)
        keyClick(Qt.Key_Up)
        compare(TestHelper.setting("interfaceRenderer"), "auto")
        verify(!child("rendererNextStart").visible)
    }

    // The picker offers the files there when it opens (not one that cannot run), the one in use
    // among them; choosing one fills the field and stores nothing.
    function test_pickerOffersExistingFiles() {
        const places = ["/opt/homebrew/bin/yt-dlp", "/usr/local/bin/yt-dlp"].map(place => TestHelper.tempDir() + place)
        const picker = child("filePicker")
        const stored = TestHelper.setting("customYtDlpPath")
        for (const runnable of [1, 0]) {
            verify(TestHelper.writeFile(places[runnable], "#!/bin/sh\n", true))
            verify(TestHelper.writeFile(places[1 - runnable], "not a program\n"))
            mouseClick(child("browseYtDlpButton"))
            tryCompare(picker, "opened", true)
            waitForRendering(picker.contentItem)
            const choices = child("pickerChoices", picker.contentItem)
            compare(Array.from({ length: choices.count }, (_, i) => choices.itemAt(i).text),
                    ["✅ " + places[runnable], "✅ " + DownloadManager.tools.ytDlpPath])
            mouseClick(choices.itemAt(0))
            compare(child("pathField").text, places[runnable])
            TestHelper.removeFile(places[runnable])
        }
        compare(TestHelper.setting("customYtDlpPath"), stored)
        TestHelper.removeFile(places[1])
    }
}
