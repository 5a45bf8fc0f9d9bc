#pragma once

#include "cookies/cookiewords.h"
#include "engine/progressparser.h"
#include "model/downloadpreset.h"
#include "model/downloadtask.h"
#include "model/logentry.h"
#include "model/taskmodel.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <memory>

class AppState;
class GroupProcess;
struct ShellResult;

// Where tool discovery looks. standard() is the real machine; a test points it elsewhere.
struct ToolLocations
{
    struct Runtime
    {
        QString name;
        QStringList candidates;
    };

    QString home;
    QStringList ytDlp;
    QList<Runtime> runtimes; // tried in order: deno, node, bun
    QStringList ffmpeg;

    static ToolLocations standard(const QString &home);
};

// How the user asked for a download: the form's choices, shared by every link started together.
struct DownloadOptions
{
    DownloadPreset preset = DownloadPreset::Default;
    QString customArgs;
    QString outputDir;
    bool downloadPlaylist = true;
    bool useCookies = true;
};

// One user request to download one link.
struct DownloadRequest : DownloadOptions
{
    QString url;
};

// A failure the engine reports: its own (domain "DownloadManager", code = exit status or -1) or
// a failure to start the shell.
struct EngineError
{
    QString domain;
    int code = 0;
    QString localizedDescription;
};

struct FormatListResult
{
    bool ok = false;
    QString text; // the format table as yt-dlp printed it
    EngineError error;
};

// The download engine: finds yt-dlp, a JavaScript runtime and ffmpeg, runs one yt-dlp process
// per download (at most maxConcurrentDownloads at once, the rest waiting in order), follows their
// progress, updates yt-dlp and lists formats. Lives on the GUI thread; every child is an
// asynchronous process, so nothing here blocks the event loop.
class DownloadManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(TaskModel *tasks READ taskModel CONSTANT)
    Q_PROPERTY(QString ytDlpPath READ ytDlpPath NOTIFY ytDlpPathChanged)
    Q_PROPERTY(QString ytDlpVersion READ ytDlpVersion NOTIFY ytDlpVersionChanged)
    Q_PROPERTY(bool isCheckingYtDlp READ isCheckingYtDlp NOTIFY isCheckingYtDlpChanged)
    Q_PROPERTY(QString detectedJSRuntime READ detectedJSRuntime NOTIFY detectedJSRuntimeChanged)
    Q_PROPERTY(QString detectedJSRuntimePath READ detectedJSRuntimePath NOTIFY detectedJSRuntimeChanged)
    Q_PROPERTY(QString detectedFfmpeg READ detectedFfmpeg NOTIFY detectedFfmpegChanged)
    Q_PROPERTY(QString detectedFfmpegVersion READ detectedFfmpegVersion NOTIFY detectedFfmpegChanged)
    Q_PROPERTY(int maxConcurrentDownloads READ maxConcurrentDownloads WRITE setMaxConcurrentDownloads NOTIFY
            maxConcurrentDownloadsChanged)
    Q_PROPERTY(int runningCount READ runningCount NOTIFY runningCountChanged)

public:
    static constexpr auto CustomYtDlpPathKey = "customYtDlpPath";
    static constexpr auto MaxConcurrentDownloadsKey = "maxConcurrentDownloads";
    static constexpr int DefaultMaxConcurrentDownloads = 3;
    static constexpr int CancelGraceMs = 3000;
    static constexpr int WatchdogMs = 30000;
    // A running download that has printed nothing for this long says so on its row and in the log.
    static constexpr int StallNoticeMs = 60000;
    static constexpr int ProbeTimeoutMs = 30000;
    static constexpr int ListFormatsTimeoutMs = 180000;
    static constexpr int UpdateTimeoutMs = 600000;

    // The process-wide engine, bound to AppState::instance() and the real tool locations.
    static DownloadManager *instance();
    // Call before instance(): the process-wide engine then waits for startDiscovery(), so that
    // the application can draw its first frame before the tool lookups compete for the CPU.
    static void deferDiscovery();
    // Call before instance(): the process-wide engine looks for tools in `locations` rather than
    // the standard places (a sandboxed run of the whole interface uses this).
    static void useLocations(const ToolLocations &locations);

    enum class Discovery { StartNow, WaitForStart };

    // Starts choosing the yt-dlp path and the runtime and ffmpeg detections (unless told to wait
    // for startDiscovery()), and returns at once.
    DownloadManager(AppState *appState, ToolLocations locations, QObject *parent = nullptr,
        Discovery discovery = Discovery::StartNow);

    // Starts discovery if it has not started yet. Whatever needs a tool waits for it meanwhile.
    void startDiscovery();
    ~DownloadManager() override;

    // --- Tool discovery
    QString ytDlpPath() const { return m_ytDlpPath; }
    bool isYtDlpPathKnown() const { return m_ytDlpPathKnown; }
    QString ytDlpVersion() const { return m_ytDlpVersion; }
    bool isCheckingYtDlp() const { return m_isCheckingYtDlp; }
    QString detectedJSRuntime() const { return m_detectedJSRuntime; }
    QString detectedJSRuntimePath() const { return m_detectedJSRuntimePath; }
    QString detectedFfmpeg() const { return m_detectedFfmpeg; }
    QString detectedFfmpegVersion() const { return m_detectedFfmpegVersion; }

    // Stores `path` under "customYtDlpPath"; it takes effect at the next start. When a file is
    // there, the version is probed again (of the path in use).
    Q_INVOKABLE void setCustomYtDlpPath(const QString &path);
    // Asks the yt-dlp in use for its version; `completion(success, output or error)` on this
    // thread. Waits for the path to be chosen first.
    void checkYtDlpInstallation(std::function<void(bool, const QString &)> completion);
    // The same check for views: returns a request number, and the answer comes as
    // installationChecked() with that number, so each asker knows its own answer.
    Q_INVOKABLE int checkInstallation();
    Q_INVOKABLE void detectJSRuntime();
    Q_INVOKABLE void detectFfmpeg();

    // "--js-runtimes NAME:PATH" when a runtime was found and yt-dlp is recent enough to know the
    // option; "--ffmpeg-location PATH" when ffmpeg was found.
    QStringList jsRuntimeArgs() const;
    QStringList ffmpegArgs() const;
    // True for versions from the first yt-dlp release that has --js-runtimes on.
    static bool supportsJsRuntimes(const QString &ytDlpVersion);

    // --- Maintenance
    void updateYtDlp(std::function<void(const QString &)> completion);
    void listFormats(const QString &url, bool useCookies, std::function<void(const FormatListResult &)> completion);

    // --- Downloads
    TaskModel *taskModel() const { return m_tasks; }
    QList<DownloadTask> tasks() const { return m_tasks->tasks(); }
    // Ids of the tasks whose process is running.
    QList<QUuid> activeProcesses() const { return m_active.keys(); }
    int runningCount() const { return int(m_active.size()); }
    int maxConcurrentDownloads() const { return m_maxConcurrent; }
    void setMaxConcurrentDownloads(int value);
    // How long a download may stay silent before its row says so (StallNoticeMs; tests shorten it).
    void setStallNoticeMs(int ms) { m_stallNoticeMs = ms; }

    Q_INVOKABLE void startDownload(const QString &url, quillbox::DownloadPreset preset, const QString &customArgs,
        const QString &outputDir, bool downloadPlaylist, bool useCookies);
    // startDownload for each link, in order, with one insertion into the task model.
    void startDownloads(const QStringList &urls, const DownloadOptions &options);
    // Every running and waiting task becomes cancelled and stays so; running process groups get
    // SIGTERM, then SIGKILL after CancelGraceMs if still alive.
    Q_INVOKABLE void cancelAllDownloads();
    // For quitting: cancels everything and returns only once no process of ours is left.
    void shutdown();

    // The command text for one download, given the discovered tool words.
    static QString buildDownloadCommand(const QString &ytDlpPath, const DownloadRequest &request,
        const QStringList &jsRuntimeArgs, const QStringList &ffmpegArgs, const QStringList &cookieArgs);

Q_SIGNALS:
    void installationChecked(int request, bool installed, const QString &output);
    void ytDlpPathChanged();
    void ytDlpVersionChanged();
    void isCheckingYtDlpChanged();
    void detectedJSRuntimeChanged();
    void detectedFfmpegChanged();
    void maxConcurrentDownloadsChanged();
    void runningCountChanged();

private:
    struct Running;
    struct Waiting
    {
        QUuid taskId;
        DownloadRequest request;
    };

    void addLog(const QString &message, LogEntry::LogType type) const;
    void info(const QString &message) const;

    // discovery
    void chooseYtDlpPath();
    void findYtDlp(int candidate, std::function<void(const QString &)> found);
    void setYtDlpPath(const QString &path);
    void setYtDlpVersion(const QString &version);
    void whenYtDlpPathKnown(std::function<void()> action);
    void detectRuntime(int generation, int runtime, int candidate);
    void setJSRuntime(const QString &name, const QString &path);
    void getFfmpegVersion(int generation, const QString &path);
    void setFfmpeg(const QString &path, const QString &version);
    void warnIfYtDlpTooOld();
    // The cookie words of AppState's cookie source; a source that cannot be used gives none,
    // and the in-app log says so once.
    CookieWords cookieArgs() const;

    // downloads
    QUuid createTask(const DownloadRequest &request, QList<DownloadTask> &created);
    void pumpQueue();
    void executeDownload(const Waiting &job);
    void failToLaunch(
        const QUuid &taskId, const QString &message, const std::optional<QString> &explanation = std::nullopt);
    void readOutput(const QUuid &taskId, bool standardError);
    // Logs the lines and reads what they say about progress.
    ProgressUpdate handleLines(const QUuid &taskId, const QStringList &lines, bool standardError);
    void applyProgress(const QUuid &taskId, const ProgressUpdate &update);
    void completeDownload(const QUuid &taskId, int exitCode, bool crashed);
    void removeRunning(const QUuid &taskId);
    void checkStall(const QUuid &taskId);
    void trackConversion(Running &running, const QStringList &lines);
    void removePartialConversion(Running &running);

    AppState *m_appState;
    ToolLocations m_locations;
    TaskModel *m_tasks;

    QString m_ytDlpPath;
    bool m_ytDlpPathKnown = false;
    bool m_discoveryStarted = false;
    bool m_versionProbed = false;
    bool m_runtimeDetected = false;
    bool m_ffmpegDetected = false;
    QList<std::function<void()>> m_afterPathKnown;
    QString m_ytDlpVersion;
    bool m_isCheckingYtDlp = false;
    QString m_detectedJSRuntime;
    QString m_detectedJSRuntimePath;
    QString m_detectedFfmpeg;
    QString m_detectedFfmpegVersion;
    int m_runtimeGeneration = 0;
    int m_ffmpegGeneration = 0;
    bool m_warnedOldYtDlp = false;
    int m_lastInstallationCheck = 0;
    mutable QString m_lastCookieWarning;

    int m_maxConcurrent = DefaultMaxConcurrentDownloads;
    int m_stallNoticeMs = StallNoticeMs;
    std::deque<Waiting> m_waiting;
    bool m_pumpScheduled = false;
    QHash<QUuid, Running *> m_active;
};
