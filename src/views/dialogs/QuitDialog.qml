import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// Asked before the window closes while downloads run: quitting stops them.
Dialog {
    id: root

    property int running

    signal quitConfirmed

    anchors.centerIn: parent
    width: 400
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
        spacing: Theme.spacingWide
        RowLayout {
            spacing: Theme.spacing
            Icon {
                symbol: "exclamationmark.triangle.fill"
                color: Theme.orange
                size: Theme.iconMedium
            }
            Text {
                objectName: "quitMessage"
                Layout.fillWidth: true
                text: qsTr("有 %n 个下载正在进行，退出将停止它们。", "", root.running)
                textFormat: Text.PlainText
                color: Theme.text
                font.pixelSize: Theme.bodyLarge
                wrapMode: Text.Wrap
            }
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.spacing
            Button {
                objectName: "quitCancelButton"
                text: qsTr("取消")
                onClicked: root.reject()
            }
            Button {
                objectName: "quitConfirmButton"
                text: qsTr("退出")
                highlighted: true
                onClicked: {
                    root.accept()
                    root.quitConfirmed()
                }
            }
        }
    }
}
