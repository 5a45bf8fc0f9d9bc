#include "engine/downloadoutput.h"
#include "engine/linesplitter.h"

#include <QFile>
#include <QtTest>

using namespace Qt::StringLiterals;

// What a download's output says about the task, read from recorded and written-out yt-dlp lines.
class TestDownloadOutput : public QObject
{
    Q_OBJECT

private slots:
    void fileAndPhase_data();
    void fileAndPhase();
    void recordedRuns_data();
    void recordedRuns();
    void streamsShareBySize();
    void playlistItemsAddUp();
};

void TestDownloadOutput::fileAndPhase_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("outputPath");
    QTest::addColumn<QString>("phase");

    const QString destination = u"[download] Destination: /v/clip.f137.mp4"_s;
    // Destination, merge and extraction are in the recorded runs below.
    QTest::newRow("already downloaded") << QStringList { u"[download] /v/old.mp4 has already been downloaded"_s }
                                        << u"/v/old.mp4"_s << QString();
    QTest::newRow("relative, in the folder")
        << QStringList { u"[download] Destination: sub/a b.webm"_s } << u"/work/out/sub/a b.webm"_s << QString();
    // Steps on the finished file are post-processing, and do not move the file.
    QTest::newRow("metadata after merge") << QStringList { u"[Merger] Merging formats into \"/v/clip.mp4\""_s,
        u"[Metadata] Adding metadata to \"/v/clip.mp4\""_s }
                                          << u"/v/clip.mp4"_s << u"后处理中"_s;
    QTest::newRow("fixup") << QStringList { destination,
        u"[FixupM3u8] Fixing MPEG-TS in MP4 container of \"/v/x.mp4\""_s }
                           << u"/v/clip.f137.mp4"_s << u"后处理中"_s;
    QTest::newRow("remux names the target")
        << QStringList { destination, u"[VideoRemuxer] Remuxing video from mp4 to mkv; Destination: /v/clip.mkv"_s }
        << u"/v/clip.mkv"_s << u"后处理中"_s;
    // A playlist's next item downloads again.
    QTest::newRow("download after a step")
        << QStringList { u"[ExtractAudio] Destination: /v/1.mp3"_s, u"[download] Downloading item 2 of 2"_s,
               u"[download] Destination: /v/2.m4a"_s, u"[download]  10.0% of 1.00MiB at 1.00MiB/s ETA 00:01"_s }
        << u"/v/2.m4a"_s << QString();
}

void TestDownloadOutput::fileAndPhase()
{
    QFETCH(QStringList, lines);
    DownloadOutput output(u"/work/out"_s);
    output.read(lines);
    QTEST(output.outputPath(), "outputPath");
    QTEST(output.phase(), "phase");
}

void TestDownloadOutput::recordedRuns_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("outputPath");
    QTest::addColumn<QString>("phaseAtEnd");
    QTest::newRow("dash, two streams merged")
        << u"ytdlp-dash-merge.txt"_s << u"/tmp/rec/out/manifest.mp4"_s << u"合并中"_s;
    QTest::newRow("audio extracted") << u"ytdlp-extract-audio.txt"_s << u"/tmp/rec/out/video.mp3"_s << u"转换音频中"_s;
    QTest::newRow("one stream") << u"ytdlp-progress.txt"_s << u"/tmp/rec/out/clip.mp4"_s << QString();
}

void TestDownloadOutput::recordedRuns()
{
    QFETCH(QString, file);
    QFile recording(qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/data/"_s + file);
    QVERIFY(recording.open(QIODevice::ReadOnly));
    const QByteArray bytes = recording.readAll();

    // Fed as a pipe would deliver it, in small pieces, peeking at each unfinished redraw.
    DownloadOutput output;
    LineSplitter lines;
    QList<double> shown;
    for (qsizetype at = 0; at < bytes.size(); at += 97) {
        for (const ProgressUpdate &update :
            { output.read(lines.feed(bytes.mid(at, 97))), output.peek(lines.pending()) }) {
            if (update.progress)
                shown << *update.progress;
        }
    }
    output.read(lines.finish());

    QVERIFY(shown.size() > 3);
    QVERIFY2(std::is_sorted(shown.cbegin(), shown.cend()), qPrintable(QString::number(shown.size())));
    QCOMPARE(shown.constLast(), 1.0);
    QTEST(output.outputPath(), "outputPath");
    QTEST(output.phase(), "phaseAtEnd");
    // The bar moves through the run rather than jumping from nothing to full.
    QVERIFY(std::count_if(shown.cbegin(), shown.cend(), [](double p) { return p > 0.1 && p < 0.9; }) >= 3);
}

void TestDownloadOutput::streamsShareBySize()
{
    DownloadOutput output;
    output.read({ u"[info] x: Downloading 1 format(s): 137+140"_s, u"[download] Destination: /v/x.f137.mp4"_s,
        u"[download]  50.0% of 30.00MiB at 1.00MiB/s ETA 00:15"_s });
    // The audio's size is not known yet: each stream counts as half.
    QCOMPARE(output.progress(), 0.25);
    const ProgressUpdate update = output.read({ u"[download] 100% of 30.00MiB in 00:00:30 at 1.00MiB/s"_s,
        u"[download] Destination: /v/x.f140.m4a"_s, u"[download]  50.0% of 10.00MiB at 1.00MiB/s ETA 00:05"_s });
    // Now by size: 30 + 5 of 40 MiB.
    QCOMPARE(output.progress(), 0.875);
    QCOMPARE(update.eta, u"00:05"_s);
    QCOMPARE(update.size, u"10.00MiB"_s);
}

void TestDownloadOutput::playlistItemsAddUp()
{
    DownloadOutput output;
    output.read({ u"[download] Downloading item 1 of 4"_s, u"[download] Destination: /v/1.mp4"_s,
        u"[download] 100% of 1.00MiB in 00:00:01 at 1.00MiB/s"_s, u"[download] Downloading item 2 of 4"_s,
        u"[download] Destination: /v/2.mp4"_s, u"[download]  50.0% of 1.00MiB at 1.00MiB/s ETA 00:01"_s });
    QCOMPARE(output.progress(), 0.375);
}

QTEST_GUILESS_MAIN(TestDownloadOutput)
#include "tst_downloadoutput.moc"
