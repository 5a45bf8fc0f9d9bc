#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QUuid>

#include <optional>

#include "model/enums.h"
#include "model/playlist.h"

// The label a status is shown by, in the interface's language. Read back from a label, only the
// Chinese one is known: what stores and settings kept before keys.
QString rawValue(DownloadStatus status);
std::optional<DownloadStatus> downloadStatusFromRawValue(QStringView raw);
// The key a status is stored by ("pending", "completed", …), which never changes.
QString storageKey(DownloadStatus status);
std::optional<DownloadStatus> downloadStatusFromStorageKey(QStringView key);

// One entry of the download queue.
struct DownloadTask
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id CONSTANT)
    Q_PROPERTY(QString url MEMBER url CONSTANT)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(quillbox::DownloadStatus status MEMBER status)
    Q_PROPERTY(double progress MEMBER progress)
    Q_PROPERTY(QString speed MEMBER speed)
    Q_PROPERTY(QString size MEMBER size)

public:
    QUuid id;
    QString url;
    QString title;
    DownloadStatus status = DownloadStatus::Pending;
    double progress = 0.0;
    QString speed;
    QString size;
    std::optional<QString> errorMessage;
    // A failure said in plain words, with what to do; errorMessage keeps the tool's own text.
    std::optional<QString> explanation;
    // The explanation's fix is in the tools (yt-dlp, a JavaScript runtime), made in the settings.
    // Not stored: a task read back from the store has it false.
    bool needsToolFix = false;
    QDateTime startTime;
    std::optional<QDateTime> endTime;
    std::optional<QString> outputPath;
    // A remark on a running task, such as that it has printed nothing for a while; else empty.
    QString notice;
    // What a running download is doing once its streams are in ("合并中", "转换音频中",
    // "后处理中"); empty while it downloads.
    QString phase;
    // The time left as yt-dlp estimates it ("00:31"), or empty.
    QString eta;
    // From the video's information, once known: its length ("3:25") and picture's address.
    QString duration;
    QString thumbnail;
    // The outcome its download options ask for ("H.264 · AAC · MP4"), or empty.
    QString outcome;
    // The playlist the task was picked from, if any: the row says its title and the item's number.
    PlaylistPlace playlist;

    // A new task for `url`: fresh id, title = url, pending, started now.
    static DownloadTask create(const QString &url);

    bool operator==(const DownloadTask &) const = default;
};

Q_DECLARE_METATYPE(DownloadTask)
