#pragma once

#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

// What the file and folder dialogs (QtQuick.Dialogs) need beyond Qt's own: the folder to open in,
// and a readable look for the dialog Qt draws itself where the desktop offers none (Linux without
// a platform theme): Qt styles that one from the window's palette, which is dark here, while it
// also paints parts of it white, so titles and the path came out white on white.
class FileDialogs : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    // The folder a dialog for `path` (a folder or a file, which may be gone) opens in: the folder
    // itself, the file's folder, or the nearest folder above that exists; the home folder when
    // there is none but the root, or when `path` is empty or relative. A leading "~" is home.
    Q_INVOKABLE QUrl startFolder(const QString &path) const;
    // The dialog Qt draws itself for `dialog` (a FileDialog or FolderDialog) while it is open,
    // found by its title; null while it is closed or the desktop's own dialog shows.
    Q_INVOKABLE QObject *fallbackOf(QObject *dialog) const;
    // Gives that dialog, if any, a light palette of its own, legible everywhere Qt paints it; a
    // folder dialog's button then chooses the folder shown (Qt's, the first one inside it).
    Q_INVOKABLE void fitFallback(QObject *dialog) const;
};
