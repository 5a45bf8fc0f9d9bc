#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>

class QQuickWindow;

// The application's own lifecycle: it places the main window where the user left it (settings
// group "Main Window", centred on first run) and remembers its frame, and when the application
// quits it saves that frame. Downloads are stopped on quit by whoever owns them, connected to
// aboutToQuit() in main().
class AppLifecycle : public QObject
{
    Q_OBJECT

public:
    static constexpr QSize DefaultSize { 1200, 800 };

    explicit AppLifecycle(QObject *parent = nullptr);

    // Restores the frame of `window` (or centres it), shows it, and saves its frame on quit.
    void attachMainWindow(QQuickWindow *window);

    void saveWindowGeometry() const;

    // The frame stored under "Main Window", if any, and whether it is usable on the present
    // screens (at least partly visible, not smaller than `minimum`).
    static QRect storedGeometry();
    static QRect usableGeometry(const QRect &stored, QSize minimum);

    // True when a window can be shown; otherwise writes to stderr how to run under a virtual
    // display. Call before the GUI application object is created.
    static bool checkDisplay();

private:
    QPointer<QQuickWindow> m_window;
};
