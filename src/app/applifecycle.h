#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>

class DownloadManager;
class QQuickWindow;
class QueueMemory;

// The application's own lifecycle: it places the main window where the user left it (settings
// group "Main Window", centred on first run) and remembers its frame; when the application quits
// it saves that frame and stops every download, returning only once no download process is left.
class AppLifecycle : public QObject
{
    Q_OBJECT

public:
    static constexpr QSize DefaultSize { 1200, 800 };

    explicit AppLifecycle(DownloadManager *downloads, QObject *parent = nullptr);

    // Restores the frame of `window` (or centres it), shows it, and saves its frame on quit.
    void attachMainWindow(QQuickWindow *window);

    // Starts the engine's tool discovery once `window` has drawn its first frame (or after a
    // moment, should no frame come), so its shells do not compete with start-up for the CPU.
    void startDiscoveryAfterFirstFrame(QQuickWindow *window);

    // Brings the stored queue back once `window` has drawn its first frame, and on quit keeps
    // the queue as it stood before the downloads are stopped.
    void restoreQueueAfterFirstFrame(QQuickWindow *window, QueueMemory *memory);

    // SIGTERM and SIGINT quit the way closing the window does, so downloads stop with us.
    static void quitOnTerminationSignals();

    void saveWindowGeometry() const;

    // The frame stored under "Main Window", if any, and whether it is usable on the present
    // screens (at least partly visible, not smaller than `minimum`).
    static QRect storedGeometry();
    static QRect usableGeometry(const QRect &stored, QSize minimum);

    // True when a window can be shown; otherwise writes to stderr how to run under a virtual
    // display. Call before the GUI application object is created.
    static bool checkDisplay();

private:
    void quit();

    QPointer<DownloadManager> m_downloads;
    QPointer<QQuickWindow> m_window;
    QPointer<QueueMemory> m_memory;
};
