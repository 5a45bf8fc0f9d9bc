import QtQuick
import QtTest
import Quillbox
import QuillboxTest

// The pages the sidebar opens besides the download page: the presets and the cookie manager.
ViewTestCase {
    readonly property string chromeDatabase: TestHelper.tempDir() + "/home/.config/google-chrome/Default/Cookies"

    name: "Pages"
    height: 900

    // The presets page opened from the sidebar, once the stored presets are read.
    function openPresets() {
        mouseClick(child("navigation1"))
        compare(AppState.selectedTab, 1)
        const loader = child("presetsLoader")
        tryVerify(() => loader.item !== null)
        verify(!child("panes").visible)
        tryVerify(() => child("addButton", loader.item).enabled)
        return loader.item
    }

    function savedRow(page, index) {
        return child("savedList", page).itemAt(index)
    }

    // The store file itself, read on a connection of its own: it is written behind the page.
    function expectStored(presets) {
        tryVerify(() => JSON.stringify(TestHelper.storedPresets()) === JSON.stringify(presets), 5000,
                  JSON.stringify(TestHelper.storedPresets()))
    }

    // The cookie manager, opened from the sidebar.
    function openCookies() {
        AppState.selectedTab = 2
        showMainView({}, true)
        const loader = child("cookieManagerLoader")
        tryVerify(() => loader.item !== null)
        verify(!child("downloadInput").visible)
        return loader.item
    }

    function init() {
        AppState.cookieSource = "chrome"
        AppState.cookiePath = ""
        AppState.useCookies = true
        TestHelper.removeFile(chromeDatabase)
    }

    function cleanup() {
        TestHelper.setEnv("PATH", originalPath)
    }

    function cleanupTestCase() {
        AppState.selectedTab = 0
    }

    DownloadOptionsPresenter {
        id: options
    }

    // A preset keeps the download options set when it was made, even with no words of its own,
    // and choosing it brings them back.
    function test_savedPresetKeepsOptions() {
        showMainView()
        let page = openPresets()
        options.embedChapters = true
        compare(child("newPresetOptions", page).text, "同时保存当前的下载选项：嵌入章节")
        child("newNameField", page).text = "章节"
        mouseClick(child("addButton", page))
        compare(child("addProblem", page).text, "")
        let row = savedRow(page, child("savedList", page).count - 1)
        compare(child("savedOptions", row).text, "下载选项：嵌入章节")
        options.reset()
        tryVerify(() => child("chooseButton", row).enabled)
        mouseClick(child("chooseButton", row))
        verify(options.embedChapters)
        compare(AppState.customArguments, "")
        options.reset()

        page = openPresets()
        row = savedRow(page, 0)
        const dialog = child("removeDialog", page)
        mouseClick(child("removeButton", row))
        tryVerify(() => dialog.opened)
        keyClick(Qt.Key_Return)
        tryCompare(child("savedList", page), "count", 0)
    }

    // The built-in presets, each with the words it adds, quoted as the command has them.
    function test_builtInPresets() {
        showMainView()
        const list = child("builtInList", openPresets())
        compare(list.count, 6)
        compare(child("builtInWords", list.itemAt(1)).text, "-f 'bv*+ba/b'")
    }

    function test_savedPresetLifecycle() {
        showMainView()
        let page = openPresets()
        const name = findChild(page, "newNameField")
        const args = findChild(page, "newArgumentsField")
        const add = findChild(page, "addButton")
        const problem = findChild(page, "addProblem")
        const list = findChild(page, "savedList")

        // Refusals say why and keep what was typed.
        const refusals = [
            ["", "--write-subs", "请填写预设名称"],
            ["字幕", "  ", "请填写 yt-dlp 参数"],
            ["最佳画质", "-f best", "已有名为“最佳画质”的预设，请换一个名称"],
            ["字幕", "-o \"%(title)s", "自定义参数中的双引号没有闭合"],
        ]
        for (const [typedName, typedArgs, why] of refusals) {
            name.text = typedName
            args.text = typedArgs
            mouseClick(add)
            compare(problem.text, why)
            compare(args.text, typedArgs)
            compare(list.count, 0)
        }

        name.text = "  字幕 "
        args.text = "--write-subs --sub-langs 'zh.*'"
        mouseClick(add)
        compare(problem.text, "")
        compare(findChild(savedRow(page, 0), "savedName").text, "字幕")
        expectStored(["字幕=--write-subs --sub-langs 'zh.*'"])

        // Rename and new arguments in one edit; an empty name is refused and the form stays.
        let row = savedRow(page, 0)
        tryVerify(() => findChild(row, "editButton").enabled)
        mouseClick(findChild(row, "editButton"))
        waitForRendering(view) // the edit form laid out before its button is clicked
        const nameEdit = findChild(row, "nameEdit")
        const argumentsEdit = findChild(row, "argumentsEdit")
        nameEdit.text = " "
        mouseClick(findChild(row, "saveEditButton"))
        compare(findChild(row, "editProblem").text, "请填写预设名称")
        verify(nameEdit.visible)
        compare(row.name, "字幕")
        nameEdit.text = "中文字幕"
        argumentsEdit.text = "--write-subs --sub-langs zh-Hans"
        mouseClick(findChild(row, "saveEditButton"))
        verify(!nameEdit.visible)
        expectStored(["中文字幕=--write-subs --sub-langs zh-Hans"])

        // Choosing it fills the download form's custom arguments and goes back there.
        AppState.selectedPreset = Download.Default
        AppState.customArguments = ""
        mouseClick(findChild(row, "chooseButton"))
        compare(AppState.selectedPreset, Download.Custom)
        compare(AppState.customArguments, "--write-subs --sub-langs zh-Hans")
        compare(AppState.selectedTab, 0)

        // A fresh page reads it back from the store; deleting asks first.
        page = openPresets()
        compare(findChild(page, "savedList").count, 1)
        row = savedRow(page, 0)
        compare(row.name, "中文字幕")
        const dialog = findChild(page, "removeDialog")
        mouseClick(findChild(row, "removeButton"))
        tryVerify(() => dialog.opened)
        keyClick(Qt.Key_Return) // the question's default answer
        tryCompare(findChild(page, "savedList"), "count", 0)
        expectStored([])
    }

    // A browser that is not there stays chosen, said to be missing; one installed but never used
    // is greyed, with why, and not taken even by the keys, until its cookies appear; a source
    // chosen on the page is the application's.
    function test_sources() {
        const path = TestHelper.env("PATH")
        const chromiumDatabase = TestHelper.tempDir() + "/home/.config/chromium/Default/Cookies"
        verify(TestHelper.writeFile(TestHelper.tempDir() + "/bin/chromium", "#!/bin/sh\n", true))
        TestHelper.setEnv("PATH", TestHelper.tempDir() + "/bin:" + path)
        AppState.cookieSource = "vivaldi"
        const page = openCookies()
        const choice = child("browserChoice", page)
        const note = child("browserNote", page)
        compare(choice.currentText, "Vivaldi（未找到）")
        verify(child("sourceBrowser", page).checked)
        verify(choice.find("Chromium（没有 Cookie）") > 0)
        verify(/Chromium 已安装，但还没有 Cookie/.test(note.text), note.text)
        let reached = -1
        choice.activated.connect(index => reached = index)
        choice.forceActiveFocus()
        keyClick(Qt.Key_Down)
        compare(reached, 1)
        compare(choice.currentText, "Vivaldi（未找到）")

        verify(TestHelper.writeChromeDatabase(chromiumDatabase, ".video.example", "sid", "s3cret"))
        choice.popup.open()
        tryVerify(() => choice.popup.opened && choice.find("Chromium") > 0 && !note.text.includes("Chromium"))
        TestHelper.removeFile(chromiumDatabase)

        mouseClick(child("sourceNone", page))
        compare(AppState.cookieSource, "none")
    }

    // "用于下载" makes the exported file the one downloads use.
    function test_export() {
        const page = openCookies()
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
        TestHelper.setScenario("[]", 0)
        DownloadManager.startDownload("https://cookie.example/exported", Download.Default, "", TestHelper.tempDir()
                                      + "/out", true, true)
        tryVerify(() => TestHelper.readFile(TestHelper.tempDir() + "/argv.jsonl").includes(
                      '"--cookies", "' + CookieService.extractedCookiesPath + '"'), 20000)
    }

    function test_expiredCookiesMarked() {
        const file = TestHelper.tempDir() + "/expiring.txt"
        verify(TestHelper.writeFile(file, "# Netscape HTTP Cookie File\n\n"
                                        + ".old.example\tTRUE\t/\tFALSE\t1600000000\tsid\tx\n"
                                        + ".new.example\tTRUE\t/\tTRUE\t4102444800\tsid\ty\n"))
        const page = openCookies()
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
        const page = openCookies()
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
