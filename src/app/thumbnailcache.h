#pragma once

#include <QNetworkDiskCache>
#include <QNetworkProxyFactory>
#include <QQmlNetworkAccessManagerFactory>
#include <QString>

// Network access for the views' images, video thumbnails above all: every answer is kept on disk
// (under the cache location) for 30 days whatever its headers say, and served from there without
// asking the network again, so a thumbnail seen once appears at once and offline. Images load in
// the background as network images always do; one that fails leaves its Image in the Error state.
class ThumbnailCache : public QNetworkDiskCache
{
    Q_OBJECT

public:
    static constexpr qint64 MaximumBytes = 64 * 1024 * 1024;
    static constexpr int KeepDays = 30;

    explicit ThumbnailCache(const QString &directory, QObject *parent = nullptr);
    QIODevice *prepare(const QNetworkCacheMetaData &metaData) override;

    // "thumbnails" in the application's cache location.
    static QString defaultDirectory();
};

// Hands the QML engine (each of its threads) a network access manager on the shared disk cache.
class ThumbnailNetworkFactory : public QQmlNetworkAccessManagerFactory
{
public:
    explicit ThumbnailNetworkFactory(QString directory = ThumbnailCache::defaultDirectory());
    QNetworkAccessManager *create(QObject *parent) override;

private:
    const QString m_directory;
};

// The proxy the views' images go through: the one chosen in "下载选项" where Qt speaks its kind
// (HTTP, SOCKS5), so that a video's picture comes the way its download does; none otherwise.
// set() may be called from any thread, and every manager of the factory follows at once.
class ImageProxy : public QNetworkProxyFactory
{
public:
    static void set(const QString &proxyUrl);
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override;
};
