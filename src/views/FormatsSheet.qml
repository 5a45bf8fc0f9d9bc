import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// The format table in a sheet of its own: a file apart so that it loads when formats are first
// listed, not with the window.
SheetHost {
    id: root

    property string formatsOutput
    property FormatPicker picker: null

    // Wider than the window with the picker beside the text: kept inside it.
    margins: 20
    onDismissed: root.shown = false

    FormatsListSheet {
        width: Math.min(implicitWidth, Overlay.overlay ? Overlay.overlay.width - 40 : implicitWidth)
        height: Math.min(implicitHeight, Overlay.overlay ? Overlay.overlay.height - 40 : implicitHeight)
        formatsOutput: root.formatsOutput
        picker: root.picker
        onDismissed: root.shown = false
    }
}
