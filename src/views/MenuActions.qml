import QtQuick
import QtQuick.Controls.Basic

// The commands of the menu bar, shared by the in-window and the system menu bar. Preferences and
// New Download are there but disabled: settings open from the sidebar. On macOS the system menu
// bar binds the keys itself, so the actions leave them alone there.
QtObject {
    id: root

    required property Window window
    readonly property bool bindKeys: Qt.platform.os !== "osx"

    signal aboutRequested
    signal editRequested(string command)
    signal zoomRequested

    readonly property Action about: Action {
        text: "关于 Quillbox"
        onTriggered: root.aboutRequested()
    }
    readonly property Action preferences: Action {
        text: "偏好设置..."
        shortcut: root.bindKeys ? "Ctrl+," : ""
        enabled: false
    }
    readonly property Action hide: Action {
        text: "隐藏 Quillbox"
        shortcut: root.bindKeys ? "Ctrl+H" : ""
        onTriggered: root.window.showMinimized()
    }
    readonly property Action hideOthers: Action {
        text: "隐藏其他"
        shortcut: root.bindKeys ? "Alt+Ctrl+H" : ""
    }
    readonly property Action showAll: Action {
        text: "显示全部"
        onTriggered: root.window.raise()
    }
    readonly property Action quit: Action {
        text: "退出 Quillbox"
        shortcut: root.bindKeys ? "Ctrl+Q" : ""
        // The way closing the window quits, so downloads stop the same way.
        onTriggered: root.window.close()
    }
    readonly property Action newDownload: Action {
        text: "新建下载任务"
        shortcut: root.bindKeys ? "Ctrl+N" : ""
        enabled: false
    }
    readonly property Action closeWindow: Action {
        text: "关闭窗口"
        shortcut: root.bindKeys ? "Ctrl+W" : ""
        onTriggered: root.window.close()
    }
    readonly property Action undo: Action {
        text: "撤销"
        shortcut: root.bindKeys ? "Ctrl+Z" : ""
        onTriggered: root.editRequested("undo")
    }
    readonly property Action redo: Action {
        text: "重做"
        shortcut: root.bindKeys ? "Shift+Ctrl+Z" : ""
        onTriggered: root.editRequested("redo")
    }
    readonly property Action cut: Action {
        text: "剪切"
        shortcut: root.bindKeys ? "Ctrl+X" : ""
        onTriggered: root.editRequested("cut")
    }
    readonly property Action copy: Action {
        text: "复制"
        shortcut: root.bindKeys ? "Ctrl+C" : ""
        onTriggered: root.editRequested("copy")
    }
    readonly property Action paste: Action {
        text: "粘贴"
        shortcut: root.bindKeys ? "Ctrl+V" : ""
        onTriggered: root.editRequested("paste")
    }
    readonly property Action selectAll: Action {
        text: "全选"
        shortcut: root.bindKeys ? "Ctrl+A" : ""
        onTriggered: root.editRequested("selectAll")
    }
    readonly property Action minimize: Action {
        text: "最小化"
        shortcut: root.bindKeys ? "Ctrl+M" : ""
        onTriggered: root.window.showMinimized()
    }
    readonly property Action zoom: Action {
        text: "缩放"
        onTriggered: root.zoomRequested()
    }
    readonly property Action bringAllToFront: Action {
        text: "全部置于顶层"
        onTriggered: {
            root.window.show()
            root.window.raise()
        }
    }
}
