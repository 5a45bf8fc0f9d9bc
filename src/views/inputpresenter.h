#pragma once

#include <QObject>
#include <QPointer>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class AppState;
class DownloadManager;

// What the download input pane does with the form in AppState: queue one download per link,
// list the formats of the first link, paste and drop links into the editor.
class InputPresenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(bool isListingFormats READ isListingFormats NOTIFY isListingFormatsChanged)

public:
    // Bound to the process-wide AppState and DownloadManager.
    explicit InputPresenter(QObject *parent = nullptr);
    InputPresenter(AppState *state, DownloadManager *downloads, QObject *parent = nullptr);

    bool isLoading() const { return m_isLoading; }
    bool isListingFormats() const { return m_isListingFormats; }

    // One download per link of the editor, in order, with the form's preset, folder and
    // switches; custom arguments only under the custom preset. The editor keeps its text.
    Q_INVOKABLE void startDownload();
    // Lists the formats of the editor's first line; the answer comes as formatsListed() or
    // formatsFailed(). One listing at a time.
    Q_INVOKABLE void listFormats();
    // Adds `text` to the editor on a line of its own; false when there was nothing to add.
    Q_INVOKABLE bool paste(const QString &text);
    // Adds dropped links (or text) to the editor, one per line, as pasting does.
    Q_INVOKABLE bool dropLinks(const QList<QUrl> &urls, const QString &text);

Q_SIGNALS:
    void isLoadingChanged();
    void isListingFormatsChanged();
    void formatsListed(const QString &text);
    void formatsFailed(const QString &description);

private:
    void setListingFormats(bool value);

    QPointer<AppState> m_state;
    QPointer<DownloadManager> m_downloads;
    bool m_isLoading = false;
    bool m_isListingFormats = false;
};
