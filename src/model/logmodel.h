#pragma once

#include "model/enums.h"
#include "model/logentry.h"

#include <QAbstractListModel>
#include <QList>

#include <deque>

// The in-app log as a list model, oldest first, holding at most `capacity` entries.
// Entries arrive in batches; each batch is one row insertion plus, at the cap, one removal of
// the oldest rows, so views never see a reset for an append.
class LogModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        IdRole = Qt::UserRole + 1,
        TimestampRole,
        TypeRole,
        MessageRole,
        TimeTextRole, // "HH:mm:ss", 24-hour local time
        SymbolRole, // the icon of the entry's type
        TintRole, // the colour of the entry's type, a Tint
        IsErrorRole, // error lines show their message in red
    };
    Q_ENUM(Role)

    explicit LogModel(int capacity, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_entries.size()); }
    int capacity() const { return m_capacity; }
    QList<LogEntry> entries() const;
    const LogEntry &at(int row) const { return m_entries[std::size_t(row)]; }

    void append(QList<LogEntry> batch);
    // Gives the entry `id` a new message and time, if it is still in the log.
    bool replace(const QUuid &id, const QString &message, const QDateTime &timestamp);

    static QString symbolFor(LogEntry::LogType type);
    static Tint tintFor(LogEntry::LogType type);
    void clear();

Q_SIGNALS:
    void countChanged();

private:
    std::deque<LogEntry> m_entries;
    int m_capacity;
};
