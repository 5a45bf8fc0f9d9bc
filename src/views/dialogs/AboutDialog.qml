import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The application's About panel. Enter closes it, as its button does.
Dialog {
    id: root

    anchors.centerIn: parent
    modal: true
    focus: true
    title: qsTr("关于 Quillbox")
    standardButtons: Dialog.Ok
    onOpened: aboutContent.forceActiveFocus()

    background: Rectangle {
        color: Theme.surface
        radius: Theme.radiusLarge
        border.color: Theme.border
    }

    ColumnLayout {
        id: aboutContent

        focus: true
        spacing: Theme.spacingMedium
        Keys.onReturnPressed: root.accept()
        Keys.onEnterPressed: root.accept()
        Icon {
            Layout.alignment: Qt.AlignHCenter
            symbol: "arrow.down.circle.fill"
            gradientFrom: Theme.accent
            gradientTo: Theme.cyan
            size: Theme.iconHuge
        }
        Text {
            objectName: "aboutVersion"
            Layout.alignment: Qt.AlignHCenter
            text: "Quillbox " + Desktop.version
            textFormat: Text.PlainText
            color: Theme.text
            font.pixelSize: Theme.title3
            font.bold: true
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("视频下载管理器")
            color: Theme.gray
            font.pixelSize: Theme.caption
        }
        Text {
            objectName: "homePageLink"
            Layout.alignment: Qt.AlignHCenter
            text: String(Desktop.homePage)
            textFormat: Text.PlainText
            color: Theme.cyan
            font.pixelSize: Theme.caption
            font.underline: linkArea.containsMouse

            MouseArea {
                id: linkArea

                anchors.fill: parent
                hoverEnabled: true
                cursorShape: Qt.PointingHandCursor
                onClicked: Desktop.openUrl(Desktop.homePage)
            }
        }
    }
}
