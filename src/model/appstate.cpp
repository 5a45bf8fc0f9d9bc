#include "model/appstate.h"

#include "engine/privatefiles.h"
#include "model/linkinput.h"

#include <QDir>
#include <QMetaObject>
#include <QMutexLocker>
#include <QSettings>

using namespace Qt::StringLiterals;

AppState::AppState(QObject *parent)
    : LogSink(parent)
    , m_outputDirectory(QDir(QDir::homePath()).filePath(QStringLiteral("Downloads")))
    , m_log(new LogModel(MaxLogEntries, this))
{
    // The settings hold the user's folders, cookie file and choices: owner-only before the first
    // of them is written.
    PrivateFiles::protectSettings();
    loadPreferences();
}

AppState::~AppState() = default;

AppState *AppState::instance()
{
    static AppState *const shared = new AppState;
    return shared;
}

EngineHost EngineHost::processWide()
{
    return AppState::instance();
}

void AppState::loadPreferences()
{
    m_remembering = false;
    const QSettings settings;
    const QVariant outputDirectory = settings.value(QLatin1String(OutputDirectoryKey));
    if (outputDirectory.isValid())
        setOutputDirectory(outputDirectory.toString());
    const QVariant cookiePath = settings.value(QLatin1String(CookiePathKey));
    if (cookiePath.isValid())
        setCookiePath(cookiePath.toString());
    setCookieSource(settings.value(QLatin1String(CookieSourceKey)).toString());
    const QString storedPreset = settings.value(QLatin1String(SelectedPresetKey)).toString();
    if (const auto preset = downloadPresetFromStorageKey(storedPreset)) {
        setSelectedPreset(*preset);
    } else if (const auto earlier = downloadPresetFromRawValue(storedPreset)) {
        // Written by a version that kept the label: kept by its key from now on.
        setSelectedPreset(*earlier);
        QSettings().setValue(QLatin1String(SelectedPresetKey), storageKey(*earlier));
    }
    // A switch stored by hand as anything but true or false is left at its default.
    const auto readSwitch = [&settings](const char *key) -> std::optional<bool> {
        const QString text = settings.value(QLatin1String(key)).toString().toLower();
        if (text == u"true")
            return true;
        if (text == u"false")
            return false;
        return std::nullopt;
    };
    if (const auto clipboard = readSwitch(WatchClipboardKey))
        setWatchClipboard(*clipboard);
    if (const auto playlist = readSwitch(DownloadPlaylistKey))
        setDownloadPlaylist(*playlist);
    if (const auto cookies = readSwitch(UseCookiesKey))
        setUseCookies(*cookies);
    if (const auto notify = readSwitch(NotifyOnFinishKey))
        setNotifyOnFinish(*notify);
    if (const auto logPanel = readSwitch(ShowLogPanelKey))
        setShowLogPanel(*logPanel);
    QSettings options;
    options.beginGroup(QLatin1String(DownloadOptionsGroup));
    QVariantMap stored;
    for (const QString &key : options.childKeys())
        stored.insert(key, options.value(key));
    setDownloadChoices(DownloadChoices::fromMap(stored));
    m_remembering = true;
}

void AppState::remember(const char *key, const QVariant &value) const
{
    if (m_remembering)
        QSettings().setValue(QLatin1String(key), value);
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
    return message.left(kept) + AppState::tr("…（已省略 %n 个字符）", nullptr, int(message.size() - kept));
}
} // namespace

void AppState::addLog(const QString &message, LogEntry::LogType type)
{
    queueLog(PendingLog { bounded(message), type, {} });
}

void AppState::addLog(const QString &message, LogEntry::LogType type, const QUuid &redraws)
{
    queueLog(PendingLog { bounded(message), type, redraws });
}

void AppState::queueLog(PendingLog entry)
{
    // Calls are queued under one lock and drained by a single posted flush, so a burst of lines
    // becomes one model update per event-loop turn and the order is the order of the calls.
    QMutexLocker locker(&m_pendingMutex);
    // Only the last MaxLogEntries survive the flush; a flood between two flushes holds no more
    // than twice that.
    if (m_pending.size() >= 2 * MaxLogEntries)
        m_pending.remove(0, m_pending.size() - MaxLogEntries + 1);
    m_pending.append(std::move(entry));
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
    for (qsizetype i = first; i < pending.size(); ++i) {
        const PendingLog &line = pending.at(i);
        if (!line.redraws.isNull()) {
            const QUuid previous = m_redrawnEntries.value(line.redraws);
            const auto inBatch = std::find_if(
                batch.rbegin(), batch.rend(), [&previous](const LogEntry &entry) { return entry.id == previous; });
            if (!previous.isNull() && inBatch != batch.rend()) {
                inBatch->message = line.message;
                continue;
            }
            if (!previous.isNull() && m_log->replace(previous, line.message, now))
                continue;
        }
        batch.append(LogEntry { QUuid::createUuid(), now, line.type, line.message });
        if (!line.redraws.isNull()) {
            // Keys of long-finished downloads are forgotten now and then; their entries have
            // scrolled out of the log long since.
            if (m_redrawnEntries.size() > 4 * MaxLogEntries)
                m_redrawnEntries.clear();
            m_redrawnEntries.insert(line.redraws, batch.constLast().id);
        }
    }
    const int added = int(batch.size());
    m_log->append(std::move(batch));
    // Lines added while the panel shows are seen; the cap bounds the rest.
    if (!m_showLogPanel && added > 0)
        setUnseenLogCount(std::min(m_unseenLogCount + added, m_log->count()));
}

void AppState::clearLog()
{
    m_log->clear();
    setUnseenLogCount(0);
}

void AppState::setUnseenLogCount(int count)
{
    if (m_unseenLogCount == count)
        return;
    m_unseenLogCount = count;
    Q_EMIT unseenLogCountChanged();
}

namespace {
template <typename T, typename Signal>
bool assign(AppState *state, T &member, const T &value, Signal changed)
{
    if (member == value)
        return false;
    member = value;
    Q_EMIT(state->*changed)();
    return true;
}
} // namespace

void AppState::setUrlInput(const QString &value)
{
    assign(this, m_urlInput, value, &AppState::urlInputChanged);
}

void AppState::setWatchClipboard(bool value)
{
    if (assign(this, m_watchClipboard, value, &AppState::watchClipboardChanged))
        remember(WatchClipboardKey, value);
}

int AppState::receiveLinks(const QStringList &texts, const QString &from, bool start)
{
    const LinkInput input = readLinkInput(texts.join(u'\n'));
    QStringList left;
    if (!input.rejected.isEmpty())
        left << tr("%n 行不是链接", nullptr, int(input.rejected.size()));
    if (input.tooLong > 0)
        left << tr("%n 行过长", nullptr, input.tooLong);
    if (input.overLimit > 0)
        left << tr("%n 个链接超过 %1 个的上限", nullptr, input.overLimit).arg(MaxLinks);
    //: %1 is where they came from, said by the caller: "拖放", "剪贴板", "命令行", "文件 a.txt "
    QString message = tr("从%1收到 %n 个链接", nullptr, int(input.links.size())).arg(from);
    if (!left.isEmpty()) {
        //: Between the reasons of a list, as "，" is in Chinese
        const QString separator = tr("，");
        message += tr("（未采用：%1）").arg(left.join(separator));
    }
    addLog(message, input.links.isEmpty() ? LogEntry::LogType::Warning : LogEntry::LogType::Info);
    if (input.links.isEmpty())
        return 0;
    if (start)
        Q_EMIT linksToStart(input.links);
    else
        setUrlInput(withAddedText(m_urlInput, input.links.join(u'\n')));
    return int(input.links.size());
}

void AppState::setDownloadQueue(const QList<DownloadTask> &value)
{
    assign(this, m_downloadQueue, value, &AppState::downloadQueueChanged);
}

void AppState::setSelectedPreset(DownloadPreset value)
{
    if (assign(this, m_selectedPreset, value, &AppState::selectedPresetChanged))
        remember(SelectedPresetKey, storageKey(value));
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
    if (assign(this, m_outputDirectory, value, &AppState::outputDirectoryChanged))
        remember(OutputDirectoryKey, value);
}

void AppState::setUseCookies(bool value)
{
    if (assign(this, m_useCookies, value, &AppState::useCookiesChanged))
        remember(UseCookiesKey, value);
}

void AppState::setCookiePath(const QString &value)
{
    assign(this, m_cookiePath, value, &AppState::cookiePathChanged);
}

void AppState::setCookieSource(const QString &value)
{
    if (!isKnownCookieSource(value))
        return;
    if (assign(this, m_cookieSource, value, &AppState::cookieSourceChanged))
        remember(CookieSourceKey, value);
}

void AppState::setDownloadPlaylist(bool value)
{
    if (assign(this, m_downloadPlaylist, value, &AppState::downloadPlaylistChanged))
        remember(DownloadPlaylistKey, value);
}

void AppState::setNotifyOnFinish(bool value)
{
    if (assign(this, m_notifyOnFinish, value, &AppState::notifyOnFinishChanged))
        remember(NotifyOnFinishKey, value);
}

void AppState::setShowSettings(bool value)
{
    assign(this, m_showSettings, value, &AppState::showSettingsChanged);
}

void AppState::setSelectedTab(int value)
{
    assign(this, m_selectedTab, value, &AppState::selectedTabChanged);
}

void AppState::setDownloadChoices(const DownloadChoices &value)
{
    if (!assign(this, m_downloadChoices, value, &AppState::downloadChoicesChanged) || !m_remembering)
        return;
    QSettings settings;
    settings.beginGroup(QLatin1String(DownloadOptionsGroup));
    const QVariantMap map = value.toMap();
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        settings.setValue(it.key(), it.value());
}

void AppState::setKnownVideo(const QJsonObject &fields)
{
    assign(this, m_knownVideo, fields, &AppState::knownVideoChanged);
}

void AppState::setShowLogPanel(bool value)
{
    if (value)
        setUnseenLogCount(0);
    if (assign(this, m_showLogPanel, value, &AppState::showLogPanelChanged))
        remember(ShowLogPanelKey, value);
}
