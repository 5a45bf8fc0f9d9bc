#pragma once

class QQmlEngine;

// Readies an engine for the Quillbox module: the module's import path and the icon provider.
// The application, the view tests and the screenshot tool all start from here.
void setupQmlEngine(QQmlEngine &engine);
