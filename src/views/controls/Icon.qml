import QtQuick
import Quillbox

// One of the bundled icons, named by its symbol ("arrow.down.circle.fill"), in one colour or a
// diagonal gradient, `size` points square.
Item {
    id: root

    property string symbol
    property color color: Theme.text
    property color gradientFrom: "transparent"
    property color gradientTo: "transparent"
    property real size: Theme.title4

    readonly property bool hasGradient: gradientFrom.a > 0 && gradientTo.a > 0
    readonly property string source: image.source

    function hex(c: color): string {
        return Theme.opaque(c).toString()
    }

    implicitWidth: size
    implicitHeight: size

    Image {
        id: image

        anchors.centerIn: parent
        width: root.size
        height: root.size
        sourceSize.width: Math.ceil(root.size * 2)
        sourceSize.height: Math.ceil(root.size * 2)
        fillMode: Image.PreserveAspectFit
        smooth: true
        // Rendered off the GUI thread, so icons never hold up a frame.
        asynchronous: true
        opacity: root.hasGradient ? 1 : root.color.a
        source: root.symbol.length === 0 ? ""
            : "image://icons/" + root.symbol + "?color=" + encodeURIComponent(root.hex(root.color))
              + (root.hasGradient ? "&from=" + encodeURIComponent(root.hex(root.gradientFrom))
                                    + "&to=" + encodeURIComponent(root.hex(root.gradientTo)) : "")
    }
}
