#include "engine/maintenance.h"

#include "engine/shellrunner.h"
#include "engine/tooldiscovery.h"
#include "engine/videoinfofetch.h"
#include "model/appstate.h"
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

// The first `count` characters: an emoji is one character, and a pair of surrogates is never
// cut in two.
QString leftCharacters(const QString &text, qsizetype count)
{
    qsizetype end = 0;
    for (; end < text.size() && count > 0; --count)
        end += text.at(end).isHighSurrogate() && end + 1 < text.size() && text.at(end + 1).isLowSurrogate() ? 2 : 1;
    return text.left(end);
}
} // namespace

Maintenance::Maintenance(AppState *appState, ToolDiscovery *tools, QObject *parent)
    : QObject(parent)
    , m_appState(appState)
    , m_tools(tools)
{
}

void Maintenance::addLog(const QString &message, LogEntry::LogType type) const
{
    if (m_appState)
        m_appState->addLog(message, type);
}

void Maintenance::updateYtDlp(std::function<void(const UpdateResult &)> completion)
{
    m_tools->whenYtDlpPathKnown([this, completion = std::move(completion)] {
        qCInfo(lcEngine, "[Quillbox] [updateYtDlp] 开始更新 yt-dlp...");
        info(u"正在更新 yt-dlp..."_s);
        const QString command = u"source ~/.zprofile 2>/dev/null; source ~/.zshrc 2>/dev/null; "_s
            + u"which brew >/dev/null 2>&1 && brew upgrade yt-dlp 2>&1 || "_s + quoteIfNeeded(m_tools->ytDlpPath())
            + u" -U 2>&1"_s;
        const UpdateRoute route = m_tools->ytDlpUpdateRoute();
        // The tool's own words stay in the designed line; the advice follows as a line of its own.
        const auto failed = [this, completion, route](const QString &text, const QString &output) {
            addLog(text, LogEntry::LogType::Error);
            const QString advice = explainUpdateFailure(output, route);
            if (!advice.isEmpty())
                addLog(advice, LogEntry::LogType::Error);
            completion({ text, advice });
        };
        runShellCommand(
            command, PipeMode::Shared, this,
            [this, completion, failed](const ShellResult &result) {
                if (!result.launched) {
                    failed(u"❌ 更新失败: "_s + result.errorString, result.errorString);
                    return;
                }
                const QString output = result.trimmedOutput();
                qCInfo(lcEngine, "[Quillbox] [updateYtDlp] 更新输出: %ls", qUtf16Printable(output));
                if (result.exitCode != 0 || result.crashed) {
                    failed(u"❌ 更新失败: "_s + leftCharacters(output, 300), output);
                    return;
                }
                m_tools->checkYtDlpInstallation([this, completion](bool success, const QString &version) {
                    if (!success) {
                        completion({ u"✅ 命令执行成功，但版本检测失败"_s, {} });
                        return;
                    }
                    m_tools->setYtDlpVersion(version);
                    const QString text = u"✅ 更新成功，当前版本: "_s + version;
                    info(text);
                    completion({ text, {} });
                });
            },
            UpdateTimeoutMs);
    });
}

void Maintenance::listFormats(
    const QString &url, bool useCookies, std::function<void(const FormatListResult &)> completion)
{
    m_tools->whenYtDlpPathKnown([this, url, useCookies, completion = std::move(completion)] {
        info(u"正在获取可用格式..."_s);
        QStringList words { quoteIfNeeded(m_tools->ytDlpPath()), u"--list-formats"_s };
        words += m_tools->jsRuntimeArgs();
        if (useCookies)
            words += m_tools->cookieArgs().words;
        words << u"--"_s << shellQuote(url);
        const QString command = words.join(u' ');

        qCInfo(lcEngine, "%s", separatorLine);
        qCInfo(lcEngine, "[Quillbox] [listFormats] 命令: %ls", qUtf16Printable(command));
        qCInfo(lcEngine, "%s", separatorLine);
        info(u"执行命令: "_s + command);

        runShellCommand(
            command, PipeMode::Split, this,
            [this, completion](const ShellResult &result) {
                FormatListResult answer;
                if (!result.launched) {
                    addLog(u"获取格式列表失败: "_s + result.errorString, LogEntry::LogType::Error);
                    answer.error = launchError(result);
                    completion(answer);
                    return;
                }
                QString combined = result.standardOutput;
                if (!result.standardError.isEmpty())
                    combined += u'\n' + result.standardError;
                if (result.exitCode == 0 && !result.crashed) {
                    info(u"格式列表获取成功"_s);
                    answer.ok = true;
                    answer.text = combined;
                    completion(answer);
                    return;
                }
                const QString message = result.standardError.isEmpty() ? combined : result.standardError;
                addLog(u"获取格式列表失败: "_s + leftCharacters(message, 200), LogEntry::LogType::Error);
                answer.error = EngineError { managerDomain, result.exitCode, message };
                completion(answer);
            },
            ListFormatsTimeoutMs);
    });
}

VideoInfoFetch *Maintenance::fetchVideoInfo(
    const QString &url, bool useCookies, std::function<void(const VideoInfoResult &)> completion, bool logged)
{
    auto *fetch = new VideoInfoFetch(url, logged ? m_appState : nullptr, std::move(completion), this);
    m_tools->whenYtDlpPathKnown([this, fetch = QPointer<VideoInfoFetch>(fetch), url, useCookies] {
        if (!fetch)
            return;
        QStringList words { quoteIfNeeded(m_tools->ytDlpPath()), u"-J"_s, u"--no-playlist"_s };
        words += m_tools->jsRuntimeArgs();
        words += m_tools->ffmpegArgs();
        if (useCookies)
            words += m_tools->cookieArgs().words;
        words << u"--"_s << shellQuote(url);
        fetch->run(words.join(u' '));
    });
    return fetch;
}
