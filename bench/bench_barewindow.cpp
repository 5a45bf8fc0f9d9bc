// The yardsticks of bench_startup: a bare Qt Quick window (one ApplicationWindow holding one
// Rectangle, Controls style "Basic", 1200×800), started and shown the way the application starts
// and shows its main window, with the same first-frame report.
//
// With --chinese it also draws two lines of Chinese, one regular and one bold, with the fonts
// chosen as the application chooses them (the installed CJK family named first, native text
// rendering): the least any window with a Chinese interface pays for its text.

#include "app/cjkfont.h"
#include "app/firstframe.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    const bool chinese = QCoreApplication::arguments().contains(QStringLiteral("--chinese"));
    // As the application chooses its fonts (setupQmlEngine, then preferCjkFont).
    if (chinese) {
        QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
        preferCjkFont();
    }

    QQmlApplicationEngine engine;
    engine.load(QUrl(chinese ? QStringLiteral("qrc:/qt/qml/BenchBareWindow/ChineseBareWindow.qml")
                             : QStringLiteral("qrc:/qt/qml/BenchBareWindow/BareWindow.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    reportFirstFrame(window);
    window->show();
    window->raise();
    window->requestActivate();
    return app.exec();
}
