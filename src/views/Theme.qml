pragma Singleton

import QtQuick
import Quillbox

// The palette and the few sizes every view shares.
QtObject {
    readonly property color background: Colors.hex("#0D1117")
    readonly property color surface: Colors.hex("#161B22")
    readonly property color raised: Colors.hex("#21262D")
    readonly property color border: Colors.hex("#30363D")

    readonly property color accent: Colors.hex("#FF0054")
    readonly property color cyan: Colors.hex("#00D4FF")
    readonly property color orangeAccent: Colors.hex("#FF6B35")

    readonly property color text: "white"
    readonly property color secondaryText: Qt.rgba(0.92, 0.92, 0.96, 0.6)
    readonly property color gray: Colors.hex("#8E8E93")
    readonly property color blue: Colors.hex("#0A84FF")
    readonly property color green: Colors.hex("#30D158")
    readonly property color red: Colors.hex("#FF453A")
    readonly property color orange: Colors.hex("#FF9F0A")
    readonly property color yellow: Colors.hex("#FFD60A")
    readonly property color purple: Colors.hex("#BF5AF2")

    readonly property font fixedFont: Desktop.fixedFont

    // The shade of each colour the models and presenters name (Download.Blue, Download.Red, …).
    function tint(name: int): color {
        switch (name) {
        case Download.Blue: return blue
        case Download.Green: return green
        case Download.Red: return red
        case Download.Orange: return orange
        case Download.Yellow: return yellow
        case Download.Purple: return purple
        default: return gray
        }
    }

    // The type scale, in pixels.
    readonly property int title2: 20
    readonly property int headline: 15
    readonly property int body: 13
    readonly property int caption: 12
    readonly property int caption2: 11

    readonly property int radiusSmall: 6
    readonly property int radius: 10
    readonly property int radiusLarge: 12
}
