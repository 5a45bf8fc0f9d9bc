#include "model/videoinfo.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// Each reader returns false when the key is there with a value of the wrong type, or when a
// required key is missing. Optional keys may be absent or null.
class Reader
{
public:
    explicit Reader(const QJsonObject &object)
        : m_object(object)
    {
    }

    bool ok() const { return m_ok; }

    void required(const char *key, QString &out)
    {
        readString(key, true, [&](QString s) { out = std::move(s); });
    }
    void optional(const char *key, std::optional<QString> &out)
    {
        readString(key, false, [&](QString s) { out = std::move(s); });
    }
    void required(const char *key, qint64 &out)
    {
        readInteger(key, true, [&](qint64 v) { out = v; });
    }
    void optional(const char *key, std::optional<qint64> &out)
    {
        readInteger(key, false, [&](qint64 v) { out = v; });
    }
    void optional(const char *key, std::optional<double> &out)
    {
        const QJsonValue value = lookup(key, false);
        if (!m_ok || value.isUndefined() || value.isNull())
            return;
        if (!value.isDouble()) {
            m_ok = false;
            return;
        }
        out = value.toDouble();
    }
    QJsonValue lookup(const char *key, bool isRequired)
    {
        const QJsonValue value = m_object.value(QLatin1String(key));
        if (isRequired && (value.isUndefined() || value.isNull()))
            m_ok = false;
        return value;
    }

private:
    template <typename Assign>
    void readString(const char *key, bool isRequired, Assign assign)
    {
        const QJsonValue value = lookup(key, isRequired);
        if (!m_ok || value.isUndefined() || value.isNull())
            return;
        if (!value.isString()) {
            m_ok = false;
            return;
        }
        assign(value.toString());
    }

    template <typename Assign>
    void readInteger(const char *key, bool isRequired, Assign assign)
    {
        const QJsonValue value = lookup(key, isRequired);
        if (!m_ok || value.isUndefined() || value.isNull())
            return;
        // JSON has one number type: an integer field takes only numbers without a fraction
        // that fit in 64 bits. Integers the parser kept exact are taken as they are (a double
        // would round the largest of them past the limit).
        if (value.toVariant().metaType().id() == QMetaType::LongLong) {
            assign(value.toInteger());
            return;
        }
        const double number = value.toDouble();
        constexpr double limit = 9223372036854775808.0; // 2^63
        if (!value.isDouble() || std::trunc(number) != number || number < -limit || number >= limit) {
            m_ok = false;
            return;
        }
        assign(value.toInteger());
    }

    const QJsonObject &m_object;
    bool m_ok = true;
};

} // namespace

std::optional<VideoFormat> VideoFormat::fromJson(const QJsonObject &object)
{
    VideoFormat format;
    Reader reader(object);
    reader.required("formatId", format.formatId);
    reader.required("ext", format.ext);
    reader.optional("resolution", format.resolution);
    reader.optional("filesize", format.filesize);
    reader.optional("tbr", format.tbr);
    reader.optional("vcodec", format.vcodec);
    reader.optional("acodec", format.acodec);
    reader.optional("fps", format.fps);
    reader.optional("formatNote", format.formatNote);
    if (!reader.ok())
        return std::nullopt;
    return format;
}

std::optional<VideoInfo> VideoInfo::fromJson(const QJsonObject &object)
{
    VideoInfo info;
    Reader reader(object);
    reader.required("url", info.url);
    reader.required("title", info.title);
    reader.required("duration", info.duration);
    reader.required("uploader", info.uploader);
    reader.optional("thumbnail", info.thumbnail);
    reader.optional("description", info.description);
    reader.optional("uploadDate", info.uploadDate);
    reader.optional("viewCount", info.viewCount);
    reader.optional("likeCount", info.likeCount);
    const QJsonValue formats = reader.lookup("formats", true);
    if (!reader.ok() || !formats.isArray())
        return std::nullopt;
    for (const QJsonValue &item : formats.toArray()) {
        if (!item.isObject())
            return std::nullopt;
        auto format = VideoFormat::fromJson(item.toObject());
        if (!format)
            return std::nullopt;
        info.formats.append(std::move(*format));
    }
    return info;
}

std::optional<VideoInfo> VideoInfo::fromJson(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    return fromJson(document.object());
}

QString VideoInfo::durationString() const
{
    // Integer division truncates toward zero, so a negative duration reads like "-1:-5".
    const qint64 d = duration;
    if (d < 3600)
        return QString::asprintf("%lld:%02lld", d / 60, d % 60);
    return QString::asprintf("%lld:%02lld:%02lld", d / 3600, (d % 3600) / 60, d % 60);
}

namespace {
QString countText(const std::optional<qint64> &count)
{
    return count ? QString::number(*count) : QString();
}

// yt-dlp's output is not ours to reject: a value of an unexpected type reads as missing.
std::optional<QString> ytText(const QJsonObject &object, QLatin1String key)
{
    const QJsonValue value = object.value(key);
    if (!value.isString())
        return std::nullopt;
    return value.toString();
}

std::optional<double> ytNumber(const QJsonObject &object, QLatin1String key)
{
    const QJsonValue value = object.value(key);
    if (!value.isDouble() || !std::isfinite(value.toDouble()))
        return std::nullopt;
    return value.toDouble();
}

// A count or a size: integers exactly as printed (the largest pass 2^53), other numbers rounded.
std::optional<qint64> ytWholeNumber(const QJsonObject &object, QLatin1String key)
{
    const QJsonValue value = object.value(key);
    if (value.toVariant().metaType().id() == QMetaType::LongLong)
        return value.toInteger();
    const std::optional<double> number = ytNumber(object, key);
    constexpr double limit = 9223372036854775807.0;
    if (!number || *number < -limit || *number > limit)
        return std::nullopt;
    return qint64(std::llround(*number));
}

std::optional<VideoFormat> ytFormat(const QJsonObject &object)
{
    VideoFormat format;
    const QJsonValue id = object.value(QLatin1String("format_id"));
    if (id.isString())
        format.formatId = id.toString();
    else if (id.isDouble())
        format.formatId = QString::number(id.toInteger());
    if (format.formatId.isEmpty())
        return std::nullopt;
    format.ext = ytText(object, QLatin1String("ext")).value_or(QString());
    format.resolution = ytText(object, QLatin1String("resolution"));
    if (!format.resolution) {
        const auto width = ytWholeNumber(object, QLatin1String("width"));
        const auto height = ytWholeNumber(object, QLatin1String("height"));
        if (width && height)
            format.resolution = QString(QString::number(*width) + u'x' + QString::number(*height));
    }
    format.filesize = ytWholeNumber(object, QLatin1String("filesize"));
    if (!format.filesize) {
        format.filesize = ytWholeNumber(object, QLatin1String("filesize_approx"));
        format.filesizeApproximate = format.filesize.has_value();
    }
    format.tbr = ytNumber(object, QLatin1String("tbr"));
    format.vcodec = ytText(object, QLatin1String("vcodec"));
    format.acodec = ytText(object, QLatin1String("acodec"));
    format.fps = ytNumber(object, QLatin1String("fps"));
    format.formatNote = ytText(object, QLatin1String("format_note"));
    return format;
}
} // namespace

QString VideoInfo::viewCountText() const
{
    return countText(viewCount);
}

QString VideoInfo::likeCountText() const
{
    return countText(likeCount);
}

QString VideoInfo::durationText() const
{
    return duration > 0 ? durationString() : QCoreApplication::translate("VideoInfo", "未知");
}

QString VideoInfo::uploaderText() const
{
    return uploader.trimmed().isEmpty() ? QCoreApplication::translate("VideoInfo", "未知") : uploader;
}

std::optional<VideoInfo> VideoInfo::fromYtDlpJson(const QByteArray &json, const QString &url, int *playlistEntries)
{
    if (playlistEntries)
        *playlistEntries = 0;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    QJsonObject object = document.object();
    if (object.value(QLatin1String("_type")).toString() == QLatin1String("playlist")) {
        const QJsonArray entries = object.value(QLatin1String("entries")).toArray();
        const auto first
            = std::find_if(entries.begin(), entries.end(), [](const QJsonValue &entry) { return entry.isObject(); });
        if (first == entries.end())
            return std::nullopt;
        if (playlistEntries)
            *playlistEntries = int(entries.size());
        object = first->toObject();
    }
    return fromYtDlpObject(object, url);
}

VideoInfo VideoInfo::fromYtDlpObject(const QJsonObject &object, const QString &url)
{
    VideoInfo info;
    info.url = url;
    info.title = ytText(object, QLatin1String("title")).value_or(url);
    info.duration = std::max<qint64>(0, ytWholeNumber(object, QLatin1String("duration")).value_or(0));
    info.uploader = ytText(object, QLatin1String("uploader")).value_or(QString());
    info.thumbnail = ytText(object, QLatin1String("thumbnail"));
    info.description = ytText(object, QLatin1String("description"));
    info.uploadDate = ytText(object, QLatin1String("upload_date"));
    info.viewCount = ytWholeNumber(object, QLatin1String("view_count"));
    info.likeCount = ytWholeNumber(object, QLatin1String("like_count"));
    info.videoId = ytText(object, QLatin1String("id")).value_or(QString());
    info.ext = ytText(object, QLatin1String("ext")).value_or(QString());
    for (const QJsonValue &item : object.value(QLatin1String("formats")).toArray()) {
        if (auto format = ytFormat(item.toObject()))
            info.formats.append(std::move(*format));
    }
    return info;
}

QJsonObject VideoInfo::templateFields() const
{
    QJsonObject fields { { u"webpage_url"_s, url }, { u"title"_s, title }, { u"uploader"_s, uploader } };
    if (!videoId.isEmpty())
        fields.insert(u"id"_s, videoId);
    if (!ext.isEmpty())
        fields.insert(u"ext"_s, ext);
    if (duration > 0)
        fields.insert(u"duration"_s, duration);
    if (uploadDate)
        fields.insert(u"upload_date"_s, *uploadDate);
    return fields;
}

double VideoFormat::pixels() const
{
    const QStringList sides = resolution.value_or(QString()).split(u'x');
    return sides.size() == 2 ? sides.at(0).toDouble() * sides.at(1).toDouble() : 0;
}

QStringList VideoFormat::codecs() const
{
    QStringList named;
    for (const auto &codec : { vcodec, acodec }) {
        if (codec && !codec->isEmpty() && *codec != u"none")
            named << *codec;
    }
    return named;
}
