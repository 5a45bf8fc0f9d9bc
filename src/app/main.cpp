#include "app/applifecycle.h"
#include "engine/downloadmanager.h"
#include "views/qmlsetup.h"

#include <QFile>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

#include <ctime>

Q_IMPORT_QML_PLUGIN(QuillboxPlugin)

namespace {
// With QUILLBOX_REPORT_FIRST_FRAME naming a file, appends CLOCK_MONOTONIC in nanoseconds to it
// once, when the first frame of `window` has been swapped to the screen (bench_startup compares
// it with the time it started this process).
void reportFirstFrame(QQuickWindow *window)
{
    const QString path = qEnvironmentVariable("QUILLBOX_REPORT_FIRST_FRAME");
    if (path.isEmpty() || !window)
        return;
    QObject::connect(
        window, &QQuickWindow::frameSwapped, window,
        [path] {
            timespec now {};
            clock_gettime(CLOCK_MONOTONIC, &now);
            QFile out(path);
            if (out.open(QIODevice::WriteOnly | QIODevice::Append))
                out.write(QByteArray::number(qint64(now.tv_sec) * 1000000000 + now.tv_nsec) + '\n');
        },
        Qt::ConnectionType(Qt::DirectConnection | Qt::SingleShotConnection));
}
} // namespace

int main(int argc, char *argv[])
{
    if (!AppLifecycle::checkDisplay())
        return 1;

    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Quillbox"));
    QGuiApplication::setOrganizationName(QStringLiteral("Quillbox"));
    QGuiApplication::setOrganizationDomain(QStringLiteral("quillbox.app"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Quillbox"));
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    AppLifecycle::quitOnTerminationSignals();
    AppLifecycle::preferCjkFont();

    DownloadManager::deferDiscovery();
    AppLifecycle lifecycle(DownloadManager::instance());
    QQmlApplicationEngine engine;
    QQuickWindow *window = loadMainWindow(engine);
    if (!window)
        return 1;
    reportFirstFrame(window);
    lifecycle.startDiscoveryAfterFirstFrame(window);
    lifecycle.attachMainWindow(window);
    return app.exec();
}
