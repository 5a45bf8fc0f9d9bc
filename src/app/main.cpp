#include "app/applifecycle.h"
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
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Quillbox"));
    QQuickStyle::setStyle(QStringLiteral("Basic"));

    AppLifecycle lifecycle(DownloadManager::instance());
    QQmlApplicationEngine engine;
    setupQmlEngine(engine);
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Quillbox/Main.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    lifecycle.attachMainWindow(qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst()));
    return app.exec();
}
