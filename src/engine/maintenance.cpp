#include "engine/maintenance.h"

#include "model/enginehost.h"

#include "engine/playlistlisting.h"
#include "engine/secretarguments.h"
#include "engine/shellrunner.h"
#include "engine/tooldiscovery.h"
#include "engine/tooltext.h"
#include "engine/videoinfofetch.h"
#include "model/logcategories.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace {
const char *const separatorLine = "[Quillbox] ============================================";
const QString managerDomain = u"DownloadManager"_s;

EngineError launchError(const ShellResult &result)
{
    return EngineError { u"QProcess"_s, -1, result.errorString };
}
} // namespace

Maintenance::Maintenance(LogSink *log, ToolDiscovery *tools, QObject *parent)
    : QObject(parent)
    , m_log(log)
    , m_tools(tools)
{
}

void Maintenance::addLog(const QString &message, LogEntry::LogType type) const
{
    if (m_log)
        m_log->addLog(message, type);
}

void Maintenance::updateYtDlp(std::function<void(const UpdateResult &)> completion)
{
    m_tools->whenYtDlpPathKnown([this, completion = std::move(completion)] {
        qCInfo(lcEngine, "[Quillbox] [updateYtDlp] 开始更新 yt-dlp...");
        info(tr("正在更新 yt-dlp..."));
        ShellCommand command;
        command.syntax(u"source ~/.zprofile 2>/dev/null; source ~/.zshrc 2>/dev/null; "
                       u"which brew >/dev/null 2>&1 && brew upgrade yt-dlp 2>&1 ||"_s);
        command << m_tools->ytDlpPath() << u"-U"_s;
        command.syntax(u"2>&1"_s);
        const UpdateRoute route = m_tools->ytDlpUpdateRoute();
        // The tool's own words stay in the designed line; the advice follows as a line of its own.
        // An update that ends with an error can still have found yt-dlp already the newest.
        const auto failed = [this, completion, route](const QString &said, const QString &output) {
            const QString text = tr("❌ 更新失败: %1").arg(said);
            addLog(text, LogEntry::LogType::Error);
            const QString advice = explainUpdateFailure(output, route);
            if (!advice.isEmpty())
                addLog(advice, LogEntry::LogType::Error);
            const bool upToDate = said.contains(u"up-to-date") || said.contains(u"成功") || said.contains(u"最新");
            completion({ text, advice, upToDate });
        };
        runShellCommand(
            command, PipeMode::Shared, this,
            [this, completion, failed](const ShellResult &result) {
                if (!result.launched) {
                    failed(result.errorString, result.errorString);
                    return;
                }
                const QString output = result.trimmedOutput();
                qCInfo(lcEngine, "[Quillbox] [updateYtDlp] 更新输出: %ls", qUtf16Printable(output));
                if (result.exitCode != 0 || result.crashed) {
                    failed(leftCharacters(output, 300), output);
                    return;
                }
                m_tools->checkYtDlpInstallation([this, completion](bool success, const QString &version) {
                    if (!success) {
                        completion({ tr("✅ 命令执行成功，但版本检测失败"), {}, true });
                        return;
                    }
                    m_tools->setYtDlpVersion(version);
                    const QString text = tr("✅ 更新成功，当前版本: %1").arg(version);
                    info(text);
                    completion({ text, {}, true });
                });
            },
            UpdateTimeoutMs, /*guarded=*/false);
    });
}

void Maintenance::listFormats(const QString &url, bool useCookies,
    std::function<void(const FormatListResult &)> completion, const QStringList &networkWords)
{
    m_tools->whenYtDlpPathKnown([this, url, useCookies, networkWords, completion = std::move(completion)] {
        info(tr("正在获取可用格式..."));
        ShellCommand command(m_tools->ytDlpPath(), { u"--list-formats"_s });
        command << m_tools->jsRuntimeArgs();
        if (useCookies)
            command << m_tools->cookieArgs().words;
        command << networkWords;
        command.link(url);
        const QString shown = maskSecrets(command.text());

        qCInfo(lcEngine, "%s", separatorLine);
        qCInfo(lcEngine, "[Quillbox] [listFormats] 命令: %ls", qUtf16Printable(shown));
        qCInfo(lcEngine, "%s", separatorLine);
        info(tr("执行命令: %1").arg(shown));

        runShellCommand(
            command, PipeMode::Split, this,
            [this, completion](const ShellResult &result) {
                FormatListResult answer;
                if (!result.launched) {
                    addLog(tr("获取格式列表失败: %1").arg(result.errorString), LogEntry::LogType::Error);
                    answer.error = launchError(result);
                    completion(answer);
                    return;
                }
                QString combined = result.standardOutput;
                if (!result.standardError.isEmpty())
                    combined += u'\n' + result.standardError;
                if (result.exitCode == 0 && !result.crashed) {
                    info(tr("格式列表获取成功"));
                    answer.ok = true;
                    answer.text = combined;
                    completion(answer);
                    return;
                }
                const QString message = result.standardError.isEmpty() ? combined : result.standardError;
                addLog(tr("获取格式列表失败: %1").arg(leftCharacters(message, 200)), LogEntry::LogType::Error);
                answer.error = EngineError { managerDomain, result.exitCode, message };
                completion(answer);
            },
            ListFormatsTimeoutMs);
    });
}

VideoInfoFetch *Maintenance::fetchVideoInfo(const QString &url, bool useCookies,
    std::function<void(const VideoInfoResult &)> completion, bool logged, const QStringList &networkWords)
{
    auto *fetch = new VideoInfoFetch(url, logged ? m_log : nullptr, std::move(completion), this);
    m_tools->whenYtDlpPathKnown([this, fetch = QPointer<VideoInfoFetch>(fetch), url, useCookies, networkWords] {
        if (!fetch)
            return;
        ShellCommand command(m_tools->ytDlpPath(), { u"-J"_s, u"--no-playlist"_s });
        command << m_tools->jsRuntimeArgs() << m_tools->ffmpegArgs();
        if (useCookies)
            command << m_tools->cookieArgs().words;
        command << networkWords;
        fetch->run(command.link(url));
    });
    return fetch;
}

PlaylistListing *Maintenance::listPlaylist(
    const QString &url, bool useCookies, const QStringList &networkWords, QObject *owner)
{
    auto *listing = new PlaylistListing(url, m_log, owner);
    m_tools->whenYtDlpPathKnown([this, listing = QPointer<PlaylistListing>(listing), url, useCookies, networkWords] {
        if (!listing || !listing->isRunning())
            return;
        // "--yes-playlist": a video's link that names a list lists the list.
        ShellCommand command(m_tools->ytDlpPath(),
            { u"--flat-playlist"_s, u"--yes-playlist"_s, u"--print"_s, PlaylistListing::printTemplate() });
        command << m_tools->jsRuntimeArgs();
        if (useCookies)
            command << m_tools->cookieArgs().words;
        command << networkWords;
        listing->run(command.link(url));
    });
    return listing;
}
