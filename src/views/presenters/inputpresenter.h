#pragma once

#include "views/presenters/formatpicker.h"
#include "views/presenters/playlistpicker.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QUrl>
#include <QUuid>

#include <QtQml/qqmlregistration.h>
#include <optional>

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
    // What the last start left out: the words of each line that are not links. Cleared when the
    // editor changes.
    Q_PROPERTY(QStringList rejectedLines READ rejectedLines NOTIFY noticesChanged)
    // "不是有效的链接：" and those lines, one per line; empty when there are none.
    Q_PROPERTY(QString rejectedNotice READ rejectedNotice NOTIFY noticesChanged)
    // Why the last start queued nothing, said beside the button; empty otherwise.
    Q_PROPERTY(QString startNotice READ startNotice NOTIFY noticesChanged)
    // Why the custom arguments cannot be used, checked as they are typed; empty when they can
    // (and whenever another preset is chosen, since they are not used then).
    Q_PROPERTY(QString customArgumentsError READ customArgumentsError NOTIFY customArgumentsErrorChanged)
    // The listed link's formats to choose from, fetched alongside each listing.
    Q_PROPERTY(FormatPicker *formatPicker READ formatPicker CONSTANT)
    // With the playlist switch on, the links that may be playlists are listed first, here.
    Q_PROPERTY(PlaylistPicker *playlistPicker READ playlistPicker CONSTANT)

public:
    // Bound to the process-wide AppState and DownloadManager.
    explicit InputPresenter(QObject *parent = nullptr);
    InputPresenter(AppState *state, DownloadManager *downloads, QObject *parent = nullptr);

    bool isLoading() const { return m_isLoading; }
    bool isListingFormats() const { return m_isListingFormats; }
    QStringList rejectedLines() const { return m_rejectedLines; }
    QString rejectedNotice() const;
    QString startNotice() const { return m_startNotice; }
    QString customArgumentsError() const { return m_customArgumentsError; }
    FormatPicker *formatPicker() const { return m_formatPicker; }
    PlaylistPicker *playlistPicker() const { return m_playlistPicker; }

    // One download per link of the editor, in order, with the form's preset, folder and
    // switches; custom arguments only under the custom preset. The editor keeps its text; what
    // is not a link is left out and named in rejectedLines. Custom arguments that cannot be used
    // queue nothing: startNotice says why. When every link of the text was queued by the last
    // start and is still in the queue, nothing is queued unless `again`: repeatAsked() asks first.
    // With the playlist switch on, a link that can only be one video is queued at once, a video's
    // link that also names a list is first asked about (playlistQuestionAsked()), and any other
    // link goes to the playlist picker to be listed.
    Q_INVOKABLE void startDownload(bool again = false);
    // startDownload for `links` (from outside the box: the command line, a quillbox:// link),
    // never asked about as a repeat.
    Q_INVOKABLE void startLinks(const QStringList &links);
    // The answer to playlistQuestionAsked(): the whole list, or only the video, for each such
    // link of the editor; the start then goes on.
    Q_INVOKABLE void answerPlaylistQuestion(bool wholeList);
    // Lists the formats of the editor's first line; the answer comes as formatsListed() or
    // formatsFailed(). One listing at a time. The picker fetches the same link's formats meanwhile.
    Q_INVOKABLE void listFormats();
    // Adds `text` to the editor on a line of its own; false when there was nothing to add.
    Q_INVOKABLE bool paste(const QString &text);
    // Adds dropped links (or text) to the editor, one per line, as pasting does.
    // A dropped text file (.txt, .list, .csv, .md) gives the links in it. Every way in goes
    // through the box's rule (AppState::receiveLinks), and the log says how many came.
    Q_INVOKABLE bool dropLinks(const QList<QUrl> &urls, const QString &text);
    // "从文件导入链接…": the links in the text file at `path` join the box; how many.
    Q_INVOKABLE int importFile(const QString &path);

Q_SIGNALS:
    void isLoadingChanged();
    void isListingFormatsChanged();
    void noticesChanged();
    void formatsListed(const QString &text);
    void formatsFailed(const QString &description);
    void customArgumentsErrorChanged();
    // `count` downloads were queued.
    void queued(int count);
    // The `count` links of the editor are all in the queue from the last start already.
    void repeatAsked(int count);
    // `count` links name a video and the list it is in: "只下载这个视频" or "下载整个列表"?
    void playlistQuestionAsked(int count);

private:
    void startText(const QString &text, bool again);
    static bool isTextFile(const QString &path);
    static QString readTextFile(const QString &path);
    void setListingFormats(bool value);
    void setNotices(const QStringList &rejectedLines, const QString &startNotice);
    void checkCustomArguments();
    // Every one of `links` was queued by the last start, and each of its tasks is still there.
    bool alreadyQueued(const QStringList &links) const;

    QPointer<AppState> m_state;
    QPointer<DownloadManager> m_downloads;
    bool m_isLoading = false;
    bool m_isListingFormats = false;
    QStringList m_rejectedLines;
    QString m_startNotice;
    QString m_customArgumentsError;
    // The links the last start queued, and the tasks it made of them.
    QStringList m_queuedLinks;
    QList<QUuid> m_queuedIds;
    FormatPicker *m_formatPicker;
    PlaylistPicker *m_playlistPicker;
    // The answer to the playlist question, for the start it was asked for.
    std::optional<bool> m_wholeLists;
    // The text the last start read, for its answer to the playlist question.
    QString m_text;
};
