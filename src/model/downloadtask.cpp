#include "model/downloadtask.h"

#include "model/rawvalue.h"

namespace {
constexpr std::array<StoredEnumName<DownloadStatus>, 7> statusNames { {
    { DownloadStatus::Pending, "pending", QT_TRANSLATE_NOOP("DownloadStatus", "等待中") },
    { DownloadStatus::Preparing, "preparing", QT_TRANSLATE_NOOP("DownloadStatus", "准备中") },
    { DownloadStatus::Downloading, "downloading", QT_TRANSLATE_NOOP("DownloadStatus", "下载中") },
    { DownloadStatus::Completed, "completed", QT_TRANSLATE_NOOP("DownloadStatus", "已完成") },
    { DownloadStatus::Failed, "failed", QT_TRANSLATE_NOOP("DownloadStatus", "失败") },
    { DownloadStatus::Cancelled, "cancelled", QT_TRANSLATE_NOOP("DownloadStatus", "已取消") },
    { DownloadStatus::Paused, "paused", QT_TRANSLATE_NOOP("DownloadStatus", "已暂停") },
} };
} // namespace

QString rawValue(DownloadStatus status)
{
    return labelIn(statusNames, "DownloadStatus", status);
}

std::optional<DownloadStatus> downloadStatusFromRawValue(QStringView raw)
{
    return fromLabelIn(statusNames, raw);
}

QString storageKey(DownloadStatus status)
{
    return keyIn(statusNames, status);
}

std::optional<DownloadStatus> downloadStatusFromStorageKey(QStringView key)
{
    return fromKeyIn(statusNames, key);
}

DownloadTask DownloadTask::create(const QString &url)
{
    DownloadTask task;
    task.id = QUuid::createUuid();
    task.url = url;
    task.title = url;
    task.startTime = QDateTime::currentDateTime();
    return task;
}
