#include "model/downloadtask.h"

#include "model/rawvalue.h"

namespace {
constexpr std::array<RawValuePair<DownloadStatus>, 7> statusNames { {
    { DownloadStatus::Pending, u"等待中" },
    { DownloadStatus::Preparing, u"准备中" },
    { DownloadStatus::Downloading, u"下载中" },
    { DownloadStatus::Completed, u"已完成" },
    { DownloadStatus::Failed, u"失败" },
    { DownloadStatus::Cancelled, u"已取消" },
    { DownloadStatus::Paused, u"已暂停" },
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

DownloadTask DownloadTask::create(const QString &url)
{
    DownloadTask task;
    task.id = QUuid::createUuid();
    task.url = url;
    task.title = url;
    task.startTime = QDateTime::currentDateTime();
    return task;
}
