pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
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

    Menu {
        title: "Quillbox"

        MenuItem { action: root.actions.about }
        MenuSeparator {}
        MenuItem { action: root.actions.preferences }
        MenuSeparator {}
        MenuItem { action: root.actions.hide }
        MenuItem { action: root.actions.hideOthers }
        MenuItem { action: root.actions.showAll }
        MenuSeparator {}
        MenuItem { action: root.actions.quit }
    }
    Menu {
        title: "文件"

        MenuItem { action: root.actions.newDownload }
        MenuSeparator {}
        MenuItem { action: root.actions.closeWindow }
    }
    Menu {
        title: "编辑"

        MenuItem { action: root.actions.undo }
        MenuItem { action: root.actions.redo }
        MenuSeparator {}
        MenuItem { action: root.actions.cut }
        MenuItem { action: root.actions.copy }
        MenuItem { action: root.actions.paste }
        MenuItem { action: root.actions.selectAll }
    }
    Menu {
        title: "窗口"

        MenuItem { action: root.actions.minimize }
        MenuItem { action: root.actions.zoom }
        MenuSeparator {}
        MenuItem { action: root.actions.bringAllToFront }
    }
}
