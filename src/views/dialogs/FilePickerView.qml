pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// Offers the two usual places of yt-dlp, or a file dialog, and hands the chosen path back.
// Choosing only fills the caller's field; nothing is stored or probed here.
Popup {
    id: root

    signal selected(string path)

    function choose(path: string) {
        root.selected(path)
        root.close()
    }

    anchors.centerIn: parent
    width: 350
    height: 250
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape
    padding: Theme.spacingWide
    background: Rectangle {
        color: Theme.surface
        radius: Theme.radiusLarge
        border.color: Theme.border
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.spacing
        Text {
            text: "选择 yt-dlp 可执行文件"
            color: Theme.text
            font.pixelSize: Theme.headline
            font.weight: Font.DemiBold
        }
        ColumnLayout {
            objectName: "pickerEntries"
            Layout.fillWidth: true
            spacing: Theme.spacingTiny
            Repeater {
                model: ["✅ /opt/homebrew/bin/yt-dlp", "✅ /usr/local/bin/yt-dlp"]

                delegate: BorderedButton {
                    required property string modelData

                    Layout.fillWidth: true
                    text: modelData
                    onClicked: root.choose(modelData.slice("✅ ".length))
                }
            }
            BorderedButton {
                objectName: "manualPickButton"
                Layout.fillWidth: true
                text: "📁 手动选择..."
                onClicked: executableDialog.open()
            }
        }
        Item {
            Layout.fillHeight: true
        }
        BorderedButton {
            objectName: "pickerCancelButton"
            Layout.alignment: Qt.AlignRight
            text: "取消"
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
