#include "engine/downloadoutput.h"
#include "store/queuememory.h"

#include "enginefixture.h"
#include "support/mediaserver.h"
#include "support/mediatools.h"

#include <QProcess>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

// The engine with Debian's real yt-dlp and ffmpeg, downloading from a media server on
// 127.0.0.1. The shell's PATH is the sandbox's (python3 and a few utilities, no ffmpeg), so a
// merge or an audio extraction only works when the engine hands yt-dlp the ffmpeg it found.
class TestEndToEnd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void downloads_data();
    void downloads();
    void cancelledConversionLeavesNoPartFile();
    void stoppedDownloadResumesItsPartFile();

private:
    QTemporaryDir m_media;
    std::unique_ptr<MediaServer> m_server;
    QString m_base; // "http://127.0.0.1:PORT/"
};

namespace {
using namespace MediaTools;
const QString ytDlp = u"/usr/bin/yt-dlp"_s;
// Ids of the processes whose command line mentions `text`.
QList<qint64> processesMentioning(const QString &text)
{
    const QByteArray needle = text.toUtf8();
    QList<qint64> found;
    const QStringList entries = QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        bool numeric = false;
        const qint64 pid = entry.toLongLong(&numeric);
        if (!numeric || pid == QCoreApplication::applicationPid())
            continue;
        QFile cmdline(u"/proc/"_s + entry + u"/cmdline"_s);
        if (cmdline.open(QIODevice::ReadOnly) && cmdline.readAll().contains(needle))
            found << pid;
    }
    return found;
}

// An engine that has found the real yt-dlp, its version and ffmpeg; null if discovery did not
// finish.
std::unique_ptr<SandboxEngine> makeEngine()
{
    return SandboxEngine::start(
        [](SandboxEngine &, ToolLocations &locations) {
            locations.ytDlp = { ytDlp };
            locations.ffmpeg << ffmpeg;
        },
        [](const DownloadManager &manager) {
            return !manager.ytDlpVersion().isEmpty() && manager.detectedFfmpeg() == ffmpeg;
        },
        Patience);
}
} // namespace

void TestEndToEnd::initTestCase()
{
    for (const QString &tool : { ytDlp, ffmpeg, ffprobe }) {
        if (!QFileInfo(tool).isExecutable())
            QSKIP(qPrintable(tool + u" is not installed"_s));
    }
    QVERIFY(m_media.isValid());

    // A 20-second file for the throttled runs, next to the server's own media.
    const QString failed = encode(u"testsrc=size=320x240:rate=25:duration=20"_s,
        { u"-c:v"_s, u"mpeg4"_s, u"-q:v"_s, u"4"_s, u"-movflags"_s, u"+faststart"_s }, m_media.filePath(u"long.mp4"_s));
    QVERIFY2(failed.isEmpty(), qPrintable(failed));

    m_server = std::make_unique<MediaServer>(qEnvironmentVariable("QUILLBOX_TESTS_DIR"), m_media.path());
    m_base = m_server->base();
    QVERIFY2(!m_base.isEmpty(), qPrintable(m_server->error()));
}

void TestEndToEnd::downloads_data()
{
    QTest::addColumn<QString>("path"); // on the media server
    QTest::addColumn<DownloadPreset>("preset");
    QTest::addColumn<QString>("custom");
    QTest::addColumn<QString>("folder"); // under the sandbox; none of it exists yet
    QTest::addColumn<QString>("file"); // the only file expected in the folder afterwards
    QTest::addColumn<QStringList>("streams");
    QTest::addColumn<int>("steps"); // at least this many distinct values between 0 and 1 on the bar

    const QStringList both { u"audio"_s, u"video"_s };
    QTest::newRow("direct mp4") << u"video.mp4"_s << DownloadPreset::Default << QString() << u"new/videos"_s
                                << u"video.mp4"_s << both << 0;
    QTest::newRow("hls") << u"hls/index.m3u8"_s << DownloadPreset::Default << QString() << u"hls"_s << u"index.mp4"_s
                         << both << 0;
    QTest::newRow("dash merged") << u"dash/manifest.mpd"_s << DownloadPreset::BestVideoAudio << QString() << u"dash"_s
                                 << u"manifest.mp4"_s << both << 0;
    QTest::newRow("audio only") << u"video.mp4"_s << DownloadPreset::AudioOnly << QString() << u"audio"_s
                                << u"video.mp3"_s << QStringList { u"audio"_s } << 0;
    // The custom words reach yt-dlp, and the bar moves while it downloads slowly.
    QTest::newRow("throttled") << u"long.mp4"_s << DownloadPreset::Custom << u"--limit-rate 200K"_s << u"throttled"_s
                               << u"long.mp4"_s << QStringList { u"video"_s } << 3;
}

void TestEndToEnd::downloads()
{
    QFETCH(QString, path);
    QFETCH(DownloadPreset, preset);
    QFETCH(QString, custom);
    QFETCH(QString, folder);
    QFETCH(QString, file);
    QFETCH(QStringList, streams);
    QFETCH(int, steps);
    const auto engine = makeEngine();
    QVERIFY(engine);
    DownloadManager &manager = *engine->manager;
    const QString outputDir = engine->fixture.path(folder);
    QVERIFY(!QFileInfo::exists(outputDir));
    // The one bar of the row, over every stream and step, read as a view reads it: it never goes back.
    QList<double> progress;
    connect(manager.taskModel(), &QAbstractItemModel::dataChanged, &manager,
        [&](const QModelIndex &row, const QModelIndex &, const QList<int> &roles) {
            if (roles.contains(TaskModel::ProgressRole))
                progress << row.data(TaskModel::ProgressRole).toDouble();
        });

    manager.startDownload(m_base + path, preset, custom, outputDir, false, false);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), Patience);
    QVERIFY(std::is_sorted(progress.cbegin(), progress.cend()));
    QList<double> between;
    for (double value : std::as_const(progress)) {
        if (value > 0.0 && value < 1.0 && !between.contains(value))
            between << value;
    }
    QVERIFY2(between.size() >= steps, qPrintable(QString::number(between.size())));

    const DownloadTask task = engine->only();
    const QStringList log = engine->log();
    const QString lastWords = log.sliced(std::max<qsizetype>(0, log.size() - 4)).join(u'\n'); // command and outcome
    QVERIFY2(task.status == DownloadStatus::Completed, qPrintable(lastWords));
    QCOMPARE(task.progress, 1.0);
    QVERIFY(task.endTime && *task.endTime >= task.startTime);
    QVERIFY(!task.errorMessage.has_value());
    QCOMPARE(QDir(outputDir).entryList(QDir::Files | QDir::Hidden), QStringList { file });
    QCOMPARE(streamsOf(outputDir + u'/' + file), streams);
    // The row names the file it ended in, after merging or converting, with that file's size.
    QCOMPARE(task.outputPath, std::optional(outputDir + u'/' + file));
    QCOMPARE(task.size, DownloadOutput::formatBytes(QFileInfo(outputDir + u'/' + file).size()));
    // Held under 1 MiB/s, where an unthrottled download from loopback runs at tens of MiB/s.
    if (!custom.isEmpty())
        QVERIFY2(task.speed.endsWith(u"KiB/s"_s), qPrintable(task.speed));
    QTRY_VERIFY(engine->log().contains(u"✅ 下载完成！"_s));
}

void TestEndToEnd::cancelledConversionLeavesNoPartFile()
{
    // Ten minutes of noise: ffmpeg takes seconds to make an MP3 of it, time enough to stop it.
    const QString source = m_media.filePath(u"long-audio.m4a"_s);
    const QString failed = encode(u"anoisesrc=duration=600:sample_rate=22050"_s,
        { u"-ac"_s, u"1"_s, u"-c:a"_s, u"aac"_s, u"-b:a"_s, u"32k"_s }, source);
    QVERIFY2(failed.isEmpty(), qPrintable(failed));

    const auto engine = makeEngine();
    QVERIFY(engine);
    DownloadManager &manager = *engine->manager;
    const QString outputDir = engine->fixture.path(u"converting"_s);
    const QString downloaded = outputDir + u"/long-audio.m4a"_s;
    const QString target = outputDir + u"/long-audio.mp3"_s;
    manager.startDownload(m_base + u"long-audio.m4a"_s, DownloadPreset::AudioOnly, QString(), outputDir, false, false);
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(target).size() > 0, Patience);
    QVERIFY(engine->only().status == DownloadStatus::Downloading);

    manager.cancelAllDownloads();
    QTRY_COMPARE_WITH_TIMEOUT(manager.runningCount(), 0, Patience);
    QCOMPARE(engine->only().status, DownloadStatus::Cancelled);
    // The cut-off MP3 is gone; the whole download stays, so a retry can convert it again.
    QVERIFY(!QFileInfo::exists(target));
    QCOMPARE(QFileInfo(downloaded).size(), QFileInfo(source).size());
    QTRY_VERIFY(engine->log().contains(u"已删除未完成的转换文件: "_s + target));
}

// Quit in the middle of a download, start again: the row carries on by itself, yt-dlp resuming
// its ".part" file rather than starting over. Stopped ("停止全部") during that run, it leaves
// nothing running, fails nothing, and "重试" carries it on again.
void TestEndToEnd::stoppedDownloadResumesItsPartFile()
{
    const auto engine = makeEngine();
    QVERIFY(engine);
    const QString store = engine->fixture.path(u"data/quillbox.sqlite"_s);
    const QString outputDir = engine->fixture.path(u"resumed"_s);
    {
        QueueMemory memory(engine->manager.get(), &engine->state, store);
        memory.start();
        QTRY_VERIFY(memory.isRestored());
        engine->manager->startDownload(
            m_base + u"long.mp4"_s, DownloadPreset::Custom, u"--limit-rate 100K"_s, outputDir, false, false);
        QTRY_VERIFY_WITH_TIMEOUT(engine->only().progress > 0.2, Patience);
        memory.close();
        engine->manager->shutdown();
    }
    const QStringList parts = QDir(outputDir).entryList({ u"*.part"_s });
    QCOMPARE(parts.size(), 1);
    QVERIFY(QFileInfo(outputDir + u'/' + parts.first()).size() > 0);
    QCOMPARE(processesMentioning(outputDir), QList<qint64>());

    engine->restart();
    QueueMemory memory(engine->manager.get(), &engine->state, store);
    memory.start();
    QTRY_COMPARE(engine->manager->tasks().size(), 1);
    const QString id = idOf(engine->only());
    // Stopped once yt-dlp itself is fetching again, not just the shell starting.
    QTRY_VERIFY_WITH_TIMEOUT(!engine->log().filter(u"Resuming download at byte"_s).isEmpty(), Patience);
    QTRY_VERIFY_WITH_TIMEOUT(!processesMentioning(outputDir).isEmpty(), Patience);
    engine->manager->cancelAllDownloads();
    QCOMPARE(engine->only().status, DownloadStatus::Cancelled);
    QTRY_COMPARE_WITH_TIMEOUT(engine->manager->runningCount(), 0, Patience);
    QCoreApplication::processEvents();
    QCOMPARE(engine->only().status, DownloadStatus::Cancelled);
    QVERIFY(engine->only().progress < 1.0);
    QCOMPARE(processesMentioning(outputDir), QList<qint64>());
    QVERIFY(engine->log().filter(u"下载失败"_s).isEmpty());
    QVERIFY(!engine->log().contains(u"✅ 下载完成！"_s));

    engine->state.clearLog();
    engine->manager->retryDownload(id);
    QTRY_COMPARE_WITH_TIMEOUT(engine->only().status, DownloadStatus::Completed, Patience);
    QVERIFY2(!engine->log().filter(u"Resuming download at byte"_s).isEmpty(), qPrintable(engine->log().join(u'\n')));
    QCOMPARE(QFileInfo(*engine->only().outputPath).size(), QFileInfo(m_media.filePath(u"long.mp4"_s)).size());
    QCOMPARE(streamsOf(*engine->only().outputPath), QStringList { u"video"_s });
    memory.close();
}

QTEST_GUILESS_MAIN(TestEndToEnd)
#include "tst_endtoend.moc"
