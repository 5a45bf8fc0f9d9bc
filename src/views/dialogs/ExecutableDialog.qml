import QtQuick
import QtQuick.Dialogs
import Quillbox

// Chooses an executable file. Its own file, so the dialog module loads when it first opens.
FileDialog {
    id: root

    signal chosen(string path)

    title: "选择 yt-dlp 可执行文件"
    fileMode: FileDialog.OpenFile
    onAccepted: root.chosen(Desktop.localPath(root.selectedFile))
}
