import QtQuick
import QtQuick.Controls.Basic

// The least a Qt Quick Controls application can show: bench_startup's yardstick.
ApplicationWindow {
    title: "bench_barewindow"
    width: 1200
    height: 800
    visible: false

    Rectangle {
        anchors.fill: parent
        anchors.margins: 40
        color: "#2d6cdf"
    }
}
