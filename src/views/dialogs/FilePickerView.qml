pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// Offers the yt-dlp files that are there (the two usual places, the one in use, the other places
// looked in), or a file dialog, and hands the chosen path back. The disk is looked at each time it
// opens. Choosing only fills the caller's field; nothing is stored or probed here.
Popup {
    id: root

    signal selected(string path)

    function choose(path: string) {
        root.selected(path)
        root.close()
    }

    anchors.centerIn: parent
    // 350×250 at least, grown for long paths and more entries as far as the sheet allows.
    width: Math.min(Math.max(350, implicitWidth), parent ? parent.width - 2 * Theme.spacingWide : 350)
    height: Math.min(Math.max(250, implicitHeight), parent ? parent.height - 2 * Theme.spacingWide : 250)
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape
    padding: Theme.spacingWide
    onAboutToShow: DownloadManager.tools.findExecutableChoices()
    background: Rectangle {
        color: Theme.surface
        radius: Theme.radiusLarge
        border.color: Theme.border
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.spacing
        Text {
            text: qsTr("选择 yt-dlp 可执行文件")
            color: Theme.text
            font.pixelSize: Theme.headline
            font.weight: Font.DemiBold
        }
        ColumnLayout {
            objectName: "pickerEntries"
            Layout.fillWidth: true
            spacing: Theme.spacingTiny
            Repeater {
                objectName: "pickerChoices"
                model: DownloadManager.tools.executableChoices

                delegate: BorderedButton {
                    required property string modelData

                    Layout.fillWidth: true
                    text: "✅ " + modelData
                    onClicked: root.choose(modelData)
                }
            }
            BorderedButton {
                objectName: "manualPickButton"
                Layout.fillWidth: true
                text: qsTr("📁 手动选择...")
                onClicked: executableDialog.open()
            }
        }
        Item {
            Layout.fillHeight: true
        }
        BorderedButton {
            objectName: "pickerCancelButton"
            Layout.alignment: Qt.AlignRight
            text: qsTr("取消")
            onClicked: root.close()
        }
    }

    OnDemand {
        id: executableDialog

        objectName: "executableDialog"
        source: "dialogs/ExecutableDialog.qml"
    }

    Connections {
        target: executableDialog.item
        ignoreUnknownSignals: true

        function onChosen(path: string) {
            root.choose(path)
        }
    }
}
