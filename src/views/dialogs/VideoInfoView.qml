pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbox

// A video's title, duration and uploader and, when they are known, its view and like counts.
Rectangle {
    id: root

    property videoInfo videoInfo

    signal dismissed

    objectName: "videoInfoView"
    focus: true
    // Its one button is also its default: Enter closes it, as Escape does.
    Keys.onReturnPressed: root.dismissed()
    Keys.onEnterPressed: root.dismissed()
    implicitWidth: 400
    implicitHeight: 300
    color: Theme.surface
    radius: Theme.radiusLarge

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.spacingPage
        spacing: Theme.spacingWide
        Text {
            objectName: "videoTitle"
            Layout.fillWidth: true
            text: root.videoInfo.title
            textFormat: Text.PlainText
            color: Theme.text
            font.pixelSize: Theme.title2
            font.bold: true
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Theme.spacing
            InfoRow {
                objectName: "durationRow"
                Layout.fillWidth: true
                title: qsTr("时长")
                value: root.videoInfo.durationText
            }
            InfoRow {
                objectName: "uploaderRow"
                Layout.fillWidth: true
                title: qsTr("作者")
                value: root.videoInfo.uploaderText
            }
            InfoRow {
                objectName: "viewCountRow"
                Layout.fillWidth: true
                visible: root.videoInfo.viewCountText.length > 0
                title: qsTr("播放量")
                value: root.videoInfo.viewCountText
            }
            InfoRow {
                objectName: "likeCountRow"
                Layout.fillWidth: true
                visible: root.videoInfo.likeCountText.length > 0
                title: qsTr("点赞数")
                value: root.videoInfo.likeCountText
            }
        }

        Item {
            Layout.fillHeight: true
        }

        TextButton {
            objectName: "closeVideoInfoButton"
            Layout.alignment: Qt.AlignRight
            implicitWidth: 72
            implicitHeight: 30
            text: qsTr("关闭")
            tint: Theme.text
            fill: Theme.border
            cornerRadius: Theme.radiusSmall
            fontSize: Theme.body
            onClicked: root.dismissed()
        }
    }
}
