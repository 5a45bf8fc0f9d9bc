#pragma once

#include <QHash>
#include <QPointer>
#include <QSet>
#include <QSortFilterProxyModel>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

#include "model/taskmodel.h"

// The queue as the list shows it: the rows whose title, link, status or playlist hold the
// search text, and the rows of a folded playlist group left out, except the group's first, which
// stays (as `folded`, drawn as nothing) so that the group's header stays too.
class QueueFilter : public QSortFilterProxyModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(TaskModel *tasks READ tasks WRITE setTasks NOTIFY tasksChanged)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    // Changes whenever a group's figures may have: bindings that show them depend on it.
    Q_PROPERTY(int revision READ revision NOTIFY revisionChanged)

public:
    enum Role { FoldedRole = Qt::UserRole + 200 };

    explicit QueueFilter(QObject *parent = nullptr);

    TaskModel *tasks() const;
    void setTasks(TaskModel *tasks);
    QString text() const { return m_text; }
    void setText(const QString &text);
    int count() const { return rowCount(); }
    int revision() const { return m_revision; }

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    Q_INVOKABLE bool isFolded(const QString &group) const { return m_folded.contains(group); }
    Q_INVOKABLE void toggleFolded(const QString &group);
    // A group's title and figures: title, count, completed, failed (failed or stopped), active
    // (downloading or waiting).
    Q_INVOKABLE QVariantMap groupInfo(const QString &group) const;

Q_SIGNALS:
    void tasksChanged();
    void textChanged();
    void countChanged();
    void revisionChanged();

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    void touch();

    // Every group's figures, counted in one pass over the queue for the revision they are of.
    mutable QHash<QString, QVariantMap> m_groups;
    mutable int m_groupsRevision = -1;
    QString m_text;
    QSet<QString> m_folded;
    int m_revision = 0;
};
