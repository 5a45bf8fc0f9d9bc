#include "model/taskmodel.h"

#include "model/languagechange.h"
#include "model/rawvalue.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

TaskModel::TaskModel(QObject *parent)
    : QAbstractListModel(parent)
{
    // Status names and details are made when read: every row is read again.
    onLanguageChange(this, [this] {
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    });
}

int TaskModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant TaskModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const DownloadTask &task = m_tasks.at(index.row());
    switch (role) {
    case IdRole:
        return task.id.toString(QUuid::WithoutBraces);
    case UrlRole:
        return task.url;
    case Qt::DisplayRole:
    case TitleRole:
        return task.title;
    case StatusRole:
        return QVariant::fromValue(task.status);
    case ProgressRole:
        return task.progress;
    case SpeedRole:
        return task.speed;
    case SizeRole:
        return task.size;
    case ErrorMessageRole:
        return task.errorMessage ? QVariant(*task.errorMessage) : QVariant();
    case StartTimeRole:
        return task.startTime;
    case EndTimeRole:
        return task.endTime ? QVariant(*task.endTime) : QVariant();
    case StatusLabelRole:
        return rawValue(task.status);
    case StatusSymbolRole:
        return symbolFor(task.status);
    case StatusTintRole:
        return int(tintFor(task.status));
    case ShowsProgressRole:
        return showsProgress(task.status);
    case PercentTextRole:
        return percentText(task.progress);
    case HasErrorRole:
        return task.errorMessage.has_value();
    case NoticeRole:
        return task.notice;
    case ExplanationRole:
        return task.explanation.value_or(QString());
    case PhaseRole:
        return task.phase;
    case EtaRole:
        return task.eta;
    case OutputPathRole:
        return task.outputPath.value_or(QString());
    case DurationRole:
        return task.duration;
    case ThumbnailRole:
        return task.thumbnail;
    case NeedsToolFixRole:
        return task.needsToolFix;
    case StatusTextRole:
        return statusText(task);
    case DetailsRole:
        return details(task);
    case FileNameRole:
        return task.outputPath ? task.outputPath->mid(task.outputPath->lastIndexOf(u'/') + 1) : QString();
    case GroupRole:
        return task.playlist.isSet() ? task.playlist.group.toString(QUuid::WithoutBraces) : QString();
    case PlaylistTitleRole:
        return task.playlist.title;
    case PlaylistIndexRole:
        return task.playlist.index;
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> TaskModel::roleNames() const
{
    return {
        { IdRole, "taskId" },
        { UrlRole, "url" },
        { TitleRole, "title" },
        { StatusRole, "status" },
        { ProgressRole, "progress" },
        { SpeedRole, "speed" },
        { SizeRole, "size" },
        { ErrorMessageRole, "errorMessage" },
        { StartTimeRole, "startTime" },
        { EndTimeRole, "endTime" },
        { StatusLabelRole, "statusLabel" },
        { StatusSymbolRole, "statusSymbol" },
        { StatusTintRole, "statusTint" },
        { ShowsProgressRole, "showsProgress" },
        { PercentTextRole, "percentText" },
        { HasErrorRole, "hasError" },
        { NoticeRole, "notice" },
        { ExplanationRole, "explanation" },
        { PhaseRole, "phase" },
        { EtaRole, "eta" },
        { OutputPathRole, "outputPath" },
        { FileNameRole, "fileName" },
        { DurationRole, "duration" },
        { ThumbnailRole, "thumbnail" },
        { NeedsToolFixRole, "needsToolFix" },
        { StatusTextRole, "statusText" },
        { DetailsRole, "details" },
        { GroupRole, "group" },
        { PlaylistTitleRole, "playlistTitle" },
        { PlaylistIndexRole, "playlistIndex" },
    };
}

namespace {
struct StatusLook
{
    DownloadStatus status;
    const char16_t *symbol;
    Tint tint;
};

// Preparing and paused share orange on purpose.
constexpr std::array<StatusLook, 7> looks { {
    { DownloadStatus::Pending, u"clock", Tint::Gray },
    { DownloadStatus::Preparing, u"gearshape", Tint::Orange },
    { DownloadStatus::Downloading, u"arrow.down.circle", Tint::Blue },
    { DownloadStatus::Completed, u"checkmark.circle.fill", Tint::Green },
    { DownloadStatus::Failed, u"xmark.circle.fill", Tint::Red },
    { DownloadStatus::Cancelled, u"minus.circle.fill", Tint::Yellow },
    { DownloadStatus::Paused, u"pause.circle.fill", Tint::Orange },
} };

} // namespace

QString TaskModel::statusText(const DownloadTask &task)
{
    // After the download, what is being done with it says more than "下载中".
    return task.phase.isEmpty() ? rawValue(task.status) : task.phase;
}

bool TaskModel::isStopped(DownloadStatus status)
{
    return status == DownloadStatus::Cancelled || status == DownloadStatus::Paused;
}

QString TaskModel::details(const DownloadTask &task)
{
    QStringList parts;
    if (!task.duration.isEmpty())
        parts.append(task.duration);
    if (!task.outcome.isEmpty())
        parts.append(task.outcome);
    const bool stopped = isStopped(task.status);
    if (stopped && task.progress > 0) {
        // A stopped task has no bar and no speed any more: the line says how far it got.
        const QString percent = percentText(task.progress);
        parts.append(task.size.isEmpty() ? tr("已下载 %1").arg(percent) : tr("已下载 %1 / %2").arg(percent, task.size));
    } else {
        if (!stopped && !task.speed.isEmpty())
            parts.append(task.speed);
        if (!task.size.isEmpty())
            parts.append(task.size);
    }
    if (!task.eta.isEmpty())
        parts.append(tr("剩余 %1").arg(task.eta));
    return parts.join(u" • "_s);
}

QString TaskModel::symbolFor(DownloadStatus status)
{
    return QString::fromUtf16(entryFor(looks, &StatusLook::status, status).symbol);
}

Tint TaskModel::tintFor(DownloadStatus status)
{
    return entryFor(looks, &StatusLook::status, status).tint;
}

bool TaskModel::showsProgress(DownloadStatus status)
{
    return status == DownloadStatus::Downloading || status == DownloadStatus::Preparing;
}

QString TaskModel::percentText(double progress)
{
    // Truncated toward zero: 0.999 is 99%, not 100%. The nudge keeps 0.29 (from "29.0%") from
    // reading 28, as 0.29 * 100 is 28.999999999999996 in binary.
    // Whatever the task holds, the text reads 0–100 (a value out of range must not overflow).
    const double fraction = std::isnan(progress) ? 0.0 : std::clamp(progress, 0.0, 1.0);
    return QString::number(int(fraction * 100 + 1e-9)) + u'%';
}

const DownloadTask *TaskModel::find(const QUuid &id) const
{
    const int row = rowOf(id);
    return row < 0 ? nullptr : &m_tasks.at(row);
}

void TaskModel::append(const DownloadTask &task)
{
    appendAll({ task });
}

void TaskModel::appendAll(const QList<DownloadTask> &tasks)
{
    insertAll(count(), tasks);
}

void TaskModel::insertAll(int row, const QList<DownloadTask> &tasks)
{
    if (tasks.isEmpty())
        return;
    row = std::clamp(row, 0, count());
    beginInsertRows(QModelIndex(), row, row + int(tasks.size()) - 1);
    m_tasks.insert(row, tasks.size(), DownloadTask());
    std::copy(tasks.cbegin(), tasks.cend(), m_tasks.begin() + row);
    reindexFrom(row);
    endInsertRows();
    QList<DownloadStatus> added;
    added.reserve(tasks.size());
    for (const DownloadTask &task : tasks)
        added.append(task.status);
    countStatuses(added, +1);
    Q_EMIT countChanged();
}

void TaskModel::reindexFrom(int row)
{
    for (; row < count(); ++row)
        m_rows.insert(m_tasks.at(row).id, row);
}

void TaskModel::remove(const QUuid &id)
{
    const int row = rowOf(id);
    if (row >= 0)
        removeRuns({ { row, row } });
}

void TaskModel::removeIf(const std::function<bool(const DownloadTask &)> &matches)
{
    QList<std::pair<int, int>> runs;
    for (int row = count() - 1; row >= 0; --row) {
        if (!matches(m_tasks.at(row)))
            continue;
        if (!runs.isEmpty() && runs.last().first == row + 1)
            runs.last().first = row;
        else
            runs.append({ row, row });
    }
    removeRuns(runs);
}

void TaskModel::removeRuns(const QList<std::pair<int, int>> &runs)
{
    if (runs.isEmpty())
        return;
    QList<DownloadStatus> gone;
    // Scattered rows (every other one of a long history) go in one reset, not thousands of
    // removals that each renumber what follows.
    const bool reset = runs.size() > ManyRuns;
    if (reset)
        beginResetModel();
    // From the last run back, so the rows of the runs still to go keep their numbers.
    for (const auto &[first, last] : runs) {
        if (!reset)
            beginRemoveRows(QModelIndex(), first, last);
        for (int row = first; row <= last; ++row) {
            gone.append(m_tasks.at(row).status);
            m_rows.remove(m_tasks.at(row).id);
        }
        m_tasks.remove(first, last - first + 1);
        if (!reset) {
            reindexFrom(first);
            endRemoveRows();
        }
    }
    if (reset) {
        reindexFrom(0);
        endResetModel();
    }
    countStatuses(gone, -1);
    Q_EMIT countChanged();
}

int TaskModel::rowOf(const QUuid &id) const
{
    return m_rows.value(id, -1);
}

void TaskModel::changed(int row, const DownloadTask &before)
{
    const DownloadTask &after = m_tasks.at(row);
    QList<int> roles;
    if (after.title != before.title)
        roles.append(TitleRole);
    if (after.status != before.status)
        roles << StatusRole << StatusLabelRole << StatusSymbolRole << StatusTintRole << ShowsProgressRole
              << StatusTextRole;
    if (after.progress != before.progress)
        roles << ProgressRole << PercentTextRole;
    if (after.speed != before.speed)
        roles.append(SpeedRole);
    if (after.size != before.size)
        roles.append(SizeRole);
    // The parts of details(), compared rather than the line composed twice on every progress update.
    if (after.duration != before.duration || after.speed != before.speed || after.size != before.size
        || after.eta != before.eta || after.status != before.status
        || (isStopped(after.status) && after.progress != before.progress))
        roles.append(DetailsRole);
    if (after.errorMessage != before.errorMessage)
        roles << ErrorMessageRole << HasErrorRole;
    if (after.explanation != before.explanation)
        roles.append(ExplanationRole);
    if (after.needsToolFix != before.needsToolFix)
        roles.append(NeedsToolFixRole);
    if (after.startTime != before.startTime)
        roles.append(StartTimeRole);
    if (after.endTime != before.endTime)
        roles.append(EndTimeRole);
    if (after.notice != before.notice)
        roles.append(NoticeRole);
    if (after.phase != before.phase)
        roles << PhaseRole << StatusTextRole;
    if (after.eta != before.eta)
        roles.append(EtaRole);
    if (after.outputPath != before.outputPath)
        roles << OutputPathRole << FileNameRole;
    if (after.duration != before.duration)
        roles.append(DurationRole);
    if (after.thumbnail != before.thumbnail)
        roles.append(ThumbnailRole);
    if (roles.isEmpty())
        return;
    const QModelIndex changedIndex = index(row);
    Q_EMIT dataChanged(changedIndex, changedIndex, roles);
    if (after.status != before.status) {
        countStatuses({ before.status }, -1);
        countStatuses({ after.status }, +1);
    }
}

void TaskModel::countStatuses(const QList<DownloadStatus> &statuses, int delta)
{
    const int completed = m_completed;
    const bool downloading = hasDownloading();
    for (const DownloadStatus status : statuses) {
        if (status == DownloadStatus::Completed)
            m_completed += delta;
        else if (status == DownloadStatus::Downloading)
            m_downloading += delta;
    }
    if (completed != m_completed)
        Q_EMIT completedCountChanged();
    if (downloading != hasDownloading())
        Q_EMIT hasDownloadingChanged();
}
