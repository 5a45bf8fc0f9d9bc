import QtQuick
import QtQuick.Layouts
import Quillbox

// The header over a playlist's rows in the queue: its title and figures, a fold, and stopping or
// retrying the whole group. Rows of no playlist have an empty section and get nothing.
Item {
    id: root

    required property string section
    property QueueFilter filter: null
    readonly property bool isGroup: root.section.length > 0 && root.filter !== null
    // Read again whenever the queue changes (the revision), for the figures to follow.
    readonly property var info: root.isGroup && root.filter.revision >= 0 ? root.filter.groupInfo(root.section) : null
    readonly property bool folded: root.isGroup && root.filter.revision >= 0 && root.filter.isFolded(root.section)

    implicitHeight: root.isGroup ? 36 : 0
    height: implicitHeight
    visible: root.isGroup

    RowLayout {
        anchors.fill: parent
        anchors.bottomMargin: Theme.spacingSmall
        spacing: Theme.spacingSmall
        TextButton {
            objectName: "foldGroupButton"
            symbol: "list.bullet"
            text: root.folded ? qsTr("展开") : qsTr("折叠")
            tint: Theme.gray
            onClicked: root.filter.toggleFolded(root.section)
        }
        Text {
            objectName: "groupTitle"
            Layout.fillWidth: true
            text: root.info ? root.info.title : ""
            textFormat: Text.PlainText
            color: Theme.text
            font.pixelSize: Theme.body
            font.weight: Font.DemiBold
            elide: Text.ElideRight
        }
        Text {
            objectName: "groupFigures"
            text: {
                if (!root.info)
                    return ""
                let parts = [qsTr("%n 项", "", root.info.count)]
                if (root.info.completed > 0)
                    parts.push(qsTr("%1 已完成").arg(root.info.completed))
                if (root.info.failed > 0)
                    parts.push(qsTr("%1 未完成").arg(root.info.failed))
                return parts.join(" · ")
            }
            textFormat: Text.PlainText
            color: Theme.gray
            font.pixelSize: Theme.caption
        }
        TextButton {
            objectName: "stopGroupButton"
            visible: root.info !== null && root.info.active > 0
            symbol: "stop.circle"
            text: qsTr("全部停止")
            tint: Theme.red
            onClicked: DownloadManager.stopGroup(root.section)
        }
        TextButton {
            objectName: "retryGroupButton"
            visible: root.info !== null && root.info.failed > 0
            symbol: "arrow.clockwise"
            text: qsTr("全部重试")
            onClicked: DownloadManager.retryGroup(root.section)
        }
    }
}
