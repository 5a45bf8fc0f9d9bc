#pragma once

#include <QCoreApplication>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

// What "下载选项" holds: subtitles, embedding, SponsorBlock, a rate limit, a proxy, a file-name
// template, the download archive and the wanted compatibility. Each choice is kept by a stable
// key; words() turns them into yt-dlp's words, raw, for the command to quote. The default value
// chooses nothing and adds no word.
struct DownloadChoices
{
    Q_DECLARE_TR_FUNCTIONS(DownloadChoices)

public:
    // "off", "download" (files beside the video) or "embed" (into the video).
    QString subtitles = QStringLiteral("off");
    // As typed: languages or yt-dlp's patterns, separated by commas or spaces ("zh.*,en").
    QString subtitleLanguages = QStringLiteral("zh.*,en");
    bool autoSubtitles = false;
    // "srt" (converted when offered otherwise) or "" (as the site offers them).
    QString subtitleFormat = QStringLiteral("srt");
    bool embedThumbnail = false;
    bool embedMetadata = false;
    bool embedChapters = false;
    // "off", "mark" (as chapters) or "remove", for the categories chosen.
    QString sponsorBlock = QStringLiteral("off");
    QStringList sponsorCategories { QStringLiteral("sponsor") };
    // yt-dlp's rate: digits and a unit, "500K" or "2M"; empty for no limit.
    QString rateLimit;
    // A proxy URL ("socks5://127.0.0.1:1080"); empty for a direct connection.
    QString proxy;
    // A file-name template below the output folder; empty for the usual "%(title)s.%(ext)s".
    QString fileTemplate;
    // Skip links the archive file records as downloaded, and record each one downloaded.
    bool useArchive = false;
    // "any", "everywhere" (H.264 + AAC in MP4), "quality" or "smallest".
    QString compatibility = QStringLiteral("any");

    static const QStringList &subtitleModes();
    static const QStringList &sponsorBlockModes();
    // SponsorBlock's category names, in the order they are offered.
    static const QStringList &allSponsorCategories();
    static const QStringList &compatibilityModes();

    // yt-dlp's words for these choices, after a preset's words and before custom arguments.
    // `archiveFile` is where the download archive is kept. The -o template is apart: outputTemplate().
    QStringList words(const QString &archiveFile) const;
    // The proxy's words: what every request for the link carries, a download's and a listing's.
    QStringList networkWords() const;
    // The file-name template in use: the chosen one as effectiveTemplate() has it, or the usual
    // "%(title)s.%(ext)s".
    QString fileNameTemplate() const;
    // The -o template: fileNameTemplate() below `outputDir`.
    QString outputTemplate(const QString &outputDir) const;
    // The template as it is used: with ".%(ext)s" added where it names no extension; empty when
    // none is chosen.
    QString effectiveTemplate() const;
    // The first thing that keeps these choices from being used, in words; empty when none does.
    QString problem() const;
    // What is chosen, on one line ("字幕：嵌入 zh.*,en · 限速 2 MB/s"); "未设置" when nothing is.
    QString summary() const;
    // The name a compatibility is offered by ("到处都能播放"); empty for "any" and anything unknown.
    static QString compatibilityLabel(const QString &compatibility);
    // The outcome shown on a row ("H.264 · AAC · MP4"); empty when none is chosen.
    QString outcomeText() const;
    // Nothing is chosen: the command is the usual one.
    bool isDefault() const { return *this == DownloadChoices(); }

    // The languages as yt-dlp's --sub-langs value: separated by commas, blanks dropped.
    QString languageList() const;

    // Each check returns why the value cannot be used, or an empty text when it can (an empty
    // value always can).
    static QString proxyProblem(const QString &proxy);
    static QString rateLimitProblem(const QString &rate);
    static QString templateProblem(const QString &fileTemplate);
    // "HTTP", "SOCKS5", …: the proxy's kind, or empty when it is not a proxy URL.
    static QString proxyScheme(const QString &proxy);
    // "2 MB/s" for "2M"; the value itself when it is not a rate.
    static QString rateText(const QString &rate);

    // Keyed values, for the settings store and for the queue's and presets' store. Reading keeps
    // the default for a key that is missing or holds something unknown.
    QVariantMap toMap() const;
    static DownloadChoices fromMap(const QVariantMap &map);
    // The same as compact JSON text; "" (never null) for the default, so that stored rows stay small.
    QString toJsonText() const;
    static DownloadChoices fromJsonText(const QString &text);

    bool operator==(const DownloadChoices &) const = default;
};

// What a file would be named by `fileTemplate` (as effectiveTemplate() has it), with the fields
// of `info` (yt-dlp's keys: "title", "id", "ext", …) put in as yt-dlp would: %(name)s and
// %(name)d with their flags and width, "NA" for a field that is not there, and "/" in a value
// written as "⧸".
QString previewFileName(const QString &fileTemplate, const QJsonObject &info);
