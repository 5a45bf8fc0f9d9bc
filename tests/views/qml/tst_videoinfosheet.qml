import QtQuick
import QtTest
import Quillbox
import QuillboxTest

TestCase {
    id: testCase

    name: "VideoInfoSheet"
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

    Component {
        id: thumbnailComponent

        Thumbnail {
            Rectangle {
                objectName: "statusIcon"
                anchors.fill: parent
            }
        }
    }

    property var view: null

    function init() {
        AppState.urlInput = ""
        AppState.useCookies = false
        AppState.selectedPreset = Download.Default
        AppState.customArguments = ""
        AppState.showLogPanel = false
        for (const name of ["FAKE_YTDLP_INFO", "FAKE_YTDLP_INFO_EXIT", "FAKE_YTDLP_INFO_STDERR", "FAKE_YTDLP_INFO_DELAY",
                            "FAKE_YTDLP_FORMATS"])
            TestHelper.setEnv(name, "")
        view = createTemporaryObject(mainViewComponent, testCase)
        verify(view)
        tryCompare(view, "installationCheck", 0, 20000)
    }

    function child(parentItem, name) {
        const item = findChild(parentItem, name)
        verify(item, name)
        return item
    }

    // The sheet's rows a person sees, as "label value".
    function shownRows(sheet) {
        const rows = []
        for (const name of ["durationRow", "uploaderRow", "viewCountRow", "likeCountRow"]) {
            const row = child(sheet, name)
            if (row.visible)
                rows.push(child(row, "infoTitle").text + " " + child(row, "infoValue").text)
        }
        return rows
    }

    function openedSheet() {
        tryCompare(child(view, "videoInfoSheet"), "opened", true, 20000)
        return child(view, "videoInfoView")
    }

    function present(json) {
        view.videoInfo = TestHelper.videoInfo(json)
        view.showVideoInfo = true
        return openedSheet()
    }

    function test_recordWithoutCounts() {
        const sheet = present('{"url": "u", "title": "没有计数的视频", "duration": 65, "uploader": "某人", "formats": []}')
        compare(sheet.width, 400)
        compare(sheet.height, 300)
        compare(child(sheet, "videoTitle").text, "没有计数的视频")
        compare(shownRows(sheet), ["时长 1:05", "作者 某人"])
        const close = child(sheet, "closeVideoInfoButton")
        compare(close.text, "关闭")
        mouseClick(close)
        compare(view.showVideoInfo, false)
        tryCompare(child(view, "videoInfoSheet"), "opened", false)
    }

    function test_countsWithAllDigitsAndAnEmptyUploader() {
        const sheet = present('{"url": "u", "title": "t", "duration": 3600, "uploader": "", '
                              + '"viewCount": 12345678901, "likeCount": 0, "formats": []}')
        compare(shownRows(sheet), ["时长 1:00:00", "作者 ", "播放量 12345678901", "点赞数 0"])
    }

    // "视频信息" asks for the first line, spins meanwhile, and shows what yt-dlp -J printed.
    function test_openedFromTheInputPane() {
        TestHelper.setEnv("FAKE_YTDLP_INFO", TestHelper.testsDir() + "/data/videoinfo/page.json")
        TestHelper.setEnv("FAKE_YTDLP_INFO_DELAY", "1")
        AppState.urlInput = "https://i.example/page\nhttps://i.example/other"
        const button = child(view, "videoInfoButton")
        const indicator = child(view, "videoInfoIndicator")
        compare(indicator.visible, false)
        mouseClick(button)
        verify(indicator.visible)
        compare(indicator.symbol, "arrow.clockwise")
        verify(!button.enabled)
        const sheet = openedSheet()
        compare(child(sheet, "videoTitle").text, "测试视频 Quillbox")
        compare(shownRows(sheet), ["时长 1:02:05", "作者 Quillbox 测试频道", "播放量 12345678901", "点赞数 4321"])
        compare(indicator.visible, false)
        verify(button.enabled)
        compare(view.videoInfo.url, "https://i.example/page")
    }

    function test_failureShowsTheAlert() {
        TestHelper.setEnv("FAKE_YTDLP_INFO_EXIT", "1")
        TestHelper.setEnv("FAKE_YTDLP_INFO_STDERR", "WARNING: slow\nERROR: Unsupported URL: nope")
        AppState.urlInput = "nope"
        mouseClick(child(view, "videoInfoButton"))
        const alert = child(view, "videoInfoErrorAlert")
        tryCompare(alert, "opened", true, 20000)
        compare(findChild(alert, "alertHeading").text, "错误")
        compare(findChild(alert, "alertMessage").text, "ERROR: Unsupported URL: nope")
        compare(child(view, "videoInfoSheet").opened, false)
        compare(child(view, "videoInfoIndicator").visible, false)
        mouseClick(findChild(alert, "alertOkButton"))
        tryCompare(alert, "opened", false)
    }

    // What a queue row's "视频信息" calls.
    function test_openedForALink() {
        view.openVideoInfo("https://q.example/row")
        compare(view.videoInfoLoadingUrl, "https://q.example/row")
        const sheet = openedSheet()
        compare(child(sheet, "videoTitle").text, "fake")
        compare(shownRows(sheet), ["时长 1:05", "作者 Fake uploader", "播放量 1234"])
        compare(view.videoInfoLoadingUrl, "")
    }

    function test_formatPickerSetsTheCustomArguments() {
        AppState.urlInput = "https://f.example/v"
        mouseClick(child(view, "listFormatsButton"))
        const sheet = child(view, "formatsSheet")
        tryCompare(sheet, "opened", true, 20000)
        const table = findChild(sheet, "formatTable")
        verify(table)
        tryCompare(table, "count", 5, 20000)
        // The stand-in's formats, in its order: 1 and 2 audio, 3 and 5 video, 18 both.
        const row = id => {
            for (let i = 0; i < table.count; ++i) {
                const item = table.itemAtIndex(i)
                if (item && item.objectName === "formatRow" + id)
                    return item
            }
            return null
        }
        tryVerify(() => row("18") !== null)
        mouseClick(row("18"))
        compare(findChild(sheet, "pickerArguments").text, "-f 18")
        mouseClick(row("5"))
        mouseClick(row("1"))
        compare(findChild(sheet, "pickerArguments").text, "-f 5+1")
        verify(findChild(sheet, "formatsText").text.length > 0) // the printed table stays beside it
        mouseClick(findChild(sheet, "applyFormatButton"))
        compare(AppState.customArguments, "-f 5+1")
        compare(AppState.selectedPreset, Download.Custom)
        tryCompare(sheet, "opened", false)
    }

    // A thumbnail that cannot load leaves what stands in for it.
    function test_thumbnailFallsBack() {
        const thumbnail = createTemporaryObject(thumbnailComponent, testCase, { source: "http://127.0.0.1:9/none.jpg" })
        tryCompare(child(thumbnail, "thumbnailImage"), "status", Image.Error, 20000)
        verify(child(thumbnail, "thumbnailFallback").visible)
        compare(thumbnail.loaded, false)
    }
}
