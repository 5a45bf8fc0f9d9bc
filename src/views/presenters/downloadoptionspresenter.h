#pragma once

#include "model/downloadchoices.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

#include <functional>

class AppState;
class DownloadManager;
class VideoInfoFetch;
struct VideoInfoResult;

// "下载选项" over AppState's download choices: every control reads its value here and writes it
// back at once, and the panel's one-line summary, the checks of the typed values and the name a
// file-name template makes follow.
class DownloadOptionsPresenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString subtitles READ subtitles WRITE setSubtitles NOTIFY changed)
    Q_PROPERTY(QString subtitleLanguages READ subtitleLanguages WRITE setSubtitleLanguages NOTIFY changed)
    // The languages one by one, as they are passed on.
    Q_PROPERTY(QStringList languageCodes READ languageCodes NOTIFY changed)
    Q_PROPERTY(bool autoSubtitles READ autoSubtitles WRITE setAutoSubtitles NOTIFY changed)
    Q_PROPERTY(QString subtitleFormat READ subtitleFormat WRITE setSubtitleFormat NOTIFY changed)
    Q_PROPERTY(bool embedThumbnail READ embedThumbnail WRITE setEmbedThumbnail NOTIFY changed)
    Q_PROPERTY(bool embedMetadata READ embedMetadata WRITE setEmbedMetadata NOTIFY changed)
    Q_PROPERTY(bool embedChapters READ embedChapters WRITE setEmbedChapters NOTIFY changed)
    Q_PROPERTY(QString sponsorBlock READ sponsorBlock WRITE setSponsorBlock NOTIFY changed)
    Q_PROPERTY(QStringList sponsorCategories READ sponsorCategories NOTIFY changed)
    Q_PROPERTY(QString rateLimit READ rateLimit WRITE setRateLimit NOTIFY changed)
    Q_PROPERTY(QString proxy READ proxy WRITE setProxy NOTIFY changed)
    Q_PROPERTY(QString fileTemplate READ fileTemplate WRITE setFileTemplate NOTIFY changed)
    Q_PROPERTY(bool useArchive READ useArchive WRITE setUseArchive NOTIFY changed)
    Q_PROPERTY(QString compatibility READ compatibility WRITE setCompatibility NOTIFY changed)
    // What is set, on one line: "未设置" when nothing is.
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(bool isDefault READ isDefault NOTIFY changed)
    // Why a typed value cannot be used; empty while it can.
    Q_PROPERTY(QString proxyError READ proxyError NOTIFY changed)
    Q_PROPERTY(QString rateLimitError READ rateLimitError NOTIFY changed)
    Q_PROPERTY(QString templateError READ templateError NOTIFY changed)
    // "SOCKS5", "HTTP", …, for a proxy that is one.
    Q_PROPERTY(QString proxyScheme READ proxyScheme NOTIFY changed)
    // The file name the template makes for the first link, once its information is known, else
    // for an example video (previewIsExample).
    Q_PROPERTY(QString templatePreview READ templatePreview NOTIFY previewChanged)
    Q_PROPERTY(bool previewIsExample READ previewIsExample NOTIFY previewChanged)
    // Where "下载存档" keeps what was downloaded.
    Q_PROPERTY(QString archiveFile READ archiveFile CONSTANT)

public:
    // Bound to the process-wide AppState.
    explicit DownloadOptionsPresenter(QObject *parent = nullptr);
    explicit DownloadOptionsPresenter(AppState *state, QObject *parent = nullptr);

    QString subtitles() const { return choices().subtitles; }
    void setSubtitles(const QString &value);
    QString subtitleLanguages() const { return choices().subtitleLanguages; }
    void setSubtitleLanguages(const QString &value);
    QStringList languageCodes() const { return choices().languageList().split(u',', Qt::SkipEmptyParts); }
    bool autoSubtitles() const { return choices().autoSubtitles; }
    void setAutoSubtitles(bool value);
    QString subtitleFormat() const { return choices().subtitleFormat; }
    void setSubtitleFormat(const QString &value);
    bool embedThumbnail() const { return choices().embedThumbnail; }
    void setEmbedThumbnail(bool value);
    bool embedMetadata() const { return choices().embedMetadata; }
    void setEmbedMetadata(bool value);
    bool embedChapters() const { return choices().embedChapters; }
    void setEmbedChapters(bool value);
    QString sponsorBlock() const { return choices().sponsorBlock; }
    void setSponsorBlock(const QString &value);
    QStringList sponsorCategories() const { return choices().sponsorCategories; }
    QString rateLimit() const { return choices().rateLimit; }
    void setRateLimit(const QString &value);
    QString proxy() const { return choices().proxy; }
    void setProxy(const QString &value);
    QString fileTemplate() const { return choices().fileTemplate; }
    void setFileTemplate(const QString &value);
    bool useArchive() const { return choices().useArchive; }
    void setUseArchive(bool value);
    QString compatibility() const { return choices().compatibility; }
    void setCompatibility(const QString &value);

    QString summary() const { return choices().summary(); }
    bool isDefault() const { return choices().isDefault(); }
    QString proxyError() const { return DownloadChoices::proxyProblem(choices().proxy); }
    QString rateLimitError() const { return DownloadChoices::rateLimitProblem(choices().rateLimit); }
    QString templateError() const { return DownloadChoices::templateProblem(choices().fileTemplate); }
    QString proxyScheme() const { return DownloadChoices::proxyScheme(choices().proxy); }
    QString templatePreview() const;
    bool previewIsExample() const;
    static QString archiveFile();

    // Asks for `url`'s information as the form would download it (its cookie switch, its proxy),
    // and keeps what it learns for the file-name preview; `completion` as fetchVideoInfo's.
    static VideoInfoFetch *fetchAsTheForm(DownloadManager *downloads, AppState *state, const QString &url,
        std::function<void(const VideoInfoResult &)> completion);

    // Adds a language to the list, or takes it out.
    Q_INVOKABLE void setSubtitleLanguage(const QString &code, bool on);
    // Turns one SponsorBlock category on or off; the list keeps the order they are offered in.
    Q_INVOKABLE void setSponsorCategory(const QString &category, bool on);
    // Every option back to "not set".
    Q_INVOKABLE void reset();

Q_SIGNALS:
    void changed();
    void previewChanged();

private:
    // The options as AppState holds them (the defaults without one).
    DownloadChoices choices() const;
    void change(const std::function<void(DownloadChoices &)> &edit);

    QPointer<AppState> m_state;
};
