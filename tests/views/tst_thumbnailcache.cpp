#include "app/thumbnailcache.h"

#include "support/mediaserver.h"
#include "testsupport.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QtTest>

#include <memory>

using namespace Qt::StringLiterals;

class TestThumbnailCache : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keptOnDiskAndServedOffline();
};

namespace {
struct Answer
{
    QNetworkReply::NetworkError error = QNetworkReply::UnknownNetworkError;
    QByteArray body;
    bool fromCache = false;
};

// One GET through a manager of its own, as each of the QML engine's threads has.
Answer get(ThumbnailNetworkFactory &factory, const QUrl &url)
{
    QObject owner;
    QNetworkAccessManager *manager = factory.create(&owner);
    std::unique_ptr<QNetworkReply> reply(manager->get(QNetworkRequest(url)));
    if (!reply->isFinished()) {
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        finished.wait(30000);
    }
    return { reply->error(), reply->readAll(), reply->attribute(QNetworkRequest::SourceIsFromCacheAttribute).toBool() };
}
} // namespace

void TestThumbnailCache::keptOnDiskAndServedOffline()
{
    IsolatedEnvironment env;
    // What the pictures say about the user's viewing stays theirs, even under the widest umask.
    const UmaskScope scope(0);
    const QString media = env.root() + u"/media"_s;
    QDir().mkpath(media);
    const QByteArray picture = QByteArray("\xFF\xD8\xFF thumbnail bytes ").repeated(100);
    QFile file(media + u"/thumb.jpg"_s);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(picture);
    file.close();

    auto server = std::make_unique<MediaServer>(
        QString::fromLocal8Bit(qgetenv("QUILLBOX_TESTS_DIR")), media, QStringList { u"--duration"_s, u"1"_s });
    QVERIFY2(!server->base().isEmpty(), qPrintable(server->error()));
    const QUrl url(server->base() + u"thumb.jpg"_s);
    ThumbnailNetworkFactory factory(env.root() + u"/cache"_s);

    const Answer first = get(factory, url);
    QCOMPARE(first.error, QNetworkReply::NoError);
    QCOMPARE(first.body, picture);
    QVERIFY(!first.fromCache);
    QCOMPARE(modeOf(env.root() + u"/cache"_s), 0700);

    // The server is gone: the picture still comes, from the disk.
    server.reset();
    const Answer offline = get(factory, url);
    QCOMPARE(offline.error, QNetworkReply::NoError);
    QCOMPARE(offline.body, picture);
    QVERIFY(offline.fromCache);

    // What was never fetched fails, and says so, rather than hanging.
    const Answer missing = get(factory, QUrl(url.toString().replace(u"thumb.jpg"_s, u"other.jpg"_s)));
    QCOMPARE(missing.error, QNetworkReply::ConnectionRefusedError);
}

QTEST_GUILESS_MAIN(TestThumbnailCache)
#include "tst_thumbnailcache.moc"
