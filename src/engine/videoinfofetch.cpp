#include "engine/videoinfofetch.h"

#include "engine/secretarguments.h"
#include "engine/shellrunner.h"
#include "engine/tooltext.h"
#include "model/enginehost.h"
#include "model/logcategories.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {
const QString managerDomain = u"DownloadManager"_s;

bool isPlaylist(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object().value(QLatin1String("_type")).toString() == QLatin1String("playlist");
}
} // namespace

VideoInfoFetch::VideoInfoFetch(const QString &url, LogSink *log, Completion completion, QObject *parent)
    : QObject(parent)
    , m_url(url)
    , m_log(log)
    , m_completion(std::move(completion))
{
}

void VideoInfoFetch::run(const ShellCommand &command, int timeoutMs)
{
    if (m_answered || m_started)
        return;
    info(tr("正在获取视频信息..."));
    const QString shown = maskSecrets(command.text());
    qCInfo(lcEngine, "[Quillbox] [fetchVideoInfo] 命令: %ls", qUtf16Printable(shown));
    info(tr("执行命令: %1").arg(shown));
    m_started = true;
    runShellCommand(
        command, PipeMode::Split, this, [this](const ShellResult &result) { handle(result); }, timeoutMs);
}

void VideoInfoFetch::cancel()
{
    if (m_answered)
        return;
    VideoInfoResult result;
    result.cancelled = true;
    result.error = EngineError { managerDomain, -1, tr("已取消获取视频信息") };
    finish(result);
}

QString VideoInfoFetch::failureMessage(const ShellResult &result)
{
    const QStringList errorLines = result.standardError.split(u'\n').filter(QRegularExpression(u"^ERROR:"_s));
    if (!errorLines.isEmpty())
        return errorLines.join(u'\n');
    if (!result.standardError.trimmed().isEmpty())
        return result.standardError.trimmed();
    if (!result.standardOutput.trimmed().isEmpty())
        return result.standardOutput.trimmed();
    return tr("yt-dlp 以状态 %1 退出，没有给出原因").arg(result.exitCode);
}

void VideoInfoFetch::handle(const ShellResult &result)
{
    if (m_answered)
        return;
    if (!result.launched) {
        fail(EngineError { u"QProcess"_s, -1, result.errorString });
        return;
    }
    if (result.exitCode != 0 || result.crashed) {
        fail(EngineError { managerDomain, result.crashed ? -1 : result.exitCode, failureMessage(result) });
        return;
    }
    const QByteArray json = result.standardOutput.toUtf8();
    VideoInfoResult answer;
    const auto decoded = VideoInfo::fromYtDlpJson(json, m_url, &answer.playlistEntries);
    if (!decoded) {
        fail(EngineError { managerDomain, -1,
            isPlaylist(json) ? tr("这个播放列表中没有视频") : tr("yt-dlp 的输出不是可以读取的视频信息") });
        return;
    }
    answer.ok = true;
    answer.info = *decoded;
    if (answer.playlistEntries > 0)
        info(tr("链接是一个播放列表（%n 个视频），显示第一个视频的信息", nullptr, answer.playlistEntries));
    info(tr("视频信息获取成功: %1").arg(answer.info.title));
    finish(answer);
}

void VideoInfoFetch::fail(const EngineError &error)
{
    if (m_log)
        m_log->addLog(
            tr("获取视频信息失败: %1").arg(leftCharacters(error.localizedDescription, 200)), LogEntry::LogType::Error);
    VideoInfoResult result;
    result.error = error;
    finish(result);
}

void VideoInfoFetch::finish(const VideoInfoResult &result)
{
    m_answered = true;
    // The fetch is the running command's context: when it goes, the child is killed if it still
    // runs. Not at once: this may be that command's own answer.
    const Completion completion = std::move(m_completion);
    deleteLater();
    if (completion)
        completion(result);
}

void VideoInfoFetch::info(const QString &message) const
{
    if (m_log)
        m_log->addLog(message, LogEntry::LogType::Info);
}
