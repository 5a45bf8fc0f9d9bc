import QtQuick
import QtQuick.Templates as T
import Quillbox

// The format table in a sheet of its own: a file apart so that it loads when formats are first
// listed, not with the window.
SheetHost {
    id: root

    property string formatsOutput
    property FormatPicker picker: null

    // Wider than the pane that opens it, with the picker beside the text: centred in the window
    // and kept inside it.
    parent: T.Overlay.overlay
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
