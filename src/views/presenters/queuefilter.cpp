#include "views/presenters/queuefilter.h"

#include "model/downloadtask.h"
#include "model/taskmodel.h"

using namespace Qt::StringLiterals;

QueueFilter::QueueFilter(QObject *parent)
    : QSortFilterProxyModel(parent)
{
    for (const auto signal : { &QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved })
        connect(this, signal, this, &QueueFilter::countChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &QueueFilter::countChanged);
    connect(this, &QAbstractItemModel::layoutChanged, this, &QueueFilter::countChanged);
}

TaskModel *QueueFilter::tasks() const
{
    return qobject_cast<TaskModel *>(sourceModel());
}

void QueueFilter::setTasks(TaskModel *tasks)
{
    if (tasks == sourceModel())
        return;
    if (sourceModel())
        sourceModel()->disconnect(this);
    setSourceModel(tasks);
    if (tasks) {
        connect(tasks, &QAbstractItemModel::dataChanged, this, &QueueFilter::touch);
        // Rows that come or go can change which row heads a folded group, the one of it shown.
        for (const auto signal : { &QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved }) {
            connect(tasks, signal, this, [this] {
                if (!m_folded.isEmpty())
                    invalidateFilter();
                touch();
            });
        }
        connect(tasks, &QAbstractItemModel::modelReset, this, &QueueFilter::touch);
    }
    Q_EMIT tasksChanged();
    Q_EMIT countChanged();
}

void QueueFilter::touch()
{
    ++m_revision;
    Q_EMIT revisionChanged();
}

void QueueFilter::setText(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed == m_text)
        return;
    m_text = trimmed;
    invalidateFilter();
    Q_EMIT textChanged();
    Q_EMIT countChanged();
}

void QueueFilter::toggleFolded(const QString &group)
{
    if (group.isEmpty())
        return;
    if (!m_folded.remove(group))
        m_folded.insert(group);
    invalidateFilter();
    // The group's first row changes how it is drawn.
    for (int row = 0; row < rowCount(); ++row) {
        if (index(row, 0).data(TaskModel::GroupRole).toString() == group) {
            Q_EMIT dataChanged(index(row, 0), index(row, 0), { FoldedRole });
            break;
        }
    }
    Q_EMIT countChanged();
    touch();
}

bool QueueFilter::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    const TaskModel *model = tasks();
    if (!model || sourceParent.isValid())
        return true;
    const DownloadTask &task = model->tasks().at(sourceRow);
    if (!m_text.isEmpty()) {
        // A search shows every row that holds the text, folded or not.
        const auto holds = [this](const QString &field) { return field.contains(m_text, Qt::CaseInsensitive); };
        return holds(task.title) || holds(task.url) || holds(TaskModel::statusText(task)) || holds(task.playlist.title)
            || holds(task.outputPath.value_or(QString()));
    }
    if (!task.playlist.isSet() || m_folded.isEmpty()
        || !m_folded.contains(task.playlist.group.toString(QUuid::WithoutBraces)))
        return true;
    // Of a folded group only the first row stays, for its header.
    return sourceRow == 0 || model->tasks().at(sourceRow - 1).playlist.group != task.playlist.group;
}

QVariant QueueFilter::data(const QModelIndex &index, int role) const
{
    if (role == FoldedRole)
        return m_text.isEmpty() && m_folded.contains(index.data(TaskModel::GroupRole).toString());
    return QSortFilterProxyModel::data(index, role);
}

QHash<int, QByteArray> QueueFilter::roleNames() const
{
    QHash<int, QByteArray> names = QSortFilterProxyModel::roleNames();
    names.insert(FoldedRole, "folded");
    return names;
}

QVariantMap QueueFilter::groupInfo(const QString &group) const
{
    const TaskModel *model = tasks();
    if (m_groupsRevision != m_revision && model) {
        struct Figures
        {
            QString title;
            int count = 0, completed = 0, failed = 0, active = 0;
        };
        QHash<QUuid, Figures> counted;
        for (const DownloadTask &task : model->tasks()) {
            if (!task.playlist.isSet())
                continue;
            Figures &figures = counted[task.playlist.group];
            figures.title = task.playlist.title;
            ++figures.count;
            if (task.status == DownloadStatus::Completed)
                ++figures.completed;
            else if (task.status == DownloadStatus::Failed || TaskModel::isStopped(task.status))
                ++figures.failed;
            else
                ++figures.active;
        }
        m_groups.clear();
        for (auto it = counted.cbegin(); it != counted.cend(); ++it) {
            m_groups.insert(it.key().toString(QUuid::WithoutBraces),
                { { u"title"_s, it->title }, { u"count"_s, it->count }, { u"completed"_s, it->completed },
                    { u"failed"_s, it->failed }, { u"active"_s, it->active } });
        }
        m_groupsRevision = m_revision;
    }
    return m_groups.value(group,
        { { u"title"_s, QString() }, { u"count"_s, 0 }, { u"completed"_s, 0 }, { u"failed"_s, 0 },
            { u"active"_s, 0 } });
}
