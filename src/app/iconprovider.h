#pragma once

#include <QQuickImageProvider>

// Serves the bundled SVG icons by their symbol names, tinted: "image://icons/terminal.fill?color=#ff0054"
// renders icons/terminal-fill.svg with its currentColor replaced by that colour, at the size asked;
// "&from=…&to=…" paints it with a diagonal gradient instead.
class IconProvider : public QQuickImageProvider
{
public:
    IconProvider();

    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;

    // The bundled file for a symbol name ("arrow.down.circle.fill" → ":/…/icons/arrow-down-circle-fill.svg"),
    // or an empty text when there is none.
    static QString fileForSymbol(const QString &symbol);
};
