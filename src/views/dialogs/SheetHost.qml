import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// A modal sheet over the window: shown while `shown` is true, dismissed with Escape or a click
// outside. Its content is what is declared inside it.
Popup {
    id: root

    property bool shown: false
    default property alias content: holder.data

    signal dismissed

    anchors.centerIn: parent
    modal: true
    focus: true
    visible: root.shown
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    padding: 0
    onClosed: {
        if (root.shown)
            root.dismissed()
    }

    background: Rectangle {
        color: Theme.background
        radius: Theme.radiusLarge
        border.color: Theme.border
    }

    Item {
        id: holder

        implicitWidth: childrenRect.width
        implicitHeight: childrenRect.height
    }
}
