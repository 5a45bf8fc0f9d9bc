#include "model/logmodel.h"

LogModel::LogModel(int capacity, QObject *parent)
    : QAbstractListModel(parent)
    , m_capacity(capacity)
{
}

int LogModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant LogModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const LogEntry &entry = at(index.row());
    switch (role) {
    case IdRole:
        return entry.id;
    case TimestampRole:
        return entry.timestamp;
    case TypeRole:
        return QVariant::fromValue(entry.type);
    case Qt::DisplayRole:
    case MessageRole:
        return entry.message;
    case TimeTextRole:
        return entry.timestamp.toString(QStringLiteral("HH:mm:ss"));
    case SymbolRole:
        return symbolFor(entry.type);
    case TintRole:
        return tintFor(entry.type);
    case IsErrorRole:
        return entry.type == LogEntry::LogType::Error;
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> LogModel::roleNames() const
{
    return {
        { IdRole, "entryId" },
        { TimestampRole, "timestamp" },
        { TypeRole, "type" },
        { MessageRole, "message" },
        { TimeTextRole, "timeText" },
        { SymbolRole, "symbol" },
        { TintRole, "tint" },
        { IsErrorRole, "isError" },
    };
}

QString LogModel::symbolFor(LogEntry::LogType type)
{
    switch (type) {
    case LogEntry::LogType::Info:
        return QStringLiteral("info.circle");
    case LogEntry::LogType::Warning:
        return QStringLiteral("exclamationmark.triangle");
    case LogEntry::LogType::Error:
        return QStringLiteral("xmark.octagon");
    case LogEntry::LogType::Download:
        return QStringLiteral("arrow.down.circle");
    }
    return QString();
}

QString LogModel::tintFor(LogEntry::LogType type)
{
    switch (type) {
    case LogEntry::LogType::Info:
        return QStringLiteral("blue");
    case LogEntry::LogType::Warning:
        return QStringLiteral("orange");
    case LogEntry::LogType::Error:
        return QStringLiteral("red");
    case LogEntry::LogType::Download:
        return QStringLiteral("green");
    }
    return QString();
}

QList<LogEntry> LogModel::entries() const
{
    return QList<LogEntry>(m_entries.begin(), m_entries.end());
}

void LogModel::append(QList<LogEntry> batch)
{
    if (batch.isEmpty())
        return;
    // Entries that the cap would drop within this same batch are never shown.
    if (batch.size() > m_capacity)
        batch.remove(0, batch.size() - m_capacity);

    const int overflow = count() + int(batch.size()) - m_capacity;
    if (overflow > 0) {
        beginRemoveRows(QModelIndex(), 0, overflow - 1);
        m_entries.erase(m_entries.begin(), m_entries.begin() + overflow);
        endRemoveRows();
    }

    const int first = count();
    beginInsertRows(QModelIndex(), first, first + int(batch.size()) - 1);
    for (LogEntry &entry : batch)
        m_entries.push_back(std::move(entry));
    endInsertRows();

    if (overflow < int(batch.size()))
        Q_EMIT countChanged();
}

void LogModel::clear()
{
    if (m_entries.empty())
        return;
    beginRemoveRows(QModelIndex(), 0, count() - 1);
    m_entries.clear();
    endRemoveRows();
    Q_EMIT countChanged();
}
