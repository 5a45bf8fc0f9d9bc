#include "app/applifecycle.h"
#include "app/firstframe.h"
#include "engine/downloadmanager.h"
#include "views/qmlsetup.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(QuillboxPlugin)

int main(int argc, char *argv[])
{
    if (!AppLifecycle::checkDisplay())
        return 1;

    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Quillbox"));
    QGuiApplication::setOrganizationName(QStringLiteral("Quillbox"));
    QGuiApplication::setOrganizationDomain(QStringLiteral("quillbox.app"));
    // No display name: the window system would append it to the window's title.
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    AppLifecycle::quitOnTerminationSignals();
    AppLifecycle::loadQtTranslations();

    DownloadManager::deferDiscovery();
    AppLifecycle lifecycle(DownloadManager::instance());
    QQmlApplicationEngine engine;
    // The installed fonts are read while the QML loads, before any text is laid out.
    const std::unique_ptr<QQuickWindow> window = loadMainWindow(engine, &AppLifecycle::preferCjkFont);
    if (!window)
        return 1;
    reportFirstFrame(window.get());
    lifecycle.startDiscoveryAfterFirstFrame(window.get());
    lifecycle.attachMainWindow(window.get());
    return app.exec();
}
