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
    // Whether the application hears of copies made in other applications while it is behind
    // them: not under Wayland, where only what is copied while Quillbox is in front is seen.
    Q_PROPERTY(bool seesBackgroundCopies READ seesBackgroundCopies CONSTANT)

public:
    using QObject::QObject;
    ~Desktop() override;

    // Opens `url` in the default browser (not when QUILLBOX_NO_BROWSER is set, as in tests);
    // urlOpened() tells either way.
    Q_INVOKABLE void openUrl(const QUrl &url);
    // Opens a downloaded file with its default application, or shows the folder that holds it
    // (on macOS with the file selected; the folder alone while the file is not there yet).
    // Returns "" once the opener has started, else what went wrong, for the interface to say; an
    // opener that then fails (no application for the file) is told by openFailed().
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
    static bool seesBackgroundCopies();

    // What an opener's failure means to the user: `path` is a file or a folder, `output` what the
    // opener printed on its error output.
    static QString openerFailure(bool folder, int exitCode, const QString &output);

Q_SIGNALS:
    void urlOpened(const QUrl &url);
    // The opener started for `path` (as given to openFile or showInFolder) failed.
    void openFailed(const QString &path, const QString &message);

private:
    QString startOpener(const QString &path, bool folder, const QStringList &arguments);
};
