#include "notify/notifier.h"

#include "app/buildinfo.h"
#include "model/appstate.h"
#include "model/logcategories.h"
#include "model/taskmodel.h"

#ifdef Q_OS_MACOS
#include <QCoreApplication>
#include <QProcess>
#else
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#endif

using namespace Qt::StringLiterals;

namespace {
// An explanation longer than this stays in the row; the notification names the video only.
constexpr qsizetype MaxExplanationInBody = 60;

bool isFinished(DownloadStatus status)
{
    return status == DownloadStatus::Completed || status == DownloadStatus::Failed;
}

QString bodyFor(const DownloadTask &task)
{
    if (task.status != DownloadStatus::Failed || !task.explanation)
        return task.title;
    const QString line = task.explanation->section(u'\n', 0, 0).trimmed();
    if (line.isEmpty() || line.size() > MaxExplanationInBody)
        return task.title;
    return task.title + u'\n' + line;
}
} // namespace

Notifier::Notifier(const TaskModel *tasks, const AppState *settings, WindowActive windowActive, QObject *parent)
    : QObject(parent)
    , m_tasks(tasks)
    , m_settings(settings)
    , m_windowActive(std::move(windowActive))
{
    remember(0, m_tasks->rowCount() - 1);
    connect(m_tasks, &QAbstractItemModel::rowsInserted, this,
        [this](const QModelIndex &, int first, int last) { remember(first, last); });
    connect(m_tasks, &QAbstractItemModel::rowsAboutToBeRemoved, this,
        [this](const QModelIndex &, int first, int last) { forget(first, last); });
    connect(m_tasks, &QAbstractItemModel::modelReset, this, [this] {
        m_seen.clear();
        remember(0, m_tasks->rowCount() - 1);
    });
    connect(m_tasks, &QAbstractItemModel::dataChanged, this,
        [this](const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles) {
            if (roles.isEmpty() || roles.contains(TaskModel::StatusRole))
                statusesMayHaveChanged(topLeft.row(), bottomRight.row());
        });
}

Notifier::~Notifier() = default;

void Notifier::remember(int first, int last)
{
    const QList<DownloadTask> &tasks = m_tasks->tasks();
    for (int row = first; row <= last && row < tasks.size(); ++row)
        m_seen.insert(tasks.at(row).id, tasks.at(row).status);
}

void Notifier::forget(int first, int last)
{
    const QList<DownloadTask> &tasks = m_tasks->tasks();
    for (int row = first; row <= last && row < tasks.size(); ++row)
        m_seen.remove(tasks.at(row).id);
}

void Notifier::statusesMayHaveChanged(int first, int last)
{
    const QList<DownloadTask> &tasks = m_tasks->tasks();
    for (int row = std::max(first, 0); row <= last && row < tasks.size(); ++row) {
        const DownloadTask &task = tasks.at(row);
        const auto seen = m_seen.find(task.id);
        if (seen == m_seen.end()) {
            m_seen.insert(task.id, task.status);
            continue;
        }
        const DownloadStatus before = std::exchange(*seen, task.status);
        if (before == task.status || !isFinished(task.status))
            continue;
        if (!m_settings->notifyOnFinish() || (m_windowActive && m_windowActive()))
            continue;
        send(task.status == DownloadStatus::Completed ? QCoreApplication::translate("Notifier", "下载完成")
                                                      : QCoreApplication::translate("Notifier", "下载失败"),
            bodyFor(task));
    }
}

void Notifier::unavailable(const QString &why)
{
    if (std::exchange(m_saidUnavailable, true))
        return;
    qCInfo(lcEngine, "[Quillbox] 桌面通知不可用: %ls", qUtf16Printable(why));
}

#ifdef Q_OS_MACOS

void Notifier::send(const QString &summary, const QString &body)
{
    // The texts reach the script as arguments of its run handler, never as script text.
    const QStringList arguments { u"-e"_s, u"on run argv"_s, u"-e"_s,
        u"display notification (item 2 of argv) with title (item 1 of argv)"_s, u"-e"_s, u"end run"_s, summary, body };
    if (!QProcess::startDetached(u"/usr/bin/osascript"_s, arguments))
        unavailable(QCoreApplication::translate("Notifier", "osascript 无法启动"));
}

#else

namespace {
const QString ServiceName = u"org.freedesktop.Notifications"_s;
const QString ServicePath = u"/org/freedesktop/Notifications"_s;
} // namespace

void Notifier::send(const QString &summary, const QString &body)
{
    switch (m_markup) {
    case Markup::Plain:
    case Markup::Escaped:
        deliver(summary, body);
        return;
    case Markup::Asking:
        m_waiting.append({ summary, body });
        return;
    case Markup::Unknown:
        break;
    }
    // The session bus is first connected to here, not at start-up.
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        unavailable(bus.lastError().message());
        return;
    }
    m_markup = Markup::Asking;
    m_waiting.append({ summary, body });
    const QDBusMessage ask
        = QDBusMessage::createMethodCall(ServiceName, ServicePath, ServiceName, u"GetCapabilities"_s);
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(ask), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *finished) {
        finished->deleteLater();
        const QDBusPendingReply<QStringList> capabilities = *finished;
        const bool markup = capabilities.isValid() && capabilities.value().contains(u"body-markup"_s);
        m_markup = markup ? Markup::Escaped : Markup::Plain;
        for (const auto &[summary, body] : std::exchange(m_waiting, {}))
            deliver(summary, body);
    });
}

void Notifier::deliver(const QString &summary, const QString &body)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    QDBusMessage call = QDBusMessage::createMethodCall(ServiceName, ServicePath, ServiceName, u"Notify"_s);
    const QString appId = QString::fromLatin1(QuillboxAppId);
    const QVariantMap hints { { u"desktop-entry"_s, appId } };
    call << u"Quillbox"_s << 0u << appId << summary << (m_markup == Markup::Escaped ? body.toHtmlEscaped() : body)
         << QStringList() << hints << -1;
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *finished) {
        finished->deleteLater();
        if (finished->isError())
            unavailable(finished->error().message());
    });
}

#endif
