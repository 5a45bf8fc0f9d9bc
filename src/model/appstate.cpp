#include "model/appstate.h"

#include <QDir>
#include <QMetaObject>
#include <QMutexLocker>
#include <QSettings>

using namespace Qt::StringLiterals;

AppState::AppState(QObject *parent)
    : QObject(parent)
    , m_outputDirectory(QDir(QDir::homePath()).filePath(QStringLiteral("Downloads")))
    , m_log(new LogModel(MaxLogEntries, this))
{
    loadPreferences();
}

AppState::~AppState() = default;

AppState *AppState::instance()
{
    static AppState *const shared = new AppState;
    return shared;
}

void AppState::loadPreferences()
{
    const QSettings settings;
    const QVariant outputDirectory = settings.value(QStringLiteral("outputDirectory"));
    if (outputDirectory.isValid())
        setOutputDirectory(outputDirectory.toString());
    const QVariant cookiePath = settings.value(QStringLiteral("cookiePath"));
    if (cookiePath.isValid())
        setCookiePath(cookiePath.toString());
}

namespace {
// However much a tool prints on one line, the log keeps a few KiB of it: the whole log stays
// within a few MiB, and the panel never has to lay out a megabyte of text.
QString bounded(const QString &message)
{
    if (message.size() <= AppState::MaxLogMessageChars)
        return message;
    qsizetype kept = AppState::MaxLogMessageChars;
    if (message.at(kept - 1).isHighSurrogate())
        --kept;
    return message.left(kept) + u"…（已省略 %1 个字符）"_s.arg(message.size() - kept);
}
} // namespace

void AppState::addLog(const QString &message, LogEntry::LogType type)
{
    // Calls are queued under one lock and drained by a single posted flush, so a burst of lines
    // becomes one model update per event-loop turn and the order is the order of the calls.
    QMutexLocker locker(&m_pendingMutex);
    // Only the last MaxLogEntries survive the flush; a flood between two flushes holds no more
    // than twice that.
    if (m_pending.size() >= 2 * MaxLogEntries)
        m_pending.remove(0, m_pending.size() - MaxLogEntries + 1);
    m_pending.append(PendingLog { bounded(message), type });
    if (m_flushScheduled)
        return;
    m_flushScheduled = true;
    locker.unlock();
    QMetaObject::invokeMethod(this, &AppState::flushPendingLogs, Qt::QueuedConnection);
}

void AppState::flushPendingLogs()
{
    QList<PendingLog> pending;
    {
        QMutexLocker locker(&m_pendingMutex);
        pending.swap(m_pending);
        m_flushScheduled = false;
    }
    // Lines the cap would drop at once are never built, and one batch shares one time.
    const qsizetype first = std::max<qsizetype>(0, pending.size() - MaxLogEntries);
    const QDateTime now = QDateTime::currentDateTime();
    QList<LogEntry> batch;
    batch.reserve(pending.size() - first);
    for (qsizetype i = first; i < pending.size(); ++i)
        batch.append(LogEntry { QUuid::createUuid(), now, pending.at(i).type, pending.at(i).message });
    m_log->append(std::move(batch));
}

void AppState::clearLog()
{
    m_log->clear();
}

namespace {
template <typename T, typename Signal>
void assign(AppState *state, T &member, const T &value, Signal changed)
{
    if (member == value)
        return;
    member = value;
    Q_EMIT(state->*changed)();
}
} // namespace

void AppState::setUrlInput(const QString &value)
{
    assign(this, m_urlInput, value, &AppState::urlInputChanged);
}

void AppState::setDownloadQueue(const QList<DownloadTask> &value)
{
    assign(this, m_downloadQueue, value, &AppState::downloadQueueChanged);
}

void AppState::setSelectedPreset(DownloadPreset value)
{
    assign(this, m_selectedPreset, value, &AppState::selectedPresetChanged);
}

void AppState::setCustomArguments(const QString &value)
{
    assign(this, m_customArguments, value, &AppState::customArgumentsChanged);
}

void AppState::setIsDownloading(bool value)
{
    assign(this, m_isDownloading, value, &AppState::isDownloadingChanged);
}

void AppState::setOutputDirectory(const QString &value)
{
    assign(this, m_outputDirectory, value, &AppState::outputDirectoryChanged);
}

void AppState::setUseCookies(bool value)
{
    assign(this, m_useCookies, value, &AppState::useCookiesChanged);
}

void AppState::setCookiePath(const QString &value)
{
    assign(this, m_cookiePath, value, &AppState::cookiePathChanged);
}

void AppState::setDownloadPlaylist(bool value)
{
    assign(this, m_downloadPlaylist, value, &AppState::downloadPlaylistChanged);
}

void AppState::setShowSettings(bool value)
{
    assign(this, m_showSettings, value, &AppState::showSettingsChanged);
}

void AppState::setSelectedTab(int value)
{
    assign(this, m_selectedTab, value, &AppState::selectedTabChanged);
}

void AppState::setShowLogPanel(bool value)
{
    assign(this, m_showLogPanel, value, &AppState::showLogPanelChanged);
}
