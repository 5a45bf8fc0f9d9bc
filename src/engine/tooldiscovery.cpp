#include "engine/tooldiscovery.h"

#include "engine/shellrunner.h"
#include "engine/toolinstaller.h"
#include "model/enginehost.h"
#include "model/languagechange.h"
#include "model/logcategories.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {
bool fileExists(const QString &path)
{
    if (path.isEmpty())
        return false;
    const QFileInfo info(path);
    return info.exists() && !info.isDir();
}

ShellCommand ytDlpFallback()
{
    return ShellCommand().syntax(
        u"source ~/.zshrc 2>/dev/null; source ~/.zprofile 2>/dev/null; which yt-dlp 2>/dev/null || echo ''"_s);
}

ShellCommand whichCommand(const QString &name)
{
    ShellCommand command;
    command.syntax(u"source ~/.zprofile 2>/dev/null; source ~/.zshrc 2>/dev/null; which"_s);
    return (command << name).syntax(u"2>/dev/null"_s);
}

// `path` asked for its version, everything it prints on one pipe.
ShellCommand versionCommand(const QString &path, const QString &option = u"--version"_s)
{
    return ShellCommand(path, { option }).syntax(u"2>&1"_s);
}
} // namespace

ToolLocations ToolLocations::standard(const QString &home)
{
    ToolLocations locations;
    locations.home = home;
    locations.ytDlp = { u"/opt/homebrew/bin/yt-dlp"_s, u"/usr/local/bin/yt-dlp"_s, u"/opt/homebrew/bin/yt-dlp.exe"_s,
        u"/usr/local/bin/yt-dlp.exe"_s };
    locations.runtimes = {
        { u"deno"_s, { u"/opt/homebrew/bin/deno"_s, u"/usr/local/bin/deno"_s, home + u"/.deno/bin/deno"_s } },
        { u"node"_s, { u"/opt/homebrew/bin/node"_s, u"/usr/local/bin/node"_s, u"/usr/bin/node"_s } },
        { u"bun"_s, { u"/opt/homebrew/bin/bun"_s, u"/usr/local/bin/bun"_s, home + u"/.bun/bin/bun"_s } },
    };
    locations.ffmpeg = { u"/opt/homebrew/bin/ffmpeg"_s, u"/usr/local/bin/ffmpeg"_s, u"/opt/homebrew/bin/ffmpeg.exe"_s,
        u"/usr/local/bin/ffmpeg.exe"_s };
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    // The usual Linux places come after the Homebrew ones.
    const auto linuxPlaces = [&home](const QString &name) {
        return QStringList { u"/usr/bin/"_s + name, home + u"/.local/bin/"_s + name,
            u"/home/linuxbrew/.linuxbrew/bin/"_s + name };
    };
    locations.ytDlp += linuxPlaces(u"yt-dlp"_s);
    for (ToolLocations::Runtime &runtime : locations.runtimes) {
        for (const QString &place : linuxPlaces(runtime.name)) {
            if (!runtime.candidates.contains(place))
                runtime.candidates.append(place);
        }
    }
    locations.ffmpeg += linuxPlaces(u"ffmpeg"_s);
#endif
    locations.keptYtDlp = ToolInstaller::defaultYtDlpFolder() + u"/yt-dlp"_s;
    return locations;
}

ToolDiscovery::ToolDiscovery(EngineHost host, ToolLocations locations, QObject *parent)
    : QObject(parent)
    , m_log(host.log)
    , m_cookies(host.cookies)
    , m_locations(std::move(locations))
    , m_homebrew(!homebrewExecutable().isEmpty())
{
    // The verdicts' texts are in the language of the moment they were judged.
    onLanguageChange(this, [this] { updateVerdicts(); });
}

void ToolDiscovery::start()
{
    if (m_started)
        return;
    m_started = true;
    chooseYtDlpPath();
    detectJSRuntime();
    detectFfmpeg();
}

void ToolDiscovery::addLog(const QString &message, LogEntry::LogType type) const
{
    if (m_log)
        m_log->addLog(message, type);
}

void ToolDiscovery::announceIfReady()
{
    if (m_announced || !isReady())
        return;
    m_announced = true;
    updateVerdicts();
    Q_EMIT ready();
}

// --- yt-dlp

void ToolDiscovery::chooseYtDlpPath()
{
    const QString custom = QSettings().value(QLatin1String(CustomYtDlpPathKey)).toString();
    if (fileExists(custom)) {
        qCInfo(lcEngine, "[Quillbox] 使用自定义路径: %ls", qUtf16Printable(custom));
        setYtDlpPath(custom, true);
        return;
    }
    probeStarted();
    findYtDlp(0, [this, generation = m_pathGeneration](const QString &path) {
        probeEnded();
        if (generation != m_pathGeneration)
            return; // a path was chosen meanwhile
        qCInfo(lcEngine, "[Quillbox] 使用自动检测路径: %ls", qUtf16Printable(path));
        setYtDlpPath(path, false);
    });
}

void ToolDiscovery::findYtDlp(int candidate, std::function<void(const QString &)> found)
{
    while (candidate < m_locations.ytDlp.size() && !fileExists(m_locations.ytDlp.at(candidate)))
        ++candidate;

    if (candidate < m_locations.ytDlp.size()) {
        const QString path = m_locations.ytDlp.at(candidate);
        ShellCommand command(path, { u"--version"_s });
        command.syntax(u"> /dev/null 2>&1 && echo"_s).quoted(path);
        runShellCommand(
            command, PipeMode::Shared, this,
            [this, candidate, found = std::move(found)](const ShellResult &result) mutable {
                const QString printed = result.trimmedOutput();
                if (result.launched && fileExists(printed))
                    found(printed);
                else
                    findYtDlp(candidate + 1, std::move(found));
            },
            ProbeTimeoutMs);
        return;
    }

    if (candidate == m_locations.ytDlp.size()) {
        runShellCommand(
            ytDlpFallback(), PipeMode::Shared, this,
            [found = std::move(found)](const ShellResult &result) {
                const QString printed = result.trimmedOutput();
                found(result.launched && fileExists(printed) ? printed : u"yt-dlp"_s);
            },
            ProbeTimeoutMs);
    }
}

void ToolDiscovery::setYtDlpPath(const QString &path, bool chosen)
{
    const int generation = ++m_pathGeneration;
    const bool first = !m_ytDlpPathKnown;
    m_ytDlpPath = path;
    m_ytDlpPathKnown = true;
    m_ytDlpPathChosen = chosen;
    if (first)
        qCInfo(lcEngine, "[Quillbox] DownloadManager 初始化完成, yt-dlp 路径: %ls", qUtf16Printable(path));
    Q_EMIT ytDlpPathChanged();

    probeStarted();
    checkYtDlpInstallation([this, generation, first](bool success, const QString &output) {
        probeEnded();
        if (generation != m_pathGeneration)
            return;
        // The first probe leaves a failure unsaid; a path chosen later that does not answer
        // must not keep the version of the one before.
        if (success)
            setYtDlpVersion(output);
        else if (!first)
            setYtDlpVersion(QString());
        // Downloads wait for this first probe, so they know whether --js-runtimes may be used.
        m_versionProbed = true;
        askYtDlpAboutItself();
        announceIfReady();
    });
    const auto waiting = std::exchange(m_afterPathKnown, {});
    for (const auto &action : waiting)
        action();
}

void ToolDiscovery::whenYtDlpPathKnown(std::function<void()> action)
{
    if (m_ytDlpPathKnown)
        action();
    else
        m_afterPathKnown.append(std::move(action));
}

QStringList ToolDiscovery::executableChoicesIn(const ToolLocations &locations, const QString &inUse)
{
    const auto runnable = [](const QString &path) {
        const QFileInfo info(path);
        return info.isAbsolute() && info.isFile() && info.isExecutable();
    };
    QStringList ordered = locations.ytDlp.mid(0, 2);
    ordered << inUse << locations.ytDlp.mid(2) << locations.keptYtDlp;
    QStringList choices;
    for (const QString &path : std::as_const(ordered)) {
        if (!choices.contains(path) && runnable(path))
            choices << path;
    }
    return choices;
}

void ToolDiscovery::findExecutableChoices()
{
    QStringList choices = executableChoicesIn(m_locations, m_ytDlpPath);
    if (choices == m_executableChoices)
        return;
    m_executableChoices = std::move(choices);
    Q_EMIT executableChoicesChanged();
}

void ToolDiscovery::setYtDlpVersion(const QString &version)
{
    if (m_ytDlpVersion == version)
        return;
    m_ytDlpVersion = version;
    Q_EMIT ytDlpVersionChanged();
    warnIfYtDlpTooOld();
    askYtDlpAboutItself();
    updateVerdicts();
}

void ToolDiscovery::setCustomYtDlpPath(const QString &path)
{
    QSettings().setValue(QLatin1String(CustomYtDlpPathKey), path);
    if (fileExists(path)) {
        qCInfo(lcEngine, "[Quillbox] 使用自定义路径: %ls", qUtf16Printable(path));
        setYtDlpPath(path, true);
    }
}

void ToolDiscovery::resetYtDlpPath()
{
    QSettings().remove(QLatin1String(CustomYtDlpPathKey));
    const int generation = ++m_pathGeneration;
    probeStarted();
    findYtDlp(0, [this, generation](const QString &path) {
        probeEnded();
        if (generation != m_pathGeneration)
            return;
        qCInfo(lcEngine, "[Quillbox] 使用自动检测路径: %ls", qUtf16Printable(path));
        setYtDlpPath(path, false);
    });
}

void ToolDiscovery::recheck()
{
    if (!m_ytDlpPathKnown)
        return; // the first round is still under way
    setYtDlpPath(m_ytDlpPath, m_ytDlpPathChosen);
    detectJSRuntime();
    detectFfmpeg();
}

void ToolDiscovery::setLatestYtDlpVersion(const QString &version)
{
    if (m_latestYtDlp == version)
        return;
    m_latestYtDlp = version;
    updateVerdicts();
}

void ToolDiscovery::probeStarted()
{
    if (m_probes++ == 0)
        Q_EMIT isProbingChanged();
}

void ToolDiscovery::probeEnded()
{
    if (--m_probes == 0)
        Q_EMIT isProbingChanged();
}

// "-v" prints how this yt-dlp was built (its variant: an official build, a distribution's
// package, pip, …) and, when it is offered runtimes, which of them it accepts. yt-dlp's own
// verdict beats the minimums we know of, which a later release may raise.
void ToolDiscovery::askYtDlpAboutItself()
{
    if (!m_versionProbed || !m_runtimesFound || m_reportScheduled)
        return;
    // The path probe and a new version often both ask: one run answers both.
    m_reportScheduled = true;
    QMetaObject::invokeMethod(this, &ToolDiscovery::runReport, Qt::QueuedConnection);
}

void ToolDiscovery::runReport()
{
    m_reportScheduled = false;
    const int generation = ++m_reportGeneration;
    if (m_ytDlpVersion.isEmpty()) {
        applyReport({});
        return;
    }
    ShellCommand command(m_ytDlpPath, { u"-v"_s, u"--no-update"_s, u"--ignore-config"_s });
    if (supportsJsRuntimes(m_ytDlpVersion)) {
        command << u"--no-js-runtimes"_s;
        for (const JsRuntimeInfo &runtime : std::as_const(m_jsRuntimes))
            command << u"--js-runtimes"_s << runtime.name + u':' + runtime.path;
    }
    probeStarted();
    runShellCommand(
        command.syntax(u"2>&1"_s), PipeMode::Shared, this,
        [this, generation](const ShellResult &result) {
            probeEnded();
            // A detection restarted meanwhile asks again when it has found its runtimes.
            if (generation != m_reportGeneration || !m_runtimesFound)
                return;
            applyReport(result.launched ? parseVerboseReport(result.standardOutput) : YtDlpReport {});
        },
        ProbeTimeoutMs);
}

void ToolDiscovery::applyReport(const YtDlpReport &report)
{
    m_ytDlpVariant = report.variant;
    m_route = updateRouteFor(report.variant, m_ytDlpPath, m_locations.keptYtDlp);
    for (JsRuntimeInfo &runtime : m_jsRuntimes) {
        const auto said = std::find_if(report.runtimes.cbegin(), report.runtimes.cend(),
            [&runtime](const auto &entry) { return entry.first == runtime.name; });
        runtime.judgedByYtDlp = said != report.runtimes.cend();
        runtime.supported = runtime.judgedByYtDlp ? said->second : meetsRuntimeMinimum(runtime.name, runtime.version);
    }

    const auto chosen = std::find_if(
        m_jsRuntimes.cbegin(), m_jsRuntimes.cend(), [](const JsRuntimeInfo &runtime) { return runtime.supported; });
    for (const JsRuntimeInfo &runtime : std::as_const(m_jsRuntimes)) {
        const QString key = runtime.path + u'@' + runtime.version;
        if (runtime.supported || m_rejectedRuntimesSaid.contains(key))
            continue;
        m_rejectedRuntimesSaid << key;
        addLog(tr("⚠️ %1 %2（%3）版本过旧，yt-dlp 需要 ≥ %4，不会使用它")
                   .arg(runtime.name, runtime.version.isEmpty() ? tr("未知版本") : runtime.version, runtime.path,
                       runtimeMinimum(runtime.name)),
            LogEntry::LogType::Warning);
    }
    const bool fresh = std::exchange(m_runtimesFresh, false);
    if (chosen != m_jsRuntimes.cend()) {
        if (fresh || chosen->name != m_detectedJSRuntime || chosen->path != m_detectedJSRuntimePath)
            setJSRuntime(chosen->name, chosen->path);
    } else if (fresh || !m_detectedJSRuntime.isEmpty()) {
        qCInfo(lcEngine, "[Quillbox] [detectJSRuntime] 未检测到任何 JS 运行时");
        setJSRuntime(QString(), QString());
        if (m_jsRuntimes.isEmpty())
            addLog(tr("⚠️ 未检测到 JS 运行时（Deno/Node/Bun），YouTube 下载可能失败"),
                LogEntry::LogType::Warning);
    }
    updateVerdicts();
}

void ToolDiscovery::updateVerdicts()
{
    ToolchainFacts facts;
    facts.probed = m_versionProbed && m_runtimeDetected && m_ffmpegDetected;
    facts.ytDlpVersion = m_ytDlpVersion;
    facts.route = m_route;
    facts.latestYtDlp = m_latestYtDlp;
    facts.today = QDate::currentDate();
    facts.runtimes = m_jsRuntimes;
    facts.ffmpeg = m_detectedFfmpeg;
    facts.ffprobe = m_detectedFfprobe;
    facts.homebrew = m_homebrew;
    const ToolchainVerdicts verdicts = judgeToolchain(facts);
    if (verdicts == m_verdicts)
        return;
    m_verdicts = verdicts;
    Q_EMIT verdictsChanged();
}

QString ToolDiscovery::ffmpegInstallCommand() const
{
    return ::ffmpegInstallCommand(m_homebrew);
}

void ToolDiscovery::checkYtDlpInstallation(std::function<void(bool, const QString &)> completion)
{
    whenYtDlpPathKnown([this, completion = std::move(completion)] {
        runShellCommand(
            versionCommand(m_ytDlpPath), PipeMode::Shared, this,
            [completion](const ShellResult &result) {
                if (!result.launched)
                    completion(false, result.errorString);
                else
                    completion(result.exitCode == 0 && !result.crashed, result.trimmedOutput());
            },
            ProbeTimeoutMs);
    });
}

bool ToolDiscovery::supportsJsRuntimes(const QString &ytDlpVersion)
{
    // Releases are dated YYYY.MM.DD (nightlies add a time); --js-runtimes arrived in 2025.11.12.
    static const QRegularExpression dated(u"^(\\d{4})\\.(\\d{1,2})\\.(\\d{1,2})"_s);
    const QRegularExpressionMatch match = dated.match(ytDlpVersion.trimmed());
    if (!match.hasMatch())
        return false;
    const auto date
        = std::make_tuple(match.capturedView(1).toInt(), match.capturedView(2).toInt(), match.capturedView(3).toInt());
    return date >= std::make_tuple(2025, 11, 12);
}

void ToolDiscovery::warnIfYtDlpTooOld()
{
    if (m_warnedOldYtDlp || m_ytDlpVersion.isEmpty() || m_detectedJSRuntime.isEmpty()
        || supportsJsRuntimes(m_ytDlpVersion))
        return;
    m_warnedOldYtDlp = true;
    addLog(
        tr("⚠️ yt-dlp %1 版本过旧，不支持 JS 运行时（--js-runtimes），下载时不会使用 %2；请在 设置 → 更新 yt-dlp 到最新版")
            .arg(m_ytDlpVersion, m_detectedJSRuntime),
        LogEntry::LogType::Warning);
}

// --- JavaScript runtime

void ToolDiscovery::detectJSRuntime()
{
    m_runtimesFound = false;
    m_runtimesFresh = true;
    m_jsRuntimes.clear();
    // One probe however often it is restarted: a restarted detection drops the old one's answers.
    if (!std::exchange(m_detectingRuntimes, true))
        probeStarted();
    detectRuntime(++m_runtimeGeneration, 0, 0);
}

// Every runtime is looked for (its fixed places, then its own lookup), so that one yt-dlp
// rejects can give way to the next; the first that is good enough is used.
void ToolDiscovery::detectRuntime(int generation, int runtime, int candidate)
{
    if (generation != m_runtimeGeneration)
        return; // a newer detection has started
    if (runtime >= m_locations.runtimes.size()) {
        probeRuntimeVersions(generation, 0);
        return;
    }
    const ToolLocations::Runtime &entry = m_locations.runtimes.at(runtime);
    for (; candidate < entry.candidates.size(); ++candidate) {
        const QString path = entry.candidates.at(candidate);
        if (fileExists(path)) {
            qCInfo(lcEngine, "[Quillbox] [detectJSRuntime] 检测到 %ls: %ls", qUtf16Printable(entry.name),
                qUtf16Printable(path));
            m_jsRuntimes.append(JsRuntimeInfo { entry.name, path, QString() });
            detectRuntime(generation, runtime + 1, 0);
            return;
        }
    }
    runShellCommand(
        whichCommand(entry.name), PipeMode::Split, this,
        [this, generation, runtime, name = entry.name](const ShellResult &result) {
            if (generation != m_runtimeGeneration)
                return;
            const QString printed = result.trimmedOutput();
            if (result.launched && fileExists(printed)) {
                qCInfo(lcEngine, "[Quillbox] [detectJSRuntime] 通过 which 检测到 %ls: %ls", qUtf16Printable(name),
                    qUtf16Printable(printed));
                m_jsRuntimes.append(JsRuntimeInfo { name, printed, QString() });
            }
            detectRuntime(generation, runtime + 1, 0);
        },
        ProbeTimeoutMs);
}

void ToolDiscovery::probeRuntimeVersions(int generation, int index)
{
    if (generation != m_runtimeGeneration)
        return;
    if (index >= m_jsRuntimes.size()) {
        m_detectingRuntimes = false;
        probeEnded();
        m_runtimesFound = true;
        askYtDlpAboutItself();
        return;
    }
    const JsRuntimeInfo runtime = m_jsRuntimes.at(index);
    runShellCommand(
        versionCommand(runtime.path), PipeMode::Shared, this,
        [this, generation, index](const ShellResult &result) {
            if (generation != m_runtimeGeneration)
                return;
            JsRuntimeInfo &runtime = m_jsRuntimes[index];
            if (result.launched)
                runtime.version = parseRuntimeVersion(runtime.name, result.standardOutput);
            probeRuntimeVersions(generation, index + 1);
        },
        ProbeTimeoutMs);
}

void ToolDiscovery::setJSRuntime(const QString &name, const QString &path)
{
    if (!m_runtimeDetected) {
        m_runtimeDetected = true;
        QMetaObject::invokeMethod(this, &ToolDiscovery::announceIfReady, Qt::QueuedConnection);
    }
    if (!name.isEmpty())
        addLog(tr("✅ 检测到 JS 运行时: %1 (%2)").arg(name, path), LogEntry::LogType::Info);
    if (m_detectedJSRuntime != name || m_detectedJSRuntimePath != path) {
        m_detectedJSRuntime = name;
        m_detectedJSRuntimePath = path;
        Q_EMIT detectedJSRuntimeChanged();
    }
    warnIfYtDlpTooOld();
}

QStringList ToolDiscovery::jsRuntimeArgs() const
{
    if (m_detectedJSRuntime.isEmpty() || m_detectedJSRuntimePath.isEmpty() || !supportsJsRuntimes(m_ytDlpVersion))
        return {};
    return { u"--js-runtimes"_s, m_detectedJSRuntime + u':' + m_detectedJSRuntimePath };
}

// --- ffmpeg

void ToolDiscovery::detectFfmpeg()
{
    const int generation = ++m_ffmpegGeneration;
    for (const QString &path : std::as_const(m_locations.ffmpeg)) {
        if (fileExists(path)) {
            qCInfo(lcEngine, "[Quillbox] [detectFfmpeg] 检测到 ffmpeg: %ls", qUtf16Printable(path));
            getFfmpegVersion(generation, path);
            return;
        }
    }
    runShellCommand(
        whichCommand(u"ffmpeg"_s), PipeMode::Split, this,
        [this, generation](const ShellResult &result) {
            if (generation != m_ffmpegGeneration)
                return;
            const QString printed = result.trimmedOutput();
            if (result.launched && fileExists(printed)) {
                qCInfo(lcEngine, "[Quillbox] [detectFfmpeg] 通过 which 检测到 ffmpeg: %ls", qUtf16Printable(printed));
                getFfmpegVersion(generation, printed);
                return;
            }
            qCInfo(lcEngine, "[Quillbox] [detectFfmpeg] 未检测到 ffmpeg");
            setFfmpeg(QString(), QString());
        },
        ProbeTimeoutMs);
}

void ToolDiscovery::getFfmpegVersion(int generation, const QString &path)
{
    runShellCommand(
        versionCommand(path, u"-version"_s).syntax(u"| head -1"_s), PipeMode::Shared, this,
        [this, generation, path](const ShellResult &result) {
            if (generation != m_ffmpegGeneration)
                return;
            if (!result.launched) {
                setFfmpeg(path, tr("未知版本"));
                return;
            }
            const QString version = result.trimmedOutput();
            setFfmpeg(path, version);
            addLog(tr("✅ 检测到 FFmpeg: %1").arg(version), LogEntry::LogType::Info);
        },
        ProbeTimeoutMs);
}

void ToolDiscovery::setFfmpeg(const QString &path, const QString &version)
{
    if (!m_ffmpegDetected) {
        m_ffmpegDetected = true;
        QMetaObject::invokeMethod(this, &ToolDiscovery::announceIfReady, Qt::QueuedConnection);
    }
    // yt-dlp looks for ffprobe beside the ffmpeg it is given; merging and post-processing need it.
    QString ffprobe;
    if (!path.isEmpty()) {
        const QFileInfo ffmpeg(path);
        const QString suffix = ffmpeg.fileName().endsWith(u".exe"_s) ? u".exe"_s : QString();
        ffprobe = ffmpeg.dir().filePath(u"ffprobe"_s + suffix);
        if (!fileExists(ffprobe))
            ffprobe.clear();
    }
    if (m_detectedFfmpeg != path || m_detectedFfmpegVersion != version || m_detectedFfprobe != ffprobe) {
        m_detectedFfmpeg = path;
        m_detectedFfmpegVersion = version;
        m_detectedFfprobe = ffprobe;
        Q_EMIT detectedFfmpegChanged();
    }
    updateVerdicts();
}

QStringList ToolDiscovery::ffmpegArgs() const
{
    if (m_detectedFfmpeg.isEmpty())
        return {};
    return { u"--ffmpeg-location"_s, m_detectedFfmpeg };
}

// --- Cookies

CookieWords ToolDiscovery::cookieArgs() const
{
    const CookieWords cookies = m_cookies
        ? cookieWords(m_cookies->cookieSource(), m_cookies->cookiePath(), m_locations.home)
        : cookieWords(QLatin1String(CookieSourceNames::DefaultBrowser), QString(), m_locations.home);
    if (!cookies.warning.isEmpty() && cookies.warning != m_lastCookieWarning)
        addLog(cookies.warning, LogEntry::LogType::Warning);
    m_lastCookieWarning = cookies.warning;
    return cookies;
}
