import QtQuick
import QtQuick.Dialogs
import Quillbox

// Chooses the output folder, starting in the current one (or the nearest folder above it that is
// there). Its own file, so the dialog module loads when it first opens.
FolderDialog {
    id: root

    title: qsTr("选择输出目录")
    acceptLabel: qsTr("选择")
    currentFolder: FileDialogs.startFolder(AppState.outputDirectory)
    onVisibleChanged: {
        if (visible)
            FileDialogs.fitFallback(root)
    }
    onAccepted: AppState.outputDirectory = Desktop.localPath(root.selectedFolder)
}
