// The yardstick of bench_startup: a bare Qt Quick window (one ApplicationWindow holding one
// Rectangle, Controls style "Basic", 1200×800), started and shown the way the application starts
// and shows its main window, with the same first-frame report.

#include "app/firstframe.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>

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
