// How fast recorded yt-dlp output is cut into lines (LineSplitter) and read for progress
// (parseProgress). The input is tests/data/ytdlp-progress.txt, a real download's standard output,
// repeated until it holds about a million lines.

#include "engine/linesplitter.h"
#include "engine/progressparser.h"

#include "benchsupport.h"

using namespace Qt::StringLiterals;
using namespace bench;

namespace {
constexpr int Runs = 5;
constexpr qsizetype ChunkBytes = 16 * 1024; // what one read of a busy pipe typically returns
constexpr qsizetype BatchLines = 16;

// Lines per second for one pass of parseProgress over `lines`, `perCall` lines per call.
double parsePass(const QStringList &lines, qsizetype perCall, double &checksum)
{
    QStringList batch;
    QElapsedTimer timer;
    timer.start();
    for (qsizetype first = 0; first < lines.size(); first += perCall) {
        batch = lines.mid(first, perCall);
        const ProgressUpdate update = parseProgress(batch);
        if (update.progress)
            checksum += *update.progress;
    }
    return double(lines.size()) / (double(timer.nsecsElapsed()) / 1e9);
}

// The same, one line per call without building a list each time.
double parseSinglePass(const QStringList &lines, double &checksum)
{
    QStringList one(1);
    QElapsedTimer timer;
    timer.start();
    for (const QString &line : lines) {
        one[0] = line;
        const ProgressUpdate update = parseProgress(one);
        if (update.progress)
            checksum += *update.progress;
    }
    return double(lines.size()) / (double(timer.nsecsElapsed()) / 1e9);
}

// Megabytes (10^6 bytes) per second for one pass of a fresh LineSplitter over `chunks`.
double splitPass(const QList<QByteArray> &chunks, qsizetype totalBytes, qsizetype &lineCount)
{
    LineSplitter splitter;
    qsizetype lines = 0;
    QElapsedTimer timer;
    timer.start();
    for (const QByteArray &chunk : chunks)
        lines += splitter.feed(chunk).size();
    lines += splitter.finish().size();
    const double seconds = double(timer.nsecsElapsed()) / 1e9;
    lineCount = lines;
    return double(totalBytes) / 1e6 / seconds;
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    return run("bench_parsing", [&] {
        const bool quick = shortMode(argc, argv);
        const qsizetype targetLines = intOption(argc, argv, "lines", quick ? 100'000 : 1'000'000);

        const QString dataFile = sourceDir() + u"/tests/data/ytdlp-progress.txt"_s;
        QFile in(dataFile);
        if (!in.open(QIODevice::ReadOnly))
            fail(u"cannot read "_s + dataFile);
        const QByteArray recorded = in.readAll();

        LineSplitter recordedSplitter;
        const QStringList recordedLines = recordedSplitter.feed(recorded) + recordedSplitter.finish();
        if (recordedLines.isEmpty())
            fail(u"no lines in "_s + dataFile);
        const qsizetype copies = std::max<qsizetype>(1, targetLines / recordedLines.size());

        QStringList lines;
        lines.reserve(copies * recordedLines.size());
        QByteArray bytes;
        bytes.reserve(copies * recorded.size());
        for (qsizetype i = 0; i < copies; ++i) {
            lines += recordedLines;
            bytes += recorded;
        }
        QList<QByteArray> chunks;
        for (qsizetype at = 0; at < bytes.size(); at += ChunkBytes)
            chunks.append(QByteArray::fromRawData(bytes.constData() + at, std::min(ChunkBytes, bytes.size() - at)));

        say(u"bench_parsing: %1 lines (%2 copies of %3 recorded lines), %4 MB%5"_s.arg(lines.size())
                .arg(copies)
                .arg(recordedLines.size())
                .arg(number(double(bytes.size()) / 1e6, 1), quick ? u", short mode"_s : QString()));

        double checksum = 0;
        QList<double> single, batched, splitting;
        qsizetype splitLines = 0;
        parseSinglePass(lines.mid(0, std::min<qsizetype>(lines.size(), 10'000)), checksum); // warm-up
        for (int run = 0; run < Runs; ++run) {
            single.append(parseSinglePass(lines, checksum));
            batched.append(parsePass(lines, BatchLines, checksum));
            splitting.append(splitPass(chunks, bytes.size(), splitLines));
        }
        if (splitLines != lines.size())
            fail(u"LineSplitter returned %1 lines, expected %2"_s.arg(splitLines).arg(lines.size()));

        const auto millions = [](QList<double> values) {
            for (double &value : values)
                value /= 1e6;
            return values;
        };
        say(u"  parseProgress, one line per call:   %1 M lines/s, median (min–max) of %2 runs"_s.arg(
            spread(millions(single), 3), QString::number(Runs)));
        say(u"  parseProgress, %1 lines per call:   %2 M lines/s"_s.arg(
            QString::number(BatchLines), spread(millions(batched), 3)));
        say(u"  LineSplitter, %1 KiB reads:         %2 MB/s"_s.arg(
            QString::number(ChunkBytes / 1024), spread(splitting, 1)));
        say(u"  (checksum %1)"_s.arg(number(checksum, 1)));

        writeResult("bench_parsing",
            {
                { u"lines"_s, QString::number(lines.size()) },
                { u"runs"_s, QString::number(Runs) },
                { u"parse_lines_per_s"_s, number(median(single), 0) },
                { u"parse_lines_per_s_min"_s, number(minimum(single), 0) },
                { u"parse_lines_per_s_max"_s, number(maximum(single), 0) },
                { u"parse_batch16_lines_per_s"_s, number(median(batched), 0) },
                { u"split_mb_per_s"_s, number(median(splitting), 1) },
                { u"split_mb_per_s_min"_s, number(minimum(splitting), 1) },
                { u"split_mb_per_s_max"_s, number(maximum(splitting), 1) },
            });
        return 0;
    });
}
