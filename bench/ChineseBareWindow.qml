import QtQuick
import QtQuick.Controls.Basic

// The bare window with one line of Chinese in each of the two weights the application's first
// screen draws (regular, and bold, which its demibold labels also resolve to with the regular
// and bold CJK files): bench_startup's second yardstick. Sizes of the application's body text
// and headlines.
ApplicationWindow {
    title: "bench_barewindow --chinese"
    width: 1200
    height: 800
    visible: false

    Rectangle {
        anchors.fill: parent
        anchors.margins: 40
        color: "#2d6cdf"

        Column {
            anchors.centerIn: parent
            spacing: 12

            Text {
                text: "下载队列"
                color: "white"
                font.pixelSize: 13
            }
            Text {
                text: "开始下载"
                color: "white"
                font.pixelSize: 15
                font.bold: true
            }
        }
    }
}
