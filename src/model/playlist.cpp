#include "model/playlist.h"

#include "model/videoinfo.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {
// Longer names are cut to this many bytes of UTF-8, so that the number before and yt-dlp's own
// endings after (".f251.webm.part") stay within the 255 bytes a file name may have.
constexpr qsizetype NameLimit = 150;

QString escapedForTemplate(QString text)
{
    return text.replace(u'%', u"%%"_s);
}
} // namespace

namespace {
// `text` as one safe file name: no separators or control characters, no leading dots, not too
// long; `fallback` when nothing is left.
QString safeName(const QString &text, const QString &fallback)
{
    QString name;
    name.reserve(text.size());
    for (const QChar c : text) {
        // A path separator or a control character would make another folder or a broken name;
        // ":" is a separator to the macOS Finder.
        if (c == u'/' || c == u'\\' || c == u':' || c.category() == QChar::Other_Control)
            name += u'_';
        else
            name += c;
    }
    name = name.simplified();
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    if (name.toUtf8().size() > NameLimit) {
        qsizetype end = 0;
        qsizetype bytes = 0;
        // Whole characters only: a surrogate pair is never split.
        while (end < name.size()) {
            const qsizetype width = name.at(end).isHighSurrogate() && end + 1 < name.size() ? 2 : 1;
            const qsizetype added = name.mid(end, width).toUtf8().size();
            if (bytes + added > NameLimit)
                break;
            bytes += added;
            end += width;
        }
        name = name.left(end).trimmed();
    }
    return name.isEmpty() ? fallback : name;
}
} // namespace

QString PlaylistPlace::folderName() const
{
    // A folder on disk: one name whatever the interface's language, so that a playlist's items
    // retried or restored after a switch join the rest.
    return safeName(title, u"播放列表"_s);
}

QString PlaylistPlace::outputTemplate(const QString &outputDir) const
{
    const int width = int(QString::number(std::max(count, index)).size());
    const QString number = QString::number(index).rightJustified(std::max(width, 2), u'0');
    const QString name
        = itemTitle.trimmed().isEmpty() ? u"%(title)s"_s : escapedForTemplate(safeName(itemTitle, u"_"_s));
    // An item that is itself a list (a channel's tab, a feed of feeds) has videos of its own: each
    // gets its number in it, so that they do not all take the one name.
    return outputDir + u'/' + escapedForTemplate(folderName()) + u'/' + number + u" - "_s + name
        + u"%(playlist_index& - {}|)s.%(ext)s"_s;
}

QString PlaylistPlace::toJsonText() const
{
    if (!isSet())
        return {};
    const QJsonObject object { { u"group"_s, group.toString(QUuid::WithoutBraces) }, { u"title"_s, title },
        { u"index"_s, index }, { u"count"_s, count }, { u"itemTitle"_s, itemTitle } };
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

PlaylistPlace PlaylistPlace::fromJsonText(const QString &text)
{
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    PlaylistPlace place;
    place.group = QUuid::fromString(object.value(u"group").toString());
    if (place.group.isNull())
        return {};
    place.title = object.value(u"title").toString();
    place.index = std::max(0, object.value(u"index").toInt());
    place.count = std::max(0, object.value(u"count").toInt());
    place.itemTitle = object.value(u"itemTitle").toString();
    return place;
}

QString PlaylistEntry::durationText() const
{
    if (duration <= 0)
        return {};
    VideoInfo video;
    video.duration = duration;
    return video.durationString();
}

std::optional<PlaylistEntry> PlaylistEntry::fromListing(const QJsonObject &object)
{
    const QJsonValue index = object.value(u"playlist_index");
    if (!index.isDouble())
        return std::nullopt;
    PlaylistEntry entry;
    entry.index = index.toInt();
    // A flat entry is a link ("url"); a fully extracted one has its page ("webpage_url").
    entry.url = object.value(u"url").toString();
    if (entry.url.isEmpty() || object.value(u"_type").toString() == u"video")
        entry.url = object.value(u"webpage_url").toString(entry.url);
    if (entry.url.isEmpty())
        return std::nullopt;
    entry.title = object.value(u"title").toString();
    entry.duration = qint64(std::llround(std::max(0.0, object.value(u"duration").toDouble())));
    const QString extractor = object.value(u"ie_key").toString(object.value(u"extractor_key").toString());
    const QString id = object.value(u"id").toString();
    if (!extractor.isEmpty() && !id.isEmpty())
        entry.archiveKey = extractor.toLower() + u' ' + id;
    return entry;
}

std::optional<QList<int>> parseItemRanges(const QString &text, int last, QString *error)
{
    const auto fail = [error](const QString &why) -> std::optional<QList<int>> {
        if (error)
            *error = why;
        return std::nullopt;
    };
    static const QRegularExpression separators(u"[,，、;；\\s]+"_s);
    static const QRegularExpression range(u"^(\\d+)(?:[-–~～](\\d*))?$"_s);
    QList<int> numbers;
    for (const QString &part : text.split(separators, Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch match = range.match(part);
        if (!match.hasMatch())
            return fail(QCoreApplication::translate("Playlist", "看不懂“%1”，请写成 1-20, 25 这样").arg(part));
        const int from = match.captured(1).toInt();
        // "5-" runs to the end; a single number is its own range.
        const int to = !match.hasCaptured(2) ? from : match.captured(2).isEmpty() ? last : match.captured(2).toInt();
        if (from < 1 || from > last || to < from)
            return fail(QCoreApplication::translate("Playlist", "“%1”不在 1-%2 之内").arg(part).arg(last));
        for (int n = from; n <= std::min(to, last); ++n)
            numbers.append(n);
    }
    if (numbers.isEmpty())
        return fail(QCoreApplication::translate("Playlist", "请写出要下载的序号，例如 1-20, 25"));
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

namespace {
bool isYouTubeHost(const QString &host)
{
    return host == u"youtube.com" || host.endsWith(u".youtube.com") || host == u"youtube-nocookie.com"
        || host.endsWith(u".youtube-nocookie.com");
}
} // namespace

bool isVideoInPlaylist(const QString &link)
{
    const QUrl url = QUrl::fromUserInput(link.trimmed());
    const QUrlQuery query(url);
    if (!url.isValid() || query.queryItemValue(u"list"_s).isEmpty())
        return false;
    // "watch?v=…&list=…", and a shared video's "youtu.be/…?list=…" or "/shorts/…?list=…".
    const QString host = url.host().toLower();
    return !query.queryItemValue(u"v"_s).isEmpty() || (host == u"youtu.be" && url.path().size() > 1)
        || (isYouTubeHost(host) && url.path().startsWith(u"/shorts/"));
}

QString withoutPlaylist(const QString &link)
{
    QUrl url(link.trimmed());
    QUrlQuery query(url);
    for (const QString &key : { u"list"_s, u"index"_s, u"start_radio"_s })
        query.removeAllQueryItems(key);
    url.setQuery(query);
    return url.toString();
}

bool isSingleVideoLink(const QString &link)
{
    // "youtu.be/…" is a link too, typed without its scheme.
    const QUrl url = QUrl::fromUserInput(link.trimmed());
    const QString host = url.host().toLower();
    const QUrlQuery query(url);
    if (query.hasQueryItem(u"list"_s))
        return false;
    if (host == u"youtu.be")
        return url.path().size() > 1;
    if (!isYouTubeHost(host))
        return false;
    const QString path = url.path();
    return (path == u"/watch" && !query.queryItemValue(u"v"_s).isEmpty()) || path.startsWith(u"/shorts/")
        || path.startsWith(u"/live/");
}
