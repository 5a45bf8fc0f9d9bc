#include "app/qmlsetup.h"

#include "app/iconprovider.h"
#include "app/interfacelanguage.h"
#include "app/thumbnailcache.h"
#include "model/appstate.h"
#include "model/logcategories.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQuickWindow>

void setupQmlEngine(QQmlEngine &engine)
{
    // Text drawn as the platform draws it: crisp at the small sizes used here, and far cheaper to
    // prepare than distance-field glyphs for the many CJK glyphs of the first screen. Nothing
    // here scales or rotates text, where distance fields would look better.
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    InterfaceLanguage::instance()->attachEngine(&engine);
    engine.addImageProvider(QStringLiteral("icons"), new IconProvider);
    // Made once, when first needed; the engines do not own their factory.
    static ThumbnailNetworkFactory networkFactory;
    engine.setNetworkAccessManagerFactory(&networkFactory);
    static const QMetaObject::Connection followsTheOptions = [] {
        AppState *state = AppState::instance();
        ImageProxy::set(state->downloadChoices().proxy);
        return QObject::connect(state, &AppState::downloadChoicesChanged, state,
            [state] { ImageProxy::set(state->downloadChoices().proxy); });
    }();
}

std::unique_ptr<QQuickWindow> loadMainWindow(QQmlApplicationEngine &engine, const std::function<void()> &meanwhile)
{
    setupQmlEngine(engine);
    // Qt.quit() from the QML quits the application the usual way.
    QObject::connect(
        &engine, &QQmlEngine::quit, QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
    QQmlComponent component(&engine);
    component.loadUrl(QUrl(QStringLiteral("qrc:/qt/qml/Quillbox/Main.qml")), QQmlComponent::Asynchronous);
    {
        // The first window made in a process sets up the render loop; this one is never shown
        // and only does that, while the QML loads.
        const QQuickWindow renderLoopReady;
    }
    if (meanwhile)
        meanwhile();
    if (component.isLoading()) {
        QEventLoop loop;
        QObject::connect(&component, &QQmlComponent::statusChanged, &loop, &QEventLoop::quit);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
        // Still loading: the loop was ended by a request to quit (SIGTERM, say) before the window
        // existed.
        if (component.isLoading()) {
            qCInfo(lcUi, "quit before the main window was loaded");
            return nullptr;
        }
    }
    std::unique_ptr<QObject> root(component.isReady() ? component.create() : nullptr);
    auto *window = qobject_cast<QQuickWindow *>(root.get());
    if (!window) {
        for (const QQmlError &error : component.errors())
            qCCritical(lcUi).noquote() << error.toString();
        return nullptr;
    }
    root.release();
    return std::unique_ptr<QQuickWindow>(window);
}
