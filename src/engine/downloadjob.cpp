#include "engine/downloadjob.h"

#include "engine/shellrunner.h"
#include "model/logcategories.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {
void keepTail(QStringList &tail, const QStringList &lines)
{
    tail += lines;
    if (tail.size() > DownloadJob::TailLines)
        tail.remove(0, tail.size() - DownloadJob::TailLines);
}
} // namespace

DownloadJob::DownloadJob(QString command, QString folder, int stallNoticeMs, QObject *parent)
    : QObject(parent)
    , m_command(std::move(command))
    , m_folder(std::move(folder))
    , m_stallNoticeMs(stallNoticeMs)
    , m_output(m_folder)
{
}

DownloadJob::~DownloadJob()
{
    // A job dropped while its group runs takes the group with it (GroupProcess kills it).
    if (m_process)
        m_process->disconnect(this);
}

void DownloadJob::start()
{
    auto *process = new GroupProcess(this);
    m_process = process;
    // A download and everything it starts end with this application, even when it is killed.
    process->setGuarded(true);
    process->setProgram(shellProgram());
    process->setArguments({ u"-c"_s, m_command });
    process->setStandardInputFile(QProcess::nullDevice());
    // A relative path in the user's own arguments lands in the download's folder.
    process->setWorkingDirectory(m_folder);
    connect(process, &QProcess::readyReadStandardOutput, this, [this] { readOutput(false); });
    connect(process, &QProcess::readyReadStandardError, this, [this] { readOutput(true); });
    connect(process, &QProcess::started, this, [this, process] {
        // Stopped while the shell was still starting: the group exists only now.
        if (m_cancelled)
            process->signalGroup(SIGTERM);
        m_sinceOutput.start();
        m_stallTimer = new QTimer(this);
        m_stallTimer->setSingleShot(true);
        connect(m_stallTimer, &QTimer::timeout, this, &DownloadJob::checkStall);
        m_stallTimer->start(m_stallNoticeMs);
        Q_EMIT started(process->processId());
    });
    connect(process, &QProcess::errorOccurred, this, [this, process](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart || m_ended)
            return;
        m_ended = true;
        Q_EMIT failedToStart(process->errorString());
    });
    connect(process, &QProcess::finished, this,
        [this](int exitCode, QProcess::ExitStatus status) { finish(exitCode, status == QProcess::CrashExit); });
    process->start();
}

void DownloadJob::stop()
{
    if (m_cancelled || m_ended)
        return;
    m_cancelled = true;
    if (m_stallTimer)
        m_stallTimer->stop();
    GroupProcess *process = m_process;
    if (!process || process->state() == QProcess::NotRunning)
        return;
    process->signalGroup(SIGTERM);
    QTimer::singleShot(CancelGraceMs, process, [process] { process->signalGroup(SIGKILL); });
}

void DownloadJob::readOutput(bool standardError)
{
    GroupProcess *process = m_process;
    if (!process)
        return;
    const QByteArray bytes = standardError ? process->readAllStandardError() : process->readAllStandardOutput();
    if (!bytes.isEmpty() && m_sinceOutput.isValid()) {
        m_sinceOutput.restart();
        if (m_stalled) {
            m_stalled = false;
            if (m_stallTimer)
                m_stallTimer->start(m_stallNoticeMs);
            Q_EMIT stalledChanged(false);
        }
    }
    LineSplitter &splitter = standardError ? m_stderrLines : m_stdoutLines;
    handleLines(splitter.feed(bytes), standardError);

    // yt-dlp starts each redraw with "\r", so its newest progress line is finished only by the
    // next one. Read that line's progress now, so the row is not one update behind; it reaches
    // the log once finished. A token of a half-written line cannot match early: each ends in
    // "%", "iB" or "iB/s".
    if (!m_cancelled) {
        const ProgressUpdate newest = m_output.peek(splitter.pending());
        if (!newest.isEmpty())
            Q_EMIT progressed(newest);
    }
}

void DownloadJob::handleLines(const QStringList &lines, bool standardError)
{
    if (lines.isEmpty())
        return;
    keepTail(standardError ? m_stderrTail : m_stdoutTail, lines);
    Q_EMIT linesRead(lines, standardError);
    // Once stopped, what yt-dlp says on its way out changes nothing on the row.
    if (m_cancelled)
        return;
    const QString phase = m_output.phase();
    const QString path = m_output.outputPath();
    const ProgressUpdate update = m_output.read(lines);
    if (m_output.outputPath() != path)
        Q_EMIT outputPathChanged(m_output.outputPath());
    if (m_output.phase() != phase)
        Q_EMIT phaseChanged(m_output.phase());
    if (!update.isEmpty())
        Q_EMIT progressed(update);
}

void DownloadJob::finish(int exitCode, bool crashed)
{
    if (m_ended)
        return;
    // Whatever was read but not yet passed on, then the last partial lines.
    readOutput(false);
    readOutput(true);
    handleLines(m_stdoutLines.finish(), false);
    handleLines(m_stderrLines.finish(), true);
    m_ended = true;
    if (m_stallTimer)
        m_stallTimer->stop();
    if (m_stalled) {
        m_stalled = false;
        Q_EMIT stalledChanged(false);
    }
    if (m_cancelled && m_process) {
        // The shell has gone; whatever it started and is still slow to stop (an ffmpeg
        // mid-merge) goes with the group now rather than after the grace period.
        m_process->signalGroup(SIGKILL);
        removePartialFiles();
    }
    Q_EMIT ended(End { exitCode, crashed, m_cancelled, m_stdoutTail, m_stderrTail });
}

void DownloadJob::checkStall()
{
    if (m_cancelled || m_ended || !m_stallTimer)
        return;
    // The timer is not restarted by every read; it looks at the time of the last one instead.
    const qint64 quiet = m_sinceOutput.elapsed();
    if (quiet < m_stallNoticeMs) {
        m_stallTimer->start(int(m_stallNoticeMs - quiet));
        return;
    }
    m_stalled = true;
    Q_EMIT stalledChanged(true);
}

void DownloadJob::removePartialFiles()
{
    const QDateTime since = m_output.partialSince().addSecs(-2);
    for (const QString &file : m_output.partialFiles()) {
        const QFileInfo written(file);
        // Only what was written since the step began: a file that was already there before
        // and untouched since is not the step's.
        if (!written.isFile() || written.lastModified() < since)
            continue;
        if (QFile::remove(written.absoluteFilePath()))
            Q_EMIT removedPartialFile(written.absoluteFilePath());
    }
}
