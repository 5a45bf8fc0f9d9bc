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
        return TestHelper.readFile(TestHelper.tempDir() + "/argv.jsonl").split("\n").filter(line => line)
            .map(line => JSON.parse(line)).filter(argv => argv.includes(url)).pop()
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

    // A browser that is not there stays chosen, said to be missing; a source chosen on the page
    // is the application's.
    function test_sources() {
        const page = makePage()
        compare(child("browserChoice", page).currentText, "Chrome（未找到）")
        verify(child("sourceBrowser", page).checked)
        mouseClick(child("sourceNone", page))
        compare(AppState.cookieSource, "none")
    }

    // "用于下载" makes the exported file the one downloads use.
    function test_export() {
        const page = makePage()
        const button = child("exportButton", page)
        const error = child("exportError", page)
        const result = child("exportResult", page)

        mouseClick(button)
        verify(!button.enabled)
        tryCompare(error, "text", "未找到 Chrome 浏览器。请确保已安装 Google Chrome。", 20000)
        verify(!result.visible)

        verify(TestHelper.writeChromeDatabase(chromeDatabase, ".video.example", "sid", "s3cret"))
        mouseClick(button)
        compare(error.text, "")
        tryCompare(result, "visible", true, 20000)
        verify(result.text.includes("已导出 1 个 Cookie，来自 1 个网站"), result.text)

        mouseClick(child("useExportButton", page))
        compare(AppState.cookiePath, CookieService.extractedCookiesPath)
        verify(child("sourceFile", page).checked)
        tryVerify(() => child("domainList", page).itemAt(0) !== null)
        compare(child("domainList", page).itemAt(0).modelData.domain, ".video.example")
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
        compare(old.modelData.domain, ".old.example")
        verify(!findChild(fresh, "expiredBadge").visible)
        verify(findChild(old, "expiredBadge").visible)
        compare(child("expiredSummary", page).text, "1 个网站的 Cookie 已过期，请重新登录后再导出。")
    }

    // "检查 Cookie" runs yt-dlp on the chosen file and shows its verdict until the source changes.
    function test_checkCookies() {
        const file = TestHelper.tempDir() + "/c.txt"
        verify(TestHelper.writeFile(file, "# Netscape HTTP Cookie File\n.youtube.com\tTRUE\t/\tTRUE\t0\tSID\tx\n"))
        AppState.cookieSource = "none"
        const page = makePage()
        const button = child("checkButton", page)
        const result = child("checkResult", page)
        verify(!button.enabled)
        AppState.cookiePath = file
        mouseClick(child("sourceFile", page))
        verify(button.enabled)

        TestHelper.setScenario('[{"err": "ERROR: \'c.txt\' does not look like a Netscape format cookies file\\n"}]', 1)
        mouseClick(button)
        tryCompare(result, "visible", true, 20000)
        verify(result.text.startsWith("Cookie 文件不是 Netscape 格式"), result.text)
        compare(result.color, Theme.red)
        mouseClick(child("sourceBrowser", page))
        verify(!result.visible)
    }
}
