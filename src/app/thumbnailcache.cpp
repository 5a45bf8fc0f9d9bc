#include "app/thumbnailcache.h"

#include "engine/privatefiles.h"

#include <QDateTime>
#include <QMutex>
#include <QNetworkAccessManager>
#include <QStandardPaths>
#include <QUrl>

using namespace Qt::StringLiterals;

ThumbnailCache::ThumbnailCache(const QString &directory, QObject *parent)
    : QNetworkDiskCache(parent)
{
    // The pictures tell which videos the user looked at: the folder is theirs alone.
    PrivateFiles::makeFolder(directory);
    setCacheDirectory(directory);
    setMaximumCacheSize(MaximumBytes);
}

QIODevice *ThumbnailCache::prepare(const QNetworkCacheMetaData &metaData)
{
    // Thumbnail servers often say "no-cache" or nothing about freshness; a picture of a video
    // does not change, so it is kept regardless and counts as fresh for KeepDays.
    QNetworkCacheMetaData kept = metaData;
    kept.setSaveToDisk(true);
    kept.setExpirationDate(QDateTime::currentDateTimeUtc().addDays(KeepDays));
    return QNetworkDiskCache::prepare(kept);
}

QString ThumbnailCache::defaultDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + u"/thumbnails"_s;
}

ThumbnailNetworkFactory::ThumbnailNetworkFactory(QString directory)
    : m_directory(std::move(directory))
{
}

QNetworkAccessManager *ThumbnailNetworkFactory::create(QObject *parent)
{
    // Called on the engine's threads; each manager gets its own cache object on the same folder
    // (QNetworkDiskCache writes each entry to a temporary file and renames it into place).
    auto *manager = new QNetworkAccessManager(parent);
    manager->setCache(new ThumbnailCache(m_directory, manager));
    manager->setProxyFactory(new ImageProxy);
    return manager;
}

namespace {
QMutex imageProxyMutex;
QNetworkProxy imageProxy(QNetworkProxy::NoProxy);
} // namespace

void ImageProxy::set(const QString &proxyUrl)
{
    const QUrl url(proxyUrl);
    QNetworkProxy proxy(QNetworkProxy::NoProxy);
    if (url.scheme() == u"http")
        proxy = QNetworkProxy(QNetworkProxy::HttpProxy, url.host(), quint16(url.port(8080)));
    else if (url.scheme() == u"socks5" || url.scheme() == u"socks5h")
        proxy = QNetworkProxy(QNetworkProxy::Socks5Proxy, url.host(), quint16(url.port(1080)));
    proxy.setUser(url.userName());
    proxy.setPassword(url.password());
    const QMutexLocker locker(&imageProxyMutex);
    imageProxy = proxy;
}

QList<QNetworkProxy> ImageProxy::queryProxy(const QNetworkProxyQuery &)
{
    const QMutexLocker locker(&imageProxyMutex);
    return { imageProxy };
}
