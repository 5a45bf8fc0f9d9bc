#include "model/downloadpreset.h"
#include "model/downloadtask.h"
#include "model/logentry.h"
#include "model/videoinfo.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestDataModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void presetWords_data();
    void presetWords();
    void presetsShareTheirConstants();
    void presetOrder();
    void rawValuesRoundTrip();
    void rawValuesRejectOtherTexts_data();
    void rawValuesRejectOtherTexts();
    void newTask();
    void durationString_data();
    void durationString();
    void decodeVideoInfo_data();
    void decodeVideoInfo();
    void decodeFullRecord();
};

void TestDataModel::presetWords_data()
{
    QTest::addColumn<DownloadPreset>("preset");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QStringList>("words");
    QTest::newRow("default") << DownloadPreset::Default << u"默认"_s << QStringList();
    QTest::newRow("bestQuality") << DownloadPreset::BestQuality << u"最佳画质"_s
                                 << QStringList { u"-f"_s, u"bv*+ba/b"_s };
    QTest::newRow("bestAudio") << DownloadPreset::BestAudio << u"最佳音质"_s
                               << QStringList { u"-x"_s, u"--audio-format"_s, u"mp3"_s, u"--audio-quality"_s, u"0"_s };
    QTest::newRow("bestVideoAudio") << DownloadPreset::BestVideoAudio << u"最佳视频+音频"_s
                                    << QStringList { u"-f"_s, u"bv*+ba/b"_s };
    QTest::newRow("audioOnly") << DownloadPreset::AudioOnly << u"仅音频"_s
                               << QStringList { u"-x"_s, u"--audio-format"_s, u"mp3"_s };
    QTest::newRow("custom") << DownloadPreset::Custom << u"自定义"_s << QStringList();
}

void TestDataModel::presetWords()
{
    QFETCH(DownloadPreset, preset);
    QFETCH(QString, raw);
    QFETCH(QStringList, words);
    QCOMPARE(presetArguments(preset), words);
    QCOMPARE(rawValue(preset), raw);
    QCOMPARE(downloadPresetFromRawValue(raw), std::optional(preset));
}

void TestDataModel::presetsShareTheirConstants()
{
    // Same selector for two presets, and the audio pair differs only by its quality words.
    QCOMPARE(presetArguments(DownloadPreset::BestQuality), presetArguments(DownloadPreset::BestVideoAudio));
    const QStringList audioWithQuality
        = presetArguments(DownloadPreset::AudioOnly) + QStringList { u"--audio-quality"_s, u"0"_s };
    QCOMPARE(presetArguments(DownloadPreset::BestAudio), audioWithQuality);
    // Reading a preset twice hands out the same shared list, not a fresh copy.
    QCOMPARE(&presetArguments(DownloadPreset::AudioOnly), &presetArguments(DownloadPreset::AudioOnly));
    QVERIFY(presetArguments(DownloadPreset::BestQuality).constData()
        == presetArguments(DownloadPreset::BestVideoAudio).constData());
}

void TestDataModel::presetOrder()
{
    const QList<DownloadPreset> expected { DownloadPreset::Default, DownloadPreset::BestQuality,
        DownloadPreset::BestAudio, DownloadPreset::BestVideoAudio, DownloadPreset::AudioOnly, DownloadPreset::Custom };
    QCOMPARE(allDownloadPresets(), expected);
}

void TestDataModel::rawValuesRoundTrip()
{
    const QStringList statusLabels { u"等待中"_s, u"准备中"_s, u"下载中"_s, u"已完成"_s, u"失败"_s, u"已取消"_s,
        u"已暂停"_s };
    for (int i = 0; i < statusLabels.size(); ++i) {
        const auto status = DownloadStatus(i);
        QCOMPARE(rawValue(status), statusLabels.at(i));
        QCOMPARE(downloadStatusFromRawValue(statusLabels.at(i)), std::optional(status));
    }
    const QStringList typeLabels { u"INFO"_s, u"WARN"_s, u"ERROR"_s, u"DOWNLOAD"_s };
    for (int i = 0; i < typeLabels.size(); ++i) {
        const auto type = LogEntry::LogType(i);
        QCOMPARE(rawValue(type), typeLabels.at(i));
        QCOMPARE(logTypeFromRawValue(typeLabels.at(i)), std::optional(type));
    }
}

void TestDataModel::rawValuesRejectOtherTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("case name, not label") << u"paused"_s;
    QTest::newRow("English label") << u"Pending"_s;
    QTest::newRow("empty") << QString();
    QTest::newRow("padded label") << u" 已暂停"_s;
    QTest::newRow("lower-case type") << u"info"_s;
    QTest::newRow("warning spelt out") << u"WARNING"_s;
    QTest::newRow("preset case name") << u"default"_s;
}

void TestDataModel::rawValuesRejectOtherTexts()
{
    QFETCH(QString, text);
    QCOMPARE(downloadStatusFromRawValue(text), std::nullopt);
    QCOMPARE(downloadPresetFromRawValue(text), std::nullopt);
    QCOMPARE(logTypeFromRawValue(text), std::nullopt);
}

void TestDataModel::newTask()
{
    const QDateTime before = QDateTime::currentDateTime();
    const DownloadTask task = DownloadTask::create(u"https://example.invalid/v?a=1"_s);
    QVERIFY(!task.id.isNull());
    QCOMPARE(task.url, u"https://example.invalid/v?a=1"_s);
    QCOMPARE(task.title, task.url);
    QCOMPARE(task.status, DownloadStatus::Pending);
    QCOMPARE(task.progress, 0.0);
    QVERIFY(task.speed.isEmpty() && task.size.isEmpty());
    QVERIFY(!task.errorMessage && !task.endTime && !task.outputPath);
    QVERIFY(task.startTime >= before && task.startTime <= QDateTime::currentDateTime());

    const DownloadTask other = DownloadTask::create(task.url);
    QVERIFY(other.id != task.id);
    DownloadTask copy = task;
    QCOMPARE(copy, task);
    copy.errorMessage = QString();
    QVERIFY(copy != task); // an empty message is still a message
}

void TestDataModel::durationString_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << qint64(0) << u"0:00"_s;
    QTest::newRow("65") << qint64(65) << u"1:05"_s;
    QTest::newRow("3599") << qint64(3599) << u"59:59"_s;
    QTest::newRow("3600") << qint64(3600) << u"1:00:00"_s;
    QTest::newRow("3725") << qint64(3725) << u"1:02:05"_s;
    QTest::newRow("36000") << qint64(36000) << u"10:00:00"_s;
    QTest::newRow("-65 truncates toward zero") << qint64(-65) << u"-1:-5"_s;
    QTest::newRow("-5") << qint64(-5) << u"0:-5"_s;
}

void TestDataModel::durationString()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, text);
    VideoInfo info;
    info.duration = seconds;
    QCOMPARE(info.durationString(), text);
}

void TestDataModel::decodeVideoInfo_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("decodes");
    const QByteArray base = R"("url":"u","title":"t","duration":65,"uploader":"a","formats":[])";
    QTest::newRow("required only") << "{" + base + "}" << true;
    QTest::newRow("optional null") << "{" + base + R"(,"thumbnail":null,"viewCount":null})" << true;
    QTest::newRow("snake-case date ignored") << "{" + base + R"(,"upload_date":"20240101"})" << true;
    QTest::newRow("missing uploader") << QByteArray(R"({"url":"u","title":"t","duration":1,"formats":[]})") << false;
    QTest::newRow("null uploader") << QByteArray(R"({"url":"u","title":"t","duration":1,"uploader":null,"formats":[]})")
                                   << false;
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
    QTest::newRow("not an object") << QByteArray("[1,2]") << false;
    QTest::newRow("broken JSON") << QByteArray("{\"url\":") << false;
}

void TestDataModel::decodeVideoInfo()
{
    QFETCH(QByteArray, json);
    QFETCH(bool, decodes);
    const auto info = VideoInfo::fromJson(json);
    QCOMPARE(info.has_value(), decodes);
    if (info)
        QVERIFY(!info->uploadDate.has_value());
}

void TestDataModel::decodeFullRecord()
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

QTEST_GUILESS_MAIN(TestDataModel)
#include "tst_datamodel.moc"
