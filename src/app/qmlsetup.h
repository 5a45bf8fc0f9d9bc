#pragma once

#include <functional>
#include <memory>

class QQmlApplicationEngine;
class QQmlEngine;
class QQuickWindow;

// Readies an engine for the Quillbox module: the module's import path and the icon provider, and
// native text rendering for the windows to come.
// The application, the view tests and the screenshot tool all start from here.
void setupQmlEngine(QQmlEngine &engine);

// Sets up `engine` and makes the main window, not yet shown (AppLifecycle places and shows it).
// The caller owns the window and lets it go before the engine. Null when the QML could not be
// loaded (the reasons have been logged).
//
// The QML is read on the engine's loader thread while this thread readies the scene graph's
// render loop, which picks and loads the graphics driver, and then runs `meanwhile`: costs on the
// way to the first frame, paid side by side rather than one after the other.
std::unique_ptr<QQuickWindow> loadMainWindow(
    QQmlApplicationEngine &engine, const std::function<void()> &meanwhile = {});
