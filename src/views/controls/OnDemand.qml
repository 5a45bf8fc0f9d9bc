import QtQuick

// Holds a popup or dialog that is made the first time it is opened rather than with the window:
// most are never opened, and the window appears sooner without them. The popup's file (`source`)
// is read only then too, with the modules it imports.
Item {
    id: root

    // The popup's file, from the module's root: "dialogs/QuitDialog.qml".
    property string source
    // The popup once made; it then stays for later openings. A Popup or a dialog of QtQuick.Dialogs:
    // they share `visible` and `open()` but no type that has them.
    property var item: null
    readonly property bool opened: root.item !== null && root.item.visible

    // Makes the popup if need be, sets `properties` on it and opens it.
    function open(properties) {
        if (!root.item) {
            const maker = Qt.createComponent(Qt.resolvedUrl("../" + root.source))
            root.item = maker.createObject(root, properties ?? {})
            if (!root.item) {
                console.warn("cannot make", root.source, maker.errorString())
                return
            }
        } else if (properties) {
            for (const name in properties)
                root.item[name] = properties[name]
        }
        root.item.open()
    }

    anchors.fill: parent
}
