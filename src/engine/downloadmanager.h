#pragma once

#include "engine/downloadjob.h"
#include "engine/engineerror.h"
#include "engine/maintenance.h"
#include "engine/tooldiscovery.h"
#include "engine/toolkeeper.h"
#include "model/downloadpreset.h"
#include "model/downloadrequest.h"
#include "model/downloadtask.h"
#include "model/enginehost.h"
#include "model/logentry.h"
#include "model/storedtask.h"
#include "model/taskmodel.h"
#include "model/videoinfo.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <memory>

class PlaylistListing;
class QTemporaryDir;
class VideoInfoFetch;
struct VideoInfoResult;

// The download engine: the queue of tasks, one DownloadJob per running download (at most
// maxConcurrentDownloads at once, the rest waiting in order), and what the user does to a task.
// Tool discovery and maintenance are its parts, and their state is shown through it. Lives on
// the GUI thread; every child is an asynchronous process, so nothing here blocks the event loop.
class DownloadManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(TaskModel *tasks READ taskModel CONSTANT)
    Q_PROPERTY(ToolDiscovery *tools READ tools CONSTANT)
    Q_PROPERTY(ToolKeeper *keeper READ keeper CONSTANT)
    Q_PROPERTY(int maxConcurrentDownloads READ maxConcurrentDownloads WRITE setMaxConcurrentDownloads NOTIFY
            maxConcurrentDownloadsChanged)
    Q_PROPERTY(int runningCount READ runningCount NOTIFY runningCountChanged)
    Q_PROPERTY(bool resumeAtStart READ resumeAtStart WRITE setResumeAtStart NOTIFY resumeAtStartChanged)

public:
    static constexpr auto CustomYtDlpPathKey = ToolDiscovery::CustomYtDlpPathKey;
    static constexpr auto MaxConcurrentDownloadsKey = "maxConcurrentDownloads";
    static constexpr int DefaultMaxConcurrentDownloads = 3;
    // Whether downloads a previous run left unfinished carry on by themselves at the next start.
    static constexpr auto ResumeAtStartKey = "resumeDownloadsAtStart";
    static constexpr int CancelGraceMs = DownloadJob::CancelGraceMs;
    static constexpr int WatchdogMs = 30000;
    // A running download that has printed nothing for this long says so on its row and in the log.
    static constexpr int StallNoticeMs = 60000;
    static constexpr int ProbeTimeoutMs = ToolDiscovery::ProbeTimeoutMs;

    // The process-wide engine, bound to the application (EngineHost::processWide()) and the real
    // tool locations.
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
    DownloadManager(
        EngineHost host, ToolLocations locations, QObject *parent = nullptr, Discovery discovery = Discovery::StartNow);
    ~DownloadManager() override;

    // Starts discovery if it has not started yet. Whatever needs a tool waits for it meanwhile.
    void startDiscovery() { m_tools->start(); }
    ToolDiscovery *tools() const { return m_tools; }
    ToolKeeper *keeper() const { return m_keeper; }
    Maintenance *maintenance() const { return m_maintenance; }

    // --- Tools, as discovery found them
    QString ytDlpPath() const { return m_tools->ytDlpPath(); }
    bool isYtDlpPathKnown() const { return m_tools->isYtDlpPathKnown(); }
    QString ytDlpVersion() const { return m_tools->ytDlpVersion(); }
    // The design's flag; no check ever reports itself through it.
    bool isCheckingYtDlp() const { return false; }
    QString detectedJSRuntime() const { return m_tools->detectedJSRuntime(); }
    QString detectedJSRuntimePath() const { return m_tools->detectedJSRuntimePath(); }
    QString detectedFfmpeg() const { return m_tools->detectedFfmpeg(); }
    QString detectedFfmpegVersion() const { return m_tools->detectedFfmpegVersion(); }
    QStringList jsRuntimeArgs() const { return m_tools->jsRuntimeArgs(); }
    QStringList ffmpegArgs() const { return m_tools->ffmpegArgs(); }
    static bool supportsJsRuntimes(const QString &version) { return ToolDiscovery::supportsJsRuntimes(version); }

    Q_INVOKABLE void setCustomYtDlpPath(const QString &path) { m_tools->setCustomYtDlpPath(path); }
    Q_INVOKABLE void resetYtDlpPath() { m_tools->resetYtDlpPath(); }
    void checkYtDlpInstallation(std::function<void(bool, const QString &)> completion)
    {
        m_tools->checkYtDlpInstallation(std::move(completion));
    }
    // The installation check for views: returns a request number, and the answer comes as
    // installationChecked() with that number, so each asker knows its own answer.
    Q_INVOKABLE int checkInstallation();
    Q_INVOKABLE void detectJSRuntime() { m_tools->detectJSRuntime(); }
    Q_INVOKABLE void detectFfmpeg() { m_tools->detectFfmpeg(); }

    // --- Maintenance
    void updateYtDlp(std::function<void(const UpdateResult &)> completion)
    {
        m_maintenance->updateYtDlp(std::move(completion));
    }
    void listFormats(const QString &url, bool useCookies, std::function<void(const FormatListResult &)> completion,
        const QStringList &networkWords = {})
    {
        m_maintenance->listFormats(url, useCookies, std::move(completion), networkWords);
    }
    // Asks yt-dlp for the information of `url` ("-J", one video even of a playlist, the runtime,
    // ffmpeg and cookie words of a download); `completion` once, on this thread. The fetch can be
    // cancelled until it answers, and is gone after.
    VideoInfoFetch *fetchVideoInfo(const QString &url, bool useCookies,
        std::function<void(const VideoInfoResult &)> completion, const QStringList &networkWords = {})
    {
        return m_maintenance->fetchVideoInfo(url, useCookies, std::move(completion), true, networkWords);
    }
    // A flat listing of `url` (see PlaylistListing), owned by `owner`.
    PlaylistListing *listPlaylist(const QString &url, bool useCookies, const QStringList &networkWords, QObject *owner)
    {
        return m_maintenance->listPlaylist(url, useCookies, networkWords, owner);
    }

    // --- Downloads
    TaskModel *taskModel() const { return m_tasks; }
    QList<DownloadTask> tasks() const { return m_tasks->tasks(); }
    // Ids of the tasks whose process is running.
    QList<QUuid> activeProcesses() const { return m_jobs.keys(); }
    int runningCount() const { return int(m_jobs.size()); }
    int maxConcurrentDownloads() const { return m_maxConcurrent; }
    void setMaxConcurrentDownloads(int value);
    bool resumeAtStart() const { return m_resumeAtStart; }
    void setResumeAtStart(bool value);
    // How long a download may stay silent before its row says so (StallNoticeMs; tests shorten it).
    void setStallNoticeMs(int ms) { m_stallNoticeMs = ms; }

    Q_INVOKABLE void startDownload(const QString &url, quillbox::DownloadPreset preset, const QString &customArgs,
        const QString &outputDir, bool downloadPlaylist, bool useCookies);
    // startDownload for each link, in order, with one insertion into the task model.
    void startDownloads(const QStringList &urls, const DownloadOptions &options);
    // One task per picked item of a playlist, in the given order, each run alone ("--no-playlist")
    // into the playlist's folder, with `playlist`'s group and title and the item's number; the
    // item's title and length are on its row from the start.
    void startPlaylistItems(
        const PlaylistPlace &playlist, const QList<PlaylistEntry> &items, const DownloadOptions &options);
    // A task made from a link that a listing found to be one video: its title, length and
    // picture are on its row from the start.
    QUuid startListedVideo(const QString &url, const VideoInfo &video, const DownloadOptions &options);
    // A link that could not be listed (`reason`) runs as one task, the playlist and all, as it
    // would have without listing; the log says why.
    void startUnlisted(const QString &url, const DownloadOptions &options, const QString &reason);
    // Every running and waiting task becomes cancelled and stays so; running process groups get
    // SIGTERM, then SIGKILL after CancelGraceMs if still alive.
    Q_INVOKABLE void cancelAllDownloads();
    // For quitting: cancels everything and returns only once no process of ours is left.
    void shutdown();

    // What the user can do to one task, by its id as text (as the task model gives it). Each
    // does nothing where it makes no sense (stopping a finished task, retrying a running one).
    // Stop: a running task's process group goes and the task stays cancelled; a waiting one
    // leaves the queue as cancelled.
    Q_INVOKABLE void stopDownload(const QString &taskId);
    // A failed or cancelled task waits again in its row with the same request; yt-dlp picks up
    // its ".part" file where the last run left it.
    Q_INVOKABLE void retryDownload(const QString &taskId);
    // The row goes; a running task is stopped first.
    Q_INVOKABLE void removeDownload(const QString &taskId);
    // Every completed task's row goes; the others stay as they are.
    Q_INVOKABLE void clearCompleted();
    // stopDownload and retryDownload for every task of a playlist group (its id as text).
    Q_INVOKABLE void stopGroup(const QString &group);
    Q_INVOKABLE void retryGroup(const QString &group);

    // The request a task was made from, as retrying it would run it again.
    std::optional<DownloadRequest> requestFor(const QUuid &taskId) const;
    // Puts a queue kept from an earlier run before the tasks made since: finished and stopped
    // rows as they were; those that were running or waiting then wait in the queue again, in
    // their order, and yt-dlp resumes a running one's ".part" file. With resumeAtStart off they
    // are held instead: shown stopped, for "重试", while the store keeps them unfinished.
    void restoreTasks(const QList<StoredTask> &rows);

    // The outcome a task's row shows ("H.264 · AAC · MP4"): none when an audio preset makes an MP3.
    static QString outcomeOf(const DownloadRequest &request);
    // The download archive "下载存档" keeps, in the per-user data folder.
    static QString archiveFile();
    // The private folder where running downloads write their information; empty before the first.
    QString infoFolder() const;
    // The command text for one download (its ShellCommand rendered), given the raw tool words.
    // With `infoFile`, yt-dlp also writes the video's information there as one JSON line
    // ("--print-to-file"), for the row, instead of a second yt-dlp extracting the page again.
    static QString buildDownloadCommand(const QString &ytDlpPath, const DownloadRequest &request,
        const QStringList &jsRuntimeArgs, const QStringList &ffmpegArgs, const QStringList &cookieArgs,
        const QString &infoFile = {});

Q_SIGNALS:
    void installationChecked(int request, bool installed, const QString &output);
    void maxConcurrentDownloadsChanged();
    void resumeAtStartChanged();
    void runningCountChanged();
    // A download's process group started, or its download ended: the store keeps the running
    // ones, so that a run that dies can have them ended at the next start.
    void processGroupStarted(qint64 group);
    void processGroupEnded(qint64 group);

private:
    void addLog(const QString &message, LogEntry::LogType type) const;
    void info(const QString &message) const;
    // Logs one line of a task's output; a progress redraw replaces the task's previous one.
    void logOutputLine(const QUuid &taskId, const QString &line, LogEntry::LogType type);

    QUuid createTask(const DownloadRequest &request, QList<DownloadTask> &created);
    // A task about to run again: what its last run showed is cleared.
    static void clearLastRun(DownloadTask &task);
    void pumpQueue();
    // Another task with this link and folder is running: two yt-dlp runs would write one file.
    bool clashesWithRunning(const DownloadRequest &request) const;
    // "~" and "~/…" as the home folder, as a shell reads them.
    QString expandHome(const QString &folder) const;
    void executeDownload(const QUuid &taskId);
    void failToLaunch(
        const QUuid &taskId, const QString &message, const std::optional<QString> &explanation = std::nullopt);
    // The task failed: its message, its explanation (also logged), and nothing left of its run.
    void markFailed(const QUuid &taskId, const QString &message, const std::optional<QString> &explanation,
        bool needsToolFix = false);
    void applyProgress(const QUuid &taskId, const ProgressUpdate &update);
    void completeDownload(const QUuid &taskId, DownloadJob *job, const DownloadJob::End &end);
    void noteStall(const QUuid &taskId, bool stalled);
    // Stops a running task's job or takes a waiting one out of the queue; false if neither.
    bool stopTask(const QUuid &taskId);
    QString nameOf(const QUuid &taskId) const;
    // Where a download writes its information: a file in a private folder of ours, or empty when
    // that folder cannot be made (the download then runs without).
    QString infoFileFor(const QUuid &taskId);
    // Reads the information a running download has written, once it is whole, and puts its
    // title, length and picture on the row.
    void takeInfo(const QUuid &taskId);
    void dropInfoFile(const QUuid &taskId);
    QList<QUuid> groupTasks(const QString &group) const;
    // A task that failed for a format its link does not offer: its explanation names what the
    // link does offer, once both are known.
    void addOfferedFormats(const QUuid &taskId);

    LogSink *m_log;
    TaskModel *m_tasks;
    ToolDiscovery *m_tools;
    Maintenance *m_maintenance;
    ToolKeeper *m_keeper;
    int m_lastInstallationCheck = 0;

    int m_maxConcurrent = DefaultMaxConcurrentDownloads;
    bool m_resumeAtStart = true;
    int m_stallNoticeMs = StallNoticeMs;
    // Every task's request, kept for retrying it.
    QHash<QUuid, DownloadRequest> m_requests;
    std::deque<QUuid> m_waiting;
    bool m_pumpScheduled = false;
    QHash<QUuid, DownloadJob *> m_jobs;
    QHash<QUuid, qint64> m_processGroups;
    // Per task, the log entry its progress redraws replace; none after any other line.
    QHash<QUuid, QUuid> m_progressEntry;
    // Per running task, the file its yt-dlp writes its information to, and whether it was read.
    struct InfoFile
    {
        QString path;
        bool taken = false;
    };
    QHash<QUuid, InfoFile> m_infoFiles;
    std::unique_ptr<QTemporaryDir> m_infoDir;
    // Per task, the formats its link offers, from its information, until it has succeeded.
    QHash<QUuid, QList<VideoFormat>> m_offeredFormats;
    // Tasks whose last run failed for a format their link does not offer.
    QSet<QUuid> m_formatMissing;
    // Tasks of links that could not be listed, run whole.
    QSet<QUuid> m_unlisted;
};
