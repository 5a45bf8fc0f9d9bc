#include "enginefixture.h"
#include "support/mediaserver.h"
#include "support/mediatools.h"

#include <QElapsedTimer>
#include <QProcess>

using namespace Qt::StringLiterals;

// The download options with the real yt-dlp and Debian's ffmpeg against a media server on
// 127.0.0.1: the files written, the streams in them, the archive, the time taken and what a proxy
// carried show that each option reached yt-dlp and did what it says. The whole test runs once
// with Debian's yt-dlp and once with the current one kept beside the project, each run with one
// engine, so the slow start of a zipped yt-dlp is paid once for its discovery.
class TestOptionsEndToEnd : public QObject
{
    Q_OBJECT

public:
    // `ytDlp` is empty when this one is not here.
    TestOptionsEndToEnd(const QString &name, const QString &ytDlp)
        : m_name(name)
        , m_ytDlp(ytDlp)
    {
    }

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_engine.reset(); }
    void files_data();
    void files();
    void archiveSkipsTheSecondRun();
    void rateLimitHoldsTheDownloadBack();
    void everyRequestGoesThroughTheProxy();

private:
    // Downloads `path` from the media server into `folder` with `choices` and waits until every
    // row has ended; the newest row.
    DownloadTask download(const QString &path, const DownloadChoices &choices, const QString &folder) const;
    // The last lines of the log (the command and how it ended), for a failure's message.
    QByteArray lastWords() const;

    QString m_name;
    QString m_ytDlp;
    QTemporaryDir m_media;
    std::unique_ptr<MediaServer> m_server;
    QString m_base; // "http://127.0.0.1:PORT/"
    std::unique_ptr<SandboxEngine> m_engine;
};

namespace {
using namespace MediaTools;
const QString pageTitle = u"Clip with subtitles"_s;
constexpr qint64 RateLimit = 512 * 1024; // "512K", in bytes a second

QStringList linesOf(const QString &file)
{
    return QString::fromUtf8(fileBytes(file)).split(u'\n', Qt::SkipEmptyParts);
}
} // namespace

void TestOptionsEndToEnd::initTestCase()
{
    if (m_ytDlp.isEmpty())
        QSKIP(qPrintable(m_name + u" yt-dlp is not here (/usr/bin/yt-dlp, ../shared/tools/yt-dlp/yt-dlp)"_s));
    for (const QString &tool : { ffmpeg, ffprobe }) {
        if (!QFileInfo(tool).isExecutable())
            QSKIP(qPrintable(tool + u" is not installed"_s));
    }
    QVERIFY(m_media.isValid());
    // Pages as the generic extractor reads them: a video, its poster (the thumbnail) and an
    // English subtitle track.
    const auto page = [](const char *video, const char *subtitles) -> QByteArray {
        return "<!DOCTYPE html>\n<html><head><title>" + pageTitle.toUtf8()
            + "</title></head><body>\n<video controls poster=\"poster.jpg\"><source src=\"" + video
            + "\" type=\"video/mp4\">\n<track kind=\"subtitles\" srclang=\"en\" label=\"English\" src=\"" + subtitles
            + "\"></video>\n</body></html>\n";
    };
    const QByteArray subtitles = "WEBVTT\n\n00:00:00.000 --> 00:00:02.000\nHello from the track\n\n00:00:02.000 --> "
                                 "00:00:04.000\nSecond cue\n";
    for (const auto &[name, content] : { std::pair { "page.html", page("video.mp4", "sub.vtt") },
             std::pair { "noise.html", page("noise.mp4", "sub.vtt") }, std::pair { "sub.vtt", subtitles } }) {
        QFile file(m_media.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    QString failed = encode(u"color=c=red:s=160x120"_s, { u"-frames:v"_s, u"1"_s }, m_media.filePath(u"poster.jpg"_s));
    QVERIFY2(failed.isEmpty(), qPrintable(failed));
    // About 2 MiB in one second of noise, which no encoder can make small.
    failed = encode(u"nullsrc=s=320x240:r=25:d=1,geq=random(1)*255:128:128"_s,
        { u"-c:v"_s, u"mpeg4"_s, u"-q:v"_s, u"2"_s, u"-movflags"_s, u"+faststart"_s },
        m_media.filePath(u"noise.mp4"_s));
    QVERIFY2(failed.isEmpty(), qPrintable(failed));

    m_server = std::make_unique<MediaServer>(qEnvironmentVariable("QUILLBOX_TESTS_DIR"), m_media.path());
    m_base = m_server->base();
    QVERIFY2(!m_base.isEmpty(), qPrintable(m_server->error()));

    m_engine = startWithRealTools(m_ytDlp);
    QVERIFY(m_engine);
    qInfo("%s yt-dlp %s: %s", qPrintable(m_name), qPrintable(m_engine->manager->ytDlpVersion()), qPrintable(m_ytDlp));
}

DownloadTask TestOptionsEndToEnd::download(
    const QString &path, const DownloadChoices &choices, const QString &folder) const
{
    DownloadOptions options;
    options.outputDir = folder;
    options.downloadPlaylist = false;
    options.useCookies = false;
    options.choices = choices;
    m_engine->manager->startDownloads({ m_base + path }, options);
    if (!QTest::qWaitFor([this] { return m_engine->settled(); }, Patience))
        qWarning("the download has not ended after %d ms", Patience);
    return m_engine->manager->taskModel()->tasks().constLast();
}

QByteArray TestOptionsEndToEnd::lastWords() const
{
    const QStringList log = m_engine->log();
    return log.sliced(std::max<qsizetype>(0, log.size() - 6)).join(u'\n').toUtf8();
}

void TestOptionsEndToEnd::files_data()
{
    QTest::addColumn<DownloadChoices>("choices");
    QTest::addColumn<QStringList>("besides"); // what is left beside the video, by its ending
    QTest::addColumn<QStringList>("streams");

    DownloadChoices beside;
    beside.subtitles = u"download"_s;
    beside.subtitleLanguages = u"en"_s;
    beside.subtitleFormat = u"srt"_s;
    beside.embedThumbnail = true;
    DownloadChoices embedded = beside;
    embedded.subtitles = u"embed"_s;
    embedded.embedThumbnail = false;
    // The WebVTT track converted to SubRip beside the video; the poster fetched and put in as the
    // cover, its picture file gone afterwards.
    QTest::newRow("subtitles beside, thumbnail embedded")
        << beside << QStringList { u".en.srt"_s } << QStringList { u"audio"_s, u"picture"_s, u"video"_s };
    // Into the MP4, and no subtitle file left behind.
    QTest::newRow("subtitles embedded") << embedded << QStringList()
                                        << QStringList { u"audio"_s, u"subtitle"_s, u"video"_s };
}

void TestOptionsEndToEnd::files()
{
    QFETCH(DownloadChoices, choices);
    QFETCH(QStringList, besides);
    QFETCH(QStringList, streams);
    const QString folder = m_engine->fixture.path(u"files/"_s + QString::fromLatin1(QTest::currentDataTag()));

    const DownloadTask task = download(u"page.html"_s, choices, folder);
    QVERIFY2(task.status == DownloadStatus::Completed, lastWords());
    QVERIFY(task.outputPath);
    const QFileInfo video(*task.outputPath);
    QCOMPARE(video.path(), folder);
    QCOMPARE(video.suffix(), u"mp4"_s);
    QStringList expected { video.fileName() };
    for (const QString &ending : besides)
        expected << video.completeBaseName() + ending;
    expected.sort();
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name), expected);
    QCOMPARE(streamsOf(video.filePath()), streams);
    if (besides.contains(u".en.srt"_s)) {
        const QString srt = QString::fromUtf8(fileBytes(folder + u'/' + video.completeBaseName() + u".en.srt"_s));
        QVERIFY2(srt.contains(u"00:00:00,000 --> 00:00:02,000\nHello from the track"_s), qPrintable(srt));
    }
}

void TestOptionsEndToEnd::archiveSkipsTheSecondRun()
{
    DownloadChoices choices;
    choices.useArchive = true;
    const QString archive = DownloadManager::archiveFile();
    QVERIFY2(archive.startsWith(m_engine->fixture.root() + u'/'), qPrintable(archive)); // never the user's own
    const QString folder = m_engine->fixture.path(u"archived"_s);

    const DownloadTask first = download(u"video.mp4"_s, choices, folder);
    QVERIFY2(first.status == DownloadStatus::Completed, lastWords());
    QVERIFY(first.notice.isEmpty());
    QVERIFY(first.outputPath && QFile::remove(*first.outputPath));
    QCOMPARE(linesOf(archive).size(), 1);

    // The same link again into the emptied folder: yt-dlp finds it in the archive and fetches nothing.
    const DownloadTask second = download(u"video.mp4"_s, choices, folder);
    QVERIFY(second.id != first.id);
    QVERIFY2(second.status == DownloadStatus::Completed, lastWords());
    QCOMPARE(second.notice, u"已在下载存档中，未再下载"_s);
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList());
    QCOMPARE(linesOf(archive).size(), 1);
    QTRY_COMPARE(m_engine->log().filter(u"已在下载存档中，未再下载: "_s).size(), 1);
}

void TestOptionsEndToEnd::rateLimitHoldsTheDownloadBack()
{
    DownloadChoices choices;
    choices.rateLimit = u"512K"_s;
    choices.subtitles = u"download"_s;
    choices.subtitleLanguages = u"en"_s;
    // Timed on the row's bar, from its first move until it is full, so that yt-dlp's start and
    // the extraction do not count; the subtitle file fetched before the video does not fill it.
    QElapsedTimer sinceFirstBytes;
    qint64 full = -1;
    QObject watching;
    connect(m_engine->manager->taskModel(), &QAbstractItemModel::dataChanged, &watching,
        [&](const QModelIndex &row, const QModelIndex &, const QList<int> &roles) {
            const double progress = row.data(TaskModel::ProgressRole).toDouble();
            if (!roles.contains(TaskModel::ProgressRole) || progress <= 0.0)
                return;
            if (!sinceFirstBytes.isValid())
                sinceFirstBytes.start();
            if (progress >= 1.0 && full < 0)
                full = sinceFirstBytes.elapsed();
        });

    const DownloadTask task = download(u"noise.html"_s, choices, m_engine->fixture.path(u"limited"_s));
    QVERIFY2(task.status == DownloadStatus::Completed, lastWords());
    const qint64 size = QFileInfo(m_media.filePath(u"noise.mp4"_s)).size();
    QCOMPARE(QFileInfo(*task.outputPath).size(), size);
    // Unlimited, loopback delivers this in a fraction of a second.
    const qint64 expected = size * 1000 / RateLimit;
    QVERIFY2(full >= expected * 3 / 4,
        qPrintable(u"full after %1 ms for %2 bytes, where %3 ms are expected"_s.arg(full).arg(size).arg(expected)));
    QVERIFY2(task.speed.endsWith(u"KiB/s"_s), qPrintable(task.speed));
}

void TestOptionsEndToEnd::everyRequestGoesThroughTheProxy()
{
    const QString record = m_engine->fixture.path(u"proxy.txt"_s);
    const LocalServer proxy(u"proxy"_s,
        { qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/support/proxyserver.py"_s, u"--record"_s, record }, Patience);
    QVERIFY2(!proxy.base().isEmpty(), qPrintable(proxy.error()));
    DownloadChoices choices;
    choices.proxy = proxy.base().chopped(1); // "http://127.0.0.1:PORT"
    const QString folder = m_engine->fixture.path(u"proxied"_s);

    const DownloadTask task = download(u"page.html"_s, choices, folder);
    QVERIFY2(task.status == DownloadStatus::Completed, lastWords());
    QCOMPARE(streamsOf(*task.outputPath), (QStringList { u"audio"_s, u"video"_s }));
    // The page once: the download itself tells the row's information (its title comes from
    // that), so nothing else asks for the page again. And the video.
    const auto carried
        = [&record](const QString &url) { return linesOf(record).filter(u"GET "_s + url + u" 20"_s).size(); };
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->manager->taskModel()->find(task.id)->title.startsWith(pageTitle), Patience);
    QTRY_COMPARE(carried(m_base + u"page.html"_s), 1);
    QVERIFY(carried(m_base + u"video.mp4"_s) >= 1);
    QCOMPARE(linesOf(record).filter(u"REFUSED"_s), QStringList());
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QString debian = u"/usr/bin/yt-dlp"_s;
    TestOptionsEndToEnd withDebian(u"Debian's"_s, QFileInfo(debian).isExecutable() ? debian : QString());
    TestOptionsEndToEnd withCurrent(u"The current"_s, sharedYtDlp());
    const int failed = QTest::qExec(&withDebian, argc, argv);
    return std::min(failed + QTest::qExec(&withCurrent, argc, argv), 127);
}
#include "tst_optionsendtoend.moc"
