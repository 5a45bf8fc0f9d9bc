pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The sidebar: the title, two counters, the navigation, and the log and settings buttons.
Rectangle {
    id: root

    color: Theme.surface

    component Divider: Rectangle {
        Layout.fillWidth: true
        implicitHeight: 1
        color: Qt.rgba(0.56, 0.56, 0.58, 0.3)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        Column {
            Layout.fillWidth: true
            topPadding: 20
            bottomPadding: 20
            spacing: 6

            Icon {
                anchors.horizontalCenter: parent.horizontalCenter
                symbol: "arrow.down.circle.fill"
                gradientFrom: Theme.accent
                gradientTo: Theme.cyan
                size: 48
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Quillbox"
                color: Theme.text
                font.pixelSize: 22
                font.bold: true
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "视频下载管理器"
                color: Theme.gray
                font.pixelSize: 12
            }
        }

        Divider {}

        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 12
            spacing: 10

            StatCard {
                objectName: "totalCard"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                title: "总任务"
                value: String(DownloadManager.tasks.count)
                symbol: "list.bullet"
                tint: Theme.blue
            }
            StatCard {
                objectName: "completedCard"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                title: "完成"
                value: String(DownloadManager.tasks.completedCount)
                symbol: "checkmark.circle"
                tint: Theme.green
            }
        }

        Divider {}

        ColumnLayout {
            Layout.fillWidth: true
            Layout.margins: 10
            spacing: 4

            Repeater {
                model: [
                    { title: "下载管理", symbol: "arrow.down.circle" },
                    { title: "参数预设", symbol: "slider.horizontal.3" },
                    { title: "Cookie 管理", symbol: "key.fill" }
                ]

                SidebarMenuItem {
                    required property var modelData
                    required property int index

                    objectName: "navigation" + index
                    Layout.fillWidth: true
                    title: modelData.title
                    symbol: modelData.symbol
                    isSelected: AppState.selectedTab === index
                    onClicked: AppState.selectedTab = index
                }
            }
        }

        Item {
            Layout.fillHeight: true
        }

        Divider {}

        AbstractButton {
            id: logButton

            objectName: "logButton"
            Layout.fillWidth: true
            implicitHeight: 40
            leftPadding: 20
            rightPadding: 20
            focusPolicy: Qt.StrongFocus
            Keys.onReturnPressed: clicked()
            Keys.onEnterPressed: clicked()
            onClicked: AppState.showLogPanel = !AppState.showLogPanel

            FocusRing {
                shown: logButton.visualFocus
                anchors.margins: 1
            }

            contentItem: RowLayout {
                spacing: 10

                Icon {
                    objectName: "logButtonIcon"
                    symbol: AppState.showLogPanel ? "terminal.fill" : "terminal"
                    color: AppState.showLogPanel ? Theme.accent : Theme.gray
                    size: 16
                }
                Text {
                    text: "下载日志"
                    color: AppState.showLogPanel ? Theme.accent : Theme.gray
                    font.pixelSize: 14
                }
                Item {
                    Layout.fillWidth: true
                }
                Label {
                    objectName: "logBadge"
                    visible: AppState.logEntries.count > 0
                    leftPadding: 6
                    rightPadding: 6
                    topPadding: 2
                    bottomPadding: 2
                    text: String(AppState.logEntries.count)
                    color: Theme.text
                    font.pixelSize: 10

                    background: Rectangle {
                        radius: height / 2
                        color: Theme.accent
                    }
                }
            }
        }

        AbstractButton {
            id: settingsButton

            objectName: "settingsButton"
            Layout.fillWidth: true
            Layout.bottomMargin: 10
            implicitHeight: 40
            leftPadding: 20
            rightPadding: 20
            focusPolicy: Qt.StrongFocus
            Keys.onReturnPressed: clicked()
            Keys.onEnterPressed: clicked()
            onClicked: AppState.showSettings = true

            FocusRing {
                shown: settingsButton.visualFocus
                anchors.margins: 1
            }

            contentItem: RowLayout {
                spacing: 10

                Icon {
                    symbol: "gearshape"
                    color: Theme.gray
                    size: 16
                }
                Text {
                    Layout.fillWidth: true
                    text: "设置"
                    color: Theme.gray
                    font.pixelSize: 14
                }
            }
        }
    }
}
