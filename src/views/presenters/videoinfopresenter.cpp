#include "views/presenters/videoinfopresenter.h"

#include "engine/downloadmanager.h"
#include "engine/videoinfofetch.h"
#include "model/appstate.h"
#include "model/linkinput.h"
#include "views/presenters/downloadoptionspresenter.h"

VideoInfoPresenter::VideoInfoPresenter(QObject *parent)
    : VideoInfoPresenter(AppState::instance(), DownloadManager::instance(), parent)
{
}

VideoInfoPresenter::VideoInfoPresenter(AppState *state, DownloadManager *downloads, QObject *parent)
    : QObject(parent)
    , m_state(state)
    , m_downloads(downloads)
{
}

VideoInfoPresenter::~VideoInfoPresenter()
{
    cancel();
}

void VideoInfoPresenter::fetch(const QString &url)
{
    if (!m_downloads || url.isEmpty() || url == m_loadingUrl)
        return;
    cancel();
    setLoadingUrl(url);
    QPointer<VideoInfoPresenter> self(this);
    m_fetch
        = DownloadOptionsPresenter::fetchAsTheForm(m_downloads, m_state, url, [self](const VideoInfoResult &result) {
              if (!self || result.cancelled)
                  return;
              self->m_fetch = nullptr;
              self->setLoadingUrl({});
              if (result.ok)
                  Q_EMIT self->fetched(result.info);
              else
                  Q_EMIT self->failed(result.error.localizedDescription);
          });
}

void VideoInfoPresenter::fetchFirstLink()
{
    if (m_state && !m_state->urlInput().isEmpty())
        fetch(firstLineOf(m_state->urlInput()));
}

void VideoInfoPresenter::cancel()
{
    if (m_fetch)
        m_fetch->cancel();
    m_fetch = nullptr;
    setLoadingUrl({});
}

void VideoInfoPresenter::setLoadingUrl(const QString &url)
{
    if (m_loadingUrl == url)
        return;
    m_loadingUrl = url;
    Q_EMIT loadingChanged();
}
