#include "engine/downloadmanager.h"

#include "engine/errorexplanation.h"
#include "engine/playlistlisting.h"
#include "engine/secretarguments.h"
#include "engine/shellrunner.h"
#include "engine/shellwords.h"
#include "engine/tooltext.h"
#include "engine/videoinfofetch.h"
#include "model/enginehost.h"
#include "model/logcategories.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;

namespace {
bool discoveryDeferred = false;
std::optional<ToolLocations> chosenLocations;
} // namespace

DownloadManager *DownloadManager::instance()
{
    static DownloadManager *const shared = new DownloadManager(EngineHost::processWide(),
        chosenLocations.value_or(ToolLocations::standard(QDir::homePath())), nullptr,
        discoveryDeferred ? Discovery::WaitForStart : Discovery::StartNow);
    return shared;
}

void DownloadManager::useLocations(const ToolLocations &locations)
{
    chosenLocations = locations;
}

void DownloadManager::deferDiscovery()
{
    discoveryDeferred = true;
}

DownloadManager::DownloadManager(EngineHost host, ToolLocations locations, QObject *parent, Discovery discovery)
    : QObject(parent)
    , m_log(host.log)
    , m_tasks(new TaskModel(this))
    , m_tools(new ToolDiscovery(host, std::move(locations), this))
    , m_maintenance(new Maintenance(host.log, m_tools, this))
    , m_keeper(new ToolKeeper(
          host.log, m_tools, new ToolInstaller(ReleaseLocations::standard(), this), [this] { return m_jobs.isEmpty(); },
          this))
{
    // Queued: a download that ends lets the next waiting one start before the queue counts as idle.
    connect(
        this, &DownloadManager::runningCountChanged, m_keeper,
        [this] {
            if (m_jobs.isEmpty())
                m_keeper->downloadsIdle();
        },
        Qt::QueuedConnection);
    connect(m_tools, &ToolDiscovery::ready, this, &DownloadManager::pumpQueue);
    const int stored
        = QSettings().value(QLatin1String(MaxConcurrentDownloadsKey), DefaultMaxConcurrentDownloads).toInt();
    m_maxConcurrent = std::clamp(stored, 1, 16);
    m_resumeAtStart = QSettings().value(QLatin1String(ResumeAtStartKey), true).toBool();
    if (discovery == Discovery::StartNow)
        startDiscovery();
}

DownloadManager::~DownloadManager()
{
    shutdown();
}

void DownloadManager::addLog(const QString &message, LogEntry::LogType type) const
{
    if (m_log)
        m_log->addLog(message, type);
}

void DownloadManager::info(const QString &message) const
{
    addLog(message, LogEntry::LogType::Info);
}

int DownloadManager::checkInstallation()
{
    const int request = ++m_lastInstallationCheck;
    m_tools->checkYtDlpInstallation([this, request](bool installed, const QString &output) {
        Q_EMIT installationChecked(request, installed, output);
    });
    return request;
}

void DownloadManager::setMaxConcurrentDownloads(int value)
{
    value = std::clamp(value, 1, 16);
    if (value == m_maxConcurrent)
        return;
    m_maxConcurrent = value;
    QSettings().setValue(QLatin1String(MaxConcurrentDownloadsKey), value);
    Q_EMIT maxConcurrentDownloadsChanged();
    pumpQueue();
}

void DownloadManager::setResumeAtStart(bool value)
{
    if (value == m_resumeAtStart)
        return;
    m_resumeAtStart = value;
    QSettings().setValue(QLatin1String(ResumeAtStartKey), value);
    Q_EMIT resumeAtStartChanged();
}

namespace {
const char *const separatorLine = "[Quillbox] ============================================";

LogEntry::LogType typeOfStderrLine(const QString &line)
{
    if (line.contains(u"ERROR"))
        return LogEntry::LogType::Error;
    if (line.contains(u"WARNING"))
        return LogEntry::LogType::Warning;
    return LogEntry::LogType::Download;
}
} // namespace

// --- Downloads
QString DownloadManager::buildDownloadCommand(const QString &ytDlpPath, const DownloadRequest &request,
    const QStringList &jsRuntimeArgs, const QStringList &ffmpegArgs, const QStringList &cookieArgs,
    const QString &infoFile)
{
    ShellCommand command(ytDlpPath, jsRuntimeArgs);
    command << ffmpegArgs << cookieArgs;
    if (!request.downloadPlaylist)
        command << u"--no-playlist"_s;
    // A playlist's item goes to the playlist's folder, numbered, unless a file name was chosen.
    const bool intoPlaylistFolder = request.playlist.isSet() && request.choices.effectiveTemplate().isEmpty();
    command << u"-o"_s
            << (intoPlaylistFolder ? request.playlist.outputTemplate(request.outputDir)
                                   : request.choices.outputTemplate(request.outputDir));
    command << presetArguments(request.preset); // none for the custom preset
    command << request.choices.words(archiveFile());
    // Split here rather than by the shell, so the text is only ever words: an odd quote cannot
    // reach the link, and nothing in it runs. executeDownload refuses a text that does not split.
    command << splitShellWords(request.customArgs).words;
    // A file name is a template to yt-dlp, where "%" is "%%".
    if (!infoFile.isEmpty())
        command << u"--print-to-file"_s << u"%()j"_s << QString(infoFile).replace(u'%', u"%%"_s);
    command << u"--progress"_s;
    return command.link(request.url).text();
}

void DownloadManager::startDownload(const QString &url, DownloadPreset preset, const QString &customArgs,
    const QString &outputDir, bool downloadPlaylist, bool useCookies)
{
    startDownloads({ url }, DownloadOptions { preset, customArgs, outputDir, downloadPlaylist, useCookies, {} });
}

void DownloadManager::startDownloads(const QStringList &urls, const DownloadOptions &options)
{
    QList<DownloadTask> created;
    created.reserve(urls.size());
    for (const QString &url : urls) {
        DownloadRequest request { options, url, {} };
        const QUuid id = createTask(request, created);
        m_requests.insert(id, std::move(request));
        m_waiting.push_back(id);
    }
    m_tasks->appendAll(created);
    pumpQueue();
}

void DownloadManager::startPlaylistItems(
    const PlaylistPlace &playlist, const QList<PlaylistEntry> &items, const DownloadOptions &options)
{
    if (items.isEmpty())
        return;
    qCInfo(
        lcEngine, "[Quillbox] 播放列表「%ls」: 加入 %lld 项", qUtf16Printable(playlist.title), qlonglong(items.size()));
    addLog(tr("开始下载播放列表「%1」中的 %n 项", nullptr, int(items.size())).arg(playlist.title),
        LogEntry::LogType::Download);
    info(tr("预设: %1").arg(rawValue(options.preset)));
    QList<DownloadTask> created;
    created.reserve(items.size());
    for (const PlaylistEntry &item : items) {
        DownloadRequest request { options, item.url, playlist };
        request.downloadPlaylist = false;
        request.playlist.index = item.index;
        request.playlist.itemTitle = item.title;
        DownloadTask task = DownloadTask::create(item.url);
        task.outcome = outcomeOf(request);
        if (!item.title.isEmpty())
            task.title = item.title;
        task.duration = item.durationText();
        task.playlist = request.playlist;
        m_requests.insert(task.id, std::move(request));
        m_waiting.push_back(task.id);
        created.append(std::move(task));
    }
    m_tasks->appendAll(created);
    pumpQueue();
}

void DownloadManager::startUnlisted(const QString &url, const DownloadOptions &options, const QString &reason)
{
    addLog(tr("⚠️ 无法列出播放列表中的视频（%1），整个链接作为一个任务下载: %2")
               .arg(leftCharacters(reason, 200), url),
        LogEntry::LogType::Warning);
    startDownloads({ url }, options);
    m_unlisted.insert(m_tasks->tasks().constLast().id);
}

QUuid DownloadManager::startListedVideo(const QString &url, const VideoInfo &video, const DownloadOptions &options)
{
    startDownloads({ url }, options);
    const QUuid id = m_tasks->tasks().constLast().id;
    m_tasks->update(id, [&video](DownloadTask &task) {
        if (!video.title.isEmpty())
            task.title = video.title;
        if (video.duration > 0)
            task.duration = video.durationString();
        task.thumbnail = video.thumbnailUrl();
    });
    return id;
}

QUuid DownloadManager::createTask(const DownloadRequest &request, QList<DownloadTask> &created)
{
    const QString presetName = sourceLabel(request.preset);
    qCInfo(lcEngine, "[Quillbox] 开始下载任务 - URL: %ls, 预设: %ls, 输出目录: %ls", qUtf16Printable(request.url),
        qUtf16Printable(presetName), qUtf16Printable(request.outputDir));
    addLog(tr("开始下载任务"), LogEntry::LogType::Download);
    info(u"URL: "_s + request.url);
    info(tr("预设: %1").arg(presetName));
    DownloadTask task = DownloadTask::create(request.url);
    task.outcome = outcomeOf(request);
    created.append(task);
    qCInfo(lcEngine, "[Quillbox] 任务已添加 - ID: %ls", qUtf16Printable(task.id.toString(QUuid::WithoutBraces)));
    return task.id;
}

QString DownloadManager::outcomeOf(const DownloadRequest &request)
{
    // An audio preset converts to MP3 whatever the sorting chose.
    return makesMp3(request.preset) ? QString() : request.choices.outcomeText();
}

QString DownloadManager::archiveFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + u"/archive.txt"_s;
}

QString DownloadManager::expandHome(const QString &folder) const
{
    // A folder typed as "~/Videos" means the home folder's, as it would in a shell.
    return ::expandHome(folder, m_tools->locations().home);
}

bool DownloadManager::clashesWithRunning(const DownloadRequest &request) const
{
    const QString folder = QDir::cleanPath(expandHome(request.outputDir));
    for (auto it = m_jobs.cbegin(); it != m_jobs.cend(); ++it) {
        const DownloadRequest other = m_requests.value(it.key());
        if (other.url == request.url && QDir::cleanPath(other.outputDir) == folder)
            return true;
    }
    return false;
}

void DownloadManager::pumpQueue()
{
    // Downloads wait for the first round of discovery (the yt-dlp path and version, which decides
    // the runtime words, the runtime and ffmpeg), then start in order as slots free up. A task
    // whose link and folder are those of a running one waits for it, and the next one goes first.
    if (!m_tools->isReady())
        return;
    const auto startable
        = [this](const QUuid &id) { return !m_jobs.contains(id) && !clashesWithRunning(m_requests.value(id)); };
    if (runningCount() >= m_maxConcurrent)
        return;
    const auto next = std::find_if(m_waiting.begin(), m_waiting.end(), startable);
    if (next == m_waiting.end())
        return;
    const QUuid taskId = *next;
    m_waiting.erase(next);
    executeDownload(taskId);

    // Starting a child holds this thread until the shell runs, so when many downloads begin
    // together they start one per event-loop turn and the window keeps drawing in between.
    if (runningCount() < m_maxConcurrent && !m_pumpScheduled
        && std::any_of(m_waiting.begin(), m_waiting.end(), startable)) {
        m_pumpScheduled = true;
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_pumpScheduled = false;
                pumpQueue();
            },
            Qt::QueuedConnection);
    }
}

void DownloadManager::executeDownload(const QUuid &taskId)
{
    DownloadRequest request = m_requests.value(taskId);
    request.outputDir = expandHome(request.outputDir);
    qCInfo(lcEngine, "[Quillbox] [executeDownload] 任务ID: %ls, URL: %ls",
        qUtf16Printable(taskId.toString(QUuid::WithoutBraces)), qUtf16Printable(request.url));
    m_tasks->update(taskId, [](DownloadTask &task) { task.status = DownloadStatus::Preparing; });

    qCInfo(lcEngine, "[Quillbox] [executeDownload] 开始构建命令...");
    info(tr("构建下载命令..."));
    const QStringList runtimeArgs = m_tools->jsRuntimeArgs();
    if (!runtimeArgs.isEmpty()) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 注入 JS 运行时: %ls", qUtf16Printable(runtimeArgs.join(u' ')));
        info(tr("JS 运行时: %1").arg(runtimeArgs.value(1)));
    } else {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] ⚠️ 未检测到 JS 运行时，YouTube 下载可能失败");
    }
    const QStringList ffmpegWords = m_tools->ffmpegArgs();
    if (!ffmpegWords.isEmpty())
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 注入 FFmpeg 路径: %ls", qUtf16Printable(ffmpegWords.value(1)));
    const CookieWords cookies = request.useCookies ? m_tools->cookieArgs() : CookieWords();
    if (!cookies.words.isEmpty()) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] %ls", qUtf16Printable(cookies.notice));
        info(cookies.notice);
    }
    if (!request.downloadPlaylist) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 不下载播放列表");
        info(tr("只下载当前视频"));
    }
    if (request.preset != DownloadPreset::Custom) {
        const QStringList &words = presetArguments(request.preset);
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 使用预设: %ls, 参数数组: [%ls]",
            qUtf16Printable(sourceLabel(request.preset)), qUtf16Printable(words.join(u", "_s)));
        info(tr("预设参数: %1").arg(words.join(u' ')));
    }
    if (!request.choices.isDefault()) {
        const QString summary = request.choices.summary();
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 下载选项: %ls", qUtf16Printable(summary));
        info(tr("下载选项: %1").arg(summary));
    }
    // Passwords typed into the custom arguments are run but never shown: not in either log, not
    // on the row (nor in the store's copy of it).
    const QString shownArguments = maskSecrets(request.customArgs);
    if (!request.customArgs.isEmpty())
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 自定义参数: %ls", qUtf16Printable(shownArguments));

    const QString command = buildDownloadCommand(
        m_tools->ytDlpPath(), request, runtimeArgs, ffmpegWords, cookies.words, infoFileFor(taskId));
    const QString shownCommand = maskSecrets(command);
    qCInfo(lcEngine, "%s", separatorLine);
    qCInfo(lcEngine, "[Quillbox] [executeDownload] 完整命令:");
    qCInfo(lcEngine, "[Quillbox] %ls", qUtf16Printable(shownCommand));
    qCInfo(lcEngine, "%s", separatorLine);
    info(tr("执行命令: %1").arg(shownCommand));

    // yt-dlp would fail late and obscurely on a folder it cannot create; say so plainly instead.
    if (request.outputDir.isEmpty()) {
        failToLaunch(taskId, tr("未设置输出目录"));
        return;
    }
    if (QDir::isRelativePath(request.outputDir)) {
        failToLaunch(taskId, tr("输出目录必须是完整路径: %1").arg(request.outputDir));
        return;
    }
    if (const ShellWords custom = splitShellWords(request.customArgs); !custom.ok()) {
        failToLaunch(taskId, custom.error + u": "_s + shownArguments);
        return;
    }
    if (const QString problem = request.choices.problem(); !problem.isEmpty()) {
        failToLaunch(taskId, problem);
        return;
    }
    if (request.choices.useArchive && !QDir().mkpath(QFileInfo(archiveFile()).path())) {
        failToLaunch(taskId, tr("无法创建下载存档所在的目录: %1").arg(QFileInfo(archiveFile()).path()));
        return;
    }
    if (!QDir().mkpath(request.outputDir)) {
        failToLaunch(
            taskId, tr("无法创建输出目录: %1").arg(request.outputDir), explainFolderFailure(request.outputDir));
        return;
    }

    auto *job = new DownloadJob(command, request.outputDir, m_stallNoticeMs, this);
    m_jobs.insert(taskId, job);
    // The finished request, with the folder as it was used, is the one a retry repeats.
    m_requests[taskId].outputDir = request.outputDir;
    Q_EMIT runningCountChanged();

    connect(job, &DownloadJob::started, this, [this, taskId, job](qint64 pid) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 进程已启动, PID: %lld", pid);
        m_processGroups.insert(taskId, pid); // the shell leads the download's group
        Q_EMIT processGroupStarted(pid);
        m_tasks->update(taskId, [](DownloadTask &task) {
            if (task.status == DownloadStatus::Preparing)
                task.status = DownloadStatus::Downloading;
        });
        QTimer::singleShot(
            WatchdogMs, job, [] { qCInfo(lcEngine, "[Quillbox] [executeDownload] 进程运行超过30秒，可能是卡住了"); });
    });
    connect(job, &DownloadJob::failedToStart, this, [this, taskId, job](const QString &message) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 异常: %ls", qUtf16Printable(message));
        const QString explanation = explainLaunchFailure(shellProgram(), message);
        m_jobs.remove(taskId);
        dropInfoFile(taskId);
        job->deleteLater();
        Q_EMIT runningCountChanged();
        if (!job->isCancelled())
            failToLaunch(taskId, message, explanation);
        pumpQueue();
    });
    connect(job, &DownloadJob::linesRead, this, [this, taskId](const QStringList &lines, bool standardError) {
        if (lcEngine().isDebugEnabled()) {
            const char *stream = standardError ? "[stderr]" : "[stdout]";
            qCDebug(lcEngine, "[Quillbox] %s %ls", stream, qUtf16Printable(lines.join(u'\n')));
        }
        for (const QString &line : lines)
            logOutputLine(taskId, line, standardError ? typeOfStderrLine(line) : LogEntry::LogType::Download);
        takeInfo(taskId);
    });
    connect(job, &DownloadJob::progressed, this, [this, taskId](const ProgressUpdate &update) {
        applyProgress(taskId, update);
        // A redraw that no whole line has followed yet also means the information is written.
        takeInfo(taskId);
    });
    connect(job, &DownloadJob::phaseChanged, this, [this, taskId](const QString &phase) {
        m_tasks->update(taskId, [&phase](DownloadTask &task) { task.phase = phase; });
    });
    connect(job, &DownloadJob::outputPathChanged, this, [this, taskId](const QString &path) {
        m_tasks->update(taskId, [&path](DownloadTask &task) { task.outputPath = path; });
    });
    connect(job, &DownloadJob::stalledChanged, this, [this, taskId](bool stalled) { noteStall(taskId, stalled); });
    connect(job, &DownloadJob::removedPartialFile, this, [this](const QString &path) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 已删除未完成的文件: %ls", qUtf16Printable(path));
        info(tr("已删除未完成的转换文件: %1").arg(path));
    });
    connect(job, &DownloadJob::ended, this,
        [this, taskId, job](const DownloadJob::End &end) { completeDownload(taskId, job, end); });

    qCInfo(lcEngine, "[Quillbox] [executeDownload] 启动进程...");
    job->start();
}

QString DownloadManager::infoFileFor(const QUuid &taskId)
{
    if (!m_infoDir) {
        m_infoDir = std::make_unique<QTemporaryDir>(QDir::tempPath() + u"/quillbox-info-XXXXXX"_s);
        if (!m_infoDir->isValid())
            qCWarning(lcEngine, "[Quillbox] 无法创建临时目录: %ls", qUtf16Printable(m_infoDir->errorString()));
    }
    if (!m_infoDir->isValid())
        return {};
    const QString path = m_infoDir->filePath(taskId.toString(QUuid::WithoutBraces) + u".json"_s);
    // A run before this one (a retry) may have left its lines.
    QFile::remove(path);
    m_infoFiles.insert(taskId, InfoFile { path, false });
    return path;
}

QString DownloadManager::infoFolder() const
{
    return m_infoDir && m_infoDir->isValid() ? m_infoDir->path() : QString();
}

void DownloadManager::takeInfo(const QUuid &taskId)
{
    const auto file = m_infoFiles.find(taskId);
    if (file == m_infoFiles.end() || file->taken)
        return;
    QFile written(file->path);
    if (!written.open(QIODevice::ReadOnly))
        return;
    // yt-dlp writes the line, then its newline: until then the line is not whole.
    const QByteArray line = written.readLine();
    if (!line.endsWith('\n'))
        return;
    file->taken = true;
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    const auto request = m_requests.constFind(taskId);
    if (object.isEmpty() || request == m_requests.cend())
        return;
    const VideoInfo info = VideoInfo::fromYtDlpObject(object, request->url);
    // A playlist downloaded whole is called by its title: its first video's would say less
    // than the truth.
    const bool wholePlaylist = request->downloadPlaylist && object.value(u"playlist_index").isDouble();
    const QString playlistTitle = object.value(u"playlist_title").toString();
    m_tasks->update(taskId, [&](DownloadTask &task) {
        if (wholePlaylist && !playlistTitle.isEmpty())
            task.title = playlistTitle;
        if (!wholePlaylist && !info.title.isEmpty())
            task.title = info.title;
        if (!wholePlaylist && info.duration > 0)
            task.duration = info.durationString();
        task.thumbnail = info.thumbnailUrl();
    });
    if (!info.formats.isEmpty()) {
        m_offeredFormats.insert(taskId, info.formats);
        addOfferedFormats(taskId);
    }
}

void DownloadManager::dropInfoFile(const QUuid &taskId)
{
    if (const auto file = m_infoFiles.constFind(taskId); file != m_infoFiles.cend()) {
        QFile::remove(file->path);
        m_infoFiles.erase(file);
    }
}

void DownloadManager::addOfferedFormats(const QUuid &taskId)
{
    // The download and the information request ask for the same page side by side: whichever
    // answers last completes the explanation.
    const DownloadTask *task = m_tasks->find(taskId);
    const auto offered = m_offeredFormats.constFind(taskId);
    if (!task || offered == m_offeredFormats.cend() || !m_formatMissing.contains(taskId) || !task->explanation)
        return;
    const QString note = offeredFormatsNote(*offered);
    if (note.isEmpty() || task->explanation->contains(note))
        return;
    info(note);
    m_tasks->update(taskId, [&note](DownloadTask &task) { task.explanation = *task.explanation + u'\n' + note; });
}

void DownloadManager::failToLaunch(
    const QUuid &taskId, const QString &message, const std::optional<QString> &explanation)
{
    // With an explanation, that is the line the log gets (from markFailed): the platform's own
    // words ("execvp: …") stay in the task's message, for whoever copies it.
    dropInfoFile(taskId);
    if (!explanation)
        addLog(u"❌ "_s + message, LogEntry::LogType::Error);
    markFailed(taskId, message, explanation);
}

void DownloadManager::markFailed(
    const QUuid &taskId, const QString &message, const std::optional<QString> &explanation, bool needsToolFix)
{
    if (explanation)
        addLog(*explanation, LogEntry::LogType::Error);
    m_tasks->update(taskId, [&message, &explanation, needsToolFix](DownloadTask &task) {
        task.status = DownloadStatus::Failed;
        task.errorMessage = message;
        task.explanation = explanation;
        task.needsToolFix = needsToolFix;
        task.phase.clear();
        task.eta.clear();
    });
}

void DownloadManager::logOutputLine(const QUuid &taskId, const QString &line, LogEntry::LogType type)
{
    if (!DownloadOutput::isProgressLine(line)) {
        m_progressEntry.remove(taskId);
        addLog(line, type);
        return;
    }
    // Each redraw replaces the one before it, until the task prints something else.
    auto entry = m_progressEntry.find(taskId);
    if (entry == m_progressEntry.end())
        entry = m_progressEntry.insert(taskId, QUuid::createUuid());
    if (m_log)
        m_log->addLog(line, type, *entry);
}

void DownloadManager::applyProgress(const QUuid &taskId, const ProgressUpdate &update)
{
    if (update.isEmpty())
        return;
    m_tasks->update(taskId, [&update](DownloadTask &task) {
        if (update.progress)
            task.progress = *update.progress;
        if (update.speed)
            task.speed = *update.speed;
        if (update.size)
            task.size = *update.size;
        if (update.eta)
            task.eta = *update.eta;
        if (update.errorMessage)
            task.errorMessage = update.errorMessage;
    });
}

void DownloadManager::completeDownload(const QUuid &taskId, DownloadJob *job, const DownloadJob::End &end)
{
    const int exitCode = end.exitCode;
    qCInfo(lcEngine, "[Quillbox] [executeDownload] 进程结束, 退出码: %d", exitCode);
    qCInfo(lcEngine, "[Quillbox] [executeDownload] stdout:\n%ls",
        qUtf16Printable(end.stdoutTail.mid(end.stdoutTail.size() - 1).join(u'\n')));
    qCInfo(lcEngine, "[Quillbox] [executeDownload] stderr:\n%ls",
        qUtf16Printable(end.stderrTail.mid(end.stderrTail.size() - 1).join(u'\n')));
    const QString outputPath = job->outputPath();
    // A download that failed early may have written its information only now.
    takeInfo(taskId);
    dropInfoFile(taskId);
    m_jobs.remove(taskId);
    if (const qint64 group = m_processGroups.take(taskId))
        Q_EMIT processGroupEnded(group);
    m_progressEntry.remove(taskId);
    job->deleteLater();
    Q_EMIT runningCountChanged();

    const DownloadTask *task = m_tasks->find(taskId);
    // A stopped download stays as the user left it (cancelled, retried or removed), whatever
    // its exit status.
    if (!task || end.cancelled) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 任务已取消, 退出码: %d", exitCode);
        pumpQueue();
        return;
    }
    if (exitCode == 0 && !end.crashed) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 下载成功!");
        m_offeredFormats.remove(taskId);
        info(tr("✅ 下载完成！"));
        const QFileInfo file(outputPath);
        const bool skipped = job->skippedByArchive();
        if (skipped)
            info(tr("已在下载存档中，未再下载: %1").arg(nameOf(taskId)));
        // A link that listed nothing ends without error and without a file: the row says so.
        const bool nothing = !skipped && outputPath.isEmpty() && m_unlisted.contains(taskId);
        if (nothing)
            addLog(tr("⚠️ 没有下载任何文件: %1").arg(nameOf(taskId)), LogEntry::LogType::Warning);
        m_tasks->update(taskId, [&file, skipped, nothing](DownloadTask &task) {
            task.status = DownloadStatus::Completed;
            task.progress = 1.0;
            task.phase.clear();
            task.eta.clear();
            task.endTime = QDateTime::currentDateTime();
            // The size of what is on disk now, after merging or converting.
            if (file.isFile())
                task.size = DownloadOutput::formatBytes(file.size());
            if (skipped)
                task.notice = tr("已在下载存档中，未再下载");
            if (nothing)
                task.notice = tr("没有下载任何文件");
        });
    } else {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 下载失败, 错误码: %d", exitCode);
        addLog(tr("❌ 下载失败 (错误码: %1)").arg(exitCode), LogEntry::LogType::Error);
        QString message = tr("下载失败 (错误码: %1)").arg(exitCode);

        QStringList kept;
        if (!end.stderrTail.isEmpty()) {
            for (const QString &line : end.stderrTail) {
                if (line.contains(u"ERROR") || line.contains(u"error") || line.contains(u"WARNING"))
                    kept.append(line);
            }
        } else {
            for (const QString &line : end.stdoutTail) {
                if (line.contains(u"ERROR") || line.contains(u"error"))
                    kept.append(line);
            }
        }
        // The row's message. Every one of these lines reached the log as it was read, so they
        // are not logged a second time.
        if (!kept.isEmpty())
            message = kept.mid(0, 3).join(u'\n');
        const std::optional<Explanation> explanation = describeFailure(FailedRun { end.stderrTail + end.stdoutTail,
            exitCode, end.crashed, m_tools->ytDlpPath(), m_requests.value(taskId).choices.proxy });
        markFailed(taskId, message, explanation ? std::optional(explanation->text) : std::nullopt,
            explanation && explanation->toolchainFix);
        if (isMissingFormat(end.stderrTail + end.stdoutTail)) {
            m_formatMissing.insert(taskId);
            addOfferedFormats(taskId);
        }
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 错误信息: %ls", qUtf16Printable(message));
    }
    pumpQueue();
}

void DownloadManager::noteStall(const QUuid &taskId, bool stalled)
{
    const int seconds = m_stallNoticeMs / 1000;
    const QString notice = stalled ? tr("%n 秒无响应", nullptr, seconds) : QString();
    if (stalled) {
        const QString url = m_requests.value(taskId).url;
        qCInfo(lcEngine, "[Quillbox] [executeDownload] %ls: %ls", qUtf16Printable(notice), qUtf16Printable(url));
        addLog(tr("⚠️ %1：%2").arg(notice, url), LogEntry::LogType::Warning);
    }
    m_tasks->update(taskId, [&notice](DownloadTask &task) { task.notice = notice; });
}

QString DownloadManager::nameOf(const QUuid &taskId) const
{
    const DownloadTask *task = m_tasks->find(taskId);
    return task ? task->title : QString();
}

bool DownloadManager::stopTask(const QUuid &taskId)
{
    if (DownloadJob *job = m_jobs.value(taskId)) {
        if (job->isCancelled())
            return false;
        job->stop();
    } else if (const auto waiting = std::find(m_waiting.begin(), m_waiting.end(), taskId); waiting != m_waiting.end()) {
        m_waiting.erase(waiting);
    } else {
        return false;
    }
    m_tasks->update(taskId, [](DownloadTask &task) {
        task.status = DownloadStatus::Cancelled;
        task.phase.clear();
        task.eta.clear();
        task.notice.clear();
    });
    return true;
}

void DownloadManager::stopDownload(const QString &taskId)
{
    const QUuid id = QUuid::fromString(taskId);
    if (stopTask(id))
        info(tr("⏹ 已停止: %1").arg(nameOf(id)));
}

void DownloadManager::retryDownload(const QString &taskId)
{
    const QUuid id = QUuid::fromString(taskId);
    const DownloadTask *task = m_tasks->find(id);
    if (!task || !m_requests.contains(id)
        || (task->status != DownloadStatus::Failed && task->status != DownloadStatus::Cancelled
            && task->status != DownloadStatus::Paused))
        return;
    info((task->status == DownloadStatus::Paused ? tr("▶ 继续: %1") : tr("🔄 重试: %1")).arg(task->title));
    m_tasks->update(id, &DownloadManager::clearLastRun);
    m_offeredFormats.remove(id);
    m_formatMissing.remove(id);
    m_waiting.push_back(id);
    pumpQueue();
}

void DownloadManager::clearLastRun(DownloadTask &task)
{
    task.status = DownloadStatus::Pending;
    task.progress = 0.0;
    task.speed.clear();
    task.size.clear();
    task.eta.clear();
    task.phase.clear();
    task.notice.clear();
    task.errorMessage.reset();
    task.explanation.reset();
    task.needsToolFix = false;
    task.endTime.reset();
    task.startTime = QDateTime::currentDateTime();
}

void DownloadManager::removeDownload(const QString &taskId)
{
    const QUuid id = QUuid::fromString(taskId);
    if (!m_tasks->find(id))
        return;
    if (stopTask(id))
        info(tr("⏹ 已停止: %1").arg(nameOf(id)));
    m_tasks->remove(id);
    m_requests.remove(id);
    m_offeredFormats.remove(id);
    m_formatMissing.remove(id);
    m_unlisted.remove(id);
}

void DownloadManager::clearCompleted()
{
    m_tasks->removeIf([this](const DownloadTask &task) {
        if (task.status != DownloadStatus::Completed)
            return false;
        m_requests.remove(task.id);
        m_offeredFormats.remove(task.id);
        m_formatMissing.remove(task.id);
        m_unlisted.remove(task.id);
        return true;
    });
}

QList<QUuid> DownloadManager::groupTasks(const QString &group) const
{
    const QUuid id = QUuid::fromString(group);
    QList<QUuid> found;
    if (id.isNull())
        return found;
    for (const DownloadTask &task : m_tasks->tasks()) {
        if (task.playlist.group == id)
            found.append(task.id);
    }
    return found;
}

void DownloadManager::stopGroup(const QString &group)
{
    int stopped = 0;
    for (const QUuid &id : groupTasks(group))
        stopped += stopTask(id) ? 1 : 0;
    if (stopped > 0)
        info(tr("⏹ 已停止播放列表中的 %n 项", nullptr, stopped));
}

void DownloadManager::retryGroup(const QString &group)
{
    for (const QUuid &id : groupTasks(group))
        retryDownload(id.toString(QUuid::WithoutBraces));
}

std::optional<DownloadRequest> DownloadManager::requestFor(const QUuid &taskId) const
{
    const auto found = m_requests.constFind(taskId);
    return found == m_requests.cend() ? std::nullopt : std::optional<DownloadRequest>(*found);
}

void DownloadManager::restoreTasks(const QList<StoredTask> &rows)
{
    QList<DownloadTask> tasks;
    tasks.reserve(rows.size());
    std::deque<QUuid> waiting;
    int unfinished = 0;
    for (const StoredTask &row : rows) {
        if (m_tasks->find(row.task.id))
            continue;
        DownloadTask task = row.task;
        task.outcome = outcomeOf(row.request);
        // Nothing of ours runs before we do: what was running then has been stopped, its
        // ".part" file kept. A stopped row (the user's "停止") is not among them.
        const bool wasRunning = task.status == DownloadStatus::Preparing || task.status == DownloadStatus::Downloading;
        if (wasRunning || task.status == DownloadStatus::Pending) {
            ++unfinished;
            if (m_resumeAtStart) {
                if (wasRunning)
                    clearLastRun(task);
                waiting.push_back(task.id);
            } else {
                // Paused for this run only, until "继续": the row is not written, so the store
                // still has it unfinished and a later start that resumes carries it on.
                task.status = DownloadStatus::Paused;
                task.speed.clear();
            }
        }
        task.notice.clear();
        task.phase.clear();
        task.eta.clear();
        m_requests.insert(task.id, row.request);
        tasks.append(std::move(task));
    }
    if (tasks.isEmpty())
        return;
    m_tasks->insertAll(0, tasks);
    m_waiting.insert(m_waiting.begin(), waiting.begin(), waiting.end());
    qCInfo(lcEngine, "[Quillbox] 已恢复上次的 %d 个任务", int(tasks.size()));
    info(tr("↺ 已恢复上次的 %n 个任务", nullptr, int(tasks.size())));
    if (unfinished > 0 && m_resumeAtStart)
        info(tr("▶ 继续上次未完成的 %n 个下载", nullptr, unfinished));
    else if (unfinished > 0)
        info(tr(
            "⏸ 上次未完成的 %n 个下载未自动继续（设置中“启动时继续未完成的下载”已关闭），点“继续”可接着下载",
            nullptr, unfinished));
    pumpQueue();
}

void DownloadManager::cancelAllDownloads()
{
    const std::deque<QUuid> waiting = std::exchange(m_waiting, {});
    for (const QUuid &id : waiting) {
        m_tasks->update(id, [](DownloadTask &task) { task.status = DownloadStatus::Cancelled; });
    }
    if (!waiting.empty())
        info(tr("⏹ 已取消 %n 个等待中的任务", nullptr, int(waiting.size())));
    for (const QUuid &id : m_jobs.keys()) {
        if (stopTask(id))
            info(tr("⏹ 已停止: %1").arg(nameOf(id)));
    }
}

void DownloadManager::shutdown()
{
    cancelAllDownloads();
    QList<QPointer<GroupProcess>> processes;
    QList<qint64> groups;
    for (DownloadJob *job : std::as_const(m_jobs)) {
        processes.append(job->process());
        if (job->process())
            groups.append(job->process()->groupId());
    }
    // One grace period for all of them, not one each.
    const QDeadlineTimer grace(CancelGraceMs);
    for (const QPointer<GroupProcess> &process : std::as_const(processes)) {
        if (process && process->state() != QProcess::NotRunning
            && !process->waitForFinished(int(std::max<qint64>(0, grace.remainingTime()))))
            process->signalGroup(SIGKILL);
    }
    for (const QPointer<GroupProcess> &process : std::as_const(processes)) {
        if (!process)
            continue;
        // Children the shell left behind (an ffmpeg mid-merge) go with the group.
        process->signalGroup(SIGKILL);
        if (process->state() != QProcess::NotRunning)
            process->waitForFinished(2000);
    }
    // Format listings, updates and discovery probes are children too; none outlives us.
    for (GroupProcess *helper : findChildren<GroupProcess *>()) {
        if (helper->state() != QProcess::NotRunning) {
            groups.append(helper->groupId());
            helper->signalGroup(SIGKILL);
            helper->waitForFinished(1000);
        }
    }
    // A killed process is gone only once the kernel has torn it down, which on a busy machine
    // can come after our own exit; wait for that, so nothing of ours runs once we have quit.
    if (!waitForGroupsGone(groups, QDeadlineTimer(2000)))
        qCWarning(lcEngine, "[Quillbox] 退出时仍有子进程未结束");
    for (DownloadJob *job : std::as_const(m_jobs))
        job->removePartialFiles();
}
