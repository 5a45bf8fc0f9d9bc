#include "model/logentry.h"

#include "model/rawvalue.h"

namespace {
constexpr std::array<RawValuePair<LogEntry::LogType>, 4> typeNames { {
    { LogEntry::LogType::Info, u"INFO" },
    { LogEntry::LogType::Warning, u"WARN" },
    { LogEntry::LogType::Error, u"ERROR" },
    { LogEntry::LogType::Download, u"DOWNLOAD" },
} };
} // namespace

LogEntry LogEntry::make(const QString &message, LogType type)
{
    return LogEntry { QUuid::createUuid(), QDateTime::currentDateTime(), type, message };
}

QString rawValue(LogEntry::LogType type)
{
    return rawValueIn(typeNames, type);
}

std::optional<LogEntry::LogType> logTypeFromRawValue(QStringView raw)
{
    return fromRawValueIn(typeNames, raw);
}
