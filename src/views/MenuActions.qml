import QtQuick
import QtQuick.Controls.Basic

// The commands of the menu bar and the menus they form, shared by the in-window and the system
// menu bar, so each text and key is written here once. Hiding the application and the others is
// a macOS idea, offered only there. On macOS the system menu bar binds the keys itself, so the
// actions leave them alone there.
QtObject {
    id: root

    required property Window window
    readonly property bool onMac: Qt.platform.os === "osx"

    // The menus in order: a title and its entries, an action each or null for a separator.
    readonly property var menus: [
        { title: "Quillbox", entries: root.onMac
              ? [root.about, null, root.preferences, null, root.hide, root.hideOthers, root.showAll, null, root.quit]
              : [root.about, null, root.preferences, null, root.quit] },
        { title: qsTr("文件"), entries: [root.newDownload, root.importLinks, null, root.closeWindow] },
        { title: qsTr("编辑"), entries: [root.undo, root.redo, null, root.cut, root.copy, root.paste, root.selectAll] },
        { title: qsTr("窗口"), entries: [root.minimize, root.zoom, null, root.bringAllToFront] }
    ]
    // What the application menu of macOS offers by itself.
    readonly property list<Action> systemProvided: [root.hide, root.hideOthers, root.showAll]

    signal aboutRequested
    signal preferencesRequested
    signal newDownloadRequested
    signal importLinksRequested
    signal editRequested(string command)
    signal zoomRequested

    // Qt 6.4's linter cannot see the StandardKey enumeration, hence the directives that silence it
    // where the edit actions use it.
    component MenuAction: Action {
        // The key, as text or a StandardKey. Quit keeps "Ctrl+Q": some key schemes have no
        // standard quit key.
        property var keys: ""

        shortcut: Qt.platform.os !== "osx" ? keys : ""
    }

    readonly property MenuAction about: MenuAction {
        text: qsTr("关于 Quillbox")
        onTriggered: root.aboutRequested()
    }
    readonly property MenuAction preferences: MenuAction {
        text: qsTr("偏好设置...")
        keys: "Ctrl+,"
        onTriggered: root.preferencesRequested()
    }
    // Entries of macOS's application menu, which the system itself provides with their keys (see
    // systemProvided); elsewhere they are neither shown nor bound to keys.
    readonly property MenuAction hide: MenuAction {
        text: qsTr("隐藏 Quillbox")
    }
    readonly property MenuAction hideOthers: MenuAction {
        text: qsTr("隐藏其他")
    }
    readonly property MenuAction showAll: MenuAction {
        text: qsTr("显示全部")
    }
    readonly property MenuAction quit: MenuAction {
        text: qsTr("退出 Quillbox")
        keys: "Ctrl+Q"
        // The way closing the window quits, so downloads stop the same way.
        onTriggered: root.window.close()
    }
    readonly property MenuAction newDownload: MenuAction {
        text: qsTr("新建下载任务")
        keys: "Ctrl+N"
        onTriggered: root.newDownloadRequested()
    }
    readonly property MenuAction importLinks: MenuAction {
        text: qsTr("从文件导入链接…")
        keys: "Ctrl+O"
        onTriggered: root.importLinksRequested()
    }
    readonly property MenuAction closeWindow: MenuAction {
        text: qsTr("关闭窗口")
        keys: "Ctrl+W"
        onTriggered: root.window.close()
    }
    readonly property MenuAction undo: MenuAction {
        text: qsTr("撤销")
        keys: StandardKey.Undo // qmllint disable unqualified
        onTriggered: root.editRequested("undo")
    }
    readonly property MenuAction redo: MenuAction {
        text: qsTr("重做")
        // Not StandardKey.Redo: several key schemes make that Ctrl+Y, and the menu promises
        // Ctrl+Shift+Z everywhere.
        keys: "Shift+Ctrl+Z"
        onTriggered: root.editRequested("redo")
    }
    readonly property MenuAction cut: MenuAction {
        text: qsTr("剪切")
        keys: StandardKey.Cut // qmllint disable unqualified
        onTriggered: root.editRequested("cut")
    }
    readonly property MenuAction copy: MenuAction {
        text: qsTr("复制")
        keys: StandardKey.Copy // qmllint disable unqualified
        onTriggered: root.editRequested("copy")
    }
    readonly property MenuAction paste: MenuAction {
        text: qsTr("粘贴")
        keys: StandardKey.Paste // qmllint disable unqualified
        onTriggered: root.editRequested("paste")
    }
    readonly property MenuAction selectAll: MenuAction {
        text: qsTr("全选")
        keys: StandardKey.SelectAll // qmllint disable unqualified
        onTriggered: root.editRequested("selectAll")
    }
    readonly property MenuAction minimize: MenuAction {
        text: qsTr("最小化")
        keys: "Ctrl+M"
        onTriggered: root.window.showMinimized()
    }
    readonly property MenuAction zoom: MenuAction {
        text: qsTr("缩放")
        onTriggered: root.zoomRequested()
    }
    readonly property MenuAction bringAllToFront: MenuAction {
        text: qsTr("全部置于顶层")
        onTriggered: {
            root.window.show()
            root.window.raise()
        }
    }
}
