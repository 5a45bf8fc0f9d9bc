#pragma once

#include "store/taskstore.h"

#include <QDateTime>

namespace bench {

// A history of `count` finished downloads as the store keeps it, oldest first: long Chinese
// titles, sizes, lengths and files, one in twenty failed with the tool's words and their
// explanation. No pictures, so nothing is fetched from the network.
inline QList<StoredTask> historyRows(int count)
{
    using namespace Qt::StringLiterals;
    QList<StoredTask> rows;
    rows.reserve(count);
    const QDateTime first = QDateTime::currentDateTime().addDays(-400);
    for (int i = 0; i < count; ++i) {
        StoredTask row;
        row.task = DownloadTask::create(u"https://www.youtube.com/watch?v=bench%1"_s.arg(i, 5, 10, QChar(u'0')));
        row.task.title = u"第 %1 个视频 — 一段足够长、像真的一样的标题 (Official Video)"_s.arg(i);
        row.task.startTime = first.addSecs(qint64(i) * 3000);
        row.task.endTime = row.task.startTime.addSecs(95);
        row.task.progress = 1.0;
        row.task.size = u"%1.27MiB"_s.arg(20 + i % 300);
        row.task.duration = u"%1:%2"_s.arg(3 + i % 9).arg(i % 60, 2, 10, QChar(u'0'));
        row.task.outputPath = u"/home/someone/Downloads/第 %1 个视频 [bench%1].mp4"_s.arg(i);
        row.task.status = DownloadStatus::Completed;
        if (i % 20 == 7) {
            row.task.status = DownloadStatus::Failed;
            row.task.errorMessage = u"ERROR: [youtube] bench%1: Video unavailable"_s.arg(i);
            row.task.explanation = u"视频无法访问：可能已被删除或设为私享。"_s;
            row.task.outputPath.reset();
        }
        row.request.url = row.task.url;
        row.request.outputDir = u"/home/someone/Downloads"_s;
        row.ordinal = i;
        rows.append(std::move(row));
    }
    return rows;
}

} // namespace bench
