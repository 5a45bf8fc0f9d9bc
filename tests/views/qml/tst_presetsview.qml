import QtQuick
import QtTest
import Quillbox
import QuillboxTest

ViewTestCase {
    name: "PresetsView"
    height: 900

    // The presets page opened from the sidebar, once the stored presets are read.
    function openPage() {
        mouseClick(child("navigation1"))
        compare(AppState.selectedTab, 1)
        const loader = child("presetsLoader")
        tryVerify(() => loader.item !== null)
        verify(!child("panes").visible)
        tryVerify(() => child("addButton", loader.item).enabled)
        return loader.item
    }

    function savedRow(page, index) {
        return child("savedList", page).itemAt(index)
    }

    // The store file itself, read on a connection of its own: it is written behind the page.
    function expectStored(presets) {
        tryVerify(() => JSON.stringify(TestHelper.storedPresets()) === JSON.stringify(presets), 5000,
                  JSON.stringify(TestHelper.storedPresets()))
    }

    function cleanupTestCase() {
        AppState.selectedTab = 0
    }

    // The built-in presets, each with the words it adds, quoted as the command has them.
    function test_builtInPresets() {
        showMainView()
        const list = child("builtInList", openPage())
        compare(list.count, 6)
        compare(child("builtInWords", list.itemAt(1)).text, "-f 'bv*+ba/b'")
    }

    function test_savedPresetLifecycle() {
        showMainView()
        let page = openPage()
        const name = findChild(page, "newNameField")
        const args = findChild(page, "newArgumentsField")
        const add = findChild(page, "addButton")
        const problem = findChild(page, "addProblem")
        const list = findChild(page, "savedList")

        // Refusals say why and keep what was typed.
        const refusals = [
            ["", "--write-subs", "请填写预设名称"],
            ["字幕", "  ", "请填写 yt-dlp 参数"],
            ["最佳画质", "-f best", "已有名为“最佳画质”的预设，请换一个名称"],
            ["字幕", "-o \"%(title)s", "自定义参数中的双引号没有闭合"],
        ]
        for (const [typedName, typedArgs, why] of refusals) {
            name.text = typedName
            args.text = typedArgs
            mouseClick(add)
            compare(problem.text, why)
            compare(args.text, typedArgs)
            compare(list.count, 0)
        }

        name.text = "  字幕 "
        args.text = "--write-subs --sub-langs 'zh.*'"
        mouseClick(add)
        compare(problem.text, "")
        compare(findChild(savedRow(page, 0), "savedName").text, "字幕")
        expectStored(["字幕=--write-subs --sub-langs 'zh.*'"])

        // Rename and new arguments in one edit; an empty name is refused and the form stays.
        let row = savedRow(page, 0)
        tryVerify(() => findChild(row, "editButton").enabled)
        mouseClick(findChild(row, "editButton"))
        const nameEdit = findChild(row, "nameEdit")
        const argumentsEdit = findChild(row, "argumentsEdit")
        nameEdit.text = " "
        mouseClick(findChild(row, "saveEditButton"))
        compare(findChild(row, "editProblem").text, "请填写预设名称")
        verify(nameEdit.visible)
        compare(row.name, "字幕")
        nameEdit.text = "中文字幕"
        argumentsEdit.text = "--write-subs --sub-langs zh-Hans"
        mouseClick(findChild(row, "saveEditButton"))
        verify(!nameEdit.visible)
        expectStored(["中文字幕=--write-subs --sub-langs zh-Hans"])

        // Choosing it fills the download form's custom arguments and goes back there.
        AppState.selectedPreset = Download.Default
        AppState.customArguments = ""
        mouseClick(findChild(row, "chooseButton"))
        compare(AppState.selectedPreset, Download.Custom)
        compare(AppState.customArguments, "--write-subs --sub-langs zh-Hans")
        compare(AppState.selectedTab, 0)

        // A fresh page reads it back from the store; deleting asks first.
        page = openPage()
        compare(findChild(page, "savedList").count, 1)
        row = savedRow(page, 0)
        compare(row.name, "中文字幕")
        const dialog = findChild(page, "removeDialog")
        mouseClick(findChild(row, "removeButton"))
        tryVerify(() => dialog.opened)
        mouseClick(findChild(dialog.item.contentItem, "confirmButton"))
        tryCompare(findChild(page, "savedList"), "count", 0)
        expectStored([])
    }
}
