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

    // The texts a person reads in `item`, top to bottom.
    function texts(item) {
        const found = []
        const walk = node => {
            if (!node.visible)
                return
            if (/^QQuickText\(/.test(node.toString()) && node.text.length > 0)
                found.push(node.text)
            for (let i = 0; i < node.children.length; ++i)
                walk(node.children[i])
        }
        walk(item)
        return found
    }

    function typeInto(field, text) {
        field.forceActiveFocus()
        field.selectAll()
        for (const character of text)
            keyClick(character)
    }

    function test_whatTheEngineFound() {
        tryVerify(() => DownloadManager.tools.ytDlpVersion.length > 0, 20000)
        const groups = ["ytDlpGroup", "runtimeGroup", "ffmpegGroup", "downloadGroup"].map(name => child(name))
        for (let i = 1; i < groups.length; ++i)
            verify(groups[i].y > groups[i - 1].y, "group " + i + " below the one before")
        compare(texts(groups[0]).slice(0, 3), ["yt-dlp 配置", "yt-dlp 状态", "已安装 (v" + DownloadManager.tools.ytDlpVersion + ")"])
        // Then the verdict on it: the stand-in is an official build of 2025.11.12, over 90 days old.
        tryVerify(() => texts(groups[0])[3].startsWith("yt-dlp 2025.11.12（"), 20000, texts(groups[0])[3])
        verify(texts(groups[0])[3].includes("已超过 90 天"), texts(groups[0])[3])
        compare(child("verdictActionButton", child("ytDlpVerdict")).text, "更新 yt-dlp")
        verify(texts(groups[0]).includes("自动检测路径: " + DownloadManager.tools.ytDlpPath + "（使用中，自选路径）"))
        // Nothing has been updated in a sheet just made.
        verify(!child("updateResultText").visible)
        compare(child("outputDirField").text, AppState.outputDirectory)

        // Only "使用此路径" is ever disabled, and only while the field is empty.
        const usePath = child("usePathButton")
        compare(child("pathField").text, "")
        verify(!usePath.enabled)
        for (const name of ["resetPathButton", "updateButton", "probeButton", "browseYtDlpButton", "browseOutputButton"])
            verify(child(name).enabled, name)
        child("pathField").forceActiveFocus()
        keyClick(Qt.Key_A)
        verify(usePath.enabled)
        keyClick(Qt.Key_Backspace)
        verify(!usePath.enabled)
    }

    // Each case runs the stand-in's update; the message is coloured by what it contains.
    function test_updateResultColour_data() {
        return [
            { tag: "success", output: "Updated yt-dlp to 2025.11.12", exit: 0, tint: Download.Green, start: "✅ 更新成功" },
            { tag: "up-to-date", output: "yt-dlp is up-to-date (2025.11.12)", exit: 1, tint: Download.Green, start: "❌ 更新失败" },
            { tag: "最新", output: "已是最新版本", exit: 1, tint: Download.Green, start: "❌ 更新失败" },
            { tag: "failure", output: "ERROR: Unable to write to /usr/bin/yt-dlp", exit: 1, tint: Download.Red, start: "❌ 更新失败" },
        ]
    }

    function test_updateResultColour(data) {
        TestHelper.setEnv("FAKE_YTDLP_UPDATE_OUTPUT", data.output)
        TestHelper.setEnv("FAKE_YTDLP_UPDATE_EXIT", String(data.exit))
        const update = child("updateButton")
        const result = child("updateResultText")
        mouseClick(update)
        // Running: the busy label, the orange "正在" message, and the button still pressable.
        compare(result.text, "正在更新...")
        compare(String(result.color), String(Theme.tint(Download.Orange)))
        compare(update.text, "更新中...")
        verify(update.enabled)
        tryCompare(update, "text", "更新 yt-dlp 到最新版", 20000)
        verify(result.text.startsWith(data.start), result.text)
        compare(String(result.color), String(Theme.tint(data.tint)), result.text)
    }

    function test_redetectFindsANewRuntime() {
        TestHelper.removeFile(denoPath)
        const status = child("statusText", child("runtimeStatus"))
        const install = child("installDenoButton")
        DownloadManager.detectJSRuntime()
        tryCompare(status, "text", "未检测到 JS 运行时", 20000)
        verify(install.visible)
        verify(child("runtimeBrewHint").visible)
        verify(!child("runtimePathText").visible)
        mouseClick(install)
        compare(urlSpy.count, 1)
        verify(String(urlSpy.signalArguments[0][0]).startsWith("https://docs.deno.com/"))

        const verdict = child("verdictText", child("runtimeVerdict"))
        const repair = child("verdictActionButton", child("runtimeVerdict"))
        compare(verdict.text, "未检测到 JS 运行时，YouTube 等需要 JS 运行时的网站会下载失败。点“安装 Deno”即可解决。")
        verify(repair.visible)
        compare(repair.text, "安装 Deno")

        // Too old for yt-dlp: named with its version, and not used.
        verify(TestHelper.writeFile(denoPath, "#!/bin/sh\necho 'deno 2.1.4'\n", true))
        mouseClick(child("redetectButton", child("runtimeStatus")))
        tryVerify(() => verdict.text.startsWith("deno 2.1.4 版本过旧（需要 ≥ 2.3.0），不会使用。"), 20000, verdict.text)
        compare(status.text, "未检测到 JS 运行时")
        verify(repair.visible)

        verify(TestHelper.writeFile(denoPath, "#!/bin/sh\necho 'deno 2.5.0'\n", true))
        mouseClick(child("redetectButton", child("runtimeStatus")))
        tryCompare(status, "text", "deno 已就绪", 20000)
        tryCompare(verdict, "text", "使用 deno 2.5.0，可以解析 YouTube 视频。")
        verify(!repair.visible)
        verify(!install.visible)
        verify(!child("runtimeBrewHint").visible)
        compare(child("runtimePathText").text, denoPath)
        TestHelper.removeFile(denoPath)
    }

    // Offline (the release server is a closed port here): the install says so and changes nothing.
    function test_installWhileOffline() {
        const before = DownloadManager.tools.ytDlpPath
        const install = child("installYtDlpButton")
        verify(install.visible && install.enabled)
        mouseClick(install)
        tryVerify(() => !DownloadManager.keeper.busy, 30000)
        verify(child("installProgress").visible)
        verify(child("installStatusText").text.startsWith("无法连接"), child("installStatusText").text)
        verify(install.enabled)
        compare(DownloadManager.tools.ytDlpPath, before)
    }

    function test_pickerOnlyFillsTheField() {
        const stored = TestHelper.setting("customYtDlpPath")
        const picker = child("filePicker")
        mouseClick(child("browseYtDlpButton"))
        tryCompare(picker, "opened", true)
        mouseClick(child("pickerCancelButton", picker.contentItem))
        tryCompare(picker, "visible", false)
        compare(child("pathField").text, "")

        mouseClick(child("browseYtDlpButton"))
        tryCompare(picker, "opened", true)
        const entries = child("pickerEntries", picker.contentItem).children
        const labels = []
        for (let i = 0; i < entries.length; ++i)
            labels.push(entries[i].text)
        compare(labels.filter(label => label !== undefined),
            ["✅ /opt/homebrew/bin/yt-dlp", "✅ /usr/local/bin/yt-dlp", "📁 手动选择..."])
        mouseClick(entries[labels.indexOf("✅ /usr/local/bin/yt-dlp")])
        tryCompare(picker, "visible", false)
        compare(child("pathField").text, "/usr/local/bin/yt-dlp")
        verify(child("usePathButton").enabled)
        compare(TestHelper.setting("customYtDlpPath"), stored)
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
        // What is found is used at once, and the line says it was found.
        tryVerify(() => DownloadManager.tools.ytDlpPath !== stored, 20000)
        tryVerify(() => child("autoPathText").text.endsWith("（使用中，自动找到）"), 20000)
        // "使用此路径" takes the stand-in back, also at once.
        typeInto(field, stored)
        mouseClick(child("usePathButton"))
        compare(DownloadManager.tools.ytDlpPath, stored)
        compare(TestHelper.setting("customYtDlpPath"), stored)
        compare(child("autoPathText").text, "自动检测路径: " + stored + "（使用中，自选路径）")
        tryCompare(DownloadManager.tools, "ytDlpVersion", "2025.11.12", 20000)
    }

    function test_downloadSettingsSurviveARestart() {
        const folder = TestHelper.tempDir() + "/chosen"
        typeInto(child("outputDirField"), folder)
        compare(AppState.outputDirectory, folder)
        compare(TestHelper.freshSettings().outputDirectory, folder)

        const before = DownloadManager.maxConcurrentDownloads
        child("concurrencySpin").forceActiveFocus()
        keyClick(Qt.Key_Up)
        compare(DownloadManager.maxConcurrentDownloads, before + 1)
        compare(TestHelper.freshSettings().maxConcurrentDownloads, before + 1)
        keyClick(Qt.Key_Down)
        compare(TestHelper.freshSettings().maxConcurrentDownloads, before)

        // Announcing finished downloads is on until switched off, and stays off. The switch is at
        // the bottom: scrolled to first, as a person would.
        const notify = child("notifySwitch")
        verify(AppState.notifyOnFinish)
        verify(notify.checked)
        const flickable = child("settingsScroll").contentItem
        flickable.contentY = Math.max(0, flickable.contentHeight - flickable.height)
        waitForRendering(view)
        for (const on of [false, true]) {
            mouseClick(notify)
            compare(AppState.notifyOnFinish, on)
            compare(String(TestHelper.setting("notifyOnFinish")), String(on))
        }
    }
}
