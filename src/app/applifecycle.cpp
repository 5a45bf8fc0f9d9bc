#include "app/applifecycle.h"

#include "engine/downloadmanager.h"
#include "model/logcategories.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QScreen>
#include <QSettings>

#include <cstdio>

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
    if (m_downloads)
        m_downloads->shutdown();
}

void AppLifecycle::attachMainWindow(QQuickWindow *window)
{
    m_window = window;
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
