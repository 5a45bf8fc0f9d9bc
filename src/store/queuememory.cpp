#include "store/queuememory.h"

#include "engine/shellrunner.h"

#include "engine/downloadmanager.h"
#include "engine/privatefiles.h"
#include "model/enginehost.h"
#include "model/logcategories.h"
#include "model/taskmodel.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QLockFile>
#include <QThread>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;

// Lives on the store's thread and owns the store there.
class QueueMemory::Worker : public QObject
{
public:
    explicit Worker(QString path)
        : m_path(std::move(path))
    {
    }

    // Opens the store on first use; `report` gets the outcome that once.
    TaskStore &store(const std::function<void(const TaskStore::OpenResult &, const QString &)> &report)
    {
        if (m_store)
            return *m_store;
        m_store = std::make_unique<TaskStore>(m_path);
        // One running Quillbox at a time writes the queue: a second one would store its own queue
        // beside the first one's and bring both back. A lock left by a killed run is stale at
        // once, since its process is gone.
        PrivateFiles::makeFolder(QFileInfo(m_path).absolutePath());
        m_lock = std::make_unique<QLockFile>(m_path + u".lock"_s);
        if (!m_lock->tryLock(0)) {
            const QString why = m_lock->error() == QLockFile::LockFailedError
                ? QCoreApplication::translate("QueueMemory", "另一个 Quillbox 正在使用它")
                : QCoreApplication::translate("QueueMemory", "无法创建锁文件 %1.lock").arg(m_path);
            report({ TaskStore::OpenState::Failed, why }, {});
            return *m_store;
        }
        PrivateFiles::restrictFile(m_lock->fileName());
        const TaskStore::OpenResult result = m_store->open();
        report(result, m_store->lastError());
        return *m_store;
    }

    void closeStore()
    {
        m_store.reset();
        m_lock.reset();
    }

private:
    QString m_path;
    std::unique_ptr<QLockFile> m_lock;
    std::unique_ptr<TaskStore> m_store;
};

QueueMemory *QueueMemory::instance()
{
    static QueueMemory *const memory
        = new QueueMemory(DownloadManager::instance(), EngineHost::processWide().log, TaskStore::defaultPath());
    return memory;
}

QueueMemory::QueueMemory(DownloadManager *downloads, LogSink *log, QString path, QObject *parent)
    : QObject(parent)
    , m_downloads(downloads)
    , m_log(log)
    , m_path(std::move(path))
    , m_thread(new QThread(this))
    , m_worker(new Worker(m_path))
    // Later than anything a previous run stored, even before that is read.
    , m_nextOrdinal(QDateTime::currentMSecsSinceEpoch() * 1000)
    , m_soon(new QTimer(this))
    , m_late(new QTimer(this))
{
    m_thread->setObjectName(u"queue store"_s);
    m_worker->moveToThread(m_thread);
    connect(m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    m_thread->start(QThread::LowPriority);
    m_soon->setSingleShot(true);
    m_soon->setInterval(0);
    m_late->setSingleShot(true);
    m_late->setInterval(ProgressWriteMs);
    connect(m_soon, &QTimer::timeout, this, &QueueMemory::write);
    connect(m_late, &QTimer::timeout, this, &QueueMemory::write);
    follow();
}

QueueMemory::~QueueMemory()
{
    close();
}

void QueueMemory::onStoreThread(std::function<void(TaskStore &)> work)
{
    if (!m_thread->isRunning())
        return;
    // The thread ends in close(), before this object goes, so `self` outlives the work; what
    // comes back is queued to it and dropped if it has gone by then.
    QueueMemory *self = this;
    Worker *worker = m_worker;
    QMetaObject::invokeMethod(
        worker,
        [self, worker, work = std::move(work)] {
            TaskStore &store = worker->store([self](const TaskStore::OpenResult &result, const QString &error) {
                QMetaObject::invokeMethod(
                    self, [self, result, error] { self->reportOpen(result, error); }, Qt::QueuedConnection);
            });
            work(store);
        },
        Qt::QueuedConnection);
}

void QueueMemory::reportOpen(const TaskStore::OpenResult &result, const QString &error)
{
    switch (result.state) {
    case TaskStore::OpenState::Opened:
        return;
    case TaskStore::OpenState::Replaced:
        m_log->addLog(QCoreApplication::translate(
                          "QueueMemory", "⚠️ 队列数据库已损坏，已移到 %1，并新建了一个")
                          .arg(result.detail),
            LogEntry::LogType::Warning);
        return;
    case TaskStore::OpenState::Newer:
        m_log->addLog(QCoreApplication::translate("QueueMemory",
                          "⚠️ 队列数据库来自更新版本的 Quillbox，本次不会保存队列: %1")
                          .arg(m_path),
            LogEntry::LogType::Warning);
        setStoreNotice(QCoreApplication::translate("QueueMemory",
            "队列数据库来自更新版本的 Quillbox，只读取、不改动：本次的队列只在内存中，退出后不会保留。"));
        return;
    case TaskStore::OpenState::Failed:
        m_log->addLog(QCoreApplication::translate(
                          "QueueMemory", "⚠️ 无法打开队列数据库 %1，本次不会保存队列: %2")
                          .arg(m_path, result.detail),
            LogEntry::LogType::Warning);
        setStoreNotice(QCoreApplication::translate(
            "QueueMemory", "无法打开队列数据库（%1）：本次的队列只在内存中，退出后不会保留。")
                           .arg(result.detail));
        qCWarning(lcEngine, "[Quillbox] 队列数据库无法打开: %ls (%ls)", qUtf16Printable(result.detail),
            qUtf16Printable(error));
        return;
    }
}

void QueueMemory::setStoreNotice(const QString &notice)
{
    if (m_storeNotice == notice)
        return;
    m_storeNotice = notice;
    Q_EMIT storeNoticeChanged();
}

void QueueMemory::reportWriteError(const QString &error)
{
    // Once per run: a full disk would otherwise fill the logs with the same line every second.
    if (std::exchange(m_writeErrorShown, true))
        return;
    qCWarning(lcEngine, "[Quillbox] 队列写入失败: %ls", qUtf16Printable(error));
    m_log->addLog(QCoreApplication::translate("QueueMemory", "⚠️ 无法保存队列: %1").arg(error),
        LogEntry::LogType::Warning);
}

void QueueMemory::start()
{
    QueueMemory *self = this;
    onStoreThread([self](TaskStore &store) {
        QList<StoredTask> rows = store.loadTasks();
        QList<TaskStore::ProcessGroup> groups = store.loadProcessGroups();
        QMetaObject::invokeMethod(
            self,
            [self, rows = std::move(rows), groups = std::move(groups)] {
                if (!self->m_downloads || self->m_closed)
                    return;
                self->endLeftovers(groups);
                for (const StoredTask &row : rows) {
                    self->m_ordinals.insert(row.task.id, row.ordinal);
                    self->m_nextOrdinal = std::max(self->m_nextOrdinal, row.ordinal + 1);
                }
                self->m_restored = true;
                self->m_downloads->restoreTasks(rows);
                Q_EMIT self->restored(int(rows.size()));
            },
            Qt::QueuedConnection);
    });
}

// Downloads of a run that died may still be writing their files: they are ended before their
// rows come back, so carrying them on never starts a second writer on the same file.
void QueueMemory::endLeftovers(const QList<TaskStore::ProcessGroup> &groups)
{
    if (groups.isEmpty())
        return;
    QList<std::pair<qint64, qint64>> recorded;
    QList<qint64> ids;
    for (const TaskStore::ProcessGroup &group : groups) {
        // A download of this run may have been recorded before the store was read: not a leftover.
        if (m_ownGroups.contains(group.id))
            continue;
        recorded.append({ group.id, group.started });
        ids.append(group.id);
    }
    if (ids.isEmpty())
        return;
    const int ended = endLeftoverGroups(recorded);
    if (ended > 0) {
        qCInfo(lcEngine, "[Quillbox] 已结束上次运行遗留的 %d 个下载进程组", ended);
        m_log->addLog(QCoreApplication::translate(
                          "QueueMemory", "⏹ 已结束上次运行遗留的 %n 个下载进程", nullptr, ended),
            LogEntry::LogType::Warning);
    }
    onStoreThread([ids](TaskStore &store) { store.forgetProcessGroups(ids); });
}

void QueueMemory::follow()
{
    if (!m_downloads)
        return;
    connect(m_downloads, &DownloadManager::processGroupStarted, this, [this](qint64 group) {
        m_ownGroups.insert(group);
        const TaskStore::ProcessGroup recorded { group, processStartTime(group) };
        onStoreThread([recorded](TaskStore &store) { store.recordProcessGroup(recorded); });
    });
    connect(m_downloads, &DownloadManager::processGroupEnded, this, [this](qint64 group) {
        m_ownGroups.remove(group);
        onStoreThread([group](TaskStore &store) { store.forgetProcessGroups({ group }); });
    });
    TaskModel *model = m_downloads->taskModel();
    connect(model, &QAbstractItemModel::rowsInserted, this, [this, model](const QModelIndex &, int first, int last) {
        for (int row = first; row <= last; ++row) {
            const QUuid id = model->tasks().at(row).id;
            // A restored row is on disk already, in its place.
            if (m_ordinals.contains(id))
                continue;
            m_ordinals.insert(id, m_nextOrdinal++);
            noteChanged(id, true);
        }
    });
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
        [this, model](const QModelIndex &, int first, int last) {
            for (int row = first; row <= last; ++row) {
                const QUuid id = model->tasks().at(row).id;
                m_ordinals.remove(id);
                m_dirty.remove(id);
                m_removed.insert(id);
            }
            scheduleWrite(true);
        });
    // Many scattered rows go at once in a reset: what is no longer there afterwards has gone.
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, [this, model] {
        for (const DownloadTask &task : model->tasks())
            m_beforeReset.insert(task.id);
    });
    connect(model, &QAbstractItemModel::modelReset, this, [this, model] {
        for (const DownloadTask &task : model->tasks())
            m_beforeReset.remove(task.id);
        for (const QUuid &id : std::as_const(m_beforeReset)) {
            m_ordinals.remove(id);
            m_dirty.remove(id);
            m_removed.insert(id);
        }
        m_beforeReset.clear();
        scheduleWrite(true);
    });
    connect(model, &QAbstractItemModel::dataChanged, this,
        [this, model](const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles) {
            // Progress is written at most once a ProgressWriteMs; what the user would miss
            // after a crash (a finished download, a title, a failure) is written at once.
            static const QSet<int> progressRoles
                = { TaskModel::ProgressRole, TaskModel::SpeedRole, TaskModel::SizeRole, TaskModel::PercentTextRole };
            static const QSet<int> transientRoles = { TaskModel::NoticeRole, TaskModel::PhaseRole, TaskModel::EtaRole };
            bool stored = roles.isEmpty();
            bool soon = roles.isEmpty();
            for (const int role : roles) {
                if (transientRoles.contains(role))
                    continue;
                stored = true;
                soon = soon || !progressRoles.contains(role);
            }
            if (!stored)
                return;
            for (int row = topLeft.row(); row <= bottomRight.row(); ++row)
                noteChanged(model->tasks().at(row).id, soon);
        });
}

void QueueMemory::noteChanged(const QUuid &id, bool soon)
{
    if (m_closed)
        return;
    m_dirty.insert(id);
    scheduleWrite(soon);
}

void QueueMemory::scheduleWrite(bool soon)
{
    if (m_closed)
        return;
    if (soon)
        m_soon->start();
    else if (!m_late->isActive())
        m_late->start();
}

StoreBatch QueueMemory::takeBatch()
{
    StoreBatch batch;
    m_soon->stop();
    m_late->stop();
    batch.removals = QList<QUuid>(m_removed.cbegin(), m_removed.cend());
    m_removed.clear();
    if (!m_downloads) {
        m_dirty.clear();
        return batch;
    }
    batch.upserts.reserve(m_dirty.size());
    for (const QUuid &id : std::as_const(m_dirty)) {
        const DownloadTask *task = m_downloads->taskModel()->find(id);
        const std::optional<DownloadRequest> request = m_downloads->requestFor(id);
        if (task && request)
            batch.upserts.append({ *task, *request, m_ordinals.value(id) });
    }
    m_dirty.clear();
    return batch;
}

void QueueMemory::write()
{
    StoreBatch batch = takeBatch();
    if (batch.isEmpty())
        return;
    QueueMemory *self = this;
    onStoreThread([self, batch = std::move(batch)](TaskStore &store) {
        // Not written at all when there is no store or it belongs to a later version.
        if (!store.isWritable() || store.apply(batch))
            return;
        QList<QUuid> written;
        written.reserve(batch.upserts.size());
        for (const StoredTask &row : batch.upserts)
            written.append(row.task.id);
        QMetaObject::invokeMethod(
            self,
            [self, error = store.lastError(), written, removals = batch.removals] {
                self->reportWriteError(error);
                // Tried again with the next write, and a second later at the latest (a store
                // that another program holds for a moment, a disk that has room again).
                for (const QUuid &id : written) {
                    if (self->m_ordinals.contains(id))
                        self->m_dirty.insert(id);
                }
                for (const QUuid &id : removals)
                    self->m_removed.insert(id);
                self->scheduleWrite(false);
            },
            Qt::QueuedConnection);
    });
}

void QueueMemory::close()
{
    if (m_closed)
        return;
    write();
    m_closed = true;
    if (m_downloads)
        disconnect(m_downloads->taskModel(), nullptr, this, nullptr);
    if (!m_thread->isRunning())
        return;
    Worker *worker = m_worker;
    // After every write already asked for, on the same thread, in order.
    QMetaObject::invokeMethod(
        worker,
        [worker] {
            worker->closeStore();
            QThread::currentThread()->quit();
        },
        Qt::QueuedConnection);
    m_thread->wait();
}

void QueueMemory::loadPresets(QObject *context, std::function<void(const QList<SavedPreset> &)> done)
{
    QueueMemory *self = this;
    const QPointer<QObject> receiver = context;
    onStoreThread([self, receiver, done = std::move(done)](TaskStore &store) {
        QList<SavedPreset> presets = store.loadPresets();
        QMetaObject::invokeMethod(
            self,
            [receiver, done, presets = std::move(presets)] {
                if (receiver)
                    done(presets);
            },
            Qt::QueuedConnection);
    });
}

void QueueMemory::savePreset(const SavedPreset &preset, QObject *context, std::function<void(qint64)> done)
{
    QueueMemory *self = this;
    const QPointer<QObject> receiver = context;
    onStoreThread([self, receiver, preset, done = std::move(done)](TaskStore &store) {
        const qint64 id = store.savePreset(preset);
        QMetaObject::invokeMethod(
            self,
            [receiver, done, id] {
                if (receiver)
                    done(id);
            },
            Qt::QueuedConnection);
    });
}

void QueueMemory::removePreset(qint64 id)
{
    onStoreThread([id](TaskStore &store) { store.removePreset(id); });
}
