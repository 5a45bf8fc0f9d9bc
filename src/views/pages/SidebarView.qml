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
        color: Theme.separator
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        Column {
            Layout.fillWidth: true
            topPadding: Theme.spacingPage
            bottomPadding: Theme.spacingPage
            spacing: Theme.spacingSmall
            Icon {
                anchors.horizontalCenter: parent.horizontalCenter
                symbol: "arrow.down.circle.fill"
                gradientFrom: Theme.accent
                gradientTo: Theme.cyan
                size: Theme.iconLarge
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Quillbox"
                color: Theme.text
                font.pixelSize: Theme.title1
                font.bold: true
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: qsTr("视频下载管理器")
                color: Theme.gray
                font.pixelSize: Theme.caption
            }
        }

        Divider {}

        RowLayout {
            Layout.fillWidth: true
            Layout.margins: Theme.spacingLarge
            spacing: Theme.spacing
            StatCard {
                objectName: "totalCard"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                title: qsTr("总任务")
                value: String(DownloadManager.tasks.count)
                symbol: "list.bullet"
                tint: Theme.blue
            }
            StatCard {
                objectName: "completedCard"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                title: qsTr("完成")
                value: String(DownloadManager.tasks.completedCount)
                symbol: "checkmark.circle"
                tint: Theme.green
            }
        }

        Divider {}

        ColumnLayout {
            Layout.fillWidth: true
            Layout.margins: Theme.spacing
            spacing: Theme.spacingTiny
            Repeater {
                model: [
                    { title: qsTr("下载管理"), symbol: "arrow.down.circle" },
                    { title: qsTr("参数预设"), symbol: "slider.horizontal.3" },
                    { title: qsTr("Cookie 管理"), symbol: "key.fill" }
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

        TextButton {
            objectName: "logButton"
            Layout.fillWidth: true
            implicitHeight: 40
            leftPadding: Theme.spacingPage
            rightPadding: Theme.spacingPage
            leading: true
            spacing: Theme.spacing
            text: qsTr("下载日志")
            symbol: AppState.showLogPanel ? "terminal.fill" : "terminal"
            tint: AppState.showLogPanel ? Theme.accent : Theme.gray
            fontSize: Theme.bodyLarge
            iconSize: Theme.title4
            contentOpacity: 1
            focusMargin: 1
            focusRadius: Theme.radius
            onClicked: AppState.showLogPanel = !AppState.showLogPanel
            trailing: Label {
                objectName: "logBadge"
                // The lines not yet seen: none once the panel has been shown.
                visible: AppState.unseenLogCount > 0
                leftPadding: Theme.spacingSmall
                rightPadding: Theme.spacingSmall
                topPadding: Theme.spacingHair
                bottomPadding: Theme.spacingHair
                text: String(AppState.unseenLogCount)
                textFormat: Text.PlainText
                color: Theme.text
                font.pixelSize: Theme.caption3

                background: Rectangle {
                    radius: height / 2
                    color: Theme.accent
                }
            }
        }

        TextButton {
            objectName: "settingsButton"
            Layout.fillWidth: true
            Layout.bottomMargin: Theme.spacing
            implicitHeight: 40
            leftPadding: Theme.spacingPage
            rightPadding: Theme.spacingPage
            leading: true
            spacing: Theme.spacing
            text: qsTr("设置")
            symbol: "gearshape"
            fontSize: Theme.bodyLarge
            iconSize: Theme.title4
            contentOpacity: 1
            focusMargin: 1
            focusRadius: Theme.radius
            onClicked: AppState.showSettings = true
        }
    }
}
