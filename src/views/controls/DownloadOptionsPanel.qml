import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// "下载选项": one line that says what is set, folded by default; unfolded, the controls. They are
// read and made the first time the panel opens, so the window does not wait for them.
ColumnLayout {
    id: root

    property bool expanded: false

    spacing: Theme.spacingMedium

    DownloadOptionsPresenter {
        id: options
    }

    AbstractButton {
        id: header

        objectName: "optionsHeader"
        Layout.fillWidth: true
        implicitHeight: contentItem.implicitHeight + 2 * Theme.spacingSmall
        focusPolicy: Qt.StrongFocus
        Accessible.name: qsTr("下载选项：%1").arg(options.summary)
        onClicked: root.expanded = !root.expanded
        Keys.onReturnPressed: root.expanded = !root.expanded

        background: Rectangle {
            radius: Theme.radiusSmall
            color: header.hovered ? Theme.hoverFill : "transparent"
            border.width: header.visualFocus ? 2 : 0
            border.color: Theme.accent
        }

        contentItem: RowLayout {
            spacing: Theme.spacingMedium
            Text {
                text: root.expanded ? "▾" : "▸"
                textFormat: Text.PlainText
                color: Theme.gray
                font.pixelSize: Theme.body
            }
            SectionHeader {
                text: qsTr("下载选项")
            }
            Text {
                objectName: "optionsSummary"
                Layout.fillWidth: true
                text: options.summary
                textFormat: Text.PlainText
                color: options.isDefault ? Theme.gray : Theme.cyan
                font.pixelSize: Theme.caption
                elide: Text.ElideRight
            }
        }
    }

    Loader {
        objectName: "optionsBody"
        Layout.fillWidth: true
        active: root.expanded
        visible: active
        source: "DownloadOptionsBody.qml"
        onLoaded: item.options = options
    }
}
