#include "model/logmodel.h"

#include "model/rawvalue.h"

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
        return int(tintFor(entry.type));
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

namespace {
struct TypeLook
{
    LogEntry::LogType type;
    const char16_t *symbol;
    Tint tint;
};

constexpr std::array<TypeLook, 4> looks { {
    { LogEntry::LogType::Info, u"info.circle", Tint::Blue },
    { LogEntry::LogType::Warning, u"exclamationmark.triangle", Tint::Orange },
    { LogEntry::LogType::Error, u"xmark.octagon", Tint::Red },
    { LogEntry::LogType::Download, u"arrow.down.circle", Tint::Green },
} };

} // namespace

QString LogModel::symbolFor(LogEntry::LogType type)
{
    return QString::fromUtf16(entryFor(looks, &TypeLook::type, type).symbol);
}

Tint LogModel::tintFor(LogEntry::LogType type)
{
    return entryFor(looks, &TypeLook::type, type).tint;
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

bool LogModel::replace(const QUuid &id, const QString &message, const QDateTime &timestamp)
{
    // A redrawn line is nearly always one of the last few.
    for (int row = count() - 1; row >= 0; --row) {
        LogEntry &entry = m_entries[std::size_t(row)];
        if (entry.id != id)
            continue;
        entry.message = message;
        entry.timestamp = timestamp;
        const QModelIndex changed = index(row);
        Q_EMIT dataChanged(changed, changed, { MessageRole, TimestampRole, TimeTextRole });
        return true;
    }
    return false;
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
