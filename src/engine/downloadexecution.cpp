#include "engine/downloadmanager.h"

#include "engine/errorexplanation.h"
#include "engine/linesplitter.h"
#include "engine/progressparser.h"
#include "engine/shellrunner.h"
#include "engine/shellwords.h"
#include "model/appstate.h"
#include "model/logcategories.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTimer>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {
const char *const separatorLine = "[Quillbox] ============================================";

// How many of the last lines of each stream are kept for the failure message.
constexpr qsizetype TailLines = 200;

LogEntry::LogType typeOfStderrLine(const QString &line)
{
    if (line.contains(u"ERROR"))
        return LogEntry::LogType::Error;
    if (line.contains(u"WARNING"))
        return LogEntry::LogType::Warning;
    return LogEntry::LogType::Download;
}

// yt-dlp's file name with "temp" before its extension: where a post-processing step writes
// before it renames the result into place.
QString tempNameOf(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    const qsizetype dot = path.lastIndexOf(u'.');
    if (dot <= slash + 1)
        return path + u".temp"_s;
    return path.left(dot) + u".temp"_s + path.mid(dot);
}

// The files a post-processing step announced by `line` is about to write, if it is one.
// Extracting audio and converting or remuxing write the target itself; merging, metadata,
// subtitles and fix-ups write a ".temp." file.
std::optional<QStringList> conversionFiles(const QString &line)
{
    static const QRegularExpression direct(
        u"^\\[(?:ExtractAudio|VideoConvertor|VideoRemuxer)\\] (?:.*; )?Destination: (.+)$"_s);
    static const QRegularExpression viaTemp(u"^\\[(?:Merger|Metadata|EmbedSubtitle|Fixup\\w*)\\] [^\"]*\"(.+)\"$"_s);
    if (const QRegularExpressionMatch match = direct.match(line); match.hasMatch()) {
        const QString target = match.captured(1);
        return QStringList { target, tempNameOf(target) };
    }
    if (const QRegularExpressionMatch match = viaTemp.match(line); match.hasMatch())
        return QStringList { tempNameOf(match.captured(1)) };
    return std::nullopt;
}

// The file yt-dlp downloads (or already has), which a conversion reads and must never lose.
std::optional<QString> downloadedFile(const QString &line)
{
    static const QRegularExpression destination(u"^\\[download\\] Destination: (.+)$"_s);
    static const QRegularExpression already(u"^\\[download\\] (.+) has already been downloaded$"_s);
    for (const QRegularExpression *expression : { &destination, &already }) {
        if (const QRegularExpressionMatch match = expression->match(line); match.hasMatch())
            return match.captured(1);
    }
    return std::nullopt;
}

void keepTail(QStringList &tail, const QStringList &lines)
{
    tail += lines;
    if (tail.size() > TailLines)
        tail.remove(0, tail.size() - TailLines);
}
} // namespace

struct DownloadManager::Running
{
    QPointer<GroupProcess> process;
    LineSplitter stdoutLines;
    LineSplitter stderrLines;
    QStringList stdoutTail;
    QStringList stderrTail;
    bool cancelled = false;
    QElapsedTimer sinceOutput; // started with the process, restarted by every read
    QTimer *stallTimer = nullptr; // owned by the process
    bool stalled = false;
    // What the post-processing step under way writes: removed if the download is stopped
    // before the step has ended, so no cut-off file looks finished.
    QStringList partialFiles;
    QDateTime partialSince;
    QString source; // the downloaded file, never removed
};

QString DownloadManager::buildDownloadCommand(const QString &ytDlpPath, const DownloadRequest &request,
    const QStringList &jsRuntimeArgs, const QStringList &ffmpegArgs, const QStringList &cookieArgs)
{
    QStringList args;
    args += jsRuntimeArgs;
    args += ffmpegArgs;
    args += cookieArgs;
    if (!request.downloadPlaylist)
        args << u"--no-playlist"_s;
    QString folder = request.outputDir;
    folder.replace(u'\'', u"'\\''"_s);
    args << u"-o"_s << u'\'' + folder + u"/%(title)s.%(ext)s'"_s;
    if (request.preset != DownloadPreset::Custom) {
        for (const QString &word : presetArguments(request.preset))
            args << quoteIfNeeded(word);
    }
    // Split here rather than by the shell, so the text is only ever words: an odd quote cannot
    // reach the link, and nothing in it runs. executeDownload refuses a text that does not split.
    for (const QString &word : splitShellWords(request.customArgs).words)
        args << quoteIfNeeded(word);
    args << u"--progress"_s;
    // After "--" the link is never read as an option, whatever it starts with.
    args << u"--"_s << shellQuote(request.url);
    return quoteIfNeeded(ytDlpPath) + u' ' + args.join(u' ');
}

void DownloadManager::startDownload(const QString &url, DownloadPreset preset, const QString &customArgs,
    const QString &outputDir, bool downloadPlaylist, bool useCookies)
{
    startDownloads({ url }, DownloadOptions { preset, customArgs, outputDir, downloadPlaylist, useCookies });
}

void DownloadManager::startDownloads(const QStringList &urls, const DownloadOptions &options)
{
    QList<DownloadTask> created;
    created.reserve(urls.size());
    for (const QString &url : urls) {
        DownloadRequest request { options, url };
        const QUuid id = createTask(request, created);
        m_waiting.push_back(Waiting { id, std::move(request) });
    }
    m_tasks->appendAll(created);
    pumpQueue();
}

QUuid DownloadManager::createTask(const DownloadRequest &request, QList<DownloadTask> &created)
{
    const QString presetName = rawValue(request.preset);
    qCInfo(lcEngine, "[Quillbox] 开始下载任务 - URL: %ls, 预设: %ls, 输出目录: %ls", qUtf16Printable(request.url),
        qUtf16Printable(presetName), qUtf16Printable(request.outputDir));
    addLog(u"开始下载任务"_s, LogEntry::LogType::Download);
    info(u"URL: "_s + request.url);
    info(u"预设: "_s + presetName);
    const DownloadTask task = DownloadTask::create(request.url);
    created.append(task);
    qCInfo(lcEngine, "[Quillbox] 任务已添加 - ID: %ls", qUtf16Printable(task.id.toString(QUuid::WithoutBraces)));
    return task.id;
}

void DownloadManager::pumpQueue()
{
    // Downloads wait for the first round of discovery (the yt-dlp path and version, which decides
    // the runtime words, the runtime and ffmpeg), then start in order as slots free up. Every
    // probe has a time limit, so this wait ends.
    if (!m_versionProbed || !m_runtimeDetected || !m_ffmpegDetected)
        return;
    if (m_waiting.empty() || runningCount() >= m_maxConcurrent)
        return;
    const Waiting job = std::move(m_waiting.front());
    m_waiting.pop_front();
    executeDownload(job);

    // Starting a child holds this thread until the shell runs, so when many downloads begin
    // together they start one per event-loop turn and the window keeps drawing in between.
    if (!m_waiting.empty() && runningCount() < m_maxConcurrent && !m_pumpScheduled) {
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

void DownloadManager::executeDownload(const Waiting &job)
{
    const QUuid taskId = job.taskId;
    DownloadRequest request = job.request;
    // A folder typed as "~/Videos" means the home folder's, as it would in a shell.
    if (request.outputDir == u"~"_s || request.outputDir.startsWith(u"~/"_s))
        request.outputDir = m_locations.home + request.outputDir.mid(1);
    qCInfo(lcEngine, "[Quillbox] [executeDownload] 任务ID: %ls, URL: %ls",
        qUtf16Printable(taskId.toString(QUuid::WithoutBraces)), qUtf16Printable(request.url));
    m_tasks->update(taskId, [](DownloadTask &task) { task.status = DownloadStatus::Preparing; });

    qCInfo(lcEngine, "[Quillbox] [executeDownload] 开始构建命令...");
    info(u"构建下载命令..."_s);
    const QStringList runtimeArgs = jsRuntimeArgs();
    if (!runtimeArgs.isEmpty()) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 注入 JS 运行时: %ls", qUtf16Printable(runtimeArgs.join(u' ')));
        info(u"JS 运行时: "_s + runtimeArgs.value(1));
    } else {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] ⚠️ 未检测到 JS 运行时，YouTube 下载可能失败");
    }
    const QStringList ffmpegWords = ffmpegArgs();
    if (!ffmpegWords.isEmpty())
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 注入 FFmpeg 路径: %ls", qUtf16Printable(ffmpegWords.value(1)));
    const CookieWords cookies = request.useCookies ? cookieArgs() : CookieWords();
    if (!cookies.words.isEmpty()) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] %ls", qUtf16Printable(cookies.notice));
        info(cookies.notice);
    }
    if (!request.downloadPlaylist) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 不下载播放列表");
        info(u"只下载当前视频"_s);
    }
    if (request.preset != DownloadPreset::Custom) {
        const QStringList &words = presetArguments(request.preset);
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 使用预设: %ls, 参数数组: [%ls]",
            qUtf16Printable(rawValue(request.preset)), qUtf16Printable(words.join(u", "_s)));
        info(u"预设参数: "_s + words.join(u' '));
    }
    if (!request.customArgs.isEmpty())
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 自定义参数: %ls", qUtf16Printable(request.customArgs));

    const QString command = buildDownloadCommand(m_ytDlpPath, request, runtimeArgs, ffmpegWords, cookies.words);
    qCInfo(lcEngine, "%s", separatorLine);
    qCInfo(lcEngine, "[Quillbox] [executeDownload] 完整命令:");
    qCInfo(lcEngine, "[Quillbox] %ls", qUtf16Printable(command));
    qCInfo(lcEngine, "%s", separatorLine);
    info(u"执行命令: "_s + command);

    // yt-dlp would fail late and obscurely on a folder it cannot create; say so plainly instead.
    if (request.outputDir.isEmpty()) {
        failToLaunch(taskId, u"未设置输出目录"_s);
        return;
    }
    if (QDir::isRelativePath(request.outputDir)) {
        failToLaunch(taskId, u"输出目录必须是完整路径: "_s + request.outputDir);
        return;
    }
    if (const ShellWords custom = splitShellWords(request.customArgs); !custom.ok()) {
        failToLaunch(taskId, custom.error + u": "_s + request.customArgs);
        return;
    }
    if (!QDir().mkpath(request.outputDir)) {
        failToLaunch(taskId, u"无法创建输出目录: "_s + request.outputDir, explainFolderFailure(request.outputDir));
        return;
    }

    auto *running = new Running;
    auto *process = new GroupProcess(this);
    running->process = process;
    m_active.insert(taskId, running);
    Q_EMIT runningCountChanged();

    process->setProgram(shellProgram());
    process->setArguments({ u"-c"_s, command });
    process->setStandardInputFile(QProcess::nullDevice());
    connect(process, &QProcess::readyReadStandardOutput, this, [this, taskId] { readOutput(taskId, false); });
    connect(process, &QProcess::readyReadStandardError, this, [this, taskId] { readOutput(taskId, true); });
    connect(process, &QProcess::started, this, [this, taskId, process, running] {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 进程已启动, PID: %lld", process->processId());
        // Stopped while the shell was still starting: the group exists only now.
        if (running->cancelled)
            process->signalGroup(SIGTERM);
        m_tasks->update(taskId, [](DownloadTask &task) {
            if (task.status == DownloadStatus::Preparing)
                task.status = DownloadStatus::Downloading;
        });
        QTimer::singleShot(WatchdogMs, process, [this, taskId] {
            if (m_active.contains(taskId))
                qCInfo(lcEngine, "[Quillbox] [executeDownload] 进程运行超过30秒，可能是卡住了");
        });
        running->sinceOutput.start();
        running->stallTimer = new QTimer(process);
        running->stallTimer->setSingleShot(true);
        connect(running->stallTimer, &QTimer::timeout, this, [this, taskId] { checkStall(taskId); });
        running->stallTimer->start(m_stallNoticeMs);
    });
    connect(process, &QProcess::errorOccurred, this, [this, taskId, process](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        const QString message = process->errorString();
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 异常: %ls", qUtf16Printable(message));
        const QString explanation = explainLaunchFailure(process->program(), message);
        removeRunning(taskId);
        failToLaunch(taskId, message, explanation);
        pumpQueue();
    });
    connect(process, &QProcess::finished, this, [this, taskId](int exitCode, QProcess::ExitStatus status) {
        completeDownload(taskId, exitCode, status == QProcess::CrashExit);
    });

    qCInfo(lcEngine, "[Quillbox] [executeDownload] 启动进程...");
    process->start();
}

void DownloadManager::failToLaunch(
    const QUuid &taskId, const QString &message, const std::optional<QString> &explanation)
{
    addLog(u"❌ "_s + message, LogEntry::LogType::Error);
    if (explanation)
        addLog(*explanation, LogEntry::LogType::Error);
    m_tasks->update(taskId, [&message, &explanation](DownloadTask &task) {
        task.status = DownloadStatus::Failed;
        task.errorMessage = message;
        task.explanation = explanation;
    });
}

void DownloadManager::readOutput(const QUuid &taskId, bool standardError)
{
    Running *running = m_active.value(taskId);
    if (!running || !running->process)
        return;
    GroupProcess *process = running->process;
    const QByteArray bytes = standardError ? process->readAllStandardError() : process->readAllStandardOutput();
    if (!bytes.isEmpty()) {
        running->sinceOutput.restart();
        if (running->stalled) {
            running->stalled = false;
            m_tasks->update(taskId, [](DownloadTask &task) { task.notice.clear(); });
            if (running->stallTimer)
                running->stallTimer->start(m_stallNoticeMs);
        }
    }
    LineSplitter &splitter = standardError ? running->stderrLines : running->stdoutLines;
    ProgressUpdate update = handleLines(taskId, splitter.feed(bytes), standardError);

    // yt-dlp starts each redraw with "\r", so its newest progress line is finished only by the
    // next one. Read that line's progress now, so the queue is not one update behind; it reaches
    // the log once finished. A token of a half-written line cannot match early: each ends in
    // "%", "iB" or "iB/s".
    const QString drawing = splitter.pending();
    if (drawing.contains(u"[download]") && drawing.contains(u'%')) {
        const ProgressUpdate newest = parseProgress({ drawing });
        if (newest.progress)
            update.progress = newest.progress;
        if (newest.speed)
            update.speed = newest.speed;
        if (newest.size)
            update.size = newest.size;
    }
    applyProgress(taskId, update);
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
        if (update.errorMessage)
            task.errorMessage = update.errorMessage;
    });
}

ProgressUpdate DownloadManager::handleLines(const QUuid &taskId, const QStringList &lines, bool standardError)
{
    if (lines.isEmpty())
        return {};
    Running *running = m_active.value(taskId);
    if (running) {
        keepTail(standardError ? running->stderrTail : running->stdoutTail, lines);
        trackConversion(*running, lines);
    }

    if (lcEngine().isDebugEnabled()) {
        const char *stream = standardError ? "[stderr]" : "[stdout]";
        qCDebug(lcEngine, "[Quillbox] %s %ls", stream, qUtf16Printable(lines.join(u'\n')));
    }
    for (const QString &line : lines)
        addLog(line, standardError ? typeOfStderrLine(line) : LogEntry::LogType::Download);

    return parseProgress(lines);
}

void DownloadManager::completeDownload(const QUuid &taskId, int exitCode, bool crashed)
{
    Running *running = m_active.value(taskId);
    if (!running)
        return;
    // Whatever was read but not yet passed on, then the last partial lines.
    readOutput(taskId, false);
    readOutput(taskId, true);
    const QStringList stdoutRest = running->stdoutLines.finish();
    const QStringList stderrRest = running->stderrLines.finish();
    applyProgress(taskId, handleLines(taskId, stdoutRest, false));
    applyProgress(taskId, handleLines(taskId, stderrRest, true));

    qCInfo(lcEngine, "[Quillbox] [executeDownload] 进程结束, 退出码: %d", exitCode);
    qCInfo(lcEngine, "[Quillbox] [executeDownload] stdout:\n%ls", qUtf16Printable(stdoutRest.join(u'\n')));
    qCInfo(lcEngine, "[Quillbox] [executeDownload] stderr:\n%ls", qUtf16Printable(stderrRest.join(u'\n')));

    const bool cancelled = running->cancelled;
    const QStringList stdoutTail = running->stdoutTail;
    const QStringList stderrTail = running->stderrTail;
    removeRunning(taskId);

    const DownloadTask *task = m_tasks->find(taskId);
    if (!task) {
        pumpQueue();
        return;
    }
    if (cancelled) {
        // A stopped download stays cancelled, whatever its exit status.
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 任务已取消, 退出码: %d", exitCode);
    } else if (exitCode == 0 && !crashed) {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 下载成功!");
        info(u"✅ 下载完成！"_s);
        m_tasks->update(taskId, [](DownloadTask &task) {
            task.status = DownloadStatus::Completed;
            task.progress = 1.0;
            task.endTime = QDateTime::currentDateTime();
        });
    } else {
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 下载失败, 错误码: %d", exitCode);
        addLog(u"❌ 下载失败 (错误码: %1)"_s.arg(exitCode), LogEntry::LogType::Error);
        QString message = u"下载失败 (错误码: %1)"_s.arg(exitCode);

        QStringList kept;
        if (!stderrTail.isEmpty()) {
            for (const QString &line : stderrTail) {
                if (line.contains(u"ERROR") || line.contains(u"error") || line.contains(u"WARNING"))
                    kept.append(line);
            }
        } else {
            for (const QString &line : stdoutTail) {
                if (line.contains(u"ERROR") || line.contains(u"error"))
                    kept.append(line);
            }
        }
        if (!kept.isEmpty()) {
            message = kept.mid(0, 3).join(u'\n');
            addLog(message, LogEntry::LogType::Error);
        }
        const std::optional<QString> explanation
            = explainFailure(FailedRun { stderrTail + stdoutTail, exitCode, crashed, m_ytDlpPath });
        if (explanation)
            addLog(*explanation, LogEntry::LogType::Error);
        m_tasks->update(taskId, [&message, &explanation](DownloadTask &task) {
            task.status = DownloadStatus::Failed;
            task.errorMessage = message;
            task.explanation = explanation;
        });
        qCInfo(lcEngine, "[Quillbox] [executeDownload] 错误信息: %ls", qUtf16Printable(message));
    }
    pumpQueue();
}

void DownloadManager::checkStall(const QUuid &taskId)
{
    Running *running = m_active.value(taskId);
    if (!running || running->cancelled || !running->stallTimer)
        return;
    // The timer is not restarted by every read; it looks at the time of the last one instead.
    const qint64 quiet = running->sinceOutput.elapsed();
    if (quiet < m_stallNoticeMs) {
        running->stallTimer->start(int(m_stallNoticeMs - quiet));
        return;
    }
    running->stalled = true;
    const QString notice = u"%1 秒无响应"_s.arg(m_stallNoticeMs / 1000);
    const DownloadTask *task = m_tasks->find(taskId);
    qCInfo(lcEngine, "[Quillbox] [executeDownload] %ls: %ls", qUtf16Printable(notice),
        qUtf16Printable(task ? task->url : QString()));
    addLog(u"⚠️ "_s + notice + u"："_s + (task ? task->url : QString()), LogEntry::LogType::Warning);
    m_tasks->update(taskId, [&notice](DownloadTask &task) { task.notice = notice; });
}

void DownloadManager::trackConversion(Running &running, const QStringList &lines)
{
    // yt-dlp waits for ffmpeg in silence, so any later line means the step announced before it
    // has ended, one way or the other. Once stopped, what it says on its way out changes nothing.
    if (running.cancelled)
        return;
    for (const QString &line : lines) {
        running.partialFiles.clear();
        if (const std::optional<QStringList> files = conversionFiles(line)) {
            running.partialFiles = *files;
            running.partialFiles.removeAll(running.source);
            running.partialSince = QDateTime::currentDateTime();
        } else if (const std::optional<QString> file = downloadedFile(line)) {
            running.source = *file;
        }
    }
}

void DownloadManager::removePartialConversion(Running &running)
{
    const QString folder = running.process && !running.process->workingDirectory().isEmpty()
        ? running.process->workingDirectory()
        : QDir::currentPath();
    for (const QString &file : std::as_const(running.partialFiles)) {
        const QFileInfo written(QDir(folder).absoluteFilePath(file));
        // Only what was written since the step began: a file that was already there before
        // and untouched since is not the step's.
        if (!written.isFile() || written.lastModified() < running.partialSince.addSecs(-2))
            continue;
        if (QFile::remove(written.absoluteFilePath())) {
            qCInfo(lcEngine, "[Quillbox] [executeDownload] 已删除未完成的文件: %ls",
                qUtf16Printable(written.absoluteFilePath()));
            info(u"已删除未完成的转换文件: "_s + written.absoluteFilePath());
        }
    }
    running.partialFiles.clear();
}

void DownloadManager::removeRunning(const QUuid &taskId)
{
    Running *running = m_active.take(taskId);
    if (!running)
        return;
    if (running->stalled)
        m_tasks->update(taskId, [](DownloadTask &task) { task.notice.clear(); });
    // The shell of a stopped download has gone; whatever it started and is still slow to
    // stop (an ffmpeg mid-merge) goes with the group now rather than after the grace period.
    if (running->cancelled && running->process)
        running->process->signalGroup(SIGKILL);
    if (running->cancelled)
        removePartialConversion(*running);
    if (running->process) {
        running->process->disconnect(this);
        running->process->deleteLater();
    }
    delete running;
    Q_EMIT runningCountChanged();
}

void DownloadManager::cancelAllDownloads()
{
    for (const Waiting &job : m_waiting)
        m_tasks->update(job.taskId, [](DownloadTask &task) { task.status = DownloadStatus::Cancelled; });
    m_waiting.clear();

    for (auto it = m_active.cbegin(); it != m_active.cend(); ++it) {
        Running *running = it.value();
        if (running->cancelled)
            continue;
        running->cancelled = true;
        m_tasks->update(it.key(), [](DownloadTask &task) { task.status = DownloadStatus::Cancelled; });
        GroupProcess *process = running->process;
        if (!process)
            continue;
        process->signalGroup(SIGTERM);
        QTimer::singleShot(CancelGraceMs, process, [process] { process->signalGroup(SIGKILL); });
    }
}

void DownloadManager::shutdown()
{
    cancelAllDownloads();
    QList<QPointer<GroupProcess>> processes;
    QList<qint64> groups;
    for (Running *running : std::as_const(m_active)) {
        processes.append(running->process);
        if (running->process)
            groups.append(running->process->groupId());
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
    for (Running *running : std::as_const(m_active))
        removePartialConversion(*running);
}
