#pragma once

class QQmlApplicationEngine;
class QQmlEngine;
class QQuickWindow;

// Readies an engine for the Quillbox module: the module's import path and the icon provider, and
// native text rendering for the windows to come.
// The application, the view tests and the screenshot tool all start from here.
void setupQmlEngine(QQmlEngine &engine);

// Sets up `engine` and loads the main window, not yet shown (AppLifecycle places and shows it).
// Null when the QML could not be loaded (the engine has said why).
QQuickWindow *loadMainWindow(QQmlApplicationEngine &engine);
