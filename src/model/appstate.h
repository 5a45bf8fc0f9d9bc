#pragma once

#include "cookies/cookiewords.h"
#include "model/downloadchoices.h"
#include "model/downloadpreset.h"
#include "model/downloadtask.h"
#include "model/enginehost.h"
#include "model/logentry.h"
#include "model/logmodel.h"

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>

// What the user has entered and chosen, the flags of the sheets and panels, and the in-app log.
// One instance per process (instance()); a test builds its own.
class AppState : public LogSink, public CookieSettings
{
    Q_OBJECT
    Q_PROPERTY(QString urlInput READ urlInput WRITE setUrlInput NOTIFY urlInputChanged)
    Q_PROPERTY(QList<DownloadTask> downloadQueue READ downloadQueue WRITE setDownloadQueue NOTIFY downloadQueueChanged)
    Q_PROPERTY(quillbox::DownloadPreset selectedPreset READ selectedPreset WRITE setSelectedPreset NOTIFY
            selectedPresetChanged)
    Q_PROPERTY(QString customArguments READ customArguments WRITE setCustomArguments NOTIFY customArgumentsChanged)
    Q_PROPERTY(bool isDownloading READ isDownloading WRITE setIsDownloading NOTIFY isDownloadingChanged)
    Q_PROPERTY(QString outputDirectory READ outputDirectory WRITE setOutputDirectory NOTIFY outputDirectoryChanged)
    Q_PROPERTY(bool useCookies READ useCookies WRITE setUseCookies NOTIFY useCookiesChanged)
    Q_PROPERTY(QString cookiePath READ cookiePath WRITE setCookiePath NOTIFY cookiePathChanged)
    Q_PROPERTY(QString cookieSource READ cookieSource WRITE setCookieSource NOTIFY cookieSourceChanged)
    Q_PROPERTY(bool downloadPlaylist READ downloadPlaylist WRITE setDownloadPlaylist NOTIFY downloadPlaylistChanged)
    // "监视剪贴板": copied links are offered for the box (off by default).
    Q_PROPERTY(bool watchClipboard READ watchClipboard WRITE setWatchClipboard NOTIFY watchClipboardChanged)
    Q_PROPERTY(bool notifyOnFinish READ notifyOnFinish WRITE setNotifyOnFinish NOTIFY notifyOnFinishChanged)
    Q_PROPERTY(bool showSettings READ showSettings WRITE setShowSettings NOTIFY showSettingsChanged)
    Q_PROPERTY(int selectedTab READ selectedTab WRITE setSelectedTab NOTIFY selectedTabChanged)
    Q_PROPERTY(bool showLogPanel READ showLogPanel WRITE setShowLogPanel NOTIFY showLogPanelChanged)
    // Entries added while the log panel was hidden, since it was last shown (the sidebar's badge).
    Q_PROPERTY(int unseenLogCount READ unseenLogCount NOTIFY unseenLogCountChanged)
    Q_PROPERTY(LogModel *logEntries READ logModel CONSTANT)
    Q_PROPERTY(int maxLogEntries READ maxLogEntries CONSTANT)

public:
    static constexpr int MaxLogEntries = 500;
    // Characters of one log message that are kept; the rest is replaced by a note of how many.
    static constexpr int MaxLogMessageChars = 4096;
    // The form's choices kept in the settings store: read at start, written when they change.
    // The preset is kept by its key (storageKey()).
    static constexpr auto OutputDirectoryKey = "outputDirectory";
    static constexpr auto CookiePathKey = "cookiePath";
    static constexpr auto SelectedPresetKey = "selectedPreset";
    static constexpr auto DownloadPlaylistKey = "downloadPlaylist";
    static constexpr auto WatchClipboardKey = "watchClipboard";
    static constexpr auto UseCookiesKey = "useCookies";
    static constexpr auto CookieSourceKey = "cookieSource";
    // Whether a download that ends while the window is in the background is announced.
    static constexpr auto NotifyOnFinishKey = "notifyOnFinish";
    // Whether the log panel is shown: the next start opens it as this one left it.
    static constexpr auto ShowLogPanelKey = "showLogPanel";
    // The group "下载选项" keeps its choices in, each under its key (DownloadChoices::toMap()).
    static constexpr auto DownloadOptionsGroup = "downloadOptions";

    explicit AppState(QObject *parent = nullptr);
    ~AppState() override;

    // The process-wide instance, created on first use on the thread that first asks for it
    // (the GUI thread in the application).
    static AppState *instance();

    // Reads the output folder, the cookie path, the preset, the playlist, cookie and notification
    // switches and whether the log panel is shown from the settings store; an absent or
    // unreadable key keeps the current value, a stored empty folder replaces it, and a preset an
    // earlier version kept by its label is written back by its key. From then on, a change of any
    // of them (the cookie path aside) is written back at once, so the next start opens as this
    // one was left.
    void loadPreferences();

    // Callable from any thread; returns at once. The entry is appended on this object's thread,
    // after every entry of an earlier call. A message longer than MaxLogMessageChars is cut.
    void addLog(const QString &message, LogEntry::LogType type) override;
    // The same, for a line that redraws an earlier one: while the entry last logged with
    // `redraws` is still in the log, its text and time are replaced instead of a line added.
    void addLog(const QString &message, LogEntry::LogType type, const QUuid &redraws) override;

    // Empties the in-app log.
    Q_INVOKABLE void clearLog();

    QString urlInput() const { return m_urlInput; }
    void setUrlInput(const QString &value);
    // Links from outside the box (the command line, a quillbox:// link, a second start, a file):
    // read with the box's rule and its limits; the log says how many came `from` where and what
    // was left out. Without `start` they join the box; with it they go to linksToStart() for the
    // form to queue. Returns how many links were taken.
    Q_INVOKABLE int receiveLinks(const QStringList &texts, const QString &from, bool start = false);
    QList<DownloadTask> downloadQueue() const { return m_downloadQueue; }
    void setDownloadQueue(const QList<DownloadTask> &value);
    DownloadPreset selectedPreset() const { return m_selectedPreset; }
    void setSelectedPreset(DownloadPreset value);
    QString customArguments() const { return m_customArguments; }
    void setCustomArguments(const QString &value);
    bool isDownloading() const { return m_isDownloading; }
    void setIsDownloading(bool value);
    QString outputDirectory() const { return m_outputDirectory; }
    void setOutputDirectory(const QString &value);
    bool useCookies() const { return m_useCookies; }
    void setUseCookies(bool value);
    QString cookiePath() const override { return m_cookiePath; }
    void setCookiePath(const QString &value);
    // Where downloads take cookies from while the cookie switch is on: "none", "file" (cookiePath)
    // or a browser's name ("chrome", "firefox", …). Anything else is refused.
    QString cookieSource() const override { return m_cookieSource; }
    void setCookieSource(const QString &value);
    bool downloadPlaylist() const { return m_downloadPlaylist; }
    bool watchClipboard() const { return m_watchClipboard; }
    void setWatchClipboard(bool value);
    void setDownloadPlaylist(bool value);
    bool notifyOnFinish() const { return m_notifyOnFinish; }
    void setNotifyOnFinish(bool value);
    bool showSettings() const { return m_showSettings; }
    void setShowSettings(bool value);
    int selectedTab() const { return m_selectedTab; }
    void setSelectedTab(int value);
    bool showLogPanel() const { return m_showLogPanel; }
    void setShowLogPanel(bool value);
    int unseenLogCount() const { return m_unseenLogCount; }
    // What "下载选项" holds, remembered like the form.
    DownloadChoices downloadChoices() const { return m_downloadChoices; }
    void setDownloadChoices(const DownloadChoices &value);
    // yt-dlp's fields of the video whose information was fetched last ("webpage_url" its link),
    // for showing what a file-name template makes of it.
    QJsonObject knownVideo() const { return m_knownVideo; }
    void setKnownVideo(const QJsonObject &fields);

    LogModel *logModel() const { return m_log; }
    QList<LogEntry> logEntries() const { return m_log->entries(); }
    int maxLogEntries() const { return MaxLogEntries; }

Q_SIGNALS:
    void urlInputChanged();
    void linksToStart(const QStringList &links);
    void downloadQueueChanged();
    void selectedPresetChanged();
    void customArgumentsChanged();
    void isDownloadingChanged();
    void outputDirectoryChanged();
    void useCookiesChanged();
    void cookiePathChanged();
    void cookieSourceChanged();
    void downloadPlaylistChanged();
    void watchClipboardChanged();
    void notifyOnFinishChanged();
    void showSettingsChanged();
    void selectedTabChanged();
    void showLogPanelChanged();
    void unseenLogCountChanged();
    void downloadChoicesChanged();
    void knownVideoChanged();

private:
    struct PendingLog
    {
        QString message;
        LogEntry::LogType type;
        QUuid redraws;
    };

    void flushPendingLogs();
    void queueLog(PendingLog entry);
    void remember(const char *key, const QVariant &value) const;
    void setUnseenLogCount(int count);

    QString m_urlInput;
    QList<DownloadTask> m_downloadQueue;
    DownloadPreset m_selectedPreset = DownloadPreset::Default;
    QString m_customArguments;
    bool m_isDownloading = false;
    QString m_outputDirectory;
    bool m_useCookies = true;
    QString m_cookiePath;
    QString m_cookieSource = QLatin1String(CookieSourceNames::DefaultBrowser);
    bool m_downloadPlaylist = true;
    bool m_watchClipboard = false;
    bool m_notifyOnFinish = true;
    bool m_showSettings = false;
    int m_selectedTab = 0;
    bool m_showLogPanel = true;
    int m_unseenLogCount = 0;
    DownloadChoices m_downloadChoices;
    QJsonObject m_knownVideo;
    bool m_remembering = false;
    LogModel *m_log;

    QMutex m_pendingMutex;
    QList<PendingLog> m_pending;
    bool m_flushScheduled = false;
    // The entry each redrawn line last became (by the key it was logged with).
    QHash<QUuid, QUuid> m_redrawnEntries;
};
