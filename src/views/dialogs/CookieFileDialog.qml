import QtQuick
import QtQuick.Dialogs
import Quillbox

// Chooses a cookie file, starting in the folder of the one chosen before. Its own file, so the
// dialog module loads when it first opens.
FileDialog {
    id: root

    signal chosen(string path)

    title: qsTr("选择 Cookie 文件")
    fileMode: FileDialog.OpenFile
    nameFilters: [qsTr("Cookie 文件 (*.txt)"), qsTr("所有文件 (*)")]
    currentFolder: FileDialogs.startFolder(AppState.cookiePath)
    onVisibleChanged: {
        if (visible)
            FileDialogs.fitFallback(root)
    }
    onAccepted: root.chosen(Desktop.localPath(root.selectedFile))
}
