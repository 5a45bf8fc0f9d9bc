#pragma once

#include "store/taskstore.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QUuid>

#include <functional>

class LogSink;
class DownloadManager;
class QThread;
class QTimer;

// Keeps the download queue across restarts. At start it reads the store on a thread of its own
// and hands the rows to the engine; from then on it follows the task model and writes what
// changed: a new, removed or finished row at once, progress at most once every ProgressWriteMs.
// The saved presets go through the same store and thread. A store that cannot be used is
// reported once in the in-app log, and the queue then lives for this run only.
class QueueMemory : public QObject
{
    Q_OBJECT
    // Why the queue is not kept this run (a store from a later Quillbox, another Quillbox using
    // it, a folder that cannot be written), for the settings sheet; empty while it is kept.
    Q_PROPERTY(QString storeNotice READ storeNotice NOTIFY storeNoticeChanged)

public:
    static constexpr int ProgressWriteMs = 1000;

    // The process-wide memory, bound to DownloadManager::instance() and the default store path.
    static QueueMemory *instance();

    QueueMemory(DownloadManager *downloads, LogSink *log, QString path, QObject *parent = nullptr);
    ~QueueMemory() override;

    QString path() const { return m_path; }
    // Opens the store and brings the queue back into the engine, just after; returns at once.
    void start();
    // Writes what is still pending and stops following the queue: called before quitting stops
    // the downloads, so that the queue is kept as it stood. Waits for the write.
    void close();
    bool isRestored() const { return m_restored; }
    QString storeNotice() const { return m_storeNotice; }

    // The saved presets, in the order they were made; `done` on this thread, unless `context`
    // has gone by then.
    void loadPresets(QObject *context, std::function<void(const QList<SavedPreset> &)> done);
    // Stores a new preset (id 0) or rewrites one; `done` gets its id, or 0 if it was not stored.
    void savePreset(const SavedPreset &preset, QObject *context, std::function<void(qint64)> done);
    void removePreset(qint64 id);

Q_SIGNALS:
    // The stored queue is back in the engine (with `count` rows), or there was nothing to bring.
    void restored(int count);
    void storeNoticeChanged();

private:
    class Worker;

    // Runs `work` with the store on its thread; the store is opened first if it is not yet.
    void onStoreThread(std::function<void(TaskStore &)> work);
    void reportOpen(const TaskStore::OpenResult &result, const QString &error);
    void setStoreNotice(const QString &notice);
    void reportWriteError(const QString &error);
    void follow();
    void endLeftovers(const QList<TaskStore::ProcessGroup> &groups);
    void noteChanged(const QUuid &id, bool soon);
    void scheduleWrite(bool soon);
    StoreBatch takeBatch();
    void write();

    QPointer<DownloadManager> m_downloads;
    LogSink *m_log;
    QString m_path;
    QThread *m_thread;
    Worker *m_worker;
    bool m_restored = false;
    bool m_closed = false;
    bool m_writeErrorShown = false;
    // Each row's place: the restored ones keep theirs, new ones follow.
    QHash<QUuid, qint64> m_ordinals;
    // The process groups of this run's downloads still running.
    QSet<qint64> m_ownGroups;
    qint64 m_nextOrdinal;
    QSet<QUuid> m_dirty;
    QSet<QUuid> m_removed;
    // The rows there were before the model was reset, while it is.
    QSet<QUuid> m_beforeReset;
    QTimer *m_soon;
    QTimer *m_late;
    QString m_storeNotice;
};
