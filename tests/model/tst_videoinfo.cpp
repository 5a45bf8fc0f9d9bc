#include "model/videoinfo.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestVideoInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void durationString_data();
    void durationString();
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
    QFile file(QString::fromLocal8Bit(qgetenv("QUILLBOX_TESTS_DIR")) + u"/data/videoinfo/"_s + QLatin1String(name)
        + u".json"_s);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing recording %s", name);
    return file.readAll();
}
} // namespace

void TestVideoInfo::durationString_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("65") << qint64(65) << u"1:05"_s;
    QTest::newRow("3599") << qint64(3599) << u"59:59"_s;
    QTest::newRow("3600") << qint64(3600) << u"1:00:00"_s;
    QTest::newRow("36000") << qint64(36000) << u"10:00:00"_s;
    QTest::newRow("-65 truncates toward zero") << qint64(-65) << u"-1:-5"_s;
}

void TestVideoInfo::durationString()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, text);
    VideoInfo info;
    info.duration = seconds;
    QCOMPARE(info.durationString(), text);
}

void TestVideoInfo::decodeVideoInfo_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("decodes");
    const QByteArray base = R"("url":"u","title":"t","duration":65,"uploader":"a","formats":[])";
    QTest::newRow("required only") << "{" + base + "}" << true;
    QTest::newRow("optional null") << "{" + base + R"(,"thumbnail":null,"viewCount":null})" << true;
    QTest::newRow("snake-case date ignored") << "{" + base + R"(,"upload_date":"20240101"})" << true;
    QTest::newRow("missing uploader") << QByteArray(R"({"url":"u","title":"t","duration":1,"formats":[]})") << false;
    QTest::newRow("missing formats") << QByteArray(R"({"url":"u","title":"t","duration":1,"uploader":"a"})") << false;
    QTest::newRow("duration as text") << QByteArray(
        R"({"url":"u","title":"t","duration":"1","uploader":"a","formats":[]})")
                                      << false;
    QTest::newRow("fractional duration") << QByteArray(
        R"({"url":"u","title":"t","duration":1.5,"uploader":"a","formats":[]})")
                                         << false;
    QTest::newRow("view count as text") << "{" + base + R"(,"viewCount":"12"})" << false;
    QTest::newRow("format without ext") << QByteArray(
        R"({"url":"u","title":"t","duration":1,"uploader":"a","formats":[{"formatId":"18"}]})")
                                        << false;
    QTest::newRow("format list holds a number")
        << QByteArray(R"({"url":"u","title":"t","duration":1,"uploader":"a","formats":[3]})") << false;
    QTest::newRow("largest 64-bit count") << "{" + base + R"(,"viewCount":9223372036854775807})" << true;
    QTest::newRow("past 64 bits") << "{" + base + R"(,"viewCount":9223372036854775808})" << false;
    QTest::newRow("broken JSON") << QByteArray("{\"url\":") << false;
}

void TestVideoInfo::decodeVideoInfo()
{
    QFETCH(QByteArray, json);
    QFETCH(bool, decodes);
    const auto info = VideoInfo::fromJson(json);
    QCOMPARE(info.has_value(), decodes);
    if (info)
        QVERIFY(!info->uploadDate.has_value());
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
    const VideoFormat &video = info->formats.at(0);
    QCOMPARE(video.filesize, std::optional(qint64(123456789012)));
    QCOMPARE(video.tbr, std::optional(4400.0));
    QCOMPARE(video.fps, std::optional(29.97));
    QCOMPARE(video.formatNote, std::optional(u"1080p"_s));
    const VideoFormat &audio = info->formats.at(1);
    QCOMPARE(audio.ext, u"m4a"_s);
    QVERIFY(!audio.filesize && !audio.resolution && !audio.fps);
}

// What yt-dlp -J printed (tests/data/videoinfo, see its README) and hand-written oddities.
void TestVideoInfo::decodeYtDlp_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("decodes");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("duration");
    QTest::addColumn<QString>("uploader");
    QTest::addColumn<QString>("views");
    QTest::addColumn<QString>("likes");
    QTest::addColumn<int>("formats");
    QTest::addColumn<int>("playlistEntries");

    QTest::newRow("recorded: bare link, all nulls")
        << recorded("direct") << true << u"clip"_s << u"0:00"_s << QString() << QString() << QString() << 1 << 0;
    QTest::newRow("recorded: page with float duration and counts")
        << recorded("page") << true << u"测试视频 Quillbox"_s << u"1:02:05"_s << u"Quillbox 测试频道"_s
        << u"12345678901"_s << u"4321"_s << 2 << 0;
    QTest::newRow("recorded: a playlist gives its first entry")
        << recorded("playlist") << true << u"两个视频 (1)"_s << u"0:00"_s << QString() << QString() << QString() << 1
        << 2;
    QTest::newRow("float duration rounds") << QByteArray(R"({"title":"t","duration":64.6,"formats":[]})") << true
                                           << u"t"_s << u"1:05"_s << QString() << QString() << QString() << 0 << 0;
    QTest::newRow("no title, no formats, wrong types")
        << QByteArray(R"({"duration":"65","uploader":7,"view_count":"12","like_count":null,"formats":null})") << true
        << u"https://v.example/x"_s << u"0:00"_s << QString() << QString() << QString() << 0 << 0;
    QTest::newRow("format without an id is left out")
        << QByteArray(R"({"title":"t","formats":[{"ext":"mp4"},{"format_id":null},{"format_id":"18"},7]})") << true
        << u"t"_s << u"0:00"_s << QString() << QString() << QString() << 1 << 0;
    QTest::newRow("empty playlist") << QByteArray(R"({"_type":"playlist","title":"p","entries":[]})") << false
                                    << QString() << QString() << QString() << QString() << QString() << 0 << 0;
    QTest::newRow("not an object") << QByteArray("[1]") << false << QString() << QString() << QString() << QString()
                                   << QString() << 0 << 0;
    QTest::newRow("not JSON") << QByteArray("ERROR: oops") << false << QString() << QString() << QString() << QString()
                              << QString() << 0 << 0;
}

void TestVideoInfo::decodeYtDlp()
{
    QFETCH(QByteArray, json);
    QFETCH(bool, decodes);
    int entries = -1;
    const auto info = VideoInfo::fromYtDlpJson(json, u"https://v.example/x"_s, &entries);
    QCOMPARE(info.has_value(), decodes);
    if (!info)
        return;
    QCOMPARE(info->url, u"https://v.example/x"_s);
    QTEST(info->title, "title");
    QTEST(info->durationString(), "duration");
    QTEST(info->uploader, "uploader");
    QTEST(info->viewCountText(), "views");
    QTEST(info->likeCountText(), "likes");
    QTEST(int(info->formats.size()), "formats");
    QTEST(entries, "playlistEntries");
}

void TestVideoInfo::recordedFormats()
{
    const auto info = VideoInfo::fromYtDlpJson(recorded("page"), u"u"_s);
    QVERIFY(info);
    QCOMPARE(info->thumbnail, std::optional(u"http://127.0.0.1:8000/thumb.jpg"_s));
    QCOMPARE(info->uploadDate, std::optional(u"20240102"_s));
    const VideoFormat &audio = info->formats.at(0);
    QCOMPARE(audio.formatId, u"1"_s);
    QCOMPARE(audio.filesize, std::optional(qint64(30515200))); // only an approximate size was printed
    QCOMPARE(audio.vcodec, std::optional(u"none"_s));
    QCOMPARE(audio.acodec, std::optional(u"mp4a.40.2"_s));
    const VideoFormat &video = info->formats.at(1);
    QCOMPARE(video.resolution, std::optional(u"160x120"_s));
    QCOMPARE(video.tbr, std::optional(118.458));
    QVERIFY(!video.fps);
    QCOMPARE(video.formatNote, std::optional(u"DASH video"_s));

    const auto bare = VideoInfo::fromYtDlpJson(recorded("direct"), u"u"_s);
    QVERIFY(bare);
    QCOMPARE(bare->formats.at(0).ext, u"mp4"_s);
    QVERIFY(!bare->formats.at(0).vcodec && !bare->formats.at(0).filesize && !bare->formats.at(0).resolution);
}

QTEST_GUILESS_MAIN(TestVideoInfo)
#include "tst_videoinfo.moc"
