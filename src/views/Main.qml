pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Quillbox

ApplicationWindow {
    id: root

    // Closing with downloads running asks first, unless the session is ending (then nobody is
    // there to answer).
    property bool askBeforeQuit: true
    property bool quitConfirmed: false

    // The text item that last had the keyboard focus: an open menu takes the focus, and its
    // edit commands are meant for the text behind it.
    property Item lastTextItem: null

    // Edit commands go to whatever text item has the keyboard focus, as a menu would send them
    // down the responder chain.
    function editCommand(name: string) {
        if (root.handles(root.activeFocusItem, name)) {
            root.activeFocusItem[name]()
        } else if (root.handles(root.lastTextItem, name)) {
            root.lastTextItem.forceActiveFocus()
            root.lastTextItem[name]()
        }
    }

    function handles(item: Item, name: string): bool {
        return item !== null && typeof item[name] === "function"
    }

    function makeMenuBar(): MenuBar {
        return inWindowMenu.createObject(root) as MenuBar
    }

    function toggleZoom() {
        if (root.visibility === Window.Maximized)
            root.showNormal()
        else
            root.showMaximized()
    }

    title: qsTr("Quillbox - 视频下载管理器")
    width: 1200
    height: 800
    minimumWidth: 900
    minimumHeight: 600
    color: Theme.background
    visible: false
    onClosing: close => {
        if (!root.askBeforeQuit || root.quitConfirmed || DownloadManager.runningCount === 0)
            return
        close.accepted = false
        quitDialog.open({ running: DownloadManager.runningCount })
    }
    onActiveFocusItemChanged: {
        if (handles(activeFocusItem, "undo"))
            lastTextItem = activeFocusItem
    }

    palette.window: Theme.background
    palette.windowText: Theme.text
    palette.base: Theme.raised
    palette.text: Theme.text
    palette.button: Theme.border
    palette.buttonText: Theme.text
    palette.highlight: Theme.accent
    palette.highlightedText: Theme.text
    palette.placeholderText: Theme.gray
    palette.toolTipBase: Theme.raised
    palette.toolTipText: Theme.text

    // On macOS the menus live in the system menu bar; elsewhere in the window.
    menuBar: Qt.platform.os === "osx" ? null : root.makeMenuBar()

    MenuActions {
        id: actions

        window: root
        onAboutRequested: aboutDialog.open()
        onPreferencesRequested: AppState.showSettings = true
        onNewDownloadRequested: mainView.newDownload()
        onImportLinksRequested: mainView.importLinks()
        onEditRequested: command => root.editCommand(command)
        onZoomRequested: root.toggleZoom()
    }

    Component {
        id: inWindowMenu

        AppMenuBar {
            actions: actions
        }
    }

    // Made by name, so that other systems never load the platform menu module.
    Loader {
        id: nativeMenu

        Component.onCompleted: {
            if (Qt.platform.os === "osx")
                nativeMenu.setSource("NativeMenuBar.qml", { actions: actions })
        }
    }

    MainView {
        id: mainView

        objectName: "mainView"
        anchors.fill: parent
    }

    OnDemand {
        id: quitDialog

        objectName: "quitDialog"
        source: "dialogs/QuitDialog.qml"
    }

    Connections {
        target: quitDialog.item
        ignoreUnknownSignals: true

        function onQuitConfirmed() {
            root.quitConfirmed = true
            root.close()
        }
    }

    OnDemand {
        id: aboutDialog

        objectName: "aboutDialog"
        source: "dialogs/AboutDialog.qml"
    }
}
