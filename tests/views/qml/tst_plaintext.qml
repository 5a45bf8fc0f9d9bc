import QtQuick
import QtTest
import Quillbox
import QuillboxTest

// A site's title, the tool's lines and a video's uploader are shown as written, markup and all,
// and never make the window fetch anything. The stand-in yt-dlp's record (FAKE_YTDLP_INFO, made
// by tests/support/countingserver.py) has texts with a picture on that server, which counts
// every request.
ViewTestCase {
    id: testCase

    name: "PlainText"

    Component {
        id: rowComponent

        DownloadTaskRow {
            width: 600
        }
    }

    // How the same words look as plain text, to measure a view's text against.
    Component {
        id: plainComponent

        Text {
            textFormat: Text.PlainText
        }
    }

    // A text left to guess its format, as Text does by default: its picture is fetched, which
    // shows that the server would have seen any fetch made before it.
    Component {
        id: guessingComponent

        Text {}
    }

    property string title
    property string uploader
    property string base
    property int controls: 0
    property int questions: 0

    function initTestCase() {
        TestHelper.setScenario("[]", 0)
        showMainView()
        view.openVideoInfo("http://127.0.0.1:9/record")
        tryVerify(() => view.videoInfo !== null && view.videoInfo.title.length > 0, 20000)
        title = view.videoInfo.title
        uploader = view.videoInfo.uploader
        const server = /src="(http:\/\/127\.0\.0\.1:\d+\/)/.exec(title)
        verify(server, "the record names the counting server: " + title)
        base = server[1]
        verify(title.includes("<b>bold</b>") && title.includes("&amp;"), title)
        // Its open sheet would cover the views of the tests.
        view.destroy()
    }

    function init() {
        resetForm("plain")
    }

    function cleanup() {
        stopDownloads()
        for (const name of ["FAKE_YTDLP_INFO_EXIT", "FAKE_YTDLP_INFO_STDERR", "FAKE_YTDLP_FORMATS"])
            TestHelper.setEnv(name, "")
        compare(fetchedPaths(), [])
    }

    // What the counting server was asked for, once a guessing text's own picture has been.
    function fetchedPaths() {
        const control = "/control" + (++controls) + ".png"
        createTemporaryObject(guessingComponent, testCase, { text: '<img src="' + base + control.slice(1) + '">' })
        let answer = null
        let request = null
        tryVerify(() => {
            if (request !== null && request.readyState !== XMLHttpRequest.DONE)
                return false
            if (request !== null && request.status === 200) {
                answer = JSON.parse(request.responseText)
                if (answer[control] > 0)
                    return true
            }
            request = new XMLHttpRequest()
            // The engine's network cache keeps every answer: each question is a new address.
            request.open("GET", base + "count?" + (++questions))
            request.send()
            return false
        }, 20000, "the guessing text's picture was asked for")
        return Object.keys(answer).filter(path => !path.startsWith("/control"))
    }

    // The words a person sees in a Text or a TextEdit, compared with `expected` as written.
    function showsAsWritten(item, expected, what) {
        verify(item, what)
        compare(item.text, expected, what)
        if (item.getText !== undefined) {
            compare(item.getText(0, item.length), expected, what)
            return
        }
        // Rich text would drop the tags and turn "&amp;" into "&": narrower than the plain words.
        const plain = createTemporaryObject(plainComponent, testCase, {
            text: expected, font: item.font, width: item.width, wrapMode: item.wrapMode, elide: item.elide,
            maximumLineCount: item.maximumLineCount
        })
        compare(item.implicitWidth, plain.implicitWidth, what)
    }

    // The states of a row that show texts of their own, each holding the markup beside the title.
    function test_rows_data() {
        return [
            { tag: "准备中", status: Download.Preparing, shows: ["statusText"] },
            { tag: "下载中", status: Download.Downloading, shows: ["noticeText"] },
            { tag: "已完成", status: Download.Completed, shows: ["fileNameText", "openErrorText"] },
            { tag: "失败并有说明", status: Download.Failed, shows: ["explanationText", "errorText"] }
        ]
    }

    function test_rows(data) {
        const texts = { titleText: title, statusText: title, noticeText: title, fileNameText: title + ".mp4",
                        openErrorText: title, explanationText: title, errorText: "ERROR: " + title }
        const given = name => data.shows.includes(name) ? texts[name] : ""
        const row = createTemporaryObject(rowComponent, testCase, {
            taskId: data.tag, url: "http://127.0.0.1:9/" + data.tag, status: data.status, title: title,
            phase: given("statusText"), statusText: given("statusText") || data.tag, notice: given("noticeText"), fileName: given("fileNameText"),
            outputPath: given("fileNameText").length > 0 ? "/videos/" + texts.fileNameText : "",
            explanation: given("explanationText"), hasError: given("errorText").length > 0,
            errorMessage: given("errorText"), details: "1:05", thumbnail: "",
            statusSymbol: "arrow.down.circle", statusTint: 0, progress: 0.5,
            showsProgress: false, percentText: "50%", needsToolFix: false, playlistIndex: 0
        })
        verify(row)
        row.openError = given("openErrorText")
        if (given("explanationText").length > 0)
            mouseClick(findChild(row, "toolOutputButton"))
        for (const name of ["titleText"].concat(data.shows)) {
            const item = findChild(row, name)
            verify(item && item.visible, name)
            showsAsWritten(item, texts[name], data.tag + " " + name)
        }
    }

    // Through the engine: the row's title comes from the record, its error and the log from the
    // tool's output, and the row's "视频信息" opens the record's sheet.
    function test_downloadThatFails() {
        showMainView()
        AppState.clearLog()
        const line = "ERROR: " + title
        TestHelper.setScenario(JSON.stringify([{ err: line + "\n" }]), 1)
        const before = DownloadManager.tasks.count
        AppState.urlInput = "http://127.0.0.1:9/fails"
        pressStart()
        AppState.showLogPanel = true
        const row = rowAt(before)
        tryCompare(row, "status", Download.Failed, 20000)
        tryCompare(findChild(row, "titleText"), "text", title, 20000)
        showsAsWritten(findChild(row, "titleText"), title, "the row's title")

        const log = findChild(view, "logList")
        let logged = null
        tryVerify(() => {
            for (let i = 0; i < log.count; ++i) {
                log.positionViewAtIndex(i, ListView.Contain)
                const entry = log.itemAtIndex(i)
                if (entry && entry.message === line)
                    logged = entry
            }
            return logged !== null
        }, 20000, "the tool's line is in the log")
        showsAsWritten(findChild(logged, "messageText"), line, "the log's line")

        clickRowAction(row, "videoInfoAction")
        tryCompare(findChild(view, "videoInfoSheet"), "opened", true, 20000)
        const sheet = findChild(view, "videoInfoView")
        showsAsWritten(findChild(sheet, "videoTitle"), title, "the sheet's title")
        showsAsWritten(findChild(findChild(sheet, "uploaderRow"), "infoValue"), uploader, "the sheet's uploader")
    }

    // What yt-dlp says when it cannot read a link, and the formats table it prints.
    function test_toolOutputInAlertAndFormats() {
        showMainView()
        const line = "ERROR: " + title
        TestHelper.setEnv("FAKE_YTDLP_INFO_EXIT", "1")
        TestHelper.setEnv("FAKE_YTDLP_INFO_STDERR", line)
        view.openVideoInfo("http://127.0.0.1:9/unreadable")
        const alert = findChild(view, "videoInfoErrorAlert")
        tryCompare(alert, "opened", true, 20000)
        showsAsWritten(findChild(alert, "alertMessage"), line, "the alert's message")
        mouseClick(findChild(alert, "alertOkButton"))
        tryCompare(alert, "opened", false)

        TestHelper.setEnv("FAKE_YTDLP_FORMATS", title)
        AppState.urlInput = "http://127.0.0.1:9/formats"
        mouseClick(findChild(view, "listFormatsButton"))
        const sheet = findChild(view, "formatsSheet")
        tryCompare(sheet, "opened", true, 20000)
        const formats = findChild(sheet, "formatsText")
        tryVerify(() => formats.text.includes("<b>bold</b>"), 20000)
        showsAsWritten(formats, formats.text, "the printed formats")
        verify(formats.getText(0, formats.length).includes(title))
    }
}
