#include "engine/downloadoutput.h"
#include "engine/linesplitter.h"

#include <QFile>
#include <QtTest>

using namespace Qt::StringLiterals;

// A download's output cut into lines, and what those say about the task, read from recorded and
// written-out yt-dlp lines.
class TestDownloadOutput : public QObject
{
    Q_OBJECT

private slots:
    void everyCutGivesTheSameLines();
    void longLinesAreBounded_data();
    void longLinesAreBounded();
    void progressLine_data();
    void progressLine();
    void fileAndPhase_data();
    void fileAndPhase();
    void recordedRuns_data();
    void recordedRuns();
    void streamsShareBySize();
    void playlistItemsAddUp();
};

// Newlines, carriage returns (a progress redraw) and both together end a line, with no empty line
// between; a last line without an end comes at the finish; and no cut of the stream into reads
// changes what comes out.
void TestDownloadOutput::everyCutGivesTheSameLines()
{
    const QByteArray stream = "[info] 标题\n\r[download]   0.5% of 1.00MiB at 1.00KiB/s\r[download] 100% of 1.00MiB\r\n"
                              "WARNING: x\nlast";
    const QStringList expected { u"[info] 标题"_s, u"[download]   0.5% of 1.00MiB at 1.00KiB/s"_s,
        u"[download] 100% of 1.00MiB"_s, u"WARNING: x"_s, u"last"_s };
    for (int cut = 0; cut <= stream.size(); ++cut) {
        for (int second = cut; second <= stream.size(); second += 7) {
            LineSplitter splitter;
            QStringList seen = splitter.feed(stream.left(cut));
            seen += splitter.feed(stream.mid(cut, second - cut));
            seen += splitter.feed(stream.mid(second));
            seen += splitter.finish();
            QCOMPARE(seen, expected);
            QVERIFY(splitter.finish().isEmpty());
        }
    }
}

void TestDownloadOutput::longLinesAreBounded_data()
{
    QTest::addColumn<QByteArray>("unit"); // repeated to make the line
    QTest::addColumn<int>("repeat");
    QTest::addColumn<QString>("kept"); // the line's start that is kept
    QTest::newRow("10 MiB without an end") << QByteArray("x") << 10 << QString(LineSplitter::MaxLineBytes, u'x');
    QTest::newRow("a character is never cut")
        << QByteArray("下") << 1 << QString(LineSplitter::MaxLineBytes / 3, u'下');
}

void TestDownloadOutput::longLinesAreBounded()
{
    QFETCH(QByteArray, unit);
    QFETCH(int, repeat);
    QFETCH(QString, kept);
    // `repeat` MiB of `unit` in 64 KiB reads: nothing is passed on, and nothing beyond the bound
    // is held, until the line ends; then one line with a note of what was left out.
    const QByteArray chunk = unit.repeated(64 * 1024 / unit.size());
    LineSplitter splitter;
    for (int i = 0; i < repeat * 16; ++i) {
        QVERIFY(splitter.feed(chunk).isEmpty());
        QVERIFY(splitter.pending().toUtf8().size() <= LineSplitter::MaxLineBytes);
    }
    const QStringList lines = splitter.feed("\nnext\n");
    const qint64 total = qint64(repeat) * 16 * chunk.size();
    QCOMPARE(lines, QStringList({ kept + LineSplitter::elisionNote(total - kept.toUtf8().size()), u"next"_s }));
    QVERIFY(splitter.finish().isEmpty());
}

void TestDownloadOutput::progressLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("update"); // progress|speed|size|eta|friendly error, "-" for none
    QTest::newRow("finished") << u"[download] 100% of 10.00MiB in 00:03"_s << u"1|-|10.00MiB||-"_s;
    QTest::newRow("approximate size, fragments")
        << u"[download]   3.1% of ~ 300.00MiB at  1.00MiB/s ETA 04:50 (frag 2/90)"_s
        << u"0.031|1.00MiB/s|300.00MiB|04:50|-"_s;
    QTest::newRow("bytes and TiB do not count") << u"[download]   1.0% of 12.00TiB at 300B/s"_s << u"0.01|-|-||-"_s;
    QTest::newRow("unknown speed and time")
        << u"[download]  7.5% of 2.00GiB at Unknown B/s ETA Unknown"_s << u"0.075|-|2.00GiB||-"_s;
    QTest::newRow("too many digits for a double") << u"[download] "_s + QString(400, u'9') + u"%"_s << u"0|-|-||-"_s;
    QTest::newRow("login required") << u"ERROR: [youtube] x: Login required"_s << u"-|-|-|-|需要登录或 Cookie 已过期"_s;
    QTest::newRow("invalid url") << u"error: 'abc' is not a valid URL"_s << u"-|-|-|-|无效的 URL"_s;
    QTest::newRow("other errors leave the message") << u"ERROR: HTTP Error 404: Not Found"_s << u"-|-|-|-|-"_s;
    QTest::newRow("friendly text needs an error word")
        << u"WARNING: Login required for some formats"_s << u"-|-|-|-|-"_s;
}

// What one line of a single stream's download puts on its row.
void TestDownloadOutput::progressLine()
{
    QFETCH(QString, line);
    const ProgressUpdate update = DownloadOutput().read({ line });
    const auto text = [](const std::optional<QString> &value) { return value.value_or(u"-"_s); };
    const QString progress = update.progress ? QString::number(*update.progress) : u"-"_s;
    QTEST(QStringList({ progress, text(update.speed), text(update.size), text(update.eta), text(update.errorMessage) })
              .join(u'|'),
        "update");
}

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
