import QtQuick
import Quillbox

// The format table in a sheet of its own: a file apart so that it loads when formats are first
// listed, not with the window.
SheetHost {
    id: root

    property string formatsOutput
    property FormatPicker picker: null

    // Wider than the window with the picker beside the text: kept inside it.
    margins: Theme.spacingPage
    onDismissed: root.shown = false

    FormatsListSheet {
        width: Window.width > 0 ? Math.min(implicitWidth, Window.width - 40) : implicitWidth
        height: Window.height > 0 ? Math.min(implicitHeight, Window.height - 40) : implicitHeight
        formatsOutput: root.formatsOutput
        picker: root.picker
        onDismissed: root.shown = false
    }
}
