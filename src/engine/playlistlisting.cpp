#include "engine/playlistlisting.h"

#include "engine/shellrunner.h"
#include "engine/tooltext.h"
#include "model/enginehost.h"
#include "model/logcategories.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

using namespace Qt::StringLiterals;

QString PlaylistListing::printTemplate()
{
    // Only what the sheet shows and a download needs: a whole -j line of a site's item can be
    // far longer than a line is allowed to be.
    return u"%(.{playlist_index,url,webpage_url,title,duration,id,ie_key,extractor_key,playlist_title,"
           "n_entries,_type,thumbnail})j"_s;
}

PlaylistListing::PlaylistListing(QString url, LogSink *log, QObject *parent)
    : QObject(parent)
    , m_url(std::move(url))
    , m_log(log)
{
}

PlaylistListing::~PlaylistListing()
{
    if (m_process)
        m_process->disconnect(this);
}

void PlaylistListing::info(const QString &message) const
{
    if (m_log)
        m_log->addLog(message, LogEntry::LogType::Info);
}

void PlaylistListing::run(const ShellCommand &command)
{
    if (m_outcome != Outcome::Running || m_process)
        return;
    info(tr("正在读取播放列表: %1").arg(m_url));
    auto *process = new GroupProcess(this);
    m_process = process;
    process->setGuarded(true);
    process->setProgram(shellProgram());
    process->setArguments({ u"-c"_s, command.text() });
    process->setStandardInputFile(QProcess::nullDevice());
    connect(process, &QProcess::readyReadStandardOutput, this,
        [this, process] { readLines(m_stdout.feed(process->readAllStandardOutput())); });
    connect(process, &QProcess::readyReadStandardError, this, [this, process] {
        for (const QString &line : m_stderr.feed(process->readAllStandardError())) {
            if (line.startsWith(u"ERROR"))
                m_errorLines.append(line);
        }
    });
    connect(process, &QProcess::errorOccurred, this, [this, process](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        m_failure = process->errorString();
        finish(-1, false);
    });
    connect(process, &QProcess::finished, this,
        [this](int exitCode, QProcess::ExitStatus status) { finish(exitCode, status == QProcess::CrashExit); });
    qCInfo(lcEngine, "[Quillbox] [playlist] %ls", qUtf16Printable(command.text()));
    process->start();
}

void PlaylistListing::cancel()
{
    end(Outcome::Cancelled, tr("已取消读取播放列表: %1").arg(m_url));
}

void PlaylistListing::stopHere()
{
    end(Outcome::Playlist,
        tr("播放列表「%1」: 读到第 %n 项时停止，只用已读到的项", nullptr, int(m_entries.size())).arg(m_title));
}

void PlaylistListing::end(Outcome outcome, const QString &message)
{
    if (m_outcome != Outcome::Running)
        return;
    m_outcome = outcome;
    if (m_process) {
        m_process->disconnect(this);
        m_process->signalGroup(SIGTERM);
        // The group is killed if it is still there when the process object goes.
        m_process->deleteLater();
    }
    info(message);
    Q_EMIT finished();
}

void PlaylistListing::readLines(const QStringList &lines)
{
    const int first = int(m_entries.size());
    for (const QString &line : lines) {
        const QByteArray bytes = line.toUtf8();
        const QJsonObject object = QJsonDocument::fromJson(bytes).object();
        if (object.isEmpty())
            continue; // a line that is not ours (a warning printed to standard output)
        if (std::optional<PlaylistEntry> entry = PlaylistEntry::fromListing(object)) {
            if (m_entries.isEmpty()) {
                m_title = object.value(u"playlist_title").toString();
                m_expected = object.value(u"n_entries").toInt();
            }
            m_entries.append(std::move(*entry));
        } else if (m_entries.isEmpty() && !m_video) {
            m_video = VideoInfo::fromYtDlpJson(bytes, m_url);
        }
    }
    if (m_entries.size() == first)
        return;
    if (first == 0)
        Q_EMIT playlistFound();
    Q_EMIT entriesAdded(first, int(m_entries.size()) - first);
}

void PlaylistListing::finish(int exitCode, bool crashed)
{
    if (m_outcome != Outcome::Running)
        return;
    if (m_process) {
        readLines(m_stdout.feed(m_process->readAllStandardOutput()));
        for (const QString &line : m_stderr.feed(m_process->readAllStandardError()) + m_stderr.finish()) {
            if (line.startsWith(u"ERROR"))
                m_errorLines.append(line);
        }
    }
    readLines(m_stdout.finish());
    const bool ok = exitCode == 0 && !crashed;
    if (!ok && m_failure.isEmpty())
        m_failure = !m_errorLines.isEmpty() ? m_errorLines.mid(0, 3).join(u'\n')
                                            : tr("yt-dlp 以状态 %1 退出").arg(crashed ? -1 : exitCode);
    if (!m_entries.isEmpty()) {
        m_outcome = Outcome::Playlist;
        info(tr("播放列表「%1」: 读取到 %n 项", nullptr, int(m_entries.size())).arg(m_title));
        if (!ok)
            info(tr("播放列表未读完: %1").arg(leftCharacters(m_failure, 200)));
    } else if (m_video) {
        m_outcome = Outcome::SingleVideo;
        m_failure.clear();
    } else if (ok) {
        m_outcome = Outcome::Empty;
        m_failure = tr("yt-dlp 没有列出任何视频");
    } else {
        m_outcome = Outcome::Failed;
    }
    Q_EMIT finished();
}
