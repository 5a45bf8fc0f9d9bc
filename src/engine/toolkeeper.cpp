#include "engine/toolkeeper.h"

#include "model/enginehost.h"

#include "engine/shellrunner.h"
#include "engine/tooldiscovery.h"
#include "model/logcategories.h"

#include <QSettings>

using namespace Qt::StringLiterals;

ToolKeeper::ToolKeeper(
    LogSink *log, ToolDiscovery *tools, ToolInstaller *installer, std::function<bool()> isIdle, QObject *parent)
    : QObject(parent)
    , m_log(log)
    , m_tools(tools)
    , m_installer(installer)
    , m_isIdle(std::move(isIdle))
{
    const QSettings settings;
    m_autoUpdate = settings.value(QLatin1String(AutoUpdateKey), true).toBool();
    m_tools->setLatestYtDlpVersion(settings.value(QLatin1String(LatestReleaseKey)).toString());

    // A running download may be reading the very file being replaced (a zip build of yt-dlp is
    // read as it runs), so the new file waits for the queue to be idle.
    m_installer->setReplaceGate([this](std::function<void()> proceed) {
        if (m_isIdle())
            proceed();
        else
            m_waitingSwaps.append(std::move(proceed));
    });
    connect(m_installer, &ToolInstaller::finished, this, &ToolKeeper::onFinished);
    for (const auto signal :
        { &ToolInstaller::busyChanged, &ToolInstaller::progressChanged, &ToolInstaller::statusTextChanged })
        connect(m_installer, signal, this, &ToolKeeper::stateChanged);
#ifdef Q_OS_MACOS
    // Where Homebrew is, it installs and updates the tools, as the user would do it by hand.
    m_brew = homebrewExecutable();
#endif
}

void ToolKeeper::addLog(const QString &message, LogEntry::LogType type) const
{
    if (m_log)
        m_log->addLog(message, type);
}

void ToolKeeper::setAutoUpdate(bool value)
{
    if (m_autoUpdate == value)
        return;
    m_autoUpdate = value;
    QSettings().setValue(QLatin1String(AutoUpdateKey), value);
    Q_EMIT autoUpdateChanged();
}

void ToolKeeper::installYtDlp()
{
    if (isBusy())
        return; // one installation at a time; the sheet shows the running one
    m_automatic = false;
    addLog(tr("正在安装最新 yt-dlp..."), LogEntry::LogType::Info);
    if (!m_brew.isEmpty()) {
        // Homebrew's yt-dlp is the first place discovery looks once no other path is chosen.
        brewInstall(u"yt-dlp"_s, [this] { m_tools->resetYtDlpPath(); });
        return;
    }
    m_brewStatus.clear();
    m_installer->install(ToolInstaller::Tool::YtDlp);
}

void ToolKeeper::installDeno()
{
    if (isBusy())
        return; // one installation at a time; the sheet shows the running one
    m_automatic = false;
    addLog(tr("正在安装 Deno..."), LogEntry::LogType::Info);
    if (!m_brew.isEmpty()) {
        brewInstall(u"deno"_s, [this] { m_tools->detectJSRuntime(); });
        return;
    }
    m_brewStatus.clear();
    m_installer->install(ToolInstaller::Tool::Deno);
}

void ToolKeeper::brewInstall(const QString &formula, std::function<void()> then)
{
    if (isBusy())
        return;
    ShellCommand command(m_brew, { u"install"_s, formula });
    command.syntax(u"2>&1 ||"_s) << m_brew << u"upgrade"_s << formula;
    command.syntax(u"2>&1"_s);
    m_brewing = true;
    m_brewStatus = tr("正在通过 Homebrew 安装 %1…").arg(formula);
    Q_EMIT stateChanged();
    runShellCommand(
        command, PipeMode::Shared, this,
        [this, formula, then = std::move(then)](const ShellResult &result) {
            m_brewing = false;
            const bool ok = result.launched && result.exitCode == 0 && !result.crashed;
            const QString output = result.launched ? result.trimmedOutput() : result.errorString;
            if (ok) {
                m_brewStatus = tr("✅ Homebrew 已安装 %1").arg(formula);
                addLog(m_brewStatus, LogEntry::LogType::Info);
                then();
            } else {
                m_brewStatus = tr("❌ Homebrew 没能安装 %1，请在终端运行 brew install %1 查看原因。").arg(formula);
                addLog(m_brewStatus + u"\n"_s + output.right(300), LogEntry::LogType::Error);
            }
            Q_EMIT stateChanged();
        },
        30 * 60 * 1000, /*guarded=*/false);
}

void ToolKeeper::onFinished(
    ToolInstaller::Tool tool, bool ok, const QString &path, const QString &version, const QString &message)
{
    if (!m_brewStatus.isEmpty()) {
        m_brewStatus.clear();
        Q_EMIT stateChanged();
    }
    const QString name = tool == ToolInstaller::Tool::YtDlp ? u"yt-dlp"_s : u"Deno"_s;
    const bool automatic = std::exchange(m_automatic, false);
    if (!ok) {
        // An automatic update that fails leaves the working copy; it is tried again at the next check.
        if (automatic)
            addLog(tr("⚠️ 自动更新 yt-dlp 失败，继续使用当前版本: %1").arg(message),
                LogEntry::LogType::Warning);
        else
            addLog(tr("❌ 安装 %1 失败: %2").arg(name, message), LogEntry::LogType::Error);
        return;
    }
    addLog(tr("✅ 已安装 %1 %2: %3").arg(name, version, path), LogEntry::LogType::Info);
    if (tool == ToolInstaller::Tool::YtDlp) {
        if (!version.isEmpty())
            rememberLatestRelease(version);
        // Used at once; when it was already the path in use, its version is probed again.
        if (m_tools->ytDlpPath() == path)
            m_tools->recheck();
        else
            m_tools->setCustomYtDlpPath(path);
    } else {
        m_tools->detectJSRuntime();
    }
}

void ToolKeeper::checkForUpdates(const QDateTime &now)
{
    QSettings settings;
    const QDateTime checked = settings.value(QLatin1String(CheckedAtKey)).toDateTime();
    if (checked.isValid() && checked.secsTo(now) < 24 * 60 * 60 && checked <= now) {
        updateKeptCopyIfBehind();
        return;
    }
    m_installer->checkLatest(ToolInstaller::Tool::YtDlp, [this, now](const ToolInstaller::LatestRelease &latest) {
        if (!latest.ok) {
            // Offline or refused: said in the system log only, and tried again at the next start.
            qCInfo(lcEngine, "[Quillbox] [checkForUpdates] %ls", qUtf16Printable(latest.error));
            return;
        }
        QSettings().setValue(QLatin1String(CheckedAtKey), now);
        rememberLatestRelease(latest.tag);
        updateKeptCopyIfBehind();
    });
}

void ToolKeeper::rememberLatestRelease(const QString &tag)
{
    QSettings().setValue(QLatin1String(LatestReleaseKey), tag);
    m_tools->setLatestYtDlpVersion(tag);
}

void ToolKeeper::updateKeptCopyIfBehind()
{
    const QString latest = m_tools->latestYtDlpVersion();
    if (!m_autoUpdate || !m_tools->isYtDlpKept() || latest.isEmpty() || !isNewerYtDlp(latest, m_tools->ytDlpVersion())
        || m_installer->isBusy())
        return;
    if (!m_isIdle()) {
        m_updateWhenIdle = true;
        return;
    }
    m_updateWhenIdle = false;
    m_automatic = true;
    addLog(tr("正在自动更新 yt-dlp 到 %1...").arg(latest), LogEntry::LogType::Info);
    m_installer->install(ToolInstaller::Tool::YtDlp);
}

void ToolKeeper::downloadsIdle()
{
    if (!m_isIdle())
        return;
    const auto waiting = std::exchange(m_waitingSwaps, {});
    for (const auto &proceed : waiting)
        proceed();
    if (m_updateWhenIdle)
        updateKeptCopyIfBehind();
}
