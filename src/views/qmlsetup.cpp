#include "views/qmlsetup.h"

#include "views/iconprovider.h"

#include <QQmlApplicationEngine>
#include <QQuickWindow>

void setupQmlEngine(QQmlEngine &engine)
{
    // Text drawn as the platform draws it: crisp at the small sizes used here, and far cheaper to
    // prepare than distance-field glyphs for the many CJK glyphs of the first screen. Nothing
    // here scales or rotates text, where distance fields would look better.
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
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
