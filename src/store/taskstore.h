#pragma once

#include "model/storedtask.h"

#include <QList>
#include <QString>
#include <QUuid>

// A preset the user saved: a name, yt-dlp arguments and download options.
struct SavedPreset
{
    qint64 id = 0; // 0 until stored
    QString name;
    QString arguments;
    DownloadChoices choices;

    bool operator==(const SavedPreset &) const = default;
};

// What changed in the queue since the last write: rows to write whole, rows to drop.
struct StoreBatch
{
    QList<StoredTask> upserts;
    QList<QUuid> removals;

    bool isEmpty() const { return upserts.isEmpty() && removals.isEmpty(); }
};

// The queue, its history and the saved presets in one SQLite file, written through the
// write-ahead log. Every call is synchronous and belongs to the thread that called open(): the
// application keeps one TaskStore on a thread of its own (see QueueMemory).
class TaskStore
{
public:
    // Version 1 kept the queue alone. Version 2 adds the failure's explanation, the video's
    // length and picture, and the saved presets. Version 3 adds the process groups of running
    // downloads, so that a run that died can have its leftovers ended at the next start. Version
    // 4 keeps a row's status and preset by key ("completed", "bestAudio") instead of by label.
    // Version 5 keeps the download options of a row and of a saved preset.
    static constexpr int SchemaVersion = 6;
    // Finished rows beyond this many, oldest first, are dropped when the store is opened.
    static constexpr int HistoryLimit = 10000;

    enum class OpenState {
        Opened, // the file was there, or is new, and is ours
        Replaced, // the file could not be read: it was moved aside and a fresh one made
        Newer, // a later Quillbox wrote it: it is only read, never written, this run
        Failed, // no database at all (the folder cannot be written, …)
    };
    struct OpenResult
    {
        OpenState state = OpenState::Failed;
        // Where an unreadable file was moved to, or what went wrong.
        QString detail;
    };

    // "quillbox.sqlite" in the per-user data folder.
    static QString defaultPath();

    explicit TaskStore(QString path);
    ~TaskStore();
    TaskStore(const TaskStore &) = delete;
    TaskStore &operator=(const TaskStore &) = delete;

    QString path() const { return m_path; }
    // Opens the file, creating its folder and brings an older schema up to date. A file that is
    // not a database, is damaged or cannot be migrated is renamed "<name>.broken-<time>" (with
    // its "-wal" and "-shm") and a fresh one takes its place. The folder is made owner-only (0700)
    // and the file with its "-wal" and "-shm" 0600, since the rows hold what the user typed.
    OpenResult open();
    bool isOpen() const;
    // Open and ours to change: false for a later version's file, which every write leaves alone.
    bool isWritable() const;

    // Every row in queue order, after dropping finished rows beyond HistoryLimit.
    QList<StoredTask> loadTasks();
    // One transaction: the rows are written whole (inserted or replaced), the removals deleted.
    bool apply(const StoreBatch &batch);

    QList<SavedPreset> loadPresets();
    // Inserts a preset (id 0) or rewrites the one with its id; returns the id, 0 on failure.
    qint64 savePreset(const SavedPreset &preset);
    bool removePreset(qint64 id);

    // The process groups of downloads running now: each group's id and when its leader started
    // (as processStartTime() tells it), recorded while it runs.
    struct ProcessGroup
    {
        qint64 id = 0;
        qint64 started = 0;
    };
    QList<ProcessGroup> loadProcessGroups();
    bool recordProcessGroup(const ProcessGroup &group);
    bool forgetProcessGroups(const QList<qint64> &ids);

    // The last SQLite error, for the log.
    QString lastError() const { return m_lastError; }

private:
    bool openConnection(bool readOnly);
    void makeFilesPrivate() const;
    void closeConnection();
    // Empty when the file is usable; else why not.
    QString checkAndMigrate(int &version);
    bool migrate(int from);
    bool labelsToKeys();
    bool exec(const QString &sql);

    QString m_path;
    QString m_connection;
    QString m_lastError;
    bool m_readOnly = false;
};
