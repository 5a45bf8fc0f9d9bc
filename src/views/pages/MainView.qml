import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quillbox

// The window's content: the sidebar, the input and queue panes side by side (or the presets or
// cookie page in their place), the log panel that slides in underneath, and the places of the
// settings and video information sheets.
Item {
    id: root

    property bool showVideoInfo: false
    // Set with showVideoInfo by whatever presents a video's details.
    property var videoInfo: null
    // Our own installation check, while its answer is awaited: the alert shows at most once.
    property int installationCheck: 0
    // The link whose information is being fetched for the sheet, or empty.
    readonly property string videoInfoLoadingUrl: videoInfoPresenter.loadingUrl

    // Fetches the information of `url` and shows it in the video information sheet; a failure
    // shows the alert format listing shows. A queue row's "视频信息" comes here.
    function openVideoInfo(url: string) {
        videoInfoPresenter.fetch(url)
    }

    // "新建下载任务": the download page, ready for links.
    function newDownload() {
        AppState.showSettings = false
        AppState.selectedTab = 0
        inputView.focusLinks()
    }

    // "从文件导入链接…": the download page, and the file dialog over it.
    function importLinks() {
        root.newDownload()
        inputView.importLinks()
    }

    Component.onCompleted: root.installationCheck = DownloadManager.checkInstallation()

    VideoInfoPresenter {
        id: videoInfoPresenter

        onFetched: info => {
            root.videoInfo = info
            root.showVideoInfo = true
        }
        onFailed: description => videoInfoAlert.open({ heading: qsTr("错误"), message: description })
    }

    Connections {
        target: DownloadManager

        function onInstallationChecked(request: int, installed: bool) {
            if (request !== root.installationCheck)
                return
            root.installationCheck = 0
            if (!installed)
                installationAlert.open()
        }
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0
        SidebarView {
            objectName: "sidebar"
            Layout.preferredWidth: 220
            Layout.minimumWidth: 200
            Layout.fillHeight: true
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0
            SplitView {
                id: panes

                objectName: "panes"
                Layout.fillWidth: true
                Layout.fillHeight: true
                visible: AppState.selectedTab === 0
                orientation: Qt.Horizontal

                // A hairline to see, a few pixels to grab.
                handle: Item {
                    implicitWidth: 7

                    Rectangle {
                        anchors.horizontalCenter: parent.horizontalCenter
                        width: 1
                        height: parent.height
                        color: grab.hovered ? Theme.gray : Theme.border
                    }
                    HoverHandler {
                        id: grab

                        cursorShape: Qt.SplitHCursor
                    }
                }

                DownloadInputView {
                    id: inputView

                    objectName: "downloadInput"
                    videoInfoPresenter: videoInfoPresenter
                    SplitView.minimumWidth: 320
                    SplitView.fillWidth: true
                }
                // Both panes fit the smallest window; on a wide one the queue takes its share,
                // until the divider is dragged.
                DownloadQueueView {
                    objectName: "downloadQueue"
                    videoInfoLoadingUrl: root.videoInfoLoadingUrl
                    onVideoInfoRequested: url => root.openVideoInfo(url)
                    SplitView.minimumWidth: 340
                    SplitView.preferredWidth: Math.max(340, Math.round(panes.width * 0.42))
                }
            }

            Loader {
                objectName: "presetsLoader"
                Layout.fillWidth: true
                Layout.fillHeight: true
                visible: active
                active: AppState.selectedTab === 1
                source: "PresetsView.qml"
            }

            Loader {
                objectName: "cookieManagerLoader"
                Layout.fillWidth: true
                Layout.fillHeight: true
                visible: active
                active: AppState.selectedTab === 2
                source: "CookieManagerView.qml"
            }

            // The log panel comes in from the bottom edge with a fade, and goes the same way.
            Item {
                id: logPlace

                property real reveal: AppState.showLogPanel ? 1 : 0

                Layout.fillWidth: true
                Layout.preferredHeight: logLoader.height * reveal
                clip: true

                Behavior on reveal {
                    NumberAnimation {
                        duration: 250
                        easing.type: Easing.InOutQuad
                    }
                }

                Loader {
                    id: logLoader

                    width: parent.width
                    height: 300 + 16
                    y: (1 - logPlace.reveal) * height
                    opacity: logPlace.reveal
                    active: logPlace.reveal > 0

                    sourceComponent: Item {
                        LogPanelView {
                            objectName: "logPanel"
                            anchors.fill: parent
                            anchors.margins: Theme.spacingMedium
                        }
                    }
                }
            }
        }
    }

    // Links dropped anywhere on the window join the links editor.
    DropArea {
        objectName: "linkDropArea"
        anchors.fill: parent
        keys: ["text/uri-list", "text/plain"]
        onDropped: drop => {
            inputView.addDropped(drop.urls, drop.text)
            drop.acceptProposedAction()
        }
    }

    // The settings sheet closes with its own close button or Escape, never with a click beside
    // it. It is made each time it opens.
    SheetHost {
        objectName: "settingsSheet"
        shown: AppState.showSettings
        closePolicy: Popup.CloseOnEscape
        onDismissed: AppState.showSettings = false

        Loader {
            id: settingsLoader

            objectName: "settingsLoader"
            source: AppState.showSettings ? "../dialogs/SettingsView.qml" : ""
        }

        Connections {
            target: settingsLoader.item
            ignoreUnknownSignals: true

            function onDismissed() {
                AppState.showSettings = false
            }
        }
    }

    // Empty while there is no record to show.
    SheetHost {
        objectName: "videoInfoSheet"
        shown: root.showVideoInfo
        onDismissed: root.showVideoInfo = false

        Loader {
            id: videoInfoLoader

            focus: true
            active: root.showVideoInfo && root.videoInfo !== null
            source: "../dialogs/VideoInfoView.qml"
        }

        Binding {
            target: videoInfoLoader.item
            property: "videoInfo"
            value: root.videoInfo
            when: videoInfoLoader.item !== null
        }

        Connections {
            target: videoInfoLoader.item
            ignoreUnknownSignals: true

            function onDismissed() {
                root.showVideoInfo = false
            }
        }
    }

    OnDemand {
        id: videoInfoAlert

        objectName: "videoInfoErrorAlert"
        source: "dialogs/MessageAlert.qml"
    }

    OnDemand {
        id: installationAlert

        objectName: "installationAlert"
        source: "dialogs/InstallationAlert.qml"
    }
}
