import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// A button of an icon and a word: plain, or on a rounded fill of one colour or of a horizontal
// gradient into `gradientTo`. While busy a small spinner stands in for the icon. The `trailing`
// items follow the label. Wider than its content, the button keeps the content centred, or at its
// start with the trailing items at the far end when `leading` is set.
AbstractButton {
    id: root

    property string symbol
    property color tint: Theme.gray
    property color fill: "transparent"
    property color gradientTo: "transparent"
    property color outline: "transparent"
    property real outlineWidth: 0
    property real cornerRadius: Theme.radiusSmall
    property real fontSize: Theme.caption
    property int fontWeight: Font.Normal
    property real iconSize: fontSize + 1
    property real iconWidth: iconSize
    property bool busy: false
    property bool leading: false
    property real contentOpacity: root.down ? 0.6 : root.hovered ? 1 : 0.85
    property real fillOpacity: root.down ? 0.8 : 1
    property bool showsFocusRing: true
    property real focusRadius: root.hasFill ? root.cornerRadius + Theme.focusGap : Theme.radiusSmall
    property real focusMargin: -Theme.focusGap
    property alias trailing: trailingItems.data

    readonly property bool hasFill: fill.a > 0 || gradientTo.a > 0 || outlineWidth > 0

    // The content is a child rather than the contentItem, so its parts can be named.
    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                            content.implicitWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(implicitBackgroundHeight + topInset + bottomInset,
                             content.implicitHeight + topPadding + bottomPadding)
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()
    padding: Theme.spacingTiny
    spacing: Theme.spacingTiny
    background: Rectangle {
        visible: root.hasFill
        radius: root.cornerRadius
        opacity: root.fillOpacity
        border.width: root.outlineWidth
        border.color: root.outline
        gradient: Gradient {
            orientation: Gradient.Horizontal

            GradientStop {
                position: 0
                color: root.fill
            }
            GradientStop {
                position: 1
                color: root.gradientTo.a > 0 ? root.gradientTo : root.fill
            }
        }
    }

    RowLayout {
        id: content

        // Centred on the button even when wider than the room between the paddings.
        x: root.leftPadding + Math.round((root.availableWidth - width) / 2)
        y: root.topPadding
        width: Math.max(root.availableWidth, implicitWidth)
        height: root.availableHeight
        // Each part brings its own space before it, so a hidden one leaves no gap.
        spacing: 0
        opacity: root.contentOpacity

        // With a filler on each side the content stays in the middle.
        Item {
            Layout.fillWidth: true
            visible: !root.leading
        }
        BusyIndicator {
            objectName: "busySpinner"
            visible: root.busy
            running: root.busy
            implicitWidth: 16
            implicitHeight: 16
            padding: 0
        }
        Icon {
            // Named after the button: "logButton" has "logButtonIcon".
            objectName: root.objectName.length > 0 ? root.objectName + "Icon" : ""
            Layout.preferredWidth: root.iconWidth
            visible: !root.busy && root.symbol.length > 0
            symbol: root.symbol
            color: root.tint
            size: root.iconSize
        }
        Text {
            Layout.fillWidth: root.leading
            Layout.leftMargin: root.busy || root.symbol.length > 0 ? root.spacing : 0
            visible: root.text.length > 0
            text: root.text
            textFormat: Text.PlainText
            color: root.tint
            font.pixelSize: root.fontSize
            font.weight: root.fontWeight
        }
        // Always there, so its space goes only when something in it shows.
        Row {
            id: trailingItems

            Layout.leftMargin: implicitWidth > 0 ? root.spacing : 0
            spacing: root.spacing
        }
        Item {
            Layout.fillWidth: true
            visible: !root.leading
        }
    }

    FocusRing {
        anchors.margins: root.focusMargin
        shown: root.showsFocusRing && root.visualFocus
        radius: root.focusRadius
    }
}
