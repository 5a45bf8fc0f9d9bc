#include "engine/progressparser.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestProgressParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data();
    void parse();
};

void TestProgressParser::parse_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("update"); // progress|speed|size|error, "-" for none
    QTest::newRow("finished line keeps speed")
        << QStringList { u"[download] 100% of 10.00MiB in 00:03"_s } << u"1|-|10.00MiB|-"_s;
    QTest::newRow("destination only") << QStringList { u"[download] Destination: a.mp4"_s } << u"-|-|-|-"_s;
    QTest::newRow("no [download] in batch")
        << QStringList { u" 12.0% of 1.00MiB at 1.00MiB/s ETA 00:01"_s } << u"-|-|-|-"_s;
    QTest::newRow("[download] on another line")
        << QStringList { u"[download] Destination: a.mp4"_s, u"50%"_s } << u"0.5|-|-|-"_s;
    QTest::newRow("last line wins") << QStringList { u"[download]  10.0% of 5.00MiB at 1.00MiB/s ETA 00:04"_s,
        u"[download]  20.0% of 5.00MiB at 2.00KiB/s ETA 00:03"_s }
                                    << u"0.2|2.00KiB/s|5.00MiB|-"_s;
    QTest::newRow("approximate size takes the total")
        << QStringList { u"[download]   3.1% of ~ 300.00MiB at  1.00MiB/s ETA 04:50 (frag 2/90)"_s }
        << u"0.031|1.00MiB/s|300.00MiB|-"_s;
    QTest::newRow("no total: size is the speed's number")
        << QStringList { u"[download]   5.0% at  1.00MiB/s"_s } << u"0.05|1.00MiB/s|1.00MiB|-"_s;
    QTest::newRow("bytes and TiB do not count")
        << QStringList { u"[download]   1.0% of 12.00TiB at 300B/s"_s } << u"0.01|-|-|-"_s;
    QTest::newRow("unknown speed") << QStringList { u"[download]  7.5% of 2.00GiB at Unknown B/s ETA Unknown"_s }
                                   << u"0.075|-|2.00GiB|-"_s;
    QTest::newRow("a percentage in a file name stays within 0-1")
        << QStringList { u"[download] Destination: /x/99999999999999999999%.mp4"_s } << u"1|-|-|-"_s;
    QTest::newRow("too many digits for a double: ignored")
        << QStringList { u"[download] "_s + QString(400, u'9') + u"%"_s } << u"-|-|-|-"_s;
    QTest::newRow("login required") << QStringList { u"ERROR: [youtube] x: Login required"_s }
                                    << u"-|-|-|需要登录或 Cookie 已过期"_s;
    QTest::newRow("registered users") << QStringList { u"ERROR: This video is available only for registered users"_s }
                                      << u"-|-|-|需要登录或 Cookie 已过期"_s;
    QTest::newRow("invalid url") << QStringList { u"error: 'abc' is not a valid URL"_s } << u"-|-|-|无效的 URL"_s;
    QTest::newRow("other errors leave the message")
        << QStringList { u"ERROR: HTTP Error 404: Not Found"_s } << u"-|-|-|-"_s;
    QTest::newRow("friendly text needs an error word")
        << QStringList { u"WARNING: Login required for some formats"_s } << u"-|-|-|-"_s;
    QTest::newRow("error and progress together")
        << QStringList { u"[download]  99.9% of 1.00KiB at 1.00KiB/s ETA 00:00"_s, u"ERROR: x is not a valid URL"_s }
        << u"0.999|1.00KiB/s|1.00KiB|无效的 URL"_s;
}

void TestProgressParser::parse()
{
    QFETCH(QStringList, lines);
    const ProgressUpdate parsed = parseProgress(lines);
    const auto text = [](const std::optional<QString> &value) { return value.value_or(u"-"_s); };
    const QString progress = parsed.progress ? QString::number(*parsed.progress) : u"-"_s;
    QTEST(QStringList({ progress, text(parsed.speed), text(parsed.size), text(parsed.errorMessage) }).join(u'|'),
        "update");
}

QTEST_GUILESS_MAIN(TestProgressParser)
#include "tst_progressparser.moc"
