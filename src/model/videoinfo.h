#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

// One format a video is offered in.
struct VideoFormat
{
    QString formatId;
    QString ext;
    std::optional<QString> resolution;
    std::optional<qint64> filesize;
    std::optional<double> tbr;
    std::optional<QString> vcodec;
    std::optional<QString> acodec;
    std::optional<double> fps;
    std::optional<QString> formatNote;

    // Decodes the camel-case JSON form; a missing required key or a value of the wrong type fails.
    static std::optional<VideoFormat> fromJson(const QJsonObject &object);

    bool operator==(const VideoFormat &) const = default;
};

// Metadata of one video. Its identity is its url.
struct VideoInfo
{
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

    QString id() const { return url; }

    // "m:ss" below an hour, "h:mm:ss" from an hour on; a negative duration takes the first form.
    QString durationString() const;

    static std::optional<VideoInfo> fromJson(const QJsonObject &object);
    static std::optional<VideoInfo> fromJson(const QByteArray &json);

    bool operator==(const VideoInfo &) const = default;
};
