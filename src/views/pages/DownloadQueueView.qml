pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The right pane: every task in the order the engine keeps them, and the stop-all button while
// something downloads. A row is selected by a click and acted on from its own buttons or menu.
Rectangle {
    id: root

    property string selectedTaskId
    // The link whose information is being fetched, if any: its row's button turns.
    property string videoInfoLoadingUrl

    signal videoInfoRequested(url: string)

    color: Theme.surface

    PlaylistGroupHeaders {
        id: groupHeaders

        filter: shown
        width: list.width
    }

    QueueFilter {
        id: shown

        objectName: "queueFilter"
        tasks: DownloadManager.tasks
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: Theme.spacingWide
            Layout.bottomMargin: Theme.spacingTiny
            Text {
                text: qsTr("下载队列")
                color: Theme.text
                font.pixelSize: Theme.title2
                font.weight: Font.DemiBold
            }
            Item {
                Layout.fillWidth: true
            }
            TextButton {
                objectName: "clearCompletedButton"
                visible: DownloadManager.tasks.completedCount > 0
                text: qsTr("清除已完成")
                symbol: "trash"
                fontSize: Theme.caption
                onClicked: DownloadManager.clearCompleted()
            }
            IconButton {
                objectName: "stopButton"
                visible: DownloadManager.tasks.hasDownloading
                symbol: "stop.circle"
                tint: Theme.red
                fill: "transparent"
                iconSize: Theme.title2
                Accessible.name: qsTr("全部停止")
                ToolTip.visible: hovered
                ToolTip.delay: 500
                ToolTip.text: qsTr("全部停止")
                onClicked: DownloadManager.cancelAllDownloads()
            }
        }

        // Looks through the queue and what it kept of earlier runs, by title, link and status.
        TextInputField {
            objectName: "queueSearch"
            Layout.fillWidth: true
            Layout.leftMargin: Theme.spacingWide
            Layout.rightMargin: Theme.spacingWide
            Layout.topMargin: Theme.spacingSmall
            visible: DownloadManager.tasks.count > 0
            placeholderText: qsTr("查找：标题、链接或状态")
            onTextChanged: shown.text = text
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            Column {
                objectName: "emptyState"
                anchors.centerIn: parent
                visible: DownloadManager.tasks.count === 0
                spacing: Theme.spacing
                Icon {
                    anchors.horizontalCenter: parent.horizontalCenter
                    symbol: "tray"
                    color: Theme.grayFaint
                    size: Theme.iconLarge
                }
                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: qsTr("暂无下载任务")
                    color: Theme.gray
                    font.pixelSize: Theme.bodyLarge
                }
                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: qsTr("在上方输入视频链接开始下载")
                    color: Theme.grayDim
                    font.pixelSize: Theme.caption
                }
            }

            Text {
                objectName: "noMatch"
                anchors.centerIn: parent
                visible: DownloadManager.tasks.count > 0 && shown.count === 0
                text: qsTr("没有找到匹配的任务")
                color: Theme.gray
                font.pixelSize: Theme.bodyLarge
            }

            ListView {
                id: list

                objectName: "taskList"
                anchors.fill: parent
                anchors.margins: Theme.spacingLarge
                visible: count > 0
                clip: true
                spacing: Theme.spacingMedium
                reuseItems: true
                boundsBehavior: Flickable.StopAtBounds
                // No row is the list's current one (a click selects a row through selectedTaskId):
                // a current row is kept made however far it is scrolled away, and the list's
                // invisible highlight would glide after it, drawing every frame while it does.
                currentIndex: -1
                highlightFollowsCurrentItem: false
                model: shown
                // A playlist's rows under its header, which folds them and stops or retries them all.
                section.property: "group"
                section.criteria: ViewSection.FullString
                section.delegate: groupHeaders.header

                delegate: DownloadTaskRow {
                    id: row

                    // Kept for reuse once scrolled away: the model no longer updates it, so it
                    // would go on showing the step it was in.
                    property bool pooled: false
                    // The first row of a folded playlist stays in the list for its header, unseen.
                    required property bool folded

                    width: ListView.view.width
                    height: row.folded ? 0 : implicitHeight
                    visible: !row.folded
                    inView: !pooled && y + height > list.contentY && y < list.contentY + list.height
                    isSelected: root.selectedTaskId === taskId
                    loadingInfo: root.videoInfoLoadingUrl === url
                    onClicked: root.selectedTaskId = taskId
                    onVideoInfoRequested: root.videoInfoRequested(url)
                    // The tools are checked and updated in the settings.
                    onToolFixRequested: AppState.showSettings = true
                    ListView.onPooled: row.pooled = true
                    ListView.onReused: row.pooled = false
                }

                ScrollBar.vertical: ScrollBar {}

                // New downloads join at the end of the queue, which is scrolled to show as many of
                // them as fit, the first at least, once the list has laid them out. A queue restored
                // at start goes before the others, and an empty one shows its top anyway: neither
                // moves.
                Connections {
                    target: shown

                    function onRowsInserted(parent: var, first: int, last: int) {
                        if (first > 0 && last === shown.count - 1) {
                            showAdded.first = showAdded.running ? Math.min(showAdded.first, first) : first
                            showAdded.restart()
                        }
                    }
                }

                Timer {
                    id: showAdded

                    property int first

                    interval: 0
                    onTriggered: {
                        list.positionViewAtIndex(list.count - 1, ListView.Contain)
                        list.positionViewAtIndex(Math.min(showAdded.first, list.count - 1), ListView.Contain)
                    }
                }
            }
        }
    }
}
