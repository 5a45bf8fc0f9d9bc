pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Quillbox

ApplicationWindow {
    id: root

    title: "Quillbox - 视频下载管理器"
    width: 1200
    height: 800
    minimumWidth: 900
    minimumHeight: 600
    color: Theme.background
    visible: false

    palette.window: Theme.background
    palette.windowText: Theme.text
    palette.base: Theme.raised
    palette.text: Theme.text
    palette.button: Theme.border
    palette.buttonText: Theme.text
    palette.highlight: Theme.accent

    Rectangle {
        objectName: "contentPlaceholder"
        anchors.fill: parent
        color: Theme.background
    }
}
