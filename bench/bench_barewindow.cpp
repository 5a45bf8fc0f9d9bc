// The yardstick of bench_startup: a bare Qt Quick window (one ApplicationWindow holding one
// Rectangle, Controls style "Basic", 1200×800), started and shown the way the application starts
// and shows its main window, with the same first-frame report.

#include <QFile>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>

#include <ctime>

namespace {
// As in src/app/main.cpp: with QUILLBOX_REPORT_FIRST_FRAME naming a file, appends CLOCK_MONOTONIC
// in nanoseconds to it once, when the first frame of `window` has been swapped to the screen.
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
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Basic"));

    QQmlApplicationEngine engine;
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/BenchBareWindow/BareWindow.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    reportFirstFrame(window);
    window->show();
    window->raise();
    window->requestActivate();
    return app.exec();
}
