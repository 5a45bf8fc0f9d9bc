#include "engine/errorexplanation.h"

#include "model/videoinfo.h"

#include <QCoreApplication>
#include <QList>
#include <QRegularExpression>
#include <QUrl>

#include <algorithm>
#include <csignal>
#include <functional>

using namespace Qt::StringLiterals;

namespace {
// A sentence of advice that several explanations end with, in place of their "%1".
enum class Advice { None, SettingsRecheck, UpdateYtDlp, Cookies };

QString adviceText(Advice advice)
{
    const QString recheck = QCoreApplication::translate("ErrorExplanation", "然后在“设置”中重新检测。");
    switch (advice) {
    case Advice::None:
        break;
    case Advice::SettingsRecheck:
        return recheck;
    case Advice::UpdateYtDlp:
        return QCoreApplication::translate("ErrorExplanation", "请在“设置”中更新 yt-dlp，%1").arg(recheck);
    case Advice::Cookies:
        return QCoreApplication::translate("ErrorExplanation",
            "请在“Cookie 管理”中选择已登录该网站的浏览器或 Cookie 文件，并打开“Cookie”开关后重试。");
    }
    return {};
}

struct Rule
{
    QRegularExpression pattern;
    // Translated when it is used; "%1" takes the advice, or else the pattern's first captured group.
    const char *text = nullptr;
    Advice advice = Advice::None;
    bool toolchainFix = false;
    // A tool problem seen anywhere in the output is the likelier cause of this symptom: formats
    // missing, or YouTube refusing (403) streams whose challenge was not solved.
    bool toolchainLikelier = false;
};

enum RuleFlags { Plain = 0, ToolchainFix = 1, ToolchainLikelier = 2 };

// Earlier rules win: the specific cause before the general symptom (a private video is also
// "unavailable", a file name too long also cannot be opened for writing).
const QList<Rule> &rules()
{
    const auto rule = [](const char16_t *pattern, const char *text, Advice advice = Advice::None, int flags = Plain) {
        return Rule { QRegularExpression(QString::fromUtf16(pattern), QRegularExpression::CaseInsensitiveOption), text,
            advice, (flags & ToolchainFix) != 0, (flags & ToolchainLikelier) != 0 };
    };
    static const QList<Rule> table {
        // The toolchain's own causes come first, the first of them being the likeliest.
        rule(u"\\b(deno|node|bun|quickjs)\\S* \\(unsupported\\)|Unsupported JS runtime|"
             u"JS runtime .* is not supported|unsupported JavaScript runtime|bun version \\S+ is not supported|"
             u"Challenge solver .* script version .* is not supported",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "JavaScript 运行时不受支持：yt-dlp 不能使用这台电脑上的运行时（版本太旧或名称不对）来解析 YouTube 视频。请安装或升级 Deno（https://deno.com），%1"),
            Advice::SettingsRecheck, ToolchainFix),
        rule(u"No supported JavaScript runtime",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "缺少 JavaScript 运行时：YouTube 需要它来解析视频。请安装 Deno（https://deno.com），%1"),
            Advice::SettingsRecheck, ToolchainFix),
        rule(u"n challenge solving failed|Signature solving failed|challenge solver",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "没能解开 YouTube 的验证（n challenge）：需要可用的 JavaScript 运行时和较新的 yt-dlp。请安装 Deno（https://deno.com），并在“设置”中更新 yt-dlp，%1"),
            Advice::SettingsRecheck, ToolchainFix),
        rule(u"nsig extraction failed",
            QT_TRANSLATE_NOOP(
                "ErrorExplanation", "yt-dlp 版本太旧，解不开 YouTube 的验证（nsig）：下载会被拒绝或缺少格式。%1"),
            Advice::UpdateYtDlp, ToolchainFix),
        rule(u"Only images are available|storyboard",
            QT_TRANSLATE_NOOP(
                "ErrorExplanation", "yt-dlp 版本太旧，跟不上网站的变化：只拿到了预览图，没有视频格式。%1"),
            Advice::UpdateYtDlp, ToolchainFix | ToolchainLikelier),
        // A subtitle file that cannot be fetched stops the whole download, whatever the reason
        // (a 404, YouTube's 429): the cause is the subtitle choice, not the link.
        rule(u"Unable to download video subtitles for '([^']*)'",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "字幕下载失败：yt-dlp 没能取得“%1”字幕，因此整个下载停止了，视频没有下载。请在“下载选项”中关闭字幕或换一种语言后重试。")),
        rule(u"does not look like a Netscape format cookies file|invalid Netscape format cookies file|"
             u"must be Netscape formatted",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "Cookie 文件无法使用：它不是 yt-dlp 接受的 Netscape 格式（cookies.txt）。请在“Cookie 管理”中重新导出 Chrome Cookie，或选择另一个 Cookie 文件。")),
        rule(u"could not find \\S+ cookies database|could not copy \\S+ cookie database|failed to decrypt|"
             u"cannot decrypt",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "读不到浏览器的 Cookie：所选浏览器的 Cookie 数据库找不到或无法读取。请在“Cookie 管理”中换一个浏览器或使用 Cookie 文件；浏览器正在运行时，关闭它后再试。")),
        rule(u"cookies are no longer valid",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "Cookie 已失效：请在浏览器中重新登录该网站，然后在“Cookie 管理”中重新导出或选择该浏览器后重试。")),
        rule(u"confirm (that )?you.?re not a bot",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "需要登录：网站要求确认你不是机器人。%1YouTube 还需要 JavaScript 运行时（Deno）：请在“设置”中确认已检测到它。"),
            Advice::Cookies, ToolchainFix),
        rule(u"confirm your age|age.restricted|inappropriate for some users",
            QT_TRANSLATE_NOOP("ErrorExplanation", "需要登录：这个视频有年龄限制，只有登录的账号才能观看。%1"),
            Advice::Cookies),
        rule(u"members.only|join this channel",
            QT_TRANSLATE_NOOP("ErrorExplanation", "需要登录：这个视频仅对频道会员开放。%1"), Advice::Cookies),
        rule(u"private video|this video is private",
            QT_TRANSLATE_NOOP("ErrorExplanation", "需要登录：这是私享视频，只有获得授权的账号才能观看。%1"),
            Advice::Cookies),
        rule(u"sign in|HTTP Error 401\\b|log ?in required|registered users|requires? authentication|logged.in",
            QT_TRANSLATE_NOOP("ErrorExplanation", "需要登录：这个视频只对登录的用户开放。%1"), Advice::Cookies),
        rule(u"geo.?restrict|not available (from|in) your (location|country)|available in your country|"
             u"in your country",
            QT_TRANSLATE_NOOP(
                "ErrorExplanation", "地区限制：这个视频在你所在的地区不可用。可以在“下载选项”中填写代理后重试。")),
        rule(u"HTTP Error 404\\b|HTTP Error 410\\b|video unavailable|has been removed|no longer available",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "链接不存在或已删除（HTTP 404/410）：请检查链接是否完整、正确，或视频是否已被删除。")),
        rule(u"HTTP Error 403\\b|HTTP Error 429\\b|Too Many Requests",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "访问被拒绝或请求过多（HTTP 403/429）：网站暂时拒绝了下载。请稍等一会儿再试，或在“设置”中调低“同时下载数”，也可以在“Cookie 管理”中使用 Cookie。"),
            Advice::None, ToolchainLikelier),
        rule(u"ffprobe and ffmpeg not found|ffmpeg not found|ffprobe not found|ffmpeg is not installed|"
             u"ffmpeg-location .* does not exist",
            QT_TRANSLATE_NOOP("ErrorExplanation", "找不到 FFmpeg：提取音频和合并音视频都需要它。请安装 FFmpeg，%1"),
            Advice::SettingsRecheck),
        rule(u"unable to obtain file audio codec|does not contain any audio|no audio stream|"
             u"does not contain any stream",
            QT_TRANSLATE_NOOP(
                "ErrorExplanation", "这个视频没有音轨，无法提取音频：请换用“默认”或“最佳画质”预设下载。")),
        rule(u"Requested format is not available|No video formats found",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "没有所需的格式：这个视频不提供所选预设要求的格式。请换一个预设，或用“查看可用格式”查看后在自定义参数中选择。"),
            Advice::None, ToolchainLikelier),
        rule(u"File name too long|Errno 36\\b",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "文件名太长：视频标题超出了系统允许的长度。请选择“自定义”预设，加上 --trim-filenames 150 后重试。")),
        rule(u"No space left on device|Errno 28\\b|Disk quota exceeded",
            QT_TRANSLATE_NOOP(
                "ErrorExplanation", "磁盘空间不足：输出目录所在的磁盘已满。请清理空间，或换一个输出目录。")),
        rule(u"Permission denied|Read-only file system|Errno 13\\b|Errno 30\\b|unable to open for writing",
            QT_TRANSLATE_NOOP(
                "ErrorExplanation", "无法写入输出目录：没有写入权限，或磁盘是只读的。请换一个可以写入的输出目录。")),
        rule(u"ffmpeg exited with code|Conversion failed|Postprocessing:|ffprobe",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "FFmpeg 处理失败：转换或合并时出错。请在“设置”中确认 FFmpeg 可用，或换一个预设再试。")),
        rule(u"is not a valid URL",
            QT_TRANSLATE_NOOP(
                "ErrorExplanation", "不是有效的链接：请确认它是视频页面的完整地址，以 http:// 或 https:// 开头。")),
        rule(u"Unsupported URL",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "不支持的链接：yt-dlp 在这个页面上找不到可以下载的视频。请确认链接指向视频页面本身。")),
        rule(u"Connection refused|Errno 111\\b",
            QT_TRANSLATE_NOOP(
                "ErrorExplanation", "网络连接失败：对方拒绝了连接。请检查链接中的网址和端口，稍后再试。")),
        rule(u"name resolution|Name or service not known|nodename nor servname|getaddrinfo failed|"
             u"No address associated",
            QT_TRANSLATE_NOOP("ErrorExplanation", "网络连接失败：无法解析网址中的域名。请检查网址拼写和网络连接。")),
        rule(u"timed out|Errno 110\\b|Errno 60\\b",
            QT_TRANSLATE_NOOP("ErrorExplanation", "网络连接失败：连接超时。请检查网络或代理设置后重试。")),
        rule(u"Network is unreachable|Connection reset|Connection aborted|Remote end closed",
            QT_TRANSLATE_NOOP("ErrorExplanation", "网络连接失败：连接中断。请检查网络后重试。")),
        rule(u"(?:no such|ambiguous) option: (\\S+)",
            QT_TRANSLATE_NOOP("ErrorExplanation",
                "参数无法识别：yt-dlp 不认识“%1”，通常是 yt-dlp 版本太旧。请在“设置”中更新 yt-dlp，或检查自定义参数。"),
            Advice::None, ToolchainFix),
        // An extractor that no longer understands the site; yt-dlp asks for a bug report, and the
        // usual answer is a newer yt-dlp. Last: network failures say this too.
        rule(u"Unable to extract|Confirm you are on the latest version|please report this issue",
            QT_TRANSLATE_NOOP("ErrorExplanation", "yt-dlp 版本可能太旧，跟不上网站的变化：它读不懂这个页面。%1"),
            Advice::UpdateYtDlp, ToolchainFix),
    };
    return table;
}

bool isErrorLine(const QString &line)
{
    return line.contains(u"ERROR") || line.contains(u"error:");
}

Explanation explanationOf(const Rule &rule, const QRegularExpressionMatch &match)
{
    const QString text = QCoreApplication::translate("ErrorExplanation", rule.text);
    if (rule.advice != Advice::None)
        return Explanation { text.arg(adviceText(rule.advice)), rule.toolchainFix };
    return Explanation { text.contains(u"%1") ? text.arg(match.captured(1)) : text, rule.toolchainFix };
}

// The first rule that one of `lines` matches, with its text filled in; a symptom that a tool
// problem explains better gives way to `toolchainCause`.
std::optional<Explanation> firstMatch(const QStringList &lines, const std::optional<Explanation> &toolchainCause)
{
    for (const Rule &rule : rules()) {
        for (const QString &line : lines) {
            const QRegularExpressionMatch match = rule.pattern.match(line);
            if (!match.hasMatch())
                continue;
            if (rule.toolchainLikelier && toolchainCause)
                return toolchainCause;
            return explanationOf(rule, match);
        }
    }
    return std::nullopt;
}

// The first of the leading toolchain rules that any line, warning or error, matches.
std::optional<Explanation> toolchainCause(const QStringList &lines)
{
    for (const Rule &rule : rules()) {
        if (!rule.toolchainFix || rule.toolchainLikelier)
            break;
        for (const QString &line : lines) {
            if (const QRegularExpressionMatch match = rule.pattern.match(line); match.hasMatch())
                return explanationOf(rule, match);
        }
    }
    return std::nullopt;
}

bool killedFromOutside(const FailedRun &run)
{
    // A shell that did not replace itself with the tool reports a signal as 128 + its number.
    static constexpr int stopSignals[] = { SIGKILL, SIGTERM, SIGHUP, SIGINT };
    return run.crashed || std::any_of(std::begin(stopSignals), std::end(stopSignals), [&run](int signal) {
        return run.exitCode == 128 + signal;
    });
}
} // namespace

std::optional<Explanation> describeFailure(const FailedRun &run)
{
    // The shell's own statuses: nothing to run, or nothing it may run.
    if (run.exitCode == 127 && !run.crashed)
        return Explanation { QCoreApplication::translate(
                                 "ErrorExplanation", "找不到 yt-dlp（%1）：请安装 yt-dlp，或在“设置”中指定它的路径。")
                                 .arg(run.ytDlpPath),
            true };
    if (run.exitCode == 126 && !run.crashed)
        return Explanation {
            QCoreApplication::translate("ErrorExplanation",
                "yt-dlp 无法运行（%1）：它不是可执行文件或没有执行权限。请检查它，或在“设置”中指定另一个路径。")
                .arg(run.ytDlpPath),
            true
        };

    // With a proxy, a connection that fails is first of all the proxy's: the link's host is only
    // ever reached through it.
    static const QRegularExpression unreachable(u"Connection refused|Errno 111\\b|timed out|Errno 110\\b|"
                                                u"ProxyError|Unable to connect to proxy|Tunnel connection failed|"
                                                u"SOCKS|Connection reset"_s);
    if (!run.proxy.isEmpty() && std::any_of(run.lines.cbegin(), run.lines.cend(), [](const QString &line) {
            return isErrorLine(line) && unreachable.match(line).hasMatch();
        })) {
        const QUrl proxy(run.proxy);
        return Explanation {
            QCoreApplication::translate("ErrorExplanation",
                "无法通过代理连接：“下载选项”中设置了代理 %1。请确认代理正在运行、地址和端口正确，或清除代理后重试。")
                .arg(proxy.adjusted(QUrl::RemoveUserInfo).toString()),
            false
        };
    }

    const std::optional<Explanation> toolchain = toolchainCause(run.lines);
    // The error lines say what ended the run; warnings before them only sometimes do.
    QStringList errorLines;
    std::copy_if(run.lines.cbegin(), run.lines.cend(), std::back_inserter(errorLines), isErrorLine);
    if (auto explanation = firstMatch(errorLines, toolchain))
        return explanation;
    if (auto explanation = firstMatch(run.lines, toolchain))
        return explanation;
    if (killedFromOutside(run))
        return Explanation { QCoreApplication::translate(
            "ErrorExplanation", "下载进程被外部结束（可能是系统内存不足，或被其他程序终止）：可以重新开始下载。") };
    return std::nullopt;
}

std::optional<QString> explainFailure(const FailedRun &run)
{
    const std::optional<Explanation> explanation = describeFailure(run);
    return explanation ? std::optional<QString>(explanation->text) : std::nullopt;
}

QString explainLaunchFailure(const QString &shell, const QString &reason)
{
    return QCoreApplication::translate("ErrorExplanation",
        "无法启动命令解释器 %1（%2）：下载没有开始。请检查 QUILLBOX_SHELL 环境变量，或确认系统的 shell 可用。")
        .arg(shell, reason);
}

QString explainFolderFailure(const QString &folder)
{
    return QCoreApplication::translate(
        "ErrorExplanation", "无法创建输出目录 %1：没有写入权限，或路径中有同名的文件。请换一个输出目录。")
        .arg(folder);
}

bool isMissingFormat(const QStringList &lines)
{
    return std::any_of(lines.cbegin(), lines.cend(),
        [](const QString &line) { return line.contains(u"Requested format is not available"); });
}

namespace {
// Higher for a format a download would rather have: more pixels, then more bits.
double worth(const VideoFormat &format)
{
    return format.pixels() * 1e4 + format.tbr.value_or(0);
}

QString describe(const VideoFormat &format)
{
    QStringList parts { format.ext };
    if (format.resolution && *format.resolution != u"audio only")
        parts << *format.resolution;
    if (const QStringList codecs = format.codecs(); !codecs.isEmpty())
        parts << codecs.join(u'+');
    //: A format's id, then what it is: "22（mp4 · 1280x720 · avc1.64001F+mp4a.40.2）".
    return QCoreApplication::translate("ErrorExplanation", "%1（%2）").arg(format.formatId, parts.join(u" · "_s));
}
} // namespace

QString offeredFormatsNote(const QList<VideoFormat> &formats)
{
    const auto combined = [](const VideoFormat &f) { return f.hasVideo() && f.hasAudio(); };
    const auto videoOnly = [](const VideoFormat &f) { return f.hasVideo() && !f.hasAudio(); };
    const auto audioOnly = [](const VideoFormat &f) { return !f.hasVideo() && f.hasAudio(); };
    QStringList picked;
    for (const auto &fits : { std::function<bool(const VideoFormat &)>(combined), { videoOnly }, { audioOnly } }) {
        const VideoFormat *best = nullptr;
        for (const VideoFormat &format : formats) {
            if (fits(format) && (!best || worth(format) > worth(*best)))
                best = &format;
        }
        if (best)
            picked << describe(*best);
    }
    if (picked.isEmpty())
        return {};
    const QString more = formats.size() > picked.size()
        ? QCoreApplication::translate("ErrorExplanation", "，共 %n 种", nullptr, int(formats.size()))
        : QString();
    //: Between two formats in the list a link offers.
    const QString separator = QCoreApplication::translate("ErrorExplanation", "、");
    return QCoreApplication::translate("ErrorExplanation", "这个链接提供的格式有：%1%2。")
        .arg(picked.join(separator), more);
}
