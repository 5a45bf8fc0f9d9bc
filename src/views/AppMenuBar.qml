pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The menu bar drawn inside the window, where the system has no global one.
MenuBar {
    id: root

    required property MenuActions actions

    background: Rectangle {
        implicitHeight: 28
        color: Theme.surface

        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: Theme.border
        }
    }

    delegate: MenuBarItem {
        id: barItem

        contentItem: Text {
            text: barItem.text
            color: Theme.text
            font.pixelSize: 13
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            color: barItem.highlighted ? Theme.border : "transparent"
            radius: 4
        }
    }

    // A menu whose entries are made the first time it opens, not with the window: an Action
    // each, or null for a separator. The keys work before that; they belong to the actions.
    component LazyMenu: Menu {
        id: menu

        property var entries: []
        readonly property Component itemMaker: Component {
            MenuItem {
                id: entry

                readonly property string keys: entry.action ? Desktop.shortcutText(entry.action.shortcut) : ""

                objectName: "menuItem_" + entry.text
                implicitWidth: Math.max(200, entryRow.implicitWidth + entry.leftPadding + entry.rightPadding)

                contentItem: RowLayout {
                    id: entryRow

                    spacing: 24

                    Text {
                        objectName: "menuItemText"
                        text: entry.text
                        color: entry.enabled ? Theme.text : Theme.gray
                        opacity: entry.enabled ? 1 : 0.6
                        font.pixelSize: 13
                        Layout.fillWidth: true
                    }
                    Text {
                        objectName: "menuItemKeys"
                        text: entry.keys
                        visible: entry.keys.length > 0
                        color: Theme.gray
                        opacity: entry.enabled ? 1 : 0.6
                        font.pixelSize: 12
                    }
                }
                background: Rectangle {
                    implicitHeight: 26
                    radius: 4
                    color: entry.highlighted && entry.enabled ? Theme.accent : "transparent"
                }
            }
        }
        readonly property Component separatorMaker: Component {
            MenuSeparator {}
        }

        onAboutToShow: {
            if (menu.count > 0)
                return
            for (let i = 0; i < menu.entries.length; ++i) {
                const entry = menu.entries[i]
                const maker = entry ? menu.itemMaker : menu.separatorMaker
                menu.addItem(maker.createObject(menu.contentItem, entry ? { action: entry } : {}))
            }
        }
    }

    LazyMenu {
        title: "Quillbox"
        entries: [root.actions.about, null, root.actions.preferences, null, root.actions.hide,
            root.actions.hideOthers, root.actions.showAll, null, root.actions.quit]
    }
    LazyMenu {
        title: "文件"
        entries: [root.actions.newDownload, null, root.actions.closeWindow]
    }
    LazyMenu {
        title: "编辑"
        entries: [root.actions.undo, root.actions.redo, null, root.actions.cut, root.actions.copy,
            root.actions.paste, root.actions.selectAll]
    }
    LazyMenu {
        title: "窗口"
        entries: [root.actions.minimize, root.actions.zoom, null, root.actions.bringAllToFront]
    }
}
