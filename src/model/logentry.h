#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QUuid>

#include <optional>

// One line of the in-app log.
struct LogEntry
{
    Q_GADGET

public:
    enum class LogType { Info, Warning, Error, Download };
    Q_ENUM(LogType)

    QUuid id;
    QDateTime timestamp;
    LogType type = LogType::Info;
    QString message;

    // A new entry stamped now.
    static LogEntry make(const QString &message, LogType type);

    bool operator==(const LogEntry &) const = default;
};

Q_DECLARE_METATYPE(LogEntry)

QString rawValue(LogEntry::LogType type);
std::optional<LogEntry::LogType> logTypeFromRawValue(QStringView raw);
