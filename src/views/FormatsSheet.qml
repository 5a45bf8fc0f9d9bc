import QtQuick
import Quillbox

// The format table in a sheet of its own: a file apart so that it loads when formats are first
// listed, not with the window.
SheetHost {
    id: root

    property string formatsOutput

    onDismissed: root.shown = false

    FormatsListSheet {
        formatsOutput: root.formatsOutput
        onDismissed: root.shown = false
    }
}
