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

// One line at a time, as the download's output hands them over.
void TestProgressParser::parse_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("update"); // progress|speed|size|error, "-" for none
    QTest::newRow("finished line keeps speed") << u"[download] 100% of 10.00MiB in 00:03"_s << u"1|-|10.00MiB|-"_s;
    QTest::newRow("destination only") << u"[download] Destination: a.mp4"_s << u"-|-|-|-"_s;
    QTest::newRow("no [download]") << u" 12.0% of 1.00MiB at 1.00MiB/s ETA 00:01"_s << u"-|-|-|-"_s;
    QTest::newRow("approximate size takes the total")
        << u"[download]   3.1% of ~ 300.00MiB at  1.00MiB/s ETA 04:50 (frag 2/90)"_s
        << u"0.031|1.00MiB/s|300.00MiB|-"_s;
    QTest::newRow("bytes and TiB do not count") << u"[download]   1.0% of 12.00TiB at 300B/s"_s << u"0.01|-|-|-"_s;
    QTest::newRow("unknown speed") << u"[download]  7.5% of 2.00GiB at Unknown B/s ETA Unknown"_s
                                   << u"0.075|-|2.00GiB|-"_s;
    QTest::newRow("a percentage in a file name stays within 0-1")
        << u"[download] Destination: /x/99999999999999999999%.mp4"_s << u"1|-|-|-"_s;
    QTest::newRow("too many digits for a double: ignored")
        << u"[download] "_s + QString(400, u'9') + u"%"_s << u"-|-|-|-"_s;
    QTest::newRow("login required") << u"ERROR: [youtube] x: Login required"_s << u"-|-|-|需要登录或 Cookie 已过期"_s;
    QTest::newRow("invalid url") << u"error: 'abc' is not a valid URL"_s << u"-|-|-|无效的 URL"_s;
    QTest::newRow("other errors leave the message") << u"ERROR: HTTP Error 404: Not Found"_s << u"-|-|-|-"_s;
    QTest::newRow("friendly text needs an error word") << u"WARNING: Login required for some formats"_s << u"-|-|-|-"_s;
}

void TestProgressParser::parse()
{
    QFETCH(QString, line);
    const ProgressUpdate parsed = parseProgress({ line });
    const auto text = [](const std::optional<QString> &value) { return value.value_or(u"-"_s); };
    const QString progress = parsed.progress ? QString::number(*parsed.progress) : u"-"_s;
    QTEST(QStringList({ progress, text(parsed.speed), text(parsed.size), text(parsed.errorMessage) }).join(u'|'),
        "update");
}

QTEST_GUILESS_MAIN(TestProgressParser)
#include "tst_progressparser.moc"
