import QtQuick
import QtQuick.Dialogs
import Quillbox

// Chooses the output folder. Its own file, so the dialog module loads when it first opens.
FolderDialog {
    currentFolder: Desktop.fileUrl(AppState.outputDirectory)
    onAccepted: AppState.outputDirectory = Desktop.localPath(selectedFolder)
}
