#pragma once

#include "model/videoinfo.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class AppState;
class DownloadManager;
class VideoInfoFetch;

// Fetches a video's information for the information sheet: for the links editor's first line or
// for any link (a queue row's). One fetch at a time; asking for another link cancels the first.
class VideoInfoPresenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY loadingChanged)
    // The link whose information is being fetched; empty when none is.
    Q_PROPERTY(QString loadingUrl READ loadingUrl NOTIFY loadingChanged)

public:
    // Bound to the process-wide AppState and DownloadManager.
    explicit VideoInfoPresenter(QObject *parent = nullptr);
    VideoInfoPresenter(AppState *state, DownloadManager *downloads, QObject *parent = nullptr);
    ~VideoInfoPresenter() override;

    bool isLoading() const { return !m_loadingUrl.isEmpty(); }
    QString loadingUrl() const { return m_loadingUrl; }

    // The answer comes as fetched() or failed(). The cookie switch is the form's.
    Q_INVOKABLE void fetch(const QString &url);
    // fetch() for the editor's first line as typed; nothing when the editor is empty.
    Q_INVOKABLE void fetchFirstLink();
    // Stops the fetch under way, if any, without an answer.
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void loadingChanged();
    void fetched(const VideoInfo &info);
    void failed(const QString &description);

private:
    void setLoadingUrl(const QString &url);

    QPointer<AppState> m_state;
    QPointer<DownloadManager> m_downloads;
    QPointer<VideoInfoFetch> m_fetch;
    QString m_loadingUrl;
};
