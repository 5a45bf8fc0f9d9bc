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
            textFormat: Text.PlainText
            color: Theme.text
            font.pixelSize: Theme.body
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            color: barItem.highlighted ? Theme.border : "transparent"
            radius: Theme.radiusTiny
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
                implicitWidth: Math.max(200, entry.implicitContentWidth + entry.leftPadding + entry.rightPadding)

                contentItem: RowLayout {
                    spacing: Theme.spacingHuge
                    Text {
                        objectName: "menuItemText"
                        text: entry.text
                        textFormat: Text.PlainText
                        color: entry.enabled ? Theme.text : Theme.gray
                        opacity: entry.enabled ? 1 : 0.6
                        font.pixelSize: Theme.body
                        Layout.fillWidth: true
                    }
                    Text {
                        objectName: "menuItemKeys"
                        text: entry.keys
                        textFormat: Text.PlainText
                        visible: entry.keys.length > 0
                        color: Theme.gray
                        opacity: entry.enabled ? 1 : 0.6
                        font.pixelSize: Theme.caption
                    }
                }
                background: Rectangle {
                    implicitHeight: 26
                    radius: Theme.radiusTiny
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

    Instantiator {
        model: root.actions.menus
        onObjectAdded: (index, object) => root.insertMenu(index, object as Menu)
        onObjectRemoved: (index, object) => root.removeMenu(object as Menu)

        delegate: LazyMenu {
            required property var modelData

            title: modelData.title
            entries: modelData.entries
        }
    }
}
