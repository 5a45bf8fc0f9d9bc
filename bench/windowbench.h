#pragma once

// The real main window in a benchmark: its frame times, how late its event loop answers, a click
// as the window system delivers it, the heap malloc holds, and the benchmark run again as a child
// on a private X server (a renderer is fixed for the life of a process, and a child's memory is
// its own).

#include "virtualdisplay.h"

#include <QCoreApplication>
#include <QDir>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QProcess>
#include <QProcessEnvironment>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include <atomic>
#include <memory>
#include <mutex>

#include <malloc.h>

namespace bench {

constexpr int ProbeMs = 5;

// What malloc holds for live allocations, all arenas (the render thread has its own), in KiB:
// beside the resident size, it tells memory still in use from memory freed but not returned.
inline qint64 heapInUseKiB()
{
    const struct mallinfo2 info = mallinfo2();
    return qint64((info.uordblks + info.hblkhd) / 1024);
}

// Each frame's time from the start of its synchronisation to its swap (or, with the software
// renderer, to the window's backing store being flushed), on whichever thread renders; and the
// OpenGL renderer's name, read once from the context the window draws with.
class FrameClock
{
public:
    explicit FrameClock(QQuickWindow *window)
    {
        m_clock.start();
        QObject::connect(
            window, &QQuickWindow::beforeSynchronizing, window, [this] { m_begun.store(m_clock.nsecsElapsed()); },
            Qt::DirectConnection);
        QObject::connect(
            window, &QQuickWindow::afterRendering, window,
            [this] {
                QOpenGLContext *context = QOpenGLContext::currentContext();
                if (!context || m_glRendererRead.exchange(true))
                    return;
                const auto *name = reinterpret_cast<const char *>(context->functions()->glGetString(GL_RENDERER));
                const std::scoped_lock lock(m_mutex);
                m_glRenderer = QString::fromLatin1(name ? name : "?");
            },
            Qt::DirectConnection);
        QObject::connect(
            window, &QQuickWindow::frameSwapped, window,
            [this] {
                const qint64 begun = m_begun.exchange(-1);
                m_count.fetch_add(1);
                if (begun < 0)
                    return;
                const std::scoped_lock lock(m_mutex);
                if (m_recording)
                    m_frames.append(double(m_clock.nsecsElapsed() - begun) / 1e6);
            },
            Qt::DirectConnection);
    }

    int count() const { return m_count.load(); }
    void record(bool on)
    {
        const std::scoped_lock lock(m_mutex);
        m_recording = on;
    }
    // The frames recorded so far; the next recording starts from none.
    QList<double> take()
    {
        const std::scoped_lock lock(m_mutex);
        return std::exchange(m_frames, {});
    }
    QList<double> frames() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_frames;
    }
    QString glRenderer() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_glRenderer;
    }

private:
    QElapsedTimer m_clock;
    std::atomic<qint64> m_begun { -1 };
    std::atomic<int> m_count { 0 };
    std::atomic_bool m_glRendererRead { false };
    mutable std::mutex m_mutex;
    bool m_recording = false;
    QList<double> m_frames;
    QString m_glRenderer;
};

// How late a 5 ms timer on the GUI thread fires: how long the window keeps a click, a key or a
// redraw waiting.
class AnswerProbe
{
public:
    AnswerProbe()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(ProbeMs);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            const qint64 now = m_clock.nsecsElapsed();
            m_late.append(double(std::max<qint64>(0, now - m_last - qint64(ProbeMs) * 1'000'000)) / 1e6);
            m_last = now;
        });
    }
    void start()
    {
        m_clock.start();
        m_last = 0;
        m_late.clear();
        m_timer.start();
    }
    void stop() { m_timer.stop(); }
    const QList<double> &late() const { return m_late; }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_last = 0;
    QList<double> m_late;
};

inline QString graphicsApiName(QSGRendererInterface::GraphicsApi api)
{
    switch (api) {
    case QSGRendererInterface::Software:
        return u"software"_s;
    case QSGRendererInterface::OpenGL:
        return u"opengl"_s;
    case QSGRendererInterface::Vulkan:
        return u"vulkan"_s;
    default:
        return u"api %1"_s.arg(int(api));
    }
}

// A click in the middle of `item`, as the window system would deliver it.
inline void click(QQuickWindow *window, QQuickItem *item)
{
    const QPointF at = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    if (!item->isVisible() || !QRectF(0, 0, window->width(), window->height()).contains(at))
        fail(u"\"%1\" is not in view"_s.arg(item->objectName()));
    for (const QEvent::Type type : { QEvent::MouseButtonPress, QEvent::MouseButtonRelease }) {
        QMouseEvent event(type, at, window->mapToGlobal(at), Qt::LeftButton,
            type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &event);
    }
}

// The item named `name` anywhere in the window's scene, popups included (they are drawn in the
// overlay, away from the object that made them).
inline QQuickItem *sceneItem(QQuickItem *under, const QString &name)
{
    for (QQuickItem *child : under->childItems()) {
        if (child->objectName() == name)
            return child;
        if (QQuickItem *found = sceneItem(child, name))
            return found;
    }
    return nullptr;
}

// The main window's folders (settings, cache, data, state) inside the sandbox, as a person's
// would be in their home.
inline void useSandboxFolders(const Sandbox &sandbox)
{
    for (const auto &[variable, folder] :
        { std::pair { "XDG_CONFIG_HOME", u"config"_s }, std::pair { "XDG_CACHE_HOME", u"cache"_s },
            std::pair { "XDG_DATA_HOME", u"data"_s }, std::pair { "XDG_STATE_HOME", u"state"_s } }) {
        QDir().mkpath(sandbox.path(folder));
        qputenv(variable, sandbox.path(folder).toUtf8());
    }
    qputenv("QUILLBOX_NO_BROWSER", "1");
    // Nothing asks for releases here; should anything, it stays on this machine.
    qputenv("QUILLBOX_RELEASES_URL", "http://127.0.0.1:9");
}

// Where the children draw: a private Xvfb unless `offscreen` is asked or there is none, then Qt's
// offscreen platform. The environment is the user's without anything that picks a display, a
// renderer or the engine's shell.
class ChildDisplay
{
public:
    ChildDisplay(const char *benchmark, bool offscreen)
        : m_environment(QProcessEnvironment::systemEnvironment())
    {
        for (const QString &variable :
            { u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"QT_QUICK_BACKEND"_s, u"QUILLBOX_SHELL"_s })
            m_environment.remove(variable);
        const QString xvfb = QStandardPaths::findExecutable(u"Xvfb"_s);
        const QString name = QString::fromLatin1(benchmark);
        if (!offscreen && !xvfb.isEmpty()) {
            m_display = std::make_unique<VirtualDisplay>(xvfb, m_logs.filePath(u"xvfb.log"_s));
            if (!m_display->isValid()) {
                say(name + u": Xvfb did not start; falling back to QT_QPA_PLATFORM=offscreen"_s);
                m_display.reset();
            }
        } else if (!offscreen) {
            say(name + u": Xvfb is not installed (Debian: xvfb); falling back to QT_QPA_PLATFORM=offscreen"_s);
        }
        if (m_display) {
            m_environment.insert(u"DISPLAY"_s, m_display->name());
            m_environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
            m_platform = u"Xvfb "_s + m_display->name() + u" 1400x900x24"_s;
        } else {
            m_environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
            m_platform = u"QT_QPA_PLATFORM=offscreen (no X server: not the figures of a real display)"_s;
        }
    }

    bool isX() const { return bool(m_display); }
    QString platform() const { return m_platform; }
    QProcessEnvironment environment() const { return m_environment; }

private:
    QTemporaryDir m_logs;
    QProcessEnvironment m_environment;
    std::unique_ptr<VirtualDisplay> m_display;
    QString m_platform;
};

struct ChildResult
{
    int exitCode = 0;
    // The fields of its RESULT line, "name=value" each.
    QStringList fields;
};

// This executable again with `arguments` in `environment`, its lines passed on as they come but
// for its "RESULT `tag`" line, whose fields are returned. Fails the benchmark if it crashes.
inline ChildResult runSelf(const QStringList &arguments, const QProcessEnvironment &environment, const QString &tag)
{
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), arguments);
    if (!child.waitForStarted(10000))
        fail(u"%1 did not start: %2"_s.arg(arguments.join(u' '), child.errorString()));
    ChildResult result;
    const QString marker = u"RESULT "_s + tag + u' ';
    const auto readLines = [&] {
        while (child.canReadLine()) {
            // Its own indentation kept: only the line's end goes.
            const QString line = QString::fromUtf8(child.readLine()).chopped(1);
            if (line.startsWith(marker))
                result.fields = line.mid(marker.size()).split(u' ', Qt::SkipEmptyParts);
            else
                say(line);
        }
    };
    while (child.state() != QProcess::NotRunning) {
        child.waitForReadyRead(1000);
        readLines();
    }
    readLines();
    if (child.exitStatus() == QProcess::CrashExit)
        fail(u"%1 crashed"_s.arg(arguments.join(u' ')));
    result.exitCode = child.exitCode();
    return result;
}

} // namespace bench
