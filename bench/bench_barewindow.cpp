// The yardsticks of bench_startup: a bare Qt Quick window (one ApplicationWindow holding one
// Rectangle, Controls style "Basic", 1200×800), started and shown the way the application starts
// and shows its main window, with the same first-frame report.
//
// With --chinese it also draws two lines of Chinese, one regular and one bold, with the fonts
// chosen as the application chooses them (the installed CJK family named first, native text
// rendering): the least any window with a Chinese interface pays for its text.

#include "app/firstframe.h"

#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>

namespace {
// The application's choice (AppLifecycle::preferCjkFont and setupQmlEngine), repeated here so
// that this window links nothing of the application's.
void chooseFontsAsTheApplicationDoes()
{
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    const QStringList installed = QFontDatabase::families();
    for (const QString &family : { QStringLiteral("Noto Sans CJK SC"), QStringLiteral("WenQuanYi Micro Hei") }) {
        if (installed.contains(family)) {
            QFont font = QGuiApplication::font();
            font.setFamilies({ family, font.family() });
            QGuiApplication::setFont(font);
            return;
        }
    }
#endif
}
} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    const bool chinese = QCoreApplication::arguments().contains(QStringLiteral("--chinese"));
    if (chinese)
        chooseFontsAsTheApplicationDoes();

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
