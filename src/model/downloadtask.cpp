#include "model/downloadtask.h"

#include "model/rawvalue.h"

namespace {
constexpr std::array<StoredEnumName<DownloadStatus>, 7> statusNames { {
    { DownloadStatus::Pending, "pending", u"等待中" },
    { DownloadStatus::Preparing, "preparing", u"准备中" },
    { DownloadStatus::Downloading, "downloading", u"下载中" },
    { DownloadStatus::Completed, "completed", u"已完成" },
    { DownloadStatus::Failed, "failed", u"失败" },
    { DownloadStatus::Cancelled, "cancelled", u"已取消" },
    { DownloadStatus::Paused, "paused", u"已暂停" },
} };
} // namespace

QString rawValue(DownloadStatus status)
{
    return rawValueIn(statusNames, status);
}

std::optional<DownloadStatus> downloadStatusFromRawValue(QStringView raw)
{
    return fromRawValueIn(statusNames, raw);
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
