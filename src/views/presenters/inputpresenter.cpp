#include "views/presenters/inputpresenter.h"

#include "engine/downloadmanager.h"
#include "model/appstate.h"
#include "model/linkinput.h"
#include "views/presenters/formatpicker.h"

using namespace Qt::StringLiterals;

InputPresenter::InputPresenter(QObject *parent)
    : InputPresenter(AppState::instance(), DownloadManager::instance(), parent)
{
}

InputPresenter::InputPresenter(AppState *state, DownloadManager *downloads, QObject *parent)
    : QObject(parent)
    , m_state(state)
    , m_downloads(downloads)
    , m_formatPicker(new FormatPicker(state, downloads, this))
{
    if (m_state)
        connect(m_state, &AppState::urlInputChanged, this, [this] { setNotices({}, {}); });
}

void InputPresenter::startDownload()
{
    if (!m_state || !m_downloads)
        return;
    if (m_state->urlInput().isEmpty()) {
        setNotices({}, u"请先输入视频链接"_s);
        return;
    }
    m_isLoading = true;
    Q_EMIT isLoadingChanged();

    DownloadOptions options;
    options.preset = m_state->selectedPreset();
    options.customArgs = options.preset == DownloadPreset::Custom ? m_state->customArguments() : QString();
    options.outputDir = m_state->outputDirectory();
    options.downloadPlaylist = m_state->downloadPlaylist();
    options.useCookies = m_state->useCookies();
    const LinkInput input = readLinkInput(m_state->urlInput());
    if (!input.links.isEmpty())
        m_downloads->startDownloads(input.links, options);
    setNotices(input.rejected, input.links.isEmpty() ? u"没有可以下载的链接"_s : QString());

    m_isLoading = false;
    Q_EMIT isLoadingChanged();
}

void InputPresenter::listFormats()
{
    if (!m_state || !m_downloads || m_state->urlInput().isEmpty() || m_isListingFormats)
        return;
    setListingFormats(true);
    const QString url = firstLineOf(m_state->urlInput());
    m_formatPicker->fetch(url);
    QPointer<InputPresenter> self(this);
    m_downloads->listFormats(url, m_state->useCookies(), [self](const FormatListResult &result) {
        if (!self)
            return;
        self->setListingFormats(false);
        if (result.ok)
            Q_EMIT self->formatsListed(result.text);
        else
            Q_EMIT self->formatsFailed(result.error.localizedDescription);
    });
}

bool InputPresenter::paste(const QString &text)
{
    if (!m_state || text.isEmpty())
        return false;
    m_state->setUrlInput(withAddedText(m_state->urlInput(), text));
    return true;
}

bool InputPresenter::dropLinks(const QList<QUrl> &urls, const QString &text)
{
    QStringList links;
    for (const QUrl &url : urls)
        links << (url.isLocalFile() ? url.toLocalFile() : url.toString());
    return paste(links.isEmpty() ? text.trimmed() : links.join(u'\n'));
}

QString InputPresenter::rejectedNotice() const
{
    return m_rejectedLines.isEmpty() ? QString() : u"不是有效的链接："_s + m_rejectedLines.join(u'\n');
}

void InputPresenter::setNotices(const QStringList &rejectedLines, const QString &startNotice)
{
    if (m_rejectedLines == rejectedLines && m_startNotice == startNotice)
        return;
    m_rejectedLines = rejectedLines;
    m_startNotice = startNotice;
    Q_EMIT noticesChanged();
}

void InputPresenter::setListingFormats(bool value)
{
    if (m_isListingFormats == value)
        return;
    m_isListingFormats = value;
    Q_EMIT isListingFormatsChanged();
}
