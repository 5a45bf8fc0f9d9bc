#pragma once

#include "model/downloadtask.h"
#include "model/enums.h"

#include <QAbstractListModel>
#include <QHash>
#include <QList>

#include <functional>

// The download queue as a list model, in order of creation. A change to one task is one
// dataChanged for its row and the roles that changed.
class TaskModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int completedCount READ completedCount NOTIFY completedCountChanged)
    Q_PROPERTY(bool hasDownloading READ hasDownloading NOTIFY hasDownloadingChanged)

public:
    enum Role {
        IdRole = Qt::UserRole + 1, // the id as text, which QML compares directly
        UrlRole,
        TitleRole,
        StatusRole,
        ProgressRole,
        SpeedRole,
        SizeRole,
        ErrorMessageRole,
        StartTimeRole,
        EndTimeRole,
        // Presentation, derived from the fields above.
        StatusLabelRole, // "下载中", …
        StatusSymbolRole, // the status icon
        StatusTintRole, // the status colour, a Tint
        ShowsProgressRole, // a bar and a percentage while preparing or downloading
        PercentTextRole, // "42%": the whole percent, truncated
        HasErrorRole,
        NoticeRole, // "60 秒无响应" while a download has been silent that long
        ExplanationRole, // the failure in plain words, or empty
        PhaseRole, // "合并中", … after the download; else empty
        EtaRole, // "00:31" while the time left is known
        OutputPathRole, // the file the download ends in, once known; else empty
        FileNameRole, // that file's name
        DurationRole, // the video's length ("3:25"), once known
        ThumbnailRole, // the address of the video's picture, once known
        NeedsToolFixRole, // the explanation's fix is in the settings' tools
        StatusTextRole, // what the row says the task is doing: the phase, else the status label
        DetailsRole, // "3:25 • 1.50MiB/s • 10.00MiB • 剩余 00:31": the parts that are known
        GroupRole, // the playlist group's id as text, or empty for a task of no playlist
        PlaylistTitleRole, // that playlist's title
        PlaylistIndexRole, // the item's number in it (0: none)
    };
    Q_ENUM(Role)

    explicit TaskModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_tasks.size()); }
    int completedCount() const { return m_completed; }
    bool hasDownloading() const { return m_downloading > 0; }
    const QList<DownloadTask> &tasks() const { return m_tasks; }

    static QString symbolFor(DownloadStatus status);
    static Tint tintFor(DownloadStatus status);
    static bool showsProgress(DownloadStatus status);
    // Cancelled or paused: the task ended before its file, and may go on from where it stopped.
    static bool isStopped(DownloadStatus status);
    static QString percentText(double progress);
    static QString statusText(const DownloadTask &task);
    // The known parts of length, speed, size and time left; a stopped task's line says how far it
    // got instead of its last speed ("3:25 • 已下载 42% / 10.00MiB").
    static QString details(const DownloadTask &task);
    const DownloadTask *find(const QUuid &id) const;

    void append(const DownloadTask &task);
    void appendAll(const QList<DownloadTask> &tasks);
    // Inserts `tasks` before `row` (clamped to the list), in one insertion.
    void insertAll(int row, const QList<DownloadTask> &tasks);
    // Removes the task with `id`, if it is there.
    void remove(const QUuid &id);
    // Removes every task that `matches`, a run of neighbouring rows at a time.
    void removeIf(const std::function<bool(const DownloadTask &)> &matches);

    // Applies `change` to the task with `id`, if it is still there, and signals the roles whose
    // values differ afterwards. Returns false when there is no such task.
    template <typename Change>
    bool update(const QUuid &id, Change change)
    {
        const int row = rowOf(id);
        if (row < 0)
            return false;
        DownloadTask before = m_tasks.at(row);
        change(m_tasks[row]);
        changed(row, before);
        return true;
    }

Q_SIGNALS:
    void countChanged();
    void completedCountChanged();
    void hasDownloadingChanged();

private:
    // More runs than this to remove at once are one model reset.
    static constexpr qsizetype ManyRuns = 100;

    int rowOf(const QUuid &id) const;
    void reindexFrom(int row);
    // Removes the rows of each (first, last) run; the runs come from the last one back.
    void removeRuns(const QList<std::pair<int, int>> &runs);
    void changed(int row, const DownloadTask &before);
    // Counts the statuses in (delta +1) or out (-1), and signals the totals that changed.
    void countStatuses(const QList<DownloadStatus> &statuses, int delta);

    QList<DownloadTask> m_tasks;
    QHash<QUuid, int> m_rows;
    int m_completed = 0;
    int m_downloading = 0;
};
