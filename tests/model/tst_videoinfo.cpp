#include "model/videoinfo.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestVideoInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodeVideoInfo_data();
    void decodeVideoInfo();
    void decodeFullRecord();
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

// A record with every required key, its duration and formats as given, and `extra` keys.
QByteArray record(const QByteArray &duration, const QByteArray &extra = {}, const QByteArray &formats = "[]")
{
    return R"({"url":"u","title":"t","uploader":"a","formats":)" + formats + R"(,"duration":)" + duration + extra + "}";
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

void TestVideoInfo::decodeVideoInfo_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("duration"); // as shown; empty: the record does not decode

    QTest::newRow("required only") << record("65") << u"1:05"_s;
    QTest::newRow("zero") << record("0") << u"0:00"_s;
    QTest::newRow("last minute of the first hour") << record("3599") << u"59:59"_s;
    QTest::newRow("an hour") << record("3600") << u"1:00:00"_s;
    QTest::newRow("ten hours") << record("36000") << u"10:00:00"_s;
    QTest::newRow("negative truncates toward zero") << record("-65") << u"-1:-5"_s;
    QTest::newRow("optional null") << record("65", R"(,"thumbnail":null,"viewCount":null)") << u"1:05"_s;
    QTest::newRow("snake-case date ignored") << record("65", R"(,"upload_date":"20240101")") << u"1:05"_s;
    QTest::newRow("largest 64-bit count") << record("65", R"(,"viewCount":9223372036854775807)") << u"1:05"_s;
    QTest::newRow("past 64 bits") << record("65", R"(,"viewCount":9223372036854775808)") << QString();
    QTest::newRow("view count as text") << record("65", R"(,"viewCount":"12")") << QString();
    QTest::newRow("duration as text") << record(R"("1")") << QString();
    QTest::newRow("fractional duration") << record("1.5") << QString();
    QTest::newRow("missing uploader") << QByteArray(R"({"url":"u","title":"t","duration":1,"formats":[]})")
                                      << QString();
    QTest::newRow("missing formats") << QByteArray(R"({"url":"u","title":"t","duration":1,"uploader":"a"})")
                                     << QString();
    QTest::newRow("format without ext") << record("1", {}, R"([{"formatId":"18"}])") << QString();
    QTest::newRow("format list holds a number") << record("1", {}, "[3]") << QString();
    QTest::newRow("broken JSON") << QByteArray("{\"url\":") << QString();
}

void TestVideoInfo::decodeVideoInfo()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, duration);
    const auto info = VideoInfo::fromJson(json);
    QCOMPARE(info.has_value(), !duration.isEmpty());
    if (info) {
        QCOMPARE(info->durationString(), duration);
        QVERIFY(!info->uploadDate.has_value());
    }
}

void TestVideoInfo::decodeFullRecord()
{
    const QByteArray json = R"({"url":"https://v.example/1","title":"标题","duration":3725,"uploader":"作者",
        "thumbnail":"t.jpg","description":"d","uploadDate":"20240102","viewCount":9007199254740991,"likeCount":0,
        "formats":[{"formatId":"137","ext":"mp4","resolution":"1920x1080","filesize":123456789012,"tbr":4400,
                    "vcodec":"avc1","acodec":"none","fps":29.97,"formatNote":"1080p"},
                   {"formatId":"140","ext":"m4a","filesize":null}]})";
    const auto info = VideoInfo::fromJson(json);
    QVERIFY(info);
    QCOMPARE(info->id(), u"https://v.example/1"_s);
    QCOMPARE(info->title, u"标题"_s);
    QCOMPARE(info->durationString(), u"1:02:05"_s);
    QCOMPARE(info->uploadDate, std::optional(u"20240102"_s));
    QCOMPARE(info->viewCount, std::optional(qint64(9007199254740991)));
    QCOMPARE(info->likeCount, std::optional(qint64(0)));
    QCOMPARE(info->formats.size(), 2);
    QCOMPARE(describe(info->formats.at(0)), u"137|mp4|1920x1080|123456789012|4400|avc1|none|29.97|1080p"_s);
    QCOMPARE(describe(info->formats.at(1)), u"140|m4a|-|-|-|-|-|-|-"_s);
}

// What yt-dlp -J printed (tests/data/videoinfo, see its README) and hand-written oddities.
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
