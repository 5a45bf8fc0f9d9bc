import QtQuick

// A video's small picture, loaded from `source` in the background and kept on disk (see
// ThumbnailCache). Until it has loaded, and when there is none or it cannot be loaded, the items
// declared inside show instead.
Item {
    id: root

    property url source
    default property alias fallback: fallbackHolder.data
    readonly property bool loaded: image.status === Image.Ready

    implicitWidth: 64
    implicitHeight: 36

    Image {
        id: image

        objectName: "thumbnailImage"
        anchors.fill: parent
        visible: root.loaded
        source: root.source
        asynchronous: true
        fillMode: Image.PreserveAspectCrop
        sourceSize.width: root.width * 2
        sourceSize.height: root.height * 2
        clip: true
    }

    Item {
        id: fallbackHolder

        objectName: "thumbnailFallback"
        anchors.fill: parent
        visible: !root.loaded
    }
}
