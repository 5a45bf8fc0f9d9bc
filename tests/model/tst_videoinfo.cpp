#include "model/videoinfo.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestVideoInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodeYtDlp_data();
    void decodeYtDlp();
    void recordedFormats();
};

namespace {
QByteArray recorded(const char *name)
{
    QFile file(qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/data/videoinfo/"_s + QLatin1String(name) + u".json"_s);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing recording %s", name);
    return file.readAll();
}

template <typename T>
QString shown(const std::optional<T> &value)
{
    if constexpr (std::is_same_v<T, QString>)
        return value.value_or(u"-"_s);
    else
        return value ? QString::number(*value) : u"-"_s;
}

// "id|ext|resolution|size|tbr|vcodec|acodec|fps|note", "-" for each field that is absent.
QString describe(const VideoFormat &f)
{
    return QStringList({ f.formatId, f.ext, shown(f.resolution), shown(f.filesize), shown(f.tbr), shown(f.vcodec),
                           shown(f.acodec), shown(f.fps), shown(f.formatNote) })
        .join(u'|');
}
} // namespace

// What yt-dlp -J printed (tests/data/videoinfo, see its README) and hand-written oddities. (The
// strict reader of camel-case records, VideoInfo::fromJson, only serves the view tests.)
void TestVideoInfo::decodeYtDlp_data()
{
    QTest::addColumn<QByteArray>("json");
    // title|duration|uploader|views|likes|formats|playlist entries; empty: it does not decode
    QTest::addColumn<QString>("read");

    QTest::newRow("recorded: bare link, all nulls") << recorded("direct") << u"clip|0:00||||1|0"_s;
    QTest::newRow("recorded: page with float duration and counts")
        << recorded("page") << u"测试视频 Quillbox|1:02:05|Quillbox 测试频道|12345678901|4321|2|0"_s;
    QTest::newRow("recorded: a playlist gives its first entry")
        << recorded("playlist") << u"两个视频 (1)|0:00||||1|2"_s;
    QTest::newRow("float duration rounds")
        << QByteArray(R"({"title":"t","duration":64.6,"formats":[]})") << u"t|1:05||||0|0"_s;
    QTest::newRow("the last minute of the first hour")
        << QByteArray(R"({"title":"t","duration":3599})") << u"t|59:59||||0|0"_s;
    QTest::newRow("negative reads as none") << QByteArray(R"({"title":"t","duration":-65})") << u"t|0:00||||0|0"_s;
    QTest::newRow("no title, no formats, wrong types")
        << QByteArray(R"({"duration":"65","uploader":7,"view_count":"12","like_count":null,"formats":null})")
        << u"https://v.example/x|0:00||||0|0"_s;
    QTest::newRow("format without an id is left out")
        << QByteArray(R"({"title":"t","formats":[{"ext":"mp4"},{"format_id":null},{"format_id":"18"},7]})")
        << u"t|0:00||||1|0"_s;
    QTest::newRow("empty playlist") << QByteArray(R"({"_type":"playlist","title":"p","entries":[]})") << QString();
    QTest::newRow("not an object") << QByteArray("[1]") << QString();
    QTest::newRow("not JSON") << QByteArray("ERROR: oops") << QString();
}

void TestVideoInfo::decodeYtDlp()
{
    QFETCH(QByteArray, json);
    int entries = -1;
    const auto info = VideoInfo::fromYtDlpJson(json, u"https://v.example/x"_s, &entries);
    if (info)
        QCOMPARE(info->url, u"https://v.example/x"_s);
    QTEST(!info
            ? QString()
            : QStringList({ info->title, info->durationString(), info->uploader, info->viewCountText(),
                              info->likeCountText(), QString::number(info->formats.size()), QString::number(entries) })
                  .join(u'|'),
        "read");
}

void TestVideoInfo::recordedFormats()
{
    const auto info = VideoInfo::fromYtDlpJson(recorded("page"), u"u"_s);
    QVERIFY(info);
    QCOMPARE(info->thumbnail, std::optional(u"http://127.0.0.1:8000/thumb.jpg"_s));
    QCOMPARE(info->uploadDate, std::optional(u"20240102"_s));
    // Only an approximate size was printed.
    QCOMPARE(describe(info->formats.at(0)), u"1|m4a|audio only|30515200|64|none|mp4a.40.2|-|DASH audio"_s);
    QCOMPARE(describe(info->formats.at(1)), u"0|mp4|160x120|56480774|118.458|avc1.42c00b|none|-|DASH video"_s);
    const auto bare = VideoInfo::fromYtDlpJson(recorded("direct"), u"u"_s);
    QVERIFY(bare);
    QCOMPARE(describe(bare->formats.at(0)), u"mp4|mp4|-|-|-|-|-|-|-"_s);
}

QTEST_GUILESS_MAIN(TestVideoInfo)
#include "tst_videoinfo.moc"
