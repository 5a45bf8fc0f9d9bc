import QtQuick
import QtQuick.Dialogs
import Quillbox

// Chooses an executable file, starting in the folder of the yt-dlp in use. Its own file, so the
// dialog module loads when it first opens.
FileDialog {
    id: root

    signal chosen(string path)

    title: qsTr("选择 yt-dlp 可执行文件")
    fileMode: FileDialog.OpenFile
    nameFilters: [qsTr("所有文件 (*)")]
    currentFolder: FileDialogs.startFolder(DownloadManager.tools.ytDlpPath)
    onVisibleChanged: {
        if (visible)
            FileDialogs.fitFallback(root)
    }
    onAccepted: root.chosen(Desktop.localPath(root.selectedFile))
}
