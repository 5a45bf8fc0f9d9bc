#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>

#include <optional>

// One format a video is offered in.
struct VideoFormat
{
    QString formatId;
    QString ext;
    std::optional<QString> resolution;
    std::optional<qint64> filesize;
    // The size is yt-dlp's estimate (its filesize_approx), not the file's.
    bool filesizeApproximate = false;
    std::optional<double> tbr; // kbit/s
    std::optional<QString> vcodec;
    std::optional<QString> acodec;
    std::optional<double> fps;
    std::optional<QString> formatNote;

    // Width × height from the resolution ("1920x1080"); 0 when it gives none ("audio only").
    double pixels() const;
    // A stream of that kind is there: a codec other than "none", or none given (yt-dlp gives no
    // codecs for a bare file, which may hold both).
    bool hasVideo() const { return !vcodec || *vcodec != u"none"; }
    bool hasAudio() const { return !acodec || *acodec != u"none"; }
    // The codecs that are named, video first ("avc1.4d401f", "mp4a.40.2").
    QStringList codecs() const;

    // Decodes the camel-case JSON form; a missing required key or a value of the wrong type fails.
    static std::optional<VideoFormat> fromJson(const QJsonObject &object);

    bool operator==(const VideoFormat &) const = default;
};

// Metadata of one video. Its identity is its url.
struct VideoInfo
{
    Q_GADGET
    Q_PROPERTY(QString url MEMBER url)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString uploader MEMBER uploader)
    Q_PROPERTY(QString durationString READ durationString)
    Q_PROPERTY(QString thumbnailUrl READ thumbnailUrl)
    Q_PROPERTY(QString viewCountText READ viewCountText)
    Q_PROPERTY(QString likeCountText READ likeCountText)
    Q_PROPERTY(QString durationText READ durationText)
    Q_PROPERTY(QString uploaderText READ uploaderText)

public:
    QString url;
    QString title;
    qint64 duration = 0;
    QString uploader;
    std::optional<QString> thumbnail;
    std::optional<QString> description;
    std::optional<QString> uploadDate;
    std::optional<qint64> viewCount;
    std::optional<qint64> likeCount;
    QList<VideoFormat> formats;
    // yt-dlp's id of the video and the extension of what it would download, when given.
    QString videoId;
    QString ext;

    QString id() const { return url; }
    // The fields a file-name template can name, by yt-dlp's keys, with "webpage_url" the link.
    QJsonObject templateFields() const;

    // "m:ss" below an hour, "h:mm:ss" from an hour on; a negative duration takes the first form.
    QString durationString() const;
    // The counts in plain decimal digits (no separators, no units); empty when not known.
    QString viewCountText() const;
    QString likeCountText() const;
    QString thumbnailUrl() const { return thumbnail.value_or(QString()); }
    // The length and the uploader as the information sheet shows them: "未知" where yt-dlp gave
    // none (a length of 0 is how a missing one reads).
    QString durationText() const;
    QString uploaderText() const;

    static std::optional<VideoInfo> fromJson(const QJsonObject &object);
    static std::optional<VideoInfo> fromJson(const QByteArray &json);

    // Reads what `yt-dlp -J` prints for `url` (snake-case keys, where anything may be missing or
    // null): no duration reads as 0, a fractional one is rounded, no uploader is "", a format's
    // size is its filesize or else its approximate size, a format without an id is left out. For
    // a playlist, the first entry; `playlistEntries` then gets the number of entries (0 for a
    // single video). Nothing when the text is not a JSON object or the playlist is empty.
    static std::optional<VideoInfo> fromYtDlpJson(
        const QByteArray &json, const QString &url, int *playlistEntries = nullptr);
    // One video's object of that JSON.
    static VideoInfo fromYtDlpObject(const QJsonObject &object, const QString &url);

    bool operator==(const VideoInfo &) const = default;
};

Q_DECLARE_METATYPE(VideoInfo)
