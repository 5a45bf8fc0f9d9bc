#include "model/downloadchoices.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QUrl>

using namespace Qt::StringLiterals;

const QStringList &DownloadChoices::subtitleModes()
{
    static const QStringList modes { u"off"_s, u"download"_s, u"embed"_s };
    return modes;
}

const QStringList &DownloadChoices::sponsorBlockModes()
{
    static const QStringList modes { u"off"_s, u"mark"_s, u"remove"_s };
    return modes;
}

const QStringList &DownloadChoices::allSponsorCategories()
{
    static const QStringList categories { u"sponsor"_s, u"intro"_s, u"outro"_s, u"selfpromo"_s, u"preview"_s,
        u"filler"_s, u"interaction"_s, u"music_offtopic"_s };
    return categories;
}

const QStringList &DownloadChoices::compatibilityModes()
{
    static const QStringList modes { u"any"_s, u"everywhere"_s, u"quality"_s, u"smallest"_s };
    return modes;
}

namespace {
// What is embedded: the switch, yt-dlp's word for it and what the summary calls it.
struct Embedding
{
    bool DownloadChoices::*on;
    QStringView word;
    const char *label;
};
constexpr Embedding embeddings[] = {
    { &DownloadChoices::embedThumbnail, u"--embed-thumbnail", QT_TRANSLATE_NOOP("DownloadChoices", "封面") },
    { &DownloadChoices::embedMetadata, u"--embed-metadata", QT_TRANSLATE_NOOP("DownloadChoices", "元数据") },
    { &DownloadChoices::embedChapters, u"--embed-chapters", QT_TRANSLATE_NOOP("DownloadChoices", "章节") },
};
} // namespace

QString DownloadChoices::languageList() const
{
    static const QRegularExpression separators(u"[,\\s，、]+"_s);
    return subtitleLanguages.split(separators, Qt::SkipEmptyParts).join(u',');
}

QStringList DownloadChoices::words(const QString &archiveFile) const
{
    QStringList words;
    // Sorting, never a hard -f: a link that offers no H.264 still downloads, in what it has.
    if (compatibility == u"everywhere")
        words << u"-S"_s << u"vcodec:h264,res,acodec:aac"_s << u"--merge-output-format"_s << u"mp4"_s;
    else if (compatibility == u"quality")
        words << u"-S"_s << u"res,fps,hdr:12,br"_s;
    else if (compatibility == u"smallest")
        words << u"-S"_s << u"+size,+br,+res,+fps"_s;

    if (subtitles != u"off") {
        // Embedding alone writes the files only to put them in, and deletes them after. With the
        // automatic ones too, yt-dlp fetches the others only when asked, and then keeps the files.
        if (subtitles == u"download" || autoSubtitles)
            words << u"--write-subs"_s;
        if (autoSubtitles)
            words << u"--write-auto-subs"_s;
        if (const QString languages = languageList(); !languages.isEmpty())
            words << u"--sub-langs"_s << languages;
        if (!subtitleFormat.isEmpty())
            words << u"--sub-format"_s << subtitleFormat + u"/best"_s << u"--convert-subs"_s << subtitleFormat;
        if (subtitles == u"embed")
            words << u"--embed-subs"_s;
    }

    for (const Embedding &embedding : embeddings) {
        if (this->*embedding.on)
            words << embedding.word.toString();
    }

    if (sponsorBlock != u"off" && !sponsorCategories.isEmpty()) {
        words << (sponsorBlock == u"remove" ? u"--sponsorblock-remove"_s : u"--sponsorblock-mark"_s)
              << sponsorCategories.join(u',');
    }
    if (!rateLimit.isEmpty())
        words << u"--limit-rate"_s << rateLimit;
    words << networkWords();
    if (useArchive)
        words << u"--download-archive"_s << archiveFile;
    return words;
}

QStringList DownloadChoices::networkWords() const
{
    if (proxy.isEmpty())
        return {};
    return { u"--proxy"_s, proxy };
}

QString DownloadChoices::effectiveTemplate() const
{
    const QString trimmed = fileTemplate.trimmed();
    if (trimmed.isEmpty() || trimmed.contains(u"%(ext)"))
        return trimmed;
    return trimmed + u".%(ext)s"_s;
}

QString DownloadChoices::fileNameTemplate() const
{
    const QString chosen = effectiveTemplate();
    return chosen.isEmpty() ? u"%(title)s.%(ext)s"_s : chosen;
}

QString DownloadChoices::outputTemplate(const QString &outputDir) const
{
    return outputDir + u'/' + fileNameTemplate();
}

QString DownloadChoices::proxyScheme(const QString &proxy)
{
    static const QStringList schemes { u"http"_s, u"https"_s, u"socks4"_s, u"socks4a"_s, u"socks5"_s, u"socks5h"_s };
    const QUrl url(proxy.trimmed(), QUrl::StrictMode);
    return url.isValid() && schemes.contains(url.scheme()) ? url.scheme().toUpper() : QString();
}

QString DownloadChoices::proxyProblem(const QString &proxy)
{
    if (proxy.isEmpty())
        return {};
    const QUrl url(proxy, QUrl::StrictMode);
    if (proxy.trimmed() != proxy || proxyScheme(proxy).isEmpty() || url.host().isEmpty()
        || (!url.path().isEmpty() && url.path() != u"/") || url.hasQuery() || url.hasFragment())
        return tr("代理地址应形如 http://127.0.0.1:7890 或 socks5://127.0.0.1:1080");
    return {};
}

QString DownloadChoices::rateLimitProblem(const QString &rate)
{
    static const QRegularExpression form(u"^(\\d{1,7}(?:\\.\\d{1,3})?)[KM]$"_s);
    const QRegularExpressionMatch match = form.match(rate);
    if (rate.isEmpty() || (match.hasMatch() && match.captured(1).toDouble() > 0))
        return {};
    return tr("限速应是大于 0 的数字");
}

QString DownloadChoices::rateText(const QString &rate)
{
    if (!rateLimitProblem(rate).isEmpty() || rate.isEmpty())
        return rate;
    return rate.chopped(1) + (rate.endsWith(u'K') ? u" KB/s"_s : u" MB/s"_s);
}

QString DownloadChoices::templateProblem(const QString &fileTemplate)
{
    const QString trimmed = fileTemplate.trimmed();
    if (trimmed.isEmpty())
        return {};
    if (trimmed.startsWith(u'/') || trimmed.startsWith(u'~'))
        return tr("文件名模板写在输出目录之下，不能以 / 或 ~ 开头");
    if (trimmed.split(u'/').contains(u".."_s))
        return tr("文件名模板不能用 .. 离开输出目录");
    if (trimmed.contains(u'\n') || trimmed.contains(u'\r'))
        return tr("文件名模板只能有一行");
    return {};
}

QString DownloadChoices::problem() const
{
    for (const QString &problem : { proxyProblem(proxy), rateLimitProblem(rateLimit), templateProblem(fileTemplate) }) {
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

QString DownloadChoices::compatibilityLabel(const QString &compatibility)
{
    if (compatibility == u"everywhere")
        return tr("到处都能播放");
    if (compatibility == u"quality")
        return tr("画质最佳");
    if (compatibility == u"smallest")
        return tr("体积最小");
    return {};
}

QString DownloadChoices::outcomeText() const
{
    return compatibility == u"everywhere" ? u"H.264 · AAC · MP4"_s : compatibilityLabel(compatibility);
}

QString DownloadChoices::summary() const
{
    QStringList parts;
    if (subtitles != u"off") {
        const QString languages = languageList();
        const bool embed = subtitles == u"embed";
        if (languages.isEmpty())
            parts << (embed ? tr("嵌入字幕") : tr("下载字幕"));
        else
            parts << (embed ? tr("嵌入字幕 %1") : tr("下载字幕 %1")).arg(languages);
    }
    QStringList embedded;
    for (const Embedding &embedding : embeddings) {
        if (this->*embedding.on)
            embedded << QCoreApplication::translate("DownloadChoices", embedding.label);
    }
    if (!embedded.isEmpty()) {
        //: Between the items of a list, as "、" is in Chinese: "封面、元数据"
        const QString separator = tr("、");
        parts << tr("嵌入%1").arg(embedded.join(separator));
    }
    if (sponsorBlock != u"off" && !sponsorCategories.isEmpty())
        parts << (sponsorBlock == u"remove" ? tr("SponsorBlock 移除") : tr("SponsorBlock 标记"));
    if (!rateLimit.isEmpty())
        parts << tr("限速 %1").arg(rateText(rateLimit));
    if (!proxy.isEmpty()) {
        //: Said instead of the proxy's kind ("SOCKS5") when the address is not a proxy's
        const QString invalid = tr("（无效）");
        const QString scheme = proxyScheme(proxy);
        parts << tr("代理 %1").arg(scheme.isEmpty() ? invalid : scheme);
    }
    if (!effectiveTemplate().isEmpty())
        parts << tr("文件名 %1").arg(effectiveTemplate());
    if (useArchive)
        parts << tr("下载存档");
    if (const QString label = compatibilityLabel(compatibility); !label.isEmpty())
        parts << label;
    return parts.isEmpty() ? tr("未设置") : parts.join(u" · "_s);
}

QVariantMap DownloadChoices::toMap() const
{
    return {
        { u"subtitles"_s, subtitles },
        { u"subtitleLanguages"_s, subtitleLanguages },
        { u"autoSubtitles"_s, autoSubtitles },
        { u"subtitleFormat"_s, subtitleFormat },
        { u"embedThumbnail"_s, embedThumbnail },
        { u"embedMetadata"_s, embedMetadata },
        { u"embedChapters"_s, embedChapters },
        { u"sponsorBlock"_s, sponsorBlock },
        // As one text: the settings store cannot tell an empty list from no value.
        { u"sponsorCategories"_s, sponsorCategories.join(u',') },
        { u"rateLimit"_s, rateLimit },
        { u"proxy"_s, proxy },
        { u"fileTemplate"_s, fileTemplate },
        { u"useArchive"_s, useArchive },
        { u"compatibility"_s, compatibility },
    };
}

namespace {
// The text under `key` when it is one of `allowed` (or any text, with no list); else `fallback`.
QString keyOf(const QVariantMap &map, const QString &key, const QString &fallback, const QStringList &allowed = {})
{
    const QVariant value = map.value(key);
    if (!value.isValid() || value.typeId() != QMetaType::QString)
        return fallback;
    const QString text = value.toString();
    return allowed.isEmpty() || allowed.contains(text) ? text : fallback;
}

bool switchOf(const QVariantMap &map, const QString &key, bool fallback)
{
    const QVariant value = map.value(key);
    // The settings store gives switches back as "true" and "false".
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    if (value.typeId() == QMetaType::QString && (value == u"true"_s || value == u"false"_s))
        return value == u"true"_s;
    return fallback;
}
} // namespace

DownloadChoices DownloadChoices::fromMap(const QVariantMap &map)
{
    DownloadChoices choices;
    choices.subtitles = keyOf(map, u"subtitles"_s, choices.subtitles, subtitleModes());
    choices.subtitleLanguages = keyOf(map, u"subtitleLanguages"_s, choices.subtitleLanguages);
    choices.autoSubtitles = switchOf(map, u"autoSubtitles"_s, choices.autoSubtitles);
    choices.subtitleFormat = keyOf(map, u"subtitleFormat"_s, choices.subtitleFormat, { u"srt"_s, QString() });
    choices.embedThumbnail = switchOf(map, u"embedThumbnail"_s, choices.embedThumbnail);
    choices.embedMetadata = switchOf(map, u"embedMetadata"_s, choices.embedMetadata);
    choices.embedChapters = switchOf(map, u"embedChapters"_s, choices.embedChapters);
    choices.sponsorBlock = keyOf(map, u"sponsorBlock"_s, choices.sponsorBlock, sponsorBlockModes());
    if (const QVariant categories = map.value(u"sponsorCategories"_s); categories.typeId() == QMetaType::QString) {
        const QStringList stored = categories.toString().split(u',');
        choices.sponsorCategories.clear();
        for (const QString &category : allSponsorCategories()) {
            if (stored.contains(category))
                choices.sponsorCategories << category;
        }
    }
    choices.rateLimit = keyOf(map, u"rateLimit"_s, choices.rateLimit);
    choices.proxy = keyOf(map, u"proxy"_s, choices.proxy);
    choices.fileTemplate = keyOf(map, u"fileTemplate"_s, choices.fileTemplate);
    choices.useArchive = switchOf(map, u"useArchive"_s, choices.useArchive);
    choices.compatibility = keyOf(map, u"compatibility"_s, choices.compatibility, compatibilityModes());
    return choices;
}

QString DownloadChoices::toJsonText() const
{
    // Empty, not null: the stores' columns refuse NULL.
    if (isDefault())
        return u""_s;
    return QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantMap(toMap())).toJson(QJsonDocument::Compact));
}

DownloadChoices DownloadChoices::fromJsonText(const QString &text)
{
    if (text.isEmpty())
        return {};
    return fromMap(QJsonDocument::fromJson(text.toUtf8()).object().toVariantMap());
}

QString previewFileName(const QString &fileTemplate, const QJsonObject &info)
{
    // %(name)FLAGS WIDTH .PRECISION TYPE, as Python's % formatting reads it.
    static const QRegularExpression field(u"%\\(([^)]*)\\)([-0 #+]*)(\\d*)(?:\\.(\\d+))?([sdif])"_s);
    QString name;
    qsizetype from = 0;
    for (auto it = field.globalMatch(fileTemplate); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        name += QStringView(fileTemplate).mid(from, match.capturedStart() - from);
        from = match.capturedEnd();
        const QJsonValue value = info.value(match.captured(1));
        const QString flags = match.captured(2);
        const int width = match.captured(3).toInt();
        QString text;
        if (value.isUndefined() || value.isNull()) {
            text = u"NA"_s;
        } else if (match.captured(5) != u"s" && value.isDouble()) {
            text = QString::number(qint64(value.toDouble()));
            if (flags.contains(u'0') && !flags.contains(u'-'))
                text = text.rightJustified(width, u'0');
        } else {
            text = value.isString() ? value.toString() : value.toVariant().toString();
            if (!match.captured(4).isEmpty())
                text.truncate(match.captured(4).toInt());
        }
        if (text.size() < width)
            text = flags.contains(u'-') ? text.leftJustified(width) : text.rightJustified(width);
        name += text.replace(u'/', u'⧸');
    }
    name += QStringView(fileTemplate).mid(from);
    return name.replace(u"%%"_s, u"%"_s);
}
