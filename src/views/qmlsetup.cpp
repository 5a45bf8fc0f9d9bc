#include "views/qmlsetup.h"

#include "views/iconprovider.h"

#include <QQmlApplicationEngine>
#include <QQuickWindow>

void setupQmlEngine(QQmlEngine &engine)
{
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("icons"), new IconProvider);
}

QQuickWindow *loadMainWindow(QQmlApplicationEngine &engine)
{
    setupQmlEngine(engine);
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Quillbox/Main.qml")));
    if (engine.rootObjects().isEmpty())
        return nullptr;
    return qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
}
