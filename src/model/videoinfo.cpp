#include "model/videoinfo.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

#include <cmath>

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
