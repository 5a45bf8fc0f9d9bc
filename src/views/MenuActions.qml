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
        { title: "文件", entries: [root.newDownload, root.importLinks, null, root.closeWindow] },
        { title: "编辑", entries: [root.undo, root.redo, null, root.cut, root.copy, root.paste, root.selectAll] },
        { title: "窗口", entries: [root.minimize, root.zoom, null, root.bringAllToFront] }
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
        text: "关于 Quillbox"
        onTriggered: root.aboutRequested()
    }
    readonly property MenuAction preferences: MenuAction {
        text: "偏好设置..."
        keys: "Ctrl+,"
        onTriggered: root.preferencesRequested()
    }
    // Entries of macOS's application menu, which the system itself provides with their keys (see
    // systemProvided); elsewhere they are neither shown nor bound to keys.
    readonly property MenuAction hide: MenuAction {
        text: "隐藏 Quillbox"
    }
    readonly property MenuAction hideOthers: MenuAction {
        text: "隐藏其他"
    }
    readonly property MenuAction showAll: MenuAction {
        text: "显示全部"
    }
    readonly property MenuAction quit: MenuAction {
        text: "退出 Quillbox"
        keys: "Ctrl+Q"
        // The way closing the window quits, so downloads stop the same way.
        onTriggered: root.window.close()
    }
    readonly property MenuAction newDownload: MenuAction {
        text: "新建下载任务"
        keys: "Ctrl+N"
        onTriggered: root.newDownloadRequested()
    }
    readonly property MenuAction importLinks: MenuAction {
        text: "从文件导入链接…"
        keys: "Ctrl+O"
        onTriggered: root.importLinksRequested()
    }
    readonly property MenuAction closeWindow: MenuAction {
        text: "关闭窗口"
        keys: "Ctrl+W"
        onTriggered: root.window.close()
    }
    readonly property MenuAction undo: MenuAction {
        text: "撤销"
        keys: StandardKey.Undo // qmllint disable unqualified
        onTriggered: root.editRequested("undo")
    }
    readonly property MenuAction redo: MenuAction {
        text: "重做"
        // Not StandardKey.Redo: several key schemes make that Ctrl+Y, and the menu promises
        // Ctrl+Shift+Z everywhere.
        keys: "Shift+Ctrl+Z"
        onTriggered: root.editRequested("redo")
    }
    readonly property MenuAction cut: MenuAction {
        text: "剪切"
        keys: StandardKey.Cut // qmllint disable unqualified
        onTriggered: root.editRequested("cut")
    }
    readonly property MenuAction copy: MenuAction {
        text: "复制"
        keys: StandardKey.Copy // qmllint disable unqualified
        onTriggered: root.editRequested("copy")
    }
    readonly property MenuAction paste: MenuAction {
        text: "粘贴"
        keys: StandardKey.Paste // qmllint disable unqualified
        onTriggered: root.editRequested("paste")
    }
    readonly property MenuAction selectAll: MenuAction {
        text: "全选"
        keys: StandardKey.SelectAll // qmllint disable unqualified
        onTriggered: root.editRequested("selectAll")
    }
    readonly property MenuAction minimize: MenuAction {
        text: "最小化"
        keys: "Ctrl+M"
        onTriggered: root.window.showMinimized()
    }
    readonly property MenuAction zoom: MenuAction {
        text: "缩放"
        onTriggered: root.zoomRequested()
    }
    readonly property MenuAction bringAllToFront: MenuAction {
        text: "全部置于顶层"
        onTriggered: {
            root.window.show()
            root.window.raise()
        }
    }
}
