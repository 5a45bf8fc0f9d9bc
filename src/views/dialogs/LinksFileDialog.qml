import QtQuick
import QtQuick.Dialogs
import Quillbox

// Chooses a text file of links for "从文件导入链接…". Its own file, so the dialog module loads when
// it first opens.
FileDialog {
    id: root

    signal chosen(string path)

    title: qsTr("从文件导入链接")
    fileMode: FileDialog.OpenFile
    nameFilters: [qsTr("文本文件 (*.txt *.list *.csv *.md)"), qsTr("所有文件 (*)")]
    currentFolder: FileDialogs.startFolder("")
    onVisibleChanged: {
        if (visible)
            FileDialogs.fitFallback(root)
    }
    onAccepted: root.chosen(Desktop.localPath(root.selectedFile))
}
