import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The links section: its header with paste and clear, the editor of one link a line, the lines
// that are not links, and a hint.
ColumnLayout {
    id: root

    required property InputPresenter presenter

    // Dropped links or text join the editor, one per line.
    function addDropped(urls: list<url>, text: string) {
        if (root.presenter.dropLinks(urls, text))
            editor.forceActiveFocus()
    }

    function pasteFromClipboard() {
        if (root.presenter.paste(Desktop.clipboardText()))
            editor.forceActiveFocus()
    }

    function focusEditor() {
        editor.forceActiveFocus()
    }

    // Cleared through the editor itself, so the edit menu's undo brings the links back.
    function clearLinks() {
        editor.remove(0, editor.length)
        editor.forceActiveFocus()
    }

    spacing: Theme.spacingMedium
    RowLayout {
        SectionHeader {
            text: qsTr("视频链接")
        }
        Item {
            Layout.fillWidth: true
        }
        TextButton {
            objectName: "pasteButton"
            text: qsTr("粘贴")
            symbol: "doc.on.clipboard"
            onClicked: root.pasteFromClipboard()
        }
        TextButton {
            objectName: "clearButton"
            text: qsTr("清空")
            symbol: "xmark.circle"
            onClicked: root.clearLinks()
        }
    }
    // Whole lines only: three while there are fewer, growing with the links up to five; more
    // scroll inside the box. A box that shows all its lines leaves the wheel to the form.
    Flickable {
        id: editorScroller

        readonly property real lineHeight: editor.contentHeight / Math.max(1, editor.lineCount)

        objectName: "linksScroller"
        Layout.fillWidth: true
        Layout.preferredHeight: Math.ceil(Math.min(Math.max(editor.lineCount, 3), 5) * lineHeight)
                                + editor.topPadding + editor.bottomPadding
        clip: true
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        // Links beyond the fifth are there to scroll to, and the bar says so.
        ScrollBar.vertical: ScrollBar {
            policy: editor.lineCount > 5 ? ScrollBar.AlwaysOn : ScrollBar.AsNeeded
        }

        TextArea.flickable: TextArea {
            id: editor

            objectName: "linksEditor"
            text: AppState.urlInput
            textFormat: TextEdit.PlainText
            onTextChanged: {
                if (text !== AppState.urlInput)
                    AppState.urlInput = text
            }
            // Tab moves the focus on, as everywhere else; Ctrl+Tab (or a pasted tab) still puts a
            // tab into the text.
            Keys.onPressed: event => {
                if (event.key === Qt.Key_Tab && (event.modifiers & Qt.ControlModifier)) {
                    editor.insert(editor.cursorPosition, "\t")
                    event.accepted = true
                } else if (event.key === Qt.Key_Tab || event.key === Qt.Key_Backtab) {
                    const forward = event.key === Qt.Key_Tab && !(event.modifiers & Qt.ShiftModifier)
                    editor.nextItemInFocusChain(forward).forceActiveFocus(
                        forward ? Qt.TabFocusReason : Qt.BacktabFocusReason)
                    event.accepted = true
                }
            }
            Accessible.name: qsTr("视频链接")
            placeholderText: qsTr("请输入视频链接，每行一个...")
            placeholderTextColor: Theme.gray
            color: Theme.text
            selectionColor: Theme.accent
            font.pixelSize: Theme.bodyLarge
            wrapMode: TextEdit.WrapAnywhere
            padding: Theme.spacingLarge
            background: Rectangle {
                radius: Theme.radius
                color: Theme.raised
                border.width: editor.activeFocus || root.presenter.rejectedNotice.length > 0 ? 2 : 0
                border.color: root.presenter.rejectedNotice.length > 0 ? Theme.red : Theme.accent
            }
        }
    }
    Text {
        objectName: "rejectedLinks"
        Layout.fillWidth: true
        visible: text.length > 0
        text: root.presenter.rejectedNotice
        color: Theme.red
        font.pixelSize: Theme.caption
        wrapMode: Text.WrapAnywhere
        textFormat: Text.PlainText
    }
    Hint {
        text: qsTr("支持多个链接，每行一个")
    }
}
