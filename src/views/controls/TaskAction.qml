import QtQuick
import QtQuick.Controls.Basic
import Quillbox

// One thing that can be done to a queue task, offered on its row while it is hovered or selected
// and in its context menu. `enabled` says whether it can be done now: the menu lists it greyed
// when not, the row leaves it out unless it `keepsPlace` (shown disabled instead).
Action {
    // The row's button is "<name>Action", the menu's item "<name>MenuItem".
    property string name
    // The row's icon; the menu shows none.
    property string symbol
    property color tint: Theme.gray
    property bool keepsPlace: false
    // A separator follows it in the menu.
    property bool endsGroup: false
}
