pragma Singleton

import QtQuick
import Quillbox

// The palette, the type scale, the corner radii and the icon sizes every view shares.
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

    // Translucent tones: thin dividers and tracks, a hovered entry, the outline of a selected
    // tile, and grey that steps back further than `gray`.
    readonly property color separator: Qt.rgba(0.56, 0.56, 0.58, 0.3)
    readonly property color hoverFill: Qt.rgba(1, 1, 1, 0.04)
    readonly property color selectionStroke: Qt.rgba(accent.r, accent.g, accent.b, 0.5)
    readonly property color grayDim: Qt.rgba(gray.r, gray.g, gray.b, 0.7)
    readonly property color grayFaint: Qt.rgba(gray.r, gray.g, gray.b, 0.5)

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

    // The pale disc behind a status icon, in the status colour.
    function badgeFill(tint: color): color {
        return Qt.rgba(tint.r, tint.g, tint.b, 0.2)
    }

    // The colour without its transparency.
    function opaque(tint: color): color {
        return Qt.rgba(tint.r, tint.g, tint.b, 1)
    }

    // The type scale, in pixels.
    readonly property int title1: 22
    readonly property int title2: 20
    readonly property int title3: 18
    readonly property int title4: 16
    readonly property int headline: 15
    readonly property int bodyLarge: 14
    readonly property int body: 13
    readonly property int caption: 12
    readonly property int caption2: 11
    readonly property int caption3: 10

    // Sizes of the fixed-width font: log messages and tool output, log times.
    readonly property int monoBody: 12
    readonly property int monoCaption: 11

    // Icons that stand alone, larger than any text; the others take the size of the type scale.
    readonly property int iconMedium: 24
    readonly property int iconAlert: 28
    readonly property int iconLarge: 48
    readonly property int iconHuge: 56

    // The spacing scale, in pixels: between the items of a layout, around a group's content, and
    // inside a control's frame.
    readonly property int spacingHair: 2
    readonly property int spacingTiny: 4
    readonly property int spacingSmall: 6
    readonly property int spacingMedium: 8
    readonly property int spacing: 10
    readonly property int spacingLarge: 12
    readonly property int spacingWide: 16
    readonly property int spacingSection: 18
    readonly property int spacingPage: 20
    readonly property int spacingHuge: 24

    readonly property int radiusTiny: 4
    readonly property int radiusSmall: 6
    readonly property int radiusMedium: 8
    readonly property int radius: 10
    readonly property int radiusLarge: 12
    // How far a focus ring stands outside its control; its radius grows by as much.
    readonly property int focusGap: 3
}
