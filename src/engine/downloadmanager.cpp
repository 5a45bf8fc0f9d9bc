#include "engine/downloadmanager.h"

#include <optional>

#include "engine/shellrunner.h"
#include "model/appstate.h"
#include "model/logcategories.h"

#include <QDir>
#include <QSettings>

using namespace Qt::StringLiterals;

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
    return locations;
}

namespace {
bool discoveryDeferred = false;
std::optional<ToolLocations> chosenLocations;
} // namespace

DownloadManager *DownloadManager::instance()
{
    static DownloadManager *const shared
        = new DownloadManager(AppState::instance(), chosenLocations.value_or(ToolLocations::standard(QDir::homePath())),
            nullptr, discoveryDeferred ? Discovery::WaitForStart : Discovery::StartNow);
    return shared;
}

void DownloadManager::useLocations(const ToolLocations &locations)
{
    chosenLocations = locations;
}

void DownloadManager::deferDiscovery()
{
    discoveryDeferred = true;
}

DownloadManager::DownloadManager(AppState *appState, ToolLocations locations, QObject *parent, Discovery discovery)
    : QObject(parent)
    , m_appState(appState)
    , m_locations(std::move(locations))
    , m_tasks(new TaskModel(this))
{
    const int stored
        = QSettings().value(QLatin1String(MaxConcurrentDownloadsKey), DefaultMaxConcurrentDownloads).toInt();
    m_maxConcurrent = std::clamp(stored, 1, 16);
    if (discovery == Discovery::StartNow)
        startDiscovery();
}

void DownloadManager::startDiscovery()
{
    if (m_discoveryStarted)
        return;
    m_discoveryStarted = true;
    chooseYtDlpPath();
    detectJSRuntime();
    detectFfmpeg();
}

DownloadManager::~DownloadManager()
{
    shutdown();
}

void DownloadManager::addLog(const QString &message, LogEntry::LogType type) const
{
    if (m_appState)
        m_appState->addLog(message, type);
}

void DownloadManager::info(const QString &message) const
{
    addLog(message, LogEntry::LogType::Info);
}

void DownloadManager::setMaxConcurrentDownloads(int value)
{
    value = std::clamp(value, 1, 16);
    if (value == m_maxConcurrent)
        return;
    m_maxConcurrent = value;
    QSettings().setValue(QLatin1String(MaxConcurrentDownloadsKey), value);
    Q_EMIT maxConcurrentDownloadsChanged();
    pumpQueue();
}
