import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// A warning with a title, a message and one button to dismiss it.
Dialog {
    id: root

    property string heading
    property string message

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
                size: Theme.iconMedium
            }
            Text {
                objectName: "alertHeading"
                text: root.heading
                textFormat: Text.PlainText
                color: Theme.text
                font.pixelSize: Theme.title4
                font.bold: true
            }
        }
        TextEdit {
            objectName: "alertMessage"
            Layout.fillWidth: true
            Layout.maximumHeight: 240
            text: root.message
            textFormat: TextEdit.PlainText
            color: Theme.text
            wrapMode: Text.Wrap
            readOnly: true
            selectByMouse: true
            clip: true
            font.pixelSize: Theme.caption
        }
        Button {
            objectName: "alertOkButton"
            Layout.alignment: Qt.AlignRight
            text: qsTr("好")
            highlighted: true
            onClicked: root.accept()
        }
    }
}
