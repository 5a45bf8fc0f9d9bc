#include "app/applifecycle.h"

#include "engine/downloadmanager.h"
#include "model/logcategories.h"
#include "store/queuememory.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QQuickWindow>
#include <QScreen>
#include <QSettings>

#include <QSocketNotifier>
#include <QTimer>
#include <QTranslator>

#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

namespace {
const QString geometryKey = QStringLiteral("Main Window/geometry");

} // namespace

AppLifecycle::AppLifecycle(DownloadManager *downloads, QObject *parent)
    : QObject(parent)
    , m_downloads(downloads)
{
    connect(qApp, &QCoreApplication::aboutToQuit, this, &AppLifecycle::quit);
}

void AppLifecycle::quit()
{
    saveWindowGeometry();
    // First, so that the queue is stored as the user left it, not as stopping leaves it.
    if (m_memory)
        m_memory->close();
    if (m_downloads)
        m_downloads->shutdown();
}

void AppLifecycle::attachMainWindow(QQuickWindow *window)
{
    m_window = window;
    // When the session ends nobody is there to answer a question: the window closes as asked.
    connect(
        qApp, &QGuiApplication::commitDataRequest, window, [window] { window->setProperty("askBeforeQuit", false); });
    const QSize minimum = window->minimumSize();
    QRect frame = usableGeometry(storedGeometry(), minimum);
    if (frame.isNull()) {
        const QScreen *screen = window->screen() ? window->screen() : QGuiApplication::primaryScreen();
        const QRect available = screen ? screen->availableGeometry() : QRect(QPoint(0, 0), DefaultSize);
        frame = QRect(QPoint(0, 0), DefaultSize);
        frame.moveCenter(available.center());
    }
    window->setGeometry(frame);
    window->show();
    window->raise();
    window->requestActivate();
    // A closed window no longer has a frame worth keeping after quit, so keep it now.
    connect(window, &QWindow::visibleChanged, this, [this](bool visible) {
        if (!visible)
            saveWindowGeometry();
    });
}

void AppLifecycle::startDiscoveryAfterFirstFrame(QQuickWindow *window)
{
    const QPointer<DownloadManager> downloads = m_downloads;
    const auto start = [downloads] {
        if (downloads)
            downloads->startDiscovery();
    };
    connect(window, &QQuickWindow::frameSwapped, this, start,
        Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
    QTimer::singleShot(2000, this, start);
}

void AppLifecycle::restoreQueueAfterFirstFrame(QQuickWindow *window, QueueMemory *memory)
{
    m_memory = memory;
    const QPointer<QueueMemory> target = memory;
    const auto start = [target] {
        if (target && !target->isRestored())
            target->start();
    };
    connect(window, &QQuickWindow::frameSwapped, this, start,
        Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
    QTimer::singleShot(2000, this, start);
}

namespace {
int signalPipe[2] = { -1, -1 };

void onTerminationSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}
} // namespace

void AppLifecycle::quitOnTerminationSignals()
{
    // A signal handler may only write to a descriptor; the event loop reads it and quits.
    if (signalPipe[0] >= 0 || ::socketpair(AF_UNIX, SOCK_STREAM, 0, signalPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, qApp);
    connect(notifier, &QSocketNotifier::activated, qApp, [] {
        char byte;
        [[maybe_unused]] const ssize_t read = ::read(signalPipe[0], &byte, 1);
        // exit(), not quit(): quit() would first ask the windows to close, and the main window
        // asks the user before closing while downloads run. A signal does not ask.
        QCoreApplication::exit(0);
    });
    struct sigaction action = {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
}

void AppLifecycle::saveWindowGeometry() const
{
    if (!m_window || m_window->geometry().isEmpty())
        return;
    QSettings settings;
    settings.setValue(geometryKey, m_window->geometry());
}

QRect AppLifecycle::storedGeometry()
{
    return QSettings().value(geometryKey).toRect();
}

QRect AppLifecycle::usableGeometry(const QRect &stored, QSize minimum)
{
    if (!stored.isValid() || stored.width() < minimum.width() || stored.height() < minimum.height())
        return QRect();
    const auto screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        if (screen->availableGeometry().intersects(stored))
            return stored;
    }
    return QRect();
}

bool AppLifecycle::checkDisplay()
{
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY")
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return true;
    std::fputs("Quillbox needs a display to show its window, and none was found "
               "(neither DISPLAY nor WAYLAND_DISPLAY is set).\n"
               "To run it without a screen, start it under a virtual display:\n"
               "    xvfb-run -a -s '-screen 0 1400x900x24' build/src/quillbox\n",
        stderr);
    return false;
#else
    return true;
#endif
}
