#include "views/qmlsetup.h"

#include "views/iconprovider.h"

#include <QQmlEngine>

void setupQmlEngine(QQmlEngine &engine)
{
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("icons"), new IconProvider);
}
