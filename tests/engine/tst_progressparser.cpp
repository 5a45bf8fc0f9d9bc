#include "engine/progressparser.h"

#include <QtTest>

using namespace Qt::StringLiterals;

using OptDouble = std::optional<double>;
using OptString = std::optional<QString>;
Q_DECLARE_METATYPE(OptDouble)
Q_DECLARE_METATYPE(OptString)

class TestProgressParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data();
    void parse();
    void recordedOutput();
};

void TestProgressParser::parse_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<OptDouble>("progress");
    QTest::addColumn<OptString>("speed");
    QTest::addColumn<OptString>("size");
    QTest::addColumn<OptString>("error");
    const OptDouble noProgress;
    const OptString none;

    QTest::newRow("typical line") << QStringList { u"[download]  42.3% of 120.50MiB at 2.35MiB/s ETA 00:31"_s }
                                  << OptDouble(0.423) << OptString(u"2.35MiB/s"_s) << OptString(u"120.50MiB"_s) << none;
    QTest::newRow("finished line keeps speed") << QStringList { u"[download] 100% of 10.00MiB in 00:03"_s }
                                               << OptDouble(1.0) << none << OptString(u"10.00MiB"_s) << none;
    QTest::newRow("destination only") << QStringList { u"[download] Destination: a.mp4"_s } << noProgress << none
                                      << none << none;
    QTest::newRow("no [download] in batch")
        << QStringList { u" 12.0% of 1.00MiB at 1.00MiB/s ETA 00:01"_s } << noProgress << none << none << none;
    QTest::newRow("[download] on another line")
        << QStringList { u"[download] Destination: a.mp4"_s, u"50%"_s } << OptDouble(0.5) << none << none << none;
    QTest::newRow("last line wins") << QStringList { u"[download]  10.0% of 5.00MiB at 1.00MiB/s ETA 00:04"_s,
        u"[download]  20.0% of 5.00MiB at 2.00KiB/s ETA 00:03"_s }
                                    << OptDouble(0.2) << OptString(u"2.00KiB/s"_s) << OptString(u"5.00MiB"_s) << none;
    QTest::newRow("approximate size takes the total")
        << QStringList { u"[download]   3.1% of ~ 300.00MiB at  1.00MiB/s ETA 04:50 (frag 2/90)"_s } << OptDouble(0.031)
        << OptString(u"1.00MiB/s"_s) << OptString(u"300.00MiB"_s) << none;
    QTest::newRow("no total: size is the speed's number")
        << QStringList { u"[download]   5.0% at  1.00MiB/s"_s } << OptDouble(0.05) << OptString(u"1.00MiB/s"_s)
        << OptString(u"1.00MiB"_s) << none;
    QTest::newRow("bytes and TiB do not count")
        << QStringList { u"[download]   1.0% of 12.00TiB at 300B/s"_s } << OptDouble(0.01) << none << none << none;
    QTest::newRow("unknown speed") << QStringList { u"[download]  7.5% of 2.00GiB at Unknown B/s ETA Unknown"_s }
                                   << OptDouble(0.075) << none << OptString(u"2.00GiB"_s) << none;
    QTest::newRow("a percentage in a file name stays within 0-1")
        << QStringList { u"[download] Destination: /x/99999999999999999999%.mp4"_s } << OptDouble(1.0) << none << none
        << none;
    QTest::newRow("too many digits for a double: ignored")
        << QStringList { u"[download] "_s + QString(400, u'9') + u"%"_s } << noProgress << none << none << none;
    QTest::newRow("login required") << QStringList { u"ERROR: [youtube] x: Login required"_s } << noProgress << none
                                    << none << OptString(u"需要登录或 Cookie 已过期"_s);
    QTest::newRow("registered users") << QStringList { u"ERROR: This video is available only for registered users"_s }
                                      << noProgress << none << none << OptString(u"需要登录或 Cookie 已过期"_s);
    QTest::newRow("invalid url") << QStringList { u"error: 'abc' is not a valid URL"_s } << noProgress << none << none
                                 << OptString(u"无效的 URL"_s);
    QTest::newRow("other errors leave the message")
        << QStringList { u"ERROR: HTTP Error 404: Not Found"_s } << noProgress << none << none << none;
    QTest::newRow("friendly text needs an error word")
        << QStringList { u"WARNING: Login required for some formats"_s } << noProgress << none << none << none;
    QTest::newRow("error and progress together")
        << QStringList { u"[download]  99.9% of 1.00KiB at 1.00KiB/s ETA 00:00"_s, u"ERROR: x is not a valid URL"_s }
        << OptDouble(0.999) << OptString(u"1.00KiB/s"_s) << OptString(u"1.00KiB"_s) << OptString(u"无效的 URL"_s);
}

void TestProgressParser::parse()
{
    QFETCH(QStringList, lines);
    QFETCH(OptDouble, progress);
    QFETCH(OptString, speed);
    QFETCH(OptString, size);
    QFETCH(OptString, error);
    const ProgressUpdate update = parseProgress(lines);
    QCOMPARE(update.progress.has_value(), progress.has_value());
    if (progress)
        QVERIFY(qFuzzyCompare(*update.progress, *progress));
    QCOMPARE(update.speed, speed);
    QCOMPARE(update.size, size);
    QCOMPARE(update.errorMessage, error);
}

void TestProgressParser::recordedOutput()
{
    // Output recorded from a real yt-dlp run, read line by line: progress only ever rises and
    // ends at 1.
    // QUILLBOX_TESTS_DIR, which ctest sets: QFINDTESTDATA misses when ccache makes source paths
    // relative.
    QFile file(qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/data/ytdlp-progress.txt"_s);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList lines
        = QString::fromUtf8(file.readAll()).split(QRegularExpression(u"[\r\n]"_s), Qt::SkipEmptyParts);
    double last = -1;
    int updates = 0;
    for (const QString &line : lines) {
        const ProgressUpdate update = parseProgress({ line });
        if (!update.progress)
            continue;
        QVERIFY2(*update.progress >= last, qPrintable(line));
        last = *update.progress;
        ++updates;
    }
    QVERIFY(updates > 3);
    QCOMPARE(last, 1.0);
}

QTEST_GUILESS_MAIN(TestProgressParser)
#include "tst_progressparser.moc"
