import QtQuick
import QtTest
import Quillbox
import QuillboxTest

ViewTestCase {
    readonly property string chromeDatabase: TestHelper.tempDir() + "/home/.config/google-chrome/Default/Cookies"

    name: "CookieManager"
    height: 900

    function makePage() {
        AppState.selectedTab = 2
        showMainView({}, true)
        const loader = child("cookieManagerLoader")
        tryVerify(() => loader.item !== null)
        verify(!child("downloadInput").visible)
        return loader.item
    }

    // Runs one download with the cookie switch on and gives the stand-in's arguments.
    function downloadArgv(url) {
        const before = DownloadManager.tasks.count
        TestHelper.setScenario("[]", 0)
        DownloadManager.startDownload(url, Download.Default, "", TestHelper.tempDir() + "/out", true, true)
        tryCompare(DownloadManager.tasks, "count", before + 1)
        tryVerify(() => TestHelper.taskStatuses()[before] === "已完成", 20000)
        return TestHelper.argvFor(url)
    }

    function init() {
        AppState.cookieSource = "chrome"
        AppState.cookiePath = ""
        AppState.useCookies = true
        TestHelper.removeFile(chromeDatabase)
    }

    function cleanupTestCase() {
        AppState.selectedTab = 0
    }

    function test_sourceChangesTheCommand_data() {
        return [
            { tag: "none", option: "sourceNone", words: [], absent: ["--cookies", "--cookies-from-browser"] },
            { tag: "browser", option: "sourceBrowser", words: ["--cookies-from-browser", "chrome"], absent: ["--cookies"] },
            { tag: "file", option: "sourceFile", words: ["--cookies", "FILE"], absent: ["--cookies-from-browser"] },
        ]
    }

    function test_sourceChangesTheCommand(data) {
        const file = TestHelper.tempDir() + "/my cookies.txt"
        verify(TestHelper.writeFile(file, "# Netscape HTTP Cookie File\n.a.example\tTRUE\t/\tFALSE\t0\tk\tv\n"))
        verify(TestHelper.writeChromeDatabase(chromeDatabase, ".a.example", "k", "v"))
        AppState.cookieSource = data.tag === "none" ? "file" : "none"
        const page = makePage()
        mouseClick(child("rereadButton", page))
        const field = child("cookieFileField", page)
        field.text = file
        field.editingFinished()
        compare(child("browserChoice", page).currentText, "Chrome")

        mouseClick(findChild(page, data.option))
        compare(AppState.cookieSource, data.tag === "browser" ? "chrome" : data.tag)
        const argv = downloadArgv("https://cookie.example/" + data.tag)
        const words = data.words.map(word => word === "FILE" ? file : word)
        if (words.length > 0) {
            const at = argv.indexOf(words[0])
            verify(at >= 0, argv.join(" "))
            compare(argv[at + 1], words[1])
        }
        for (const word of data.absent)
            verify(argv.indexOf(word) < 0, argv.join(" "))
    }

    function test_missingBrowserGivesNoWords() {
        const page = makePage()
        // Chrome is not there: it stays chosen, said to be missing, and downloads go without cookies.
        compare(child("browserChoice", page).currentText, "Chrome（未找到）")
        verify(child("sourceBrowser", page).checked)
        const argv = downloadArgv("https://cookie.example/missing")
        verify(argv.indexOf("--cookies-from-browser") < 0, argv.join(" "))
    }

    function test_export() {
        const page = makePage()
        const button = child("exportButton", page)
        const error = child("exportError", page)
        const result = child("exportResult", page)

        mouseClick(button)
        compare(button.text, "正在导出...")
        verify(!button.enabled)
        tryCompare(error, "text", "未找到 Chrome 浏览器。请确保已安装 Google Chrome。", 20000)
        verify(error.visible)
        compare(button.text, "导出 Chrome Cookie")
        verify(!result.visible)

        verify(TestHelper.writeChromeDatabase(chromeDatabase, ".video.example", "sid", "s3cret"))
        mouseClick(button)
        compare(button.text, "正在导出...")
        compare(error.text, "")
        tryCompare(button, "text", "导出 Chrome Cookie", 20000)
        verify(result.visible)
        verify(result.text.startsWith(CookieService.extractedCookiesPath + "\n"), result.text)
        verify(result.text.includes("已导出 1 个 Cookie，来自 1 个网站"), result.text)
        verify(result.text.includes(".video.example"), result.text)

        mouseClick(child("useExportButton", page))
        compare(AppState.cookiePath, CookieService.extractedCookiesPath)
        compare(AppState.cookieSource, "file")
        verify(child("sourceFile", page).checked)
        const row = child("domainList", page).itemAt(0)
        verify(row)
        compare(row.modelData.domain, ".video.example")
        const argv = downloadArgv("https://cookie.example/exported")
        compare(argv[argv.indexOf("--cookies") + 1], CookieService.extractedCookiesPath)
    }

    function test_expiredCookiesMarked() {
        const file = TestHelper.tempDir() + "/expiring.txt"
        verify(TestHelper.writeFile(file, "# Netscape HTTP Cookie File\n\n"
                                        + ".old.example\tTRUE\t/\tFALSE\t1600000000\tsid\tx\n"
                                        + ".new.example\tTRUE\t/\tTRUE\t4102444800\tsid\ty\n"))
        const page = makePage()
        AppState.cookiePath = file
        const list = child("domainList", page)
        tryCompare(list, "count", 2)
        const fresh = list.itemAt(0)
        const old = list.itemAt(1)
        compare(fresh.modelData.domain, ".new.example")
        verify(!findChild(fresh, "expiredBadge").visible)
        verify(findChild(fresh, "domainDetail").text.includes("有效期至 2100-01-01"), findChild(fresh, "domainDetail").text)
        compare(old.modelData.domain, ".old.example")
        verify(findChild(old, "expiredBadge").visible)
        verify(findChild(old, "domainDetail").text.includes("已于 2020-09-1"), findChild(old, "domainDetail").text)
        const summary = child("expiredSummary", page)
        verify(summary.visible)
        compare(summary.text, "1 个网站的 Cookie 已过期，请重新登录后再导出。")
        verify(!child("switchOffHint", page).visible)
        AppState.useCookies = false
        verify(child("switchOffHint", page).visible)
    }

    function test_checkCookies_data() {
        return [
            { tag: "read", steps: "[{\"out\": \"[info] no link\\n\"}]", exit: 2, failed: false,
              says: "yt-dlp 从 Cookie 文件 读到 2 个 Cookie。\n找到 YouTube 的登录 Cookie（SID），有效期至 2100-01-01" },
            { tag: "refused", exit: 1, failed: true,
              steps: "[{\"err\": \"ERROR: 'c.txt' does not look like a Netscape format cookies file\\n\"}]",
              says: "Cookie 文件不是 Netscape 格式（cookies.txt），yt-dlp 无法使用" },
        ]
    }

    function test_checkCookies(data) {
        const file = TestHelper.tempDir() + "/signed in.txt"
        verify(TestHelper.writeFile(file, "# Netscape HTTP Cookie File\n"
                                        + ".youtube.com\tTRUE\t/\tTRUE\t4102444800\tSID\tx\n"
                                        + ".youtube.com\tTRUE\t/\tFALSE\t0\tPREF\ty\n"))
        AppState.cookieSource = "none"
        const page = makePage()
        const button = child("checkButton", page)
        const result = child("checkResult", page)
        verify(!button.enabled)
        AppState.cookiePath = file
        mouseClick(child("sourceFile", page))
        verify(button.enabled)
        verify(!result.visible)

        TestHelper.setScenario(data.steps, data.exit)
        mouseClick(button)
        compare(button.text, "正在检查...")
        tryCompare(button, "text", "检查 Cookie", 20000)
        verify(result.visible)
        verify(result.text.startsWith(data.says), result.text)
        compare(result.color, data.failed ? Theme.red : Theme.green)
        // The user's file is handed over as a copy, never itself.
        const argv = TestHelper.argvFor("--cookies")
        verify(argv.indexOf("--cookies") >= 0 && argv.indexOf(file) < 0, argv.join(" "))
        // Another source makes the result stale.
        mouseClick(child("sourceBrowser", page))
        verify(!result.visible)
    }
}
