#include "views/presenters/downloadoptionspresenter.h"

#include "model/languagechange.h"

#include "engine/downloadmanager.h"
#include "engine/videoinfofetch.h"
#include "model/appstate.h"
#include "model/linkinput.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;

DownloadOptionsPresenter::DownloadOptionsPresenter(QObject *parent)
    : DownloadOptionsPresenter(AppState::instance(), parent)
{
}

DownloadOptionsPresenter::DownloadOptionsPresenter(AppState *state, QObject *parent)
    : QObject(parent)
    , m_state(state)
{
    // The summary and the errors are made in the language of the moment.
    onLanguageChange(this, [this] {
        Q_EMIT changed();
        Q_EMIT previewChanged();
    });
    if (!m_state)
        return;
    connect(m_state, &AppState::downloadChoicesChanged, this, [this] {
        Q_EMIT changed();
        Q_EMIT previewChanged();
    });
    connect(m_state, &AppState::knownVideoChanged, this, &DownloadOptionsPresenter::previewChanged);
    connect(m_state, &AppState::urlInputChanged, this, &DownloadOptionsPresenter::previewChanged);
    connect(m_state, &AppState::selectedPresetChanged, this, &DownloadOptionsPresenter::previewChanged);
}

DownloadChoices DownloadOptionsPresenter::choices() const
{
    return m_state ? m_state->downloadChoices() : DownloadChoices();
}

void DownloadOptionsPresenter::change(const std::function<void(DownloadChoices &)> &edit)
{
    if (!m_state)
        return;
    DownloadChoices changed = m_state->downloadChoices();
    edit(changed);
    m_state->setDownloadChoices(changed);
}

void DownloadOptionsPresenter::setSubtitles(const QString &value)
{
    if (DownloadChoices::subtitleModes().contains(value))
        change([&](DownloadChoices &c) { c.subtitles = value; });
}

void DownloadOptionsPresenter::setSubtitleLanguages(const QString &value)
{
    change([&](DownloadChoices &c) { c.subtitleLanguages = value; });
}

void DownloadOptionsPresenter::setSubtitleLanguage(const QString &code, bool on)
{
    QStringList codes = languageCodes();
    codes.removeAll(code);
    if (on)
        codes << code;
    setSubtitleLanguages(codes.join(u','));
}

void DownloadOptionsPresenter::setAutoSubtitles(bool value)
{
    change([&](DownloadChoices &c) { c.autoSubtitles = value; });
}

void DownloadOptionsPresenter::setSubtitleFormat(const QString &value)
{
    if (value.isEmpty() || value == u"srt")
        change([&](DownloadChoices &c) { c.subtitleFormat = value; });
}

void DownloadOptionsPresenter::setEmbedThumbnail(bool value)
{
    change([&](DownloadChoices &c) { c.embedThumbnail = value; });
}

void DownloadOptionsPresenter::setEmbedMetadata(bool value)
{
    change([&](DownloadChoices &c) { c.embedMetadata = value; });
}

void DownloadOptionsPresenter::setEmbedChapters(bool value)
{
    change([&](DownloadChoices &c) { c.embedChapters = value; });
}

void DownloadOptionsPresenter::setSponsorBlock(const QString &value)
{
    if (DownloadChoices::sponsorBlockModes().contains(value))
        change([&](DownloadChoices &c) { c.sponsorBlock = value; });
}

void DownloadOptionsPresenter::setSponsorCategory(const QString &category, bool on)
{
    if (!DownloadChoices::allSponsorCategories().contains(category))
        return;
    change([&](DownloadChoices &c) {
        QStringList chosen;
        for (const QString &each : DownloadChoices::allSponsorCategories()) {
            if (each == category ? on : c.sponsorCategories.contains(each))
                chosen << each;
        }
        c.sponsorCategories = chosen;
    });
}

void DownloadOptionsPresenter::setRateLimit(const QString &value)
{
    change([&](DownloadChoices &c) { c.rateLimit = value.trimmed(); });
}

void DownloadOptionsPresenter::setProxy(const QString &value)
{
    change([&](DownloadChoices &c) { c.proxy = value.trimmed(); });
}

void DownloadOptionsPresenter::setFileTemplate(const QString &value)
{
    change([&](DownloadChoices &c) { c.fileTemplate = value; });
}

void DownloadOptionsPresenter::setUseArchive(bool value)
{
    change([&](DownloadChoices &c) { c.useArchive = value; });
}

void DownloadOptionsPresenter::setCompatibility(const QString &value)
{
    if (DownloadChoices::compatibilityModes().contains(value))
        change([&](DownloadChoices &c) { c.compatibility = value; });
}

void DownloadOptionsPresenter::reset()
{
    change([](DownloadChoices &c) { c = DownloadChoices(); });
}

QString DownloadOptionsPresenter::archiveFile()
{
    return DownloadManager::archiveFile();
}

VideoInfoFetch *DownloadOptionsPresenter::fetchAsTheForm(DownloadManager *downloads, AppState *state,
    const QString &url, std::function<void(const VideoInfoResult &)> completion)
{
    const QPointer<AppState> known(state);
    return downloads->fetchVideoInfo(
        url, state && state->useCookies(),
        [known, completion = std::move(completion)](const VideoInfoResult &result) {
            if (result.ok && !result.cancelled && known)
                known->setKnownVideo(result.info.templateFields());
            completion(result);
        },
        state ? state->downloadChoices().networkWords() : QStringList());
}

bool DownloadOptionsPresenter::previewIsExample() const
{
    if (!m_state)
        return true;
    const QString link = firstLineOf(m_state->urlInput()).trimmed();
    return link.isEmpty() || m_state->knownVideo().value(u"webpage_url"_s).toString() != link;
}

QString DownloadOptionsPresenter::templatePreview() const
{
    QJsonObject fields;
    if (!previewIsExample()) {
        fields = m_state->knownVideo();
    } else {
        // An example video's fields, its texts in the interface's language.
        fields = { { u"title"_s, tr("示例视频") }, { u"id"_s, u"a1B2c3D4e5F"_s }, { u"uploader"_s, tr("上传者") },
            { u"upload_date"_s, u"20260101"_s }, { u"duration"_s, 213 }, { u"ext"_s, u"webm"_s },
            { u"resolution"_s, u"1920x1080"_s }, { u"playlist_index"_s, 1 }, { u"playlist_title"_s, tr("示例列表") } };
    }
    // The extension the chosen outcome ends in, where that is known before the download.
    const DownloadChoices chosen = choices();
    if (m_state && makesMp3(m_state->selectedPreset()))
        fields.insert(u"ext"_s, u"mp3"_s);
    else if (chosen.compatibility == u"everywhere")
        fields.insert(u"ext"_s, u"mp4"_s);
    return previewFileName(chosen.fileNameTemplate(), fields);
}
