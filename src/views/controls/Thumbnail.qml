import QtQuick

// A video's small picture, loaded from `source` in the background and kept on disk (see
// ThumbnailCache). Until it has loaded, and when there is none or it cannot be loaded, the items
// declared inside show instead.
Item {
    id: root

    property url source
    // The picture's size once loaded. It is decoded for that size (twice over, for high-density
    // screens) whatever room the fallback takes meanwhile: a size that followed the item's would
    // have the picture decoded again as the item grows to show it.
    property size pictureSize: Qt.size(64, 36)
    default property alias fallback: fallbackHolder.data
    readonly property bool loaded: image.status === Image.Ready

    implicitWidth: pictureSize.width
    implicitHeight: pictureSize.height

    Image {
        id: image

        objectName: "thumbnailImage"
        anchors.fill: parent
        visible: root.loaded
        source: root.source
        asynchronous: true
        fillMode: Image.PreserveAspectCrop
        sourceSize.width: root.pictureSize.width * 2
        sourceSize.height: root.pictureSize.height * 2
        clip: true
    }

    Item {
        id: fallbackHolder

        objectName: "thumbnailFallback"
        anchors.fill: parent
        visible: !root.loaded
    }
}
