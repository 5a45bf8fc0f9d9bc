import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// Warns that yt-dlp does not answer, offers to install the official build at once (Quillbox's
// own copy, used as soon as it is there), and the installation instructions. A dialog of our own
// rather than a MessageDialog: the buttons carry their own words.
Dialog {
    id: root

    readonly property url installationPage: "https://github.com/yt-dlp/yt-dlp#installation"

    anchors.centerIn: parent
    width: 420
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape
    padding: Theme.spacingPage
    background: Rectangle {
        color: Theme.surface
        radius: Theme.radiusLarge
        border.color: Theme.border
    }

    contentItem: ColumnLayout {
        spacing: Theme.spacingLarge
        RowLayout {
            spacing: Theme.spacing
            Icon {
                symbol: "exclamationmark.triangle.fill"
                color: Theme.orange
                size: Theme.iconAlert
            }
            Text {
                objectName: "alertTitle"
                text: qsTr("未安装 yt-dlp")
                color: Theme.text
                font.pixelSize: Theme.title4
                font.bold: true
            }
        }
        Text {
            objectName: "alertText"
            Layout.fillWidth: true
            text: qsTr("yt-dlp 是一个开源视频下载工具。请通过以下方式安装：\n\n• Homebrew: brew install yt-dlp\n• pip: pip install yt-dlp")
            color: Theme.text
            wrapMode: Text.Wrap
            font.pixelSize: Theme.body
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.spacingMedium
            Button {
                objectName: "laterButton"
                text: qsTr("稍后")
                onClicked: root.reject()
            }
            Button {
                objectName: "installNowButton"
                text: qsTr("安装最新 yt-dlp")
                highlighted: true
                onClicked: {
                    DownloadManager.keeper.installYtDlp()
                    AppState.showSettings = true
                    root.accept()
                }
            }
            Button {
                objectName: "openInstructionsButton"
                text: qsTr("打开安装说明")
                onClicked: {
                    Desktop.openUrl(root.installationPage)
                    root.accept()
                }
            }
        }
    }
}
