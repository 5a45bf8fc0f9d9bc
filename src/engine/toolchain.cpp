#include "engine/toolchain.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>
#include <QVersionNumber>

using namespace Qt::StringLiterals;

namespace {
// Sites that need a JavaScript runtime: what the verdicts name.
QString jsSites()
{
    return QCoreApplication::translate("Toolchain", "YouTube 等需要 JS 运行时的网站");
}

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
        return QCoreApplication::translate("Toolchain", "今天发布");
    const int count = int(days);
    return QCoreApplication::translate("Toolchain", "%n 天前发布", nullptr, count);
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
    const QString keepOwn = QCoreApplication::translate(
        "Toolchain", "可以在“设置”中点“安装最新 yt-dlp”，由 Quillbox 保管一份能自动更新的最新版。");
    if (route == UpdateRoute::PackageManager
        || has(u"installed (yt-dlp )?(via|with) (apt|a package manager)|"
               u"package manager; Use that to update|you should use that to update"))
        return QCoreApplication::translate(
            "Toolchain", "这个 yt-dlp 由系统的软件包管理器安装，不能自行更新，而系统软件源里的版本往往过旧。%1")
            .arg(keepOwn);
    if (route == UpdateRoute::Source || has(u"cannot update when running from source"))
        return QCoreApplication::translate(
            "Toolchain", "这个 yt-dlp 是从源代码运行的，不能自行更新，请用 git pull 更新它。%1")
            .arg(keepOwn);
    if (has(u"rate limit|HTTP Error 403|HTTP Error 429|Too Many Requests"))
        return QCoreApplication::translate("Toolchain", "GitHub 暂时限制了请求次数，请过一会儿再试。");
    if (has(u"Unable to obtain version info|Failed to resolve|Name or service not known|getaddrinfo|"
            u"Network is unreachable|Connection refused|timed out|URLError|HTTPSConnection"))
        return QCoreApplication::translate(
            "Toolchain", "无法连接到 GitHub 获取新版本：请检查网络连接（或代理）后重试。");
    if (has(u"Permission denied|Unable to write|Unable to remove|read-only file system"))
        return QCoreApplication::translate("Toolchain", "没有权限替换这个 yt-dlp 文件（它可能属于系统或其他用户）。%1")
            .arg(keepOwn);
    if (has(u"brew: command not found|Error: .*yt-dlp"))
        return QCoreApplication::translate(
            "Toolchain", "Homebrew 没能升级 yt-dlp，请在终端运行 brew upgrade yt-dlp 查看原因。");
    if (has(u"No module named pip|externally-managed-environment"))
        return QCoreApplication::translate("Toolchain", "pip 不能在这里更新 yt-dlp。%1").arg(keepOwn);
    return {};
}

QString ToolVerdict::actionLabel() const
{
    switch (action) {
    case quillbox::ToolAction::InstallYtDlp:
        return QCoreApplication::translate("Toolchain", "安装最新 yt-dlp");
    case quillbox::ToolAction::UpdateYtDlp:
        return QCoreApplication::translate("Toolchain", "更新 yt-dlp");
    case quillbox::ToolAction::InstallDeno:
        return QCoreApplication::translate("Toolchain", "安装 Deno");
    case quillbox::ToolAction::CopyFfmpegCommand:
        return QCoreApplication::translate("Toolchain", "复制命令");
    case quillbox::ToolAction::OpenSettings:
        return QCoreApplication::translate("Toolchain", "修复");
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
            return { QCoreApplication::translate("Toolchain", "正在检查 yt-dlp…"), Tint::Gray, ToolAction::None };
        return { QCoreApplication::translate("Toolchain",
                     "未找到可用的 yt-dlp，无法下载。点“安装最新 yt-dlp”，由 Quillbox 下载官方版本并校验。"),
            Tint::Red, ToolAction::InstallYtDlp };
    }

    const bool canUpdateItself = facts.route == UpdateRoute::SelfUpdate || facts.route == UpdateRoute::Kept
        || facts.route == UpdateRoute::Homebrew;
    const ToolAction fix = canUpdateItself ? ToolAction::UpdateYtDlp : ToolAction::InstallYtDlp;
    QString how;
    switch (facts.route) {
    case UpdateRoute::Kept:
        how = QCoreApplication::translate("Toolchain", "由 Quillbox 保管");
        break;
    case UpdateRoute::Homebrew:
        how = QCoreApplication::translate("Toolchain", "由 Homebrew 安装");
        break;
    case UpdateRoute::PackageManager:
        how = QCoreApplication::translate("Toolchain", "由系统软件包安装，不能自行更新");
        break;
    case UpdateRoute::Pip:
        how = QCoreApplication::translate("Toolchain", "由 pip 安装（python3 -m pip install -U yt-dlp 可更新）");
        break;
    case UpdateRoute::Source:
        how = QCoreApplication::translate("Toolchain", "从源代码运行");
        break;
    case UpdateRoute::SelfUpdate:
        how = QCoreApplication::translate("Toolchain", "官方版本，可以自行更新");
        break;
    case UpdateRoute::Unknown:
        break;
    }
    const std::optional<QDate> released = ytDlpReleaseDate(version);
    const qint64 age = released && facts.today.isValid() ? released->daysTo(facts.today) : -1;
    QString what = u"yt-dlp "_s + version;
    if (age >= 0 && !how.isEmpty())
        what = QCoreApplication::translate("Toolchain", "yt-dlp %1（%2，%3）").arg(version, daysText(age), how);
    else if (age >= 0 || !how.isEmpty())
        what = QCoreApplication::translate("Toolchain", "yt-dlp %1（%2）").arg(version, age >= 0 ? daysText(age) : how);

    const QString switchAdvice = canUpdateItself
        ? QCoreApplication::translate("Toolchain", "请更新它。")
        : QCoreApplication::translate("Toolchain", "点“安装最新 yt-dlp”，改用由 Quillbox 保管、自动更新的最新版。");
    // --js-runtimes arrived in 2025.11.12: anything older cannot hand a runtime to YouTube.
    if (!released || *released < QDate(2025, 11, 12))
        return { QCoreApplication::translate("Toolchain", "%1 版本过旧，%2会下载失败。%3")
                     .arg(what, jsSites(), switchAdvice),
            Tint::Red, fix };
    if (!facts.latestYtDlp.isEmpty() && isNewerYtDlp(facts.latestYtDlp, version))
        return { QCoreApplication::translate("Toolchain", "%1，最新版本是 %2。网站经常变化，%3")
                     .arg(what, facts.latestYtDlp, switchAdvice),
            Tint::Orange, fix };
    if (age > 90)
        return { QCoreApplication::translate("Toolchain", "%1，已超过 90 天，网站变化后可能下载失败。%2")
                     .arg(what, switchAdvice),
            Tint::Orange, fix };
    return { QCoreApplication::translate("Toolchain", "%1，可以正常使用。").arg(what), Tint::Green, ToolAction::None };
}

ToolVerdict judgeRuntime(const ToolchainFacts &facts, bool ytDlpTooOld)
{
    using quillbox::ToolAction;
    const QString installDeno = QCoreApplication::translate("Toolchain", "点“安装 Deno”即可解决。");
    if (facts.runtimes.isEmpty()) {
        if (!facts.probed)
            return { QCoreApplication::translate("Toolchain", "正在检查 JS 运行时…"), Tint::Gray, ToolAction::None };
        return { QCoreApplication::translate("Toolchain", "未检测到 JS 运行时，%1会下载失败。%2")
                     .arg(jsSites(), installDeno),
            Tint::Red, ToolAction::InstallDeno };
    }
    const auto chosen = std::find_if(
        facts.runtimes.cbegin(), facts.runtimes.cend(), [](const JsRuntimeInfo &runtime) { return runtime.supported; });
    const auto named = [](const JsRuntimeInfo &runtime) {
        return runtime.version.isEmpty() ? runtime.name : runtime.name + u' ' + runtime.version;
    };
    if (chosen == facts.runtimes.cend()) {
        QStringList old;
        for (const JsRuntimeInfo &runtime : facts.runtimes)
            old << QCoreApplication::translate("Toolchain", "%1 版本过旧（需要 ≥ %2）")
                       .arg(named(runtime), runtimeMinimum(runtime.name));
        //: Between two runtimes in the list of those too old to use.
        const QString separator = QCoreApplication::translate("Toolchain", "；");
        return { QCoreApplication::translate("Toolchain", "%1，不会使用。%2会下载失败。%3")
                     .arg(old.join(separator), jsSites(), installDeno),
            Tint::Red, ToolAction::InstallDeno };
    }
    if (ytDlpTooOld)
        return { QCoreApplication::translate(
                     "Toolchain", "检测到 %1，但当前 yt-dlp 太旧，无法使用它。请先更新 yt-dlp。")
                     .arg(named(*chosen)),
            Tint::Orange, ToolAction::None };
    QString text = QCoreApplication::translate("Toolchain", "使用 %1，可以解析 YouTube 视频。").arg(named(*chosen));
    for (const JsRuntimeInfo &runtime : facts.runtimes) {
        if (!runtime.supported)
            text += QCoreApplication::translate("Toolchain", "（%1 版本过旧，不使用）").arg(named(runtime));
    }
    return { text, Tint::Green, ToolAction::None };
}

ToolVerdict judgeFfmpeg(const ToolchainFacts &facts)
{
    using quillbox::ToolAction;
    const QString command = ffmpegInstallCommand(facts.homebrew);
    if (facts.ffmpeg.isEmpty()) {
        if (!facts.probed)
            return { QCoreApplication::translate("Toolchain", "正在检查 FFmpeg…"), Tint::Gray, ToolAction::None };
        return { QCoreApplication::translate(
                     "Toolchain", "未检测到 FFmpeg：不能合并最佳画质的音视频，也不能转换 MP3。请在终端运行 %1")
                     .arg(command),
            Tint::Red, ToolAction::CopyFfmpegCommand };
    }
    if (facts.ffprobe.isEmpty())
        return { QCoreApplication::translate(
                     "Toolchain", "找到 FFmpeg，但缺少 ffprobe：合并和后期处理可能失败。请在终端运行 %1")
                     .arg(command),
            Tint::Orange, ToolAction::CopyFfmpegCommand };
    return { QCoreApplication::translate("Toolchain", "FFmpeg 和 ffprobe 都已就绪，可以合并音视频和转换音频。"),
        Tint::Green, ToolAction::None };
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
            verdicts.notice = { QCoreApplication::translate("Toolchain", "找不到可用的 yt-dlp，无法下载。"), Tint::Red,
                quillbox::ToolAction::OpenSettings };
        else if (ytDlpTooOld)
            cause = QCoreApplication::translate("Toolchain", "yt-dlp 版本过旧");
        else if (verdicts.runtime.tint == Tint::Red)
            cause = QCoreApplication::translate("Toolchain", "没有可用的 JS 运行时");
        if (!cause.isEmpty())
            verdicts.notice = { QCoreApplication::translate("Toolchain", "%1，%2会下载失败。").arg(cause, jsSites()),
                Tint::Red, quillbox::ToolAction::OpenSettings };
    }
    return verdicts;
}
