pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// One task of the queue: its status badge, title, file, details, progress while it runs, and
// error. A failure that has an explanation shows it first; the tool's own lines are one click
// away. What can be done to the task is on the row while it is hovered or selected, and in its
// context menu; each action only where it makes sense.
AbstractButton {
    id: root

    required property string taskId
    required property string url
    required property int status
    required property string title
    required property string phase
    required property string statusText
    required property string details
    required property string outputPath
    required property string fileName
    required property string thumbnail
    required property string statusSymbol
    required property int statusTint
    required property real progress
    required property bool showsProgress
    required property string percentText
    required property bool hasError
    required property var errorMessage
    required property string notice
    required property string explanation
    // The explanation's fix is in the settings' tools (yt-dlp, a JavaScript runtime).
    required property bool needsToolFix
    required property int playlistIndex
    property bool isSelected: false
    // Whether any of the row is in sight; a list says so of its delegates. A row out of sight
    // keeps still: an animation would have the window draw every frame for nothing.
    property bool inView: true
    // The video's information is being fetched for the sheet.
    property bool loadingInfo: false
    property bool showsToolOutput: false
    property bool copied: false
    property bool linkCopied: false

    readonly property color tint: Theme.tint(statusTint)
    readonly property bool isExplained: explanation.length > 0
    readonly property bool canStop: status === Download.Pending || status === Download.Preparing
        || status === Download.Downloading
    readonly property bool canRetry: status === Download.Failed || status === Download.Cancelled
        || status === Download.Paused
    readonly property bool hasFile: outputPath.length > 0
    // The file is there to open only once the download has completed; until then its folder is.
    readonly property bool canOpen: hasFile && status === Download.Completed
    // Also while the keyboard focus is on one of them: hiding them would drop the focus.
    readonly property bool showsActions: hovered || isSelected || activeFocus || actionStrip.activeFocus || menuShown
    // The context menu, made the first time it is asked for: most rows never show theirs, and a
    // menu is a dozen controls.
    property Menu menu: null
    readonly property bool menuShown: menu !== null && menu.visible
    // How much of the top right corner the actions and the copy notice take: the title ends before.
    readonly property real cornerWidth: (showsActions ? actionStrip.width : 0)
        + (linkCopied ? copiedNotice.width + Theme.spacingSmall : 0)
    signal videoInfoRequested
    signal toolFixRequested

    // What can be done to the task, in the order the row and the menu show it.
    readonly property list<TaskAction> taskActions: [
        TaskAction {
            name: "stop"
            text: qsTr("停止")
            symbol: "stop.circle"
            tint: Theme.red
            enabled: root.canStop
            onTriggered: DownloadManager.stopDownload(root.taskId)
        },
        TaskAction {
            name: "retry"
            // A row paused at start goes on where it was; any other starts again (and yt-dlp
            // still continues its ".part").
            text: root.status === Download.Paused ? qsTr("继续") : qsTr("重试")
            symbol: "arrow.clockwise"
            enabled: root.canRetry
            endsGroup: true
            onTriggered: DownloadManager.retryDownload(root.taskId)
        },
        TaskAction {
            name: "open"
            text: qsTr("打开文件")
            symbol: "arrow.up.right.square"
            enabled: root.canOpen
            onTriggered: root.openError = Desktop.openFile(root.outputPath)
        },
        TaskAction {
            name: "reveal"
            text: qsTr("在文件夹中显示")
            symbol: "folder"
            enabled: root.hasFile
            onTriggered: root.openError = Desktop.showInFolder(root.outputPath)
        },
        TaskAction {
            name: "videoInfo"
            text: qsTr("视频信息")
            symbol: root.loadingInfo ? "arrow.clockwise" : "info.circle"
            enabled: !root.loadingInfo
            keepsPlace: true
            onTriggered: root.videoInfoRequested()
        },
        TaskAction {
            name: "copyLink"
            text: qsTr("复制链接")
            symbol: "doc.on.doc"
            endsGroup: true
            onTriggered: {
                Desktop.setClipboardText(root.url)
                root.linkCopied = true
                copiedTimer.restart()
            }
        },
        TaskAction {
            name: "remove"
            text: qsTr("移除")
            symbol: "trash"
            onTriggered: DownloadManager.removeDownload(root.taskId)
        }
    ]

    // Where the sweeping bar is, 0–1, while a step after the download runs.
    property real sweep

    // What went wrong the last time the file or its folder was to be opened, until the task or
    // its file changes.
    property string openError

    // Opens the context menu at (x, y) in the row.
    function popupMenu(x: real, y: real) {
        if (!root.menu)
            root.menu = menuMaker.createObject(root) as Menu
        root.menu.popup(root, x, y)
    }

    // A reused row starts folded.
    onTaskIdChanged: {
        showsToolOutput = false
        copied = false
        linkCopied = false
        openError = ""
    }
    onStatusChanged: openError = ""
    onOutputPathChanged: openError = ""

    Accessible.name: qsTr("%2，%1").arg(root.statusText).arg(root.title)
    padding: Theme.spacingLarge
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    background: Rectangle {
        radius: Theme.radiusLarge
        color: root.isSelected ? Theme.border : Theme.raised
    }

    contentItem: RowLayout {
        spacing: Theme.spacingLarge
        // The video's picture once it is known and has loaded; the status badge until then.
        Thumbnail {
            objectName: "rowThumbnail"
            Layout.alignment: Qt.AlignTop
            pictureSize: Qt.size(64, 40)
            implicitWidth: loaded ? pictureSize.width : 40
            implicitHeight: 40
            source: root.thumbnail

            Rectangle {
                implicitWidth: 40
                implicitHeight: 40
                radius: height / 2
                color: Theme.badgeFill(root.tint)

                Icon {
                    objectName: "statusIcon"
                    anchors.centerIn: parent
                    symbol: root.statusSymbol
                    color: root.tint
                    size: Theme.title3
                }
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Theme.spacingTiny
            // A positioner rather than the layout for these two: the file's line appears while the
            // row is shown, and Qt 6.4's layouts now and then leave such an item where it was.
            Column {
                Layout.fillWidth: true
                spacing: Theme.spacingTiny
                Text {
                    objectName: "titleText"
                    width: parent.width - (root.cornerWidth > 0
                        ? Math.max(0, root.cornerWidth + 2 * Theme.spacingSmall - root.rightPadding) : 0)
                    // A playlist's item says its number in the playlist, whose title heads its group.
                    text: root.playlistIndex > 0 ? "%1. %2".arg(root.playlistIndex).arg(root.title) : root.title
                    textFormat: Text.PlainText
                    color: Theme.text
                    font.pixelSize: Theme.bodyLarge
                    font.weight: Font.Medium
                    elide: Text.ElideMiddle
                }
                Text {
                    objectName: "fileNameText"
                    width: parent.width
                    visible: root.fileName.length > 0
                    text: root.fileName
                    textFormat: Text.PlainText
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                    elide: Text.ElideMiddle
                }
            }
            Row {
                objectName: "details"
                Layout.fillWidth: true
                clip: true
                spacing: Theme.spacingSmall
                Text {
                    objectName: "statusText"
                    text: root.statusText
                    textFormat: Text.PlainText
                    color: root.tint
                    font.pixelSize: Theme.caption2
                }
                Text {
                    visible: root.details.length > 0
                    text: "•"
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                }
                Text {
                    objectName: "detailsText"
                    visible: root.details.length > 0
                    text: root.details
                    textFormat: Text.PlainText
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                }
                Text {
                    visible: root.notice.length > 0
                    text: "•"
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                }
                Text {
                    objectName: "noticeText"
                    visible: root.notice.length > 0
                    text: root.notice
                    textFormat: Text.PlainText
                    color: Theme.orange
                    font.pixelSize: Theme.caption2
                }
            }
            RowLayout {
                objectName: "progressRow"
                Layout.fillWidth: true
                visible: root.showsProgress
                spacing: Theme.spacingMedium
                Rectangle {
                    Layout.fillWidth: true
                    implicitHeight: 4
                    radius: Theme.radiusTiny
                    color: Theme.separator
                    clip: true

                    Rectangle {
                        objectName: "progressFill"
                        // While a step runs after the download, how long it takes is unknown:
                        // a short stretch sweeps along the track instead.
                        readonly property bool indeterminate: root.phase.length > 0

                        x: indeterminate ? (parent.width * 1.3) * root.sweep - parent.width * 0.3 : 0
                        width: indeterminate ? parent.width * 0.3 : parent.width * Math.max(0, Math.min(1, root.progress))
                        height: parent.height
                        radius: Theme.radiusTiny
                        gradient: Gradient {
                            orientation: Gradient.Horizontal

                            GradientStop {
                                position: 0
                                color: Theme.accent
                            }
                            GradientStop {
                                position: 1
                                color: Theme.cyan
                            }
                        }
                    }
                }
                Text {
                    objectName: "percentText"
                    visible: root.phase.length === 0
                    text: root.percentText
                    textFormat: Text.PlainText
                    color: Theme.gray
                    font.pixelSize: Theme.caption2
                }
            }
            RowLayout {
                Layout.fillWidth: true
                visible: root.isExplained
                spacing: Theme.spacingMedium
                Text {
                    objectName: "explanationText"
                    Layout.fillWidth: true
                    text: root.explanation
                    textFormat: Text.PlainText
                    color: Theme.red
                    font.pixelSize: Theme.caption
                    wrapMode: Text.Wrap
                }
                BorderedButton {
                    objectName: "toolFixButton"
                    Layout.alignment: Qt.AlignTop
                    visible: root.needsToolFix && root.status === Download.Failed
                    implicitHeight: 24
                    text: qsTr("修复")
                    symbol: "wand.and.stars"
                    fontSize: Theme.caption
                    iconSize: Theme.caption
                    onClicked: root.toolFixRequested()
                }
            }
            Text {
                objectName: "errorText"
                Layout.fillWidth: true
                visible: root.hasError && (!root.isExplained || root.showsToolOutput)
                text: root.errorMessage ?? ""
                color: root.isExplained ? Theme.gray : Theme.red
                font.pixelSize: Theme.caption2
                font.family: root.isExplained ? Theme.fixedFont.family : root.font.family
                wrapMode: Text.WrapAnywhere
                textFormat: Text.PlainText
            }
            Text {
                objectName: "openErrorText"
                Layout.fillWidth: true
                visible: root.openError.length > 0
                text: root.openError
                textFormat: Text.PlainText
                color: Theme.orange
                font.pixelSize: Theme.caption2
                wrapMode: Text.Wrap
            }
            Row {
                visible: root.hasError
                spacing: Theme.spacingLarge
                TextButton {
                    objectName: "toolOutputButton"
                    visible: root.isExplained
                    text: root.showsToolOutput ? qsTr("隐藏原始输出") : qsTr("显示原始输出")
                    symbol: "terminal"
                    fontSize: Theme.caption2
                    onClicked: root.showsToolOutput = !root.showsToolOutput
                }
                TextButton {
                    objectName: "copyErrorButton"
                    text: root.copied ? qsTr("已复制") : qsTr("复制错误信息")
                    symbol: root.copied ? "checkmark" : "doc.on.doc"
                    tint: root.copied ? Theme.green : Theme.gray
                    fontSize: Theme.caption2
                    onClicked: {
                        Desktop.setClipboardText(root.errorMessage)
                        root.copied = true
                        copiedTimer.restart()
                    }
                }
            }
        }
    }

    // Over the row's top right corner while it is hovered, selected or focused: the one-line title
    // then ends before them, the rest keeps the whole width, and the row's height never changes
    // under the pointer. A focus scope, so that the row knows when the keyboard focus is on one of
    // the actions.
    FocusScope {
        id: actionStrip

        objectName: "rowActions"
        anchors.top: parent.top
        anchors.right: parent.right
        anchors.margins: Theme.spacingSmall
        width: actions.implicitWidth + 8
        height: actions.implicitHeight + 8
        opacity: root.showsActions ? 1 : 0
        enabled: root.showsActions

        Rectangle {
            anchors.fill: parent
            radius: Theme.radius
            color: root.isSelected ? Theme.border : Theme.raised
        }
        Row {
            id: actions

            anchors.centerIn: parent
            spacing: Theme.spacingTiny
            Repeater {
                model: root.taskActions

                RowAction {
                    required property TaskAction modelData

                    objectName: modelData.name + "Action"
                    action: modelData
                    visible: modelData.enabled || modelData.keepsPlace
                    symbol: modelData.symbol
                    tint: modelData.tint
                }
            }
        }
    }

    // "复制链接" done, for a moment, beside the actions (or in their place once they hide).
    Rectangle {
        id: copiedNotice

        objectName: "linkCopiedNotice"
        anchors.top: parent.top
        anchors.right: root.showsActions ? actionStrip.left : parent.right
        anchors.margins: Theme.spacingSmall
        width: copiedRow.implicitWidth + 2 * Theme.spacingMedium
        height: actionStrip.height
        radius: Theme.radius
        color: root.isSelected ? Theme.border : Theme.raised
        visible: root.linkCopied

        Row {
            id: copiedRow

            anchors.centerIn: parent
            spacing: Theme.spacingTiny
            Icon {
                anchors.verticalCenter: parent.verticalCenter
                symbol: "checkmark"
                color: Theme.green
                size: Theme.caption
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("已复制链接")
                color: Theme.green
                font.pixelSize: Theme.caption
            }
        }
    }

    NumberAnimation on sweep {
        objectName: "sweepAnimation"
        running: root.phase.length > 0 && root.visible && root.inView
        from: 0
        to: 1
        duration: 1200
        loops: Animation.Infinite
    }

    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: eventPoint => root.popupMenu(eventPoint.position.x, eventPoint.position.y)
    }
    Keys.onMenuPressed: root.popupMenu(0, root.height)

    Component {
        id: menuMaker

        Menu {
            id: menu

            objectName: "rowMenu"

            Instantiator {
                model: root.taskActions

                MenuItem {
                    required property TaskAction modelData

                    objectName: modelData.name + "MenuItem"
                    action: modelData
                }
                // The actions are fixed, so they arrive once and in order.
                onObjectAdded: (index, item) => {
                    menu.addItem(item)
                    if (item.action.endsGroup)
                        menu.addItem(menuSeparator.createObject(menu.contentItem))
                }
            }
        }
    }
    Component {
        id: menuSeparator

        MenuSeparator {}
    }

    Timer {
        id: copiedTimer

        interval: 2000
        onTriggered: {
            root.copied = false
            root.linkCopied = false
        }
    }

    // An opener that started but could not open the file says so here.
    Connections {
        target: Desktop

        function onOpenFailed(path: string, message: string) {
            if (path === root.outputPath)
                root.openError = message
        }
    }

    // Inside the row's edge: the list clips whatever lies outside it.
    FocusRing {
        objectName: "rowFocusRing"
        anchors.margins: 0
        shown: root.visualFocus
        radius: Theme.radiusLarge
    }
}
