pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The in-app log under the panes: a header with the count, the entries (oldest first, only the
// visible rows built), and a footer with auto-scroll and a jump to the newest entry.
Rectangle {
    id: root

    property bool autoScroll: true

    // Emitted each time the list is brought to its newest entry by itself.
    signal scrolledToNewest

    function scrollToNewest() {
        list.positionViewAtEnd()
        root.scrolledToNewest()
    }

    implicitHeight: 300
    // Made afresh each time the panel opens: with auto-scroll on it opens on the newest lines.
    Component.onCompleted: {
        if (root.autoScroll && AppState.logEntries.count > 0)
            scrollSoon.start()
    }
    radius: Theme.radiusLarge
    color: Theme.surface
    border.color: Theme.border
    border.width: 1

    // The count changes when an entry is added or the log is cleared; at the cap an added entry
    // replaces the oldest and the count stays, so nothing moves then.
    Connections {
        target: AppState.logEntries

        function onCountChanged() {
            if (root.autoScroll && AppState.logEntries.count > 0)
                scrollSoon.start()
        }
    }

    // Once the events at hand are done: the list has its new rows by then, and a burst of entries
    // scrolls once.
    Timer {
        id: scrollSoon

        interval: 0
        onTriggered: root.scrollToNewest()
    }

    Timer {
        id: autoScrollSoon

        interval: 0
        onTriggered: {
            root.autoScroll = true
            root.scrollToNewest()
        }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 1
        spacing: 0
        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.spacingLarge
            Layout.rightMargin: Theme.spacingMedium
            Layout.preferredHeight: 38
            spacing: Theme.spacingMedium
            Icon {
                symbol: "terminal"
                color: Theme.green
                size: Theme.headline
            }
            Text {
                text: qsTr("下载日志")
                color: Theme.text
                font.pixelSize: Theme.bodyLarge
                font.bold: true
            }
            Text {
                objectName: "logCount"
                text: qsTr("%n 条", "", AppState.logEntries.count)
                textFormat: Text.PlainText
                color: Theme.gray
                font.pixelSize: Theme.caption2
            }
            Item {
                Layout.fillWidth: true
            }
            IconButton {
                objectName: "clearLogButton"
                symbol: "trash"
                onClicked: AppState.clearLog()
            }
            IconButton {
                objectName: "closeLogButton"
                symbol: "xmark"
                onClicked: AppState.showLogPanel = false
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            color: Theme.background

            ListView {
                id: list

                objectName: "logList"
                anchors.fill: parent
                anchors.margins: Theme.spacingMedium
                clip: true
                spacing: Theme.spacingTiny
                reuseItems: true
                boundsBehavior: Flickable.StopAtBounds
                // No entry is current: the oldest would be kept made and followed by the list's
                // invisible highlight, which glides (drawing every frame) each time the oldest
                // entry leaves at the cap.
                currentIndex: -1
                highlightFollowsCurrentItem: false
                model: AppState.logEntries

                delegate: LogEntryRow {
                    width: ListView.view.width
                }

                ScrollBar.vertical: ScrollBar {}
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.spacingLarge
            Layout.rightMargin: Theme.spacingMedium
            Layout.preferredHeight: 38

            ToggleSwitch {
                objectName: "autoScrollSwitch"
                text: qsTr("自动滚动")
                checked: root.autoScroll
                onToggled: root.autoScroll = checked
            }
            Item {
                Layout.fillWidth: true
            }
            TextButton {
                objectName: "newestButton"
                padding: Theme.spacingSmall
                leftPadding: Theme.spacing
                rightPadding: Theme.spacing
                text: qsTr("最新")
                symbol: "arrow.down.to.line"
                tint: Theme.text
                fill: Theme.border
                fontSize: Theme.caption2
                contentOpacity: 1
                fillOpacity: 1
                // Switches auto-scroll on by passing through off, then shows the newest entry.
                onClicked: {
                    if (AppState.logEntries.count === 0)
                        return
                    root.autoScroll = false
                    autoScrollSoon.start()
                }
            }
        }
    }
}
