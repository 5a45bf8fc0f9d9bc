#include "engine/toolchain.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QVersionNumber>

using namespace Qt::StringLiterals;

namespace {
// Sites that need a JavaScript runtime: what the verdicts name.
const QString jsSites = u"YouTube 等需要 JS 运行时的网站"_s;

// From "deno 2.9.6" to "deno-2.9.6": yt-dlp joins name and version with "-", and the version
// may itself hold "-" (quickjs 2024-01-13), so the name is the known prefix.
std::pair<QString, QString> splitRuntimeEntry(const QString &entry)
{
    static const QStringList names { u"quickjs-ng"_s, u"quickjs"_s, u"deno"_s, u"node"_s, u"bun"_s };
    for (const QString &name : names) {
        if (entry == name || entry.startsWith(name + u'-') || entry.startsWith(name + u' '))
            return { name, entry.mid(name.size() + 1).trimmed() };
    }
    return { entry.section(u'-', 0, 0), entry.section(u'-', 1) };
}

QString daysText(qint64 days)
{
    if (days <= 0)
        return u"今天发布"_s;
    return u"%1 天前发布"_s.arg(days);
}
} // namespace

YtDlpReport parseVerboseReport(const QString &output)
{
    YtDlpReport report;
    static const QRegularExpression versionLine(u"^\\[debug\\] yt-dlp version .*?(?:\\(([^()\\s]+)\\))?\\s*$"_s);
    static const QRegularExpression runtimesLine(u"^\\[debug\\] JS runtimes: (.*)$"_s);
    for (QString line : output.split(u'\n')) {
        line = line.trimmed();
        if (const auto match = versionLine.match(line); match.hasMatch()) {
            report.variant = match.captured(1);
            continue;
        }
        const auto match = runtimesLine.match(line);
        if (!match.hasMatch())
            continue;
        report.printedRuntimes = true;
        const QString list = match.captured(1).trimmed();
        if (list.startsWith(u"none"))
            continue;
        for (QString entry : list.split(u", "_s, Qt::SkipEmptyParts)) {
            entry = entry.trimmed();
            // "(unknown)": yt-dlp could not even ask it; not usable either.
            const bool accepted = !entry.endsWith(u"(unsupported)") && !entry.endsWith(u"(unknown)");
            entry = entry.section(u" ("_s, 0, 0);
            report.runtimes.append({ splitRuntimeEntry(entry).first, accepted });
        }
    }
    return report;
}

QString parseRuntimeVersion(const QString &name, const QString &output)
{
    const QString first = output.trimmed().section(u'\n', 0, 0).trimmed();
    static const QRegularExpression number(u"v?(\\d+(?:\\.\\d+)+|\\d{4}-\\d{2}-\\d{2})"_s);
    const QString rest = first.startsWith(name, Qt::CaseInsensitive) ? first.mid(name.size()) : first;
    const auto match = number.match(rest);
    return match.hasMatch() ? match.captured(1) : QString();
}

QString runtimeMinimum(const QString &name)
{
    if (name == u"deno")
        return u"2.3.0"_s;
    if (name == u"node")
        return u"22.0.0"_s;
    if (name == u"bun")
        return u"1.2.11"_s;
    if (name == u"quickjs")
        return u"2023-12-09"_s;
    return {};
}

bool meetsRuntimeMinimum(const QString &name, const QString &version)
{
    const QString minimum = runtimeMinimum(name);
    if (minimum.isEmpty() || version.isEmpty())
        return false;
    const auto numbers = [](QString text) { return QVersionNumber::fromString(text.replace(u'-', u'.')); };
    const QVersionNumber have = numbers(version);
    return !have.isNull() && have >= numbers(minimum);
}

std::optional<QDate> ytDlpReleaseDate(const QString &version)
{
    static const QRegularExpression dated(u"^(?:\\w+@)?(\\d{4})\\.(\\d{1,2})\\.(\\d{1,2})"_s);
    const auto match = dated.match(version.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    const QDate date(match.capturedView(1).toInt(), match.capturedView(2).toInt(), match.capturedView(3).toInt());
    return date.isValid() ? std::optional(date) : std::nullopt;
}

bool isNewerYtDlp(const QString &candidate, const QString &current)
{
    const auto parts = [](const QString &version) {
        QString text = version.trimmed();
        text = text.mid(text.indexOf(u'@') + 1);
        return QVersionNumber::fromString(text);
    };
    const QVersionNumber newer = parts(candidate);
    return !newer.isNull() && newer > parts(current);
}

UpdateRoute updateRouteFor(const QString &variant, const QString &path, const QString &keptPath)
{
    const QString real = QFileInfo(path).canonicalFilePath();
    if (!keptPath.isEmpty()
        && (path == keptPath || (!real.isEmpty() && real == QFileInfo(keptPath).canonicalFilePath())))
        return UpdateRoute::Kept;
    if (real.contains(u"/Cellar/yt-dlp/") || real.contains(u"/linuxbrew/"))
        return UpdateRoute::Homebrew;
    // A packager's build marks its variant with "*" (yt-dlp then refuses "-U"); pip's does not.
    if (variant.endsWith(u'*'))
        return UpdateRoute::PackageManager;
    if (variant == u"pip")
        return UpdateRoute::Pip;
    if (variant == u"source")
        return UpdateRoute::Source;
    if (variant == u"zip" || variant.endsWith(u"_exe"))
        return UpdateRoute::SelfUpdate;
    if (variant.isEmpty() && (real.contains(u"/site-packages/") || real.contains(u"/pipx/")))
        return UpdateRoute::Pip;
    return UpdateRoute::Unknown;
}

QString explainUpdateFailure(const QString &output, UpdateRoute route)
{
    const auto has = [&output](const char16_t *pattern) {
        return output.contains(
            QRegularExpression(QString::fromUtf16(pattern), QRegularExpression::CaseInsensitiveOption));
    };
    const QString keepOwn = u"可以在“设置”中点“安装最新 yt-dlp”，由 Quillbox 保管一份能自动更新的最新版。"_s;
    if (route == UpdateRoute::PackageManager
        || has(u"installed (yt-dlp )?(via|with) (apt|a package manager)|"
               u"package manager; Use that to update|you should use that to update"))
        return u"这个 yt-dlp 由系统的软件包管理器安装，不能自行更新，而系统软件源里的版本往往过旧。"_s + keepOwn;
    if (route == UpdateRoute::Source || has(u"cannot update when running from source"))
        return u"这个 yt-dlp 是从源代码运行的，不能自行更新，请用 git pull 更新它。"_s + keepOwn;
    if (has(u"rate limit|HTTP Error 403|HTTP Error 429|Too Many Requests"))
        return u"GitHub 暂时限制了请求次数，请过一会儿再试。"_s;
    if (has(u"Unable to obtain version info|Failed to resolve|Name or service not known|getaddrinfo|"
            u"Network is unreachable|Connection refused|timed out|URLError|HTTPSConnection"))
        return u"无法连接到 GitHub 获取新版本：请检查网络连接（或代理）后重试。"_s;
    if (has(u"Permission denied|Unable to write|Unable to remove|read-only file system"))
        return u"没有权限替换这个 yt-dlp 文件（它可能属于系统或其他用户）。"_s + keepOwn;
    if (has(u"brew: command not found|Error: .*yt-dlp"))
        return u"Homebrew 没能升级 yt-dlp，请在终端运行 brew upgrade yt-dlp 查看原因。"_s;
    if (has(u"No module named pip|externally-managed-environment"))
        return u"pip 不能在这里更新 yt-dlp。"_s + keepOwn;
    return {};
}

QString ToolVerdict::actionLabel() const
{
    switch (action) {
    case quillbox::ToolAction::InstallYtDlp:
        return u"安装最新 yt-dlp"_s;
    case quillbox::ToolAction::UpdateYtDlp:
        return u"更新 yt-dlp"_s;
    case quillbox::ToolAction::InstallDeno:
        return u"安装 Deno"_s;
    case quillbox::ToolAction::CopyFfmpegCommand:
        return u"复制命令"_s;
    case quillbox::ToolAction::OpenSettings:
        return u"修复"_s;
    case quillbox::ToolAction::None:
        break;
    }
    return {};
}

QString homebrewExecutable()
{
    for (const QString &brew : { u"/opt/homebrew/bin/brew"_s, u"/usr/local/bin/brew"_s }) {
        if (QFileInfo(brew).isExecutable())
            return brew;
    }
    return {};
}

QString ffmpegInstallCommand(bool homebrew)
{
#ifdef Q_OS_MACOS
    Q_UNUSED(homebrew);
    return u"brew install ffmpeg"_s;
#else
    return homebrew ? u"brew install ffmpeg"_s : u"sudo apt install ffmpeg"_s;
#endif
}

namespace {
ToolVerdict judgeYtDlp(const ToolchainFacts &facts)
{
    using quillbox::ToolAction;
    const QString version = facts.ytDlpVersion;
    if (version.isEmpty()) {
        if (!facts.probed)
            return { u"正在检查 yt-dlp…"_s, Tint::Gray, ToolAction::None };
        return { u"未找到可用的 yt-dlp，无法下载。点“安装最新 yt-dlp”，由 Quillbox 下载官方版本并校验。"_s, Tint::Red,
            ToolAction::InstallYtDlp };
    }

    const bool canUpdateItself = facts.route == UpdateRoute::SelfUpdate || facts.route == UpdateRoute::Kept
        || facts.route == UpdateRoute::Homebrew;
    const ToolAction fix = canUpdateItself ? ToolAction::UpdateYtDlp : ToolAction::InstallYtDlp;
    QString how;
    switch (facts.route) {
    case UpdateRoute::Kept:
        how = u"由 Quillbox 保管"_s;
        break;
    case UpdateRoute::Homebrew:
        how = u"由 Homebrew 安装"_s;
        break;
    case UpdateRoute::PackageManager:
        how = u"由系统软件包安装，不能自行更新"_s;
        break;
    case UpdateRoute::Pip:
        how = u"由 pip 安装（python3 -m pip install -U yt-dlp 可更新）"_s;
        break;
    case UpdateRoute::Source:
        how = u"从源代码运行"_s;
        break;
    case UpdateRoute::SelfUpdate:
        how = u"官方版本，可以自行更新"_s;
        break;
    case UpdateRoute::Unknown:
        break;
    }
    const std::optional<QDate> released = ytDlpReleaseDate(version);
    const qint64 age = released && facts.today.isValid() ? released->daysTo(facts.today) : -1;
    QString what = u"yt-dlp "_s + version;
    if (age >= 0)
        what += u"（"_s + daysText(age) + (how.isEmpty() ? QString() : u"，"_s + how) + u"）"_s;
    else if (!how.isEmpty())
        what += u"（"_s + how + u"）"_s;

    const QString switchAdvice
        = canUpdateItself ? u"请更新它。"_s : u"点“安装最新 yt-dlp”，改用由 Quillbox 保管、自动更新的最新版。"_s;
    // --js-runtimes arrived in 2025.11.12: anything older cannot hand a runtime to YouTube.
    if (!released || *released < QDate(2025, 11, 12))
        return { what + u" 版本过旧，"_s + jsSites + u"会下载失败。"_s + switchAdvice, Tint::Red, fix };
    if (!facts.latestYtDlp.isEmpty() && isNewerYtDlp(facts.latestYtDlp, version))
        return { what + u"，最新版本是 "_s + facts.latestYtDlp + u"。网站经常变化，"_s + switchAdvice, Tint::Orange,
            fix };
    if (age > 90)
        return { what + u"，已超过 90 天，网站变化后可能下载失败。"_s + switchAdvice, Tint::Orange, fix };
    return { what + u"，可以正常使用。"_s, Tint::Green, ToolAction::None };
}

ToolVerdict judgeRuntime(const ToolchainFacts &facts, bool ytDlpTooOld)
{
    using quillbox::ToolAction;
    const QString installDeno = u"点“安装 Deno”即可解决。"_s;
    if (facts.runtimes.isEmpty()) {
        if (!facts.probed)
            return { u"正在检查 JS 运行时…"_s, Tint::Gray, ToolAction::None };
        return { u"未检测到 JS 运行时，"_s + jsSites + u"会下载失败。"_s + installDeno, Tint::Red,
            ToolAction::InstallDeno };
    }
    const auto chosen = std::find_if(
        facts.runtimes.cbegin(), facts.runtimes.cend(), [](const JsRuntimeInfo &runtime) { return runtime.supported; });
    const auto named = [](const JsRuntimeInfo &runtime) {
        return runtime.version.isEmpty() ? runtime.name : runtime.name + u' ' + runtime.version;
    };
    if (chosen == facts.runtimes.cend()) {
        QStringList old;
        for (const JsRuntimeInfo &runtime : facts.runtimes)
            old << named(runtime) + u" 版本过旧（需要 ≥ "_s + runtimeMinimum(runtime.name) + u"）"_s;
        return { old.join(u"；"_s) + u"，不会使用。"_s + jsSites + u"会下载失败。"_s + installDeno, Tint::Red,
            ToolAction::InstallDeno };
    }
    if (ytDlpTooOld)
        return { u"检测到 "_s + named(*chosen) + u"，但当前 yt-dlp 太旧，无法使用它。请先更新 yt-dlp。"_s, Tint::Orange,
            ToolAction::None };
    QString text = u"使用 "_s + named(*chosen) + u"，可以解析 YouTube 视频。"_s;
    for (const JsRuntimeInfo &runtime : facts.runtimes) {
        if (!runtime.supported)
            text += u"（"_s + named(runtime) + u" 版本过旧，不使用）"_s;
    }
    return { text, Tint::Green, ToolAction::None };
}

ToolVerdict judgeFfmpeg(const ToolchainFacts &facts)
{
    using quillbox::ToolAction;
    const QString command = ffmpegInstallCommand(facts.homebrew);
    if (facts.ffmpeg.isEmpty()) {
        if (!facts.probed)
            return { u"正在检查 FFmpeg…"_s, Tint::Gray, ToolAction::None };
        return { u"未检测到 FFmpeg：不能合并最佳画质的音视频，也不能转换 MP3。请在终端运行 "_s + command, Tint::Red,
            ToolAction::CopyFfmpegCommand };
    }
    if (facts.ffprobe.isEmpty())
        return { u"找到 FFmpeg，但缺少 ffprobe：合并和后期处理可能失败。请在终端运行 "_s + command, Tint::Orange,
            ToolAction::CopyFfmpegCommand };
    return { u"FFmpeg 和 ffprobe 都已就绪，可以合并音视频和转换音频。"_s, Tint::Green, ToolAction::None };
}
} // namespace

ToolchainVerdicts judgeToolchain(const ToolchainFacts &facts)
{
    ToolchainVerdicts verdicts;
    verdicts.ytDlp = judgeYtDlp(facts);
    const std::optional<QDate> released = ytDlpReleaseDate(facts.ytDlpVersion);
    const bool ytDlpTooOld = !facts.ytDlpVersion.isEmpty() && (!released || *released < QDate(2025, 11, 12));
    verdicts.runtime = judgeRuntime(facts, ytDlpTooOld);
    verdicts.ffmpeg = judgeFfmpeg(facts);

    if (facts.probed) {
        QString cause;
        if (facts.ytDlpVersion.isEmpty())
            verdicts.notice = { u"找不到可用的 yt-dlp，无法下载。"_s, Tint::Red, quillbox::ToolAction::OpenSettings };
        else if (ytDlpTooOld)
            cause = u"yt-dlp 版本过旧"_s;
        else if (verdicts.runtime.tint == Tint::Red)
            cause = u"没有可用的 JS 运行时"_s;
        if (!cause.isEmpty())
            verdicts.notice
                = { cause + u"，"_s + jsSites + u"会下载失败。"_s, Tint::Red, quillbox::ToolAction::OpenSettings };
    }
    return verdicts;
}
