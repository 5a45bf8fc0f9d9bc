import QtQuick
import QtTest
import Quillbox

TestCase {
    id: testCase

    name: "About"
    width: 600
    height: 400
    visible: true
    when: windowShown

    Component {
        id: aboutComponent

        AboutDialog {}
    }

    SignalSpy {
        id: urlSpy

        target: Desktop
        signalName: "urlOpened"
    }

    function test_versionAndHomePage() {
        const about = createTemporaryObject(aboutComponent, testCase)
        about.open()
        tryCompare(about, "opened", true)

        // The project's version, as the build wrote it.
        const version = findChild(about.contentItem, "aboutVersion")
        verify(/^Quillbox \d+\.\d+\.\d+$/.test(version.text), version.text)

        // The home page shows as its address and opens in the browser when clicked.
        const link = findChild(about.contentItem, "homePageLink")
        verify(link.text.startsWith("https://"), link.text)
        urlSpy.clear()
        mouseClick(link)
        compare(urlSpy.count, 1)
        compare(urlSpy.signalArguments[0][0], Desktop.homePage)
    }
}
