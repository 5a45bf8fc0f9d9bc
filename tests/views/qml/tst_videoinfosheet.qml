import QtQuick
import QtTest
import Quillbox
import QuillboxTest

ViewTestCase {
    id: testCase

    name: "VideoInfoSheet"

    Component {
        id: thumbnailComponent

        Thumbnail {
            Rectangle {
                objectName: "statusIcon"
                anchors.fill: parent
            }
        }
    }

    function init() {
        resetForm("info")
        for (const name of ["FAKE_YTDLP_INFO", "FAKE_YTDLP_INFO_DELAY"])
            TestHelper.setEnv(name, "")
        showMainView()
    }

    // The sheet once open, and its rows a person sees, as "label value".
    function openedSheet() {
        tryCompare(child("videoInfoSheet"), "opened", true, 20000)
        return child("videoInfoView")
    }

    function shownRows(sheet) {
        return ["durationRow", "uploaderRow", "viewCountRow", "likeCountRow"].map(name => child(name, sheet))
            .filter(row => row.visible).map(row => child("infoTitle", row).text + " " + child("infoValue", row).text)
    }

    // A record's counts only where it has them, with all their digits; an empty uploader still
    // has its row.
    function test_records_data() {
        return [
            { tag: "without counts", title: "没有计数的视频", shows: ["时长 1:05", "作者 某人"],
              json: '{"url": "u", "title": "没有计数的视频", "duration": 65, "uploader": "某人", "formats": []}' },
            { tag: "all digits", title: "t", shows: ["时长 1:00:00", "作者 ", "播放量 12345678901", "点赞数 0"],
              json: '{"url": "u", "title": "t", "duration": 3600, "uploader": "", "viewCount": 12345678901, '
                    + '"likeCount": 0, "formats": []}' },
        ]
    }

    function test_records(data) {
        view.videoInfo = TestHelper.videoInfo(data.json)
        view.showVideoInfo = true
        const sheet = openedSheet()
        compare(child("videoTitle", sheet).text, data.title)
        compare(shownRows(sheet), data.shows)
        mouseClick(child("closeVideoInfoButton", sheet))
        compare(view.showVideoInfo, false)
        tryCompare(child("videoInfoSheet"), "opened", false)
    }

    // "视频信息" asks for the first line, spins meanwhile, and shows what yt-dlp -J printed.
    function test_openedFromTheInputPane() {
        TestHelper.setEnv("FAKE_YTDLP_INFO", String(Qt.resolvedUrl("../../data/videoinfo/page.json")).slice(7))
        TestHelper.setEnv("FAKE_YTDLP_INFO_DELAY", "1")
        AppState.urlInput = "https://i.example/page\nhttps://i.example/other"
        const button = child("videoInfoButton")
        const indicator = child("videoInfoIndicator")
        compare(indicator.visible, false)
        mouseClick(button)
        verify(indicator.visible)
        verify(!button.enabled)
        const sheet = openedSheet()
        compare(child("videoTitle", sheet).text, "测试视频 Quillbox")
        verify(button.enabled)
        compare(view.videoInfo.url, "https://i.example/page")
    }

    // A thumbnail that cannot load leaves what stands in for it.
    function test_thumbnailFallsBack() {
        const thumbnail = createTemporaryObject(thumbnailComponent, testCase, { source: "http://127.0.0.1:9/none.jpg" })
        tryCompare(child("thumbnailImage", thumbnail), "status", Image.Error, 20000)
        verify(child("thumbnailFallback", thumbnail).visible)
        compare(thumbnail.loaded, false)
    }
}
