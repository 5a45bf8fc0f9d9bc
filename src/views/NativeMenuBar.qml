pragma ComponentBehavior: Bound

import QtQuick
import Qt.labs.platform as Platform
import Quillbox

// The system menu bar on macOS. The application menu's Hide, Hide Others and Show All come from
// the system itself; About, Preferences and Quit take their places there through their roles.
Platform.MenuBar {
    id: root

    property MenuActions actions

    Platform.Menu {
        title: "Quillbox"

        Platform.MenuItem {
            text: root.actions ? root.actions.about.text : ""
            role: Platform.MenuItem.AboutRole
            onTriggered: root.actions.about.trigger()
        }
        Platform.MenuItem {
            text: "偏好设置..."
            role: Platform.MenuItem.PreferencesRole
            shortcut: "Ctrl+,"
            enabled: false
        }
        Platform.MenuItem {
            text: "退出 Quillbox"
            role: Platform.MenuItem.QuitRole
            shortcut: StandardKey.Quit
            onTriggered: root.actions.quit.trigger()
        }
    }
    Platform.Menu {
        title: "文件"

        Platform.MenuItem {
            text: "新建下载任务"
            shortcut: "Ctrl+N"
            enabled: false
        }
        Platform.MenuSeparator {}
        Platform.MenuItem {
            text: "关闭窗口"
            shortcut: "Ctrl+W"
            onTriggered: root.actions.closeWindow.trigger()
        }
    }
    Platform.Menu {
        title: "编辑"

        Platform.MenuItem { text: "撤销"; shortcut: "Ctrl+Z"; onTriggered: root.actions.undo.trigger() }
        Platform.MenuItem { text: "重做"; shortcut: "Shift+Ctrl+Z"; onTriggered: root.actions.redo.trigger() }
        Platform.MenuSeparator {}
        Platform.MenuItem { text: "剪切"; shortcut: "Ctrl+X"; onTriggered: root.actions.cut.trigger() }
        Platform.MenuItem { text: "复制"; shortcut: "Ctrl+C"; onTriggered: root.actions.copy.trigger() }
        Platform.MenuItem { text: "粘贴"; shortcut: "Ctrl+V"; onTriggered: root.actions.paste.trigger() }
        Platform.MenuItem { text: "全选"; shortcut: "Ctrl+A"; onTriggered: root.actions.selectAll.trigger() }
    }
    Platform.Menu {
        title: "窗口"

        Platform.MenuItem { text: "最小化"; shortcut: "Ctrl+M"; onTriggered: root.actions.minimize.trigger() }
        Platform.MenuItem { text: "缩放"; onTriggered: root.actions.zoom.trigger() }
        Platform.MenuSeparator {}
        Platform.MenuItem { text: "全部置于顶层"; onTriggered: root.actions.bringAllToFront.trigger() }
    }
}
