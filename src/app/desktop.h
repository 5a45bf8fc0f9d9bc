#pragma once

#include <QFont>
#include <QObject>
#include <QUrl>
#include <QVariant>

// What views ask of the desktop: open a web page or a downloaded file, read and write the
// clipboard's text; and what
// the About panel shows of the application (its version and home page).
class Desktop : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QFont fixedFont READ fixedFont CONSTANT)
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(QUrl homePage READ homePage CONSTANT)

public:
    using QObject::QObject;

    // Opens `url` in the default browser (not when QUILLBOX_NO_BROWSER is set, as in tests);
    // urlOpened() tells either way.
    Q_INVOKABLE void openUrl(const QUrl &url);
    // Opens a downloaded file with its default application, or shows the folder that holds it
    // (on macOS with the file selected). Returns "" once the opener has started, else what went
    // wrong, for the interface to say.
    Q_INVOKABLE QString openFile(const QString &path);
    Q_INVOKABLE QString showInFolder(const QString &path);
    Q_INVOKABLE QString clipboardText() const;
    Q_INVOKABLE void setClipboardText(const QString &text);
    // The file-system path of a file: URL (as a folder dialog gives it), and back.
    Q_INVOKABLE QString localPath(const QUrl &url) const { return url.toLocalFile(); }
    Q_INVOKABLE QUrl fileUrl(const QString &path) const { return QUrl::fromLocalFile(path); }
    // How a menu shows a key equivalent given as an Action's shortcut (a StandardKey or a text
    // such as "Ctrl+N"): "Ctrl+N" here, "⌘N" on macOS; empty for none.
    Q_INVOKABLE QString shortcutText(const QVariant &shortcut) const;
    QFont fixedFont() const;
    QString version() const;
    QUrl homePage() const;

Q_SIGNALS:
    void urlOpened(const QUrl &url);
};
