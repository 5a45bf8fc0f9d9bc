pragma ComponentBehavior: Bound

import QtQuick
import Qt.labs.platform as Platform
import Quillbox

// The system menu bar on macOS, made from the same menus as the in-window one. The application
// menu's Hide, Hide Others and Show All come from the system itself; About, Preferences and Quit
// take their places there through their roles.
Platform.MenuBar {
    id: root

    property MenuActions actions

    // The entries of a menu without those the system provides, and without the separators that
    // leaves doubled or at an end.
    function shownEntries(entries: var): var {
        const shown = []
        for (const entry of entries) {
            if (entry === null) {
                if (shown.length > 0 && shown[shown.length - 1] !== null)
                    shown.push(null)
            } else if (!root.isSystemProvided(entry)) {
                shown.push(entry)
            }
        }
        if (shown.length > 0 && shown[shown.length - 1] === null)
            shown.pop()
        return shown
    }

    function isSystemProvided(entry: var): bool {
        for (let i = 0; i < root.actions.systemProvided.length; ++i) {
            if (root.actions.systemProvided[i] === entry)
                return true
        }
        return false
    }

    function roleOf(entry: var): int {
        if (entry === root.actions.about)
            return Platform.MenuItem.AboutRole
        if (entry === root.actions.preferences)
            return Platform.MenuItem.PreferencesRole
        if (entry === root.actions.quit)
            return Platform.MenuItem.QuitRole
        return Platform.MenuItem.TextHeuristicRole
    }

    Instantiator {
        model: root.actions ? root.actions.menus : []
        onObjectAdded: (index, object) => root.insertMenu(index, object as Platform.Menu)
        onObjectRemoved: (index, object) => root.removeMenu(object as Platform.Menu)

        delegate: Platform.Menu {
            id: menu

            required property var modelData

            title: menu.modelData.title

            Instantiator {
                model: root.shownEntries(menu.modelData.entries)
                onObjectAdded: (index, object) => menu.insertItem(index, object as Platform.MenuItem)
                onObjectRemoved: (index, object) => menu.removeItem(object as Platform.MenuItem)

                delegate: Platform.MenuItem {
                    id: item

                    required property var modelData

                    separator: item.modelData === null
                    text: item.modelData ? item.modelData.text : ""
                    shortcut: item.modelData ? item.modelData.keys : ""
                    enabled: item.modelData ? item.modelData.enabled : true
                    role: root.roleOf(item.modelData)
                    onTriggered: item.modelData.trigger()
                }
            }
        }
    }
}
