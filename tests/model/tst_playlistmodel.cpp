#include "model/playlist.h"

#include <QJsonDocument>
#include <QtTest>

using namespace Qt::StringLiterals;

// What a playlist's items are read from and written to: ranges the user types, the folder and
// numbers of the files, the listing's lines, and which links are listed at all.
class TestPlaylistModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ranges_data();
    void ranges();
    void itemFiles_data();
    void itemFiles();
    void listingLines();
    void linkShapes_data();
    void linkShapes();
};

void TestPlaylistModel::ranges_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("numbers"); // empty: refused
    QTest::newRow("list and range, sorted, once each") << u"5-6, 2，5 、1"_s << QList<int> { 1, 2, 5, 6 };
    QTest::newRow("open end and dashes") << u"8- 3–4"_s << QList<int> { 3, 4, 8, 9, 10 };
    QTest::newRow("cut at the last") << u"9-11"_s << QList<int> { 9, 10 };
    QTest::newRow("begins past the end") << u"11-12"_s << QList<int>();
    QTest::newRow("backwards") << u"4-2"_s << QList<int>();
    QTest::newRow("zero") << u"0"_s << QList<int>();
    QTest::newRow("words") << u"1-3, all"_s << QList<int>();
    QTest::newRow("nothing") << u" , "_s << QList<int>();
}

void TestPlaylistModel::ranges()
{
    QFETCH(QString, text);
    QFETCH(QList<int>, numbers);
    QString error;
    const std::optional<QList<int>> read = parseItemRanges(text, 10, &error);
    QCOMPARE(read.value_or(QList<int>()), numbers);
    QCOMPARE(error.isEmpty(), !numbers.isEmpty());
}

void TestPlaylistModel::itemFiles_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("itemTitle");
    QTest::addColumn<QString>("output");
    QTest::newRow("padded to the count, named as listed")
        << u"周末厨房"_s << 7 << 120 << u"红烧肉"_s << u"/o/周末厨房/007 - 红烧肉%(playlist_index& - {}|)s.%(ext)s"_s;
    QTest::newRow("two digits at least, yt-dlp's title when none was listed")
        << u"a"_s << 3 << 0 << QString() << u"/o/a/03 - %(title)s%(playlist_index& - {}|)s.%(ext)s"_s;
    QTest::newRow("separators, dots and %") << u"../a/b:c 100%"_s << 1 << 9 << u"50% / off"_s
                                            << u"/o/_a_b_c 100%%/01 - 50%% _ off%(playlist_index& - {}|)s.%(ext)s"_s;
    // 200 characters of 3 bytes each, cut to 150 bytes: the file name stays within 255 bytes.
    QTest::newRow("cut by bytes") << u"a"_s << 1 << 1 << QString(200, u'汉')
                                  << u"/o/a/01 - "_s + QString(50, u'汉') + u"%(playlist_index& - {}|)s.%(ext)s"_s;
    QTest::newRow("nothing left") << u" .. "_s << 1 << 1 << u"/"_s
                                  << u"/o/播放列表/01 - _%(playlist_index& - {}|)s.%(ext)s"_s;
}

void TestPlaylistModel::itemFiles()
{
    QFETCH(QString, title);
    QFETCH(int, index);
    QFETCH(int, count);
    QFETCH(QString, itemTitle);
    QFETCH(QString, output);
    const PlaylistPlace place { QUuid::createUuid(), title, index, count, itemTitle };
    QCOMPARE(place.outputTemplate(u"/o"_s), output);
    QCOMPARE(PlaylistPlace::fromJsonText(place.toJsonText()), place);
}

// A flat listing's line is an item only with its number; a fully extracted one is known by its page.
void TestPlaylistModel::listingLines()
{
    const auto entry
        = [](const char *json) { return PlaylistEntry::fromListing(QJsonDocument::fromJson(json).object()); };
    const std::optional<PlaylistEntry> flat = entry(
        R"({"_type": "url", "url": "https://y.example/watch?v=a", "title": "A", "duration": 61.6,
            "playlist_index": 3, "ie_key": "Youtube", "id": "a"})");
    QVERIFY(flat);
    QCOMPARE(flat->index, 3);
    QCOMPARE(flat->url, u"https://y.example/watch?v=a"_s);
    QCOMPARE(flat->durationText(), u"1:02"_s);
    QCOMPARE(flat->archiveKey, u"youtube a"_s);
    const std::optional<PlaylistEntry> full = entry(
        R"({"_type": "video", "url": "https://cdn.example/a.mp4", "webpage_url": "https://y.example/a",
            "playlist_index": 1, "extractor_key": "Generic"})");
    QCOMPARE(full.value_or(PlaylistEntry()).url, u"https://y.example/a"_s);
    QCOMPARE(full.value_or(PlaylistEntry()).archiveKey, QString());
    const char *const notAnItem = R"({"_type": "video", "url": "https://y.example/a", "playlist_index": null})";
    const char *const noLink = R"({"playlist_index": 2})";
    QVERIFY(!entry(notAnItem));
    QVERIFY(!entry(noLink));
}

void TestPlaylistModel::linkShapes_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<bool>("videoInList");
    QTest::addColumn<bool>("singleVideo");
    QTest::addColumn<QString>("alone");
    QTest::newRow("watch with a list") << u"https://www.youtube.com/watch?v=a&list=PL1&index=4"_s << true << false
                                       << u"https://www.youtube.com/watch?v=a"_s;
    QTest::newRow("watch alone") << u"https://m.youtube.com/watch?v=a&t=5"_s << false << true << QString();
    QTest::newRow("short link without scheme") << u"youtu.be/a"_s << false << true << QString();
    QTest::newRow("shorts") << u"https://youtube.com/shorts/a"_s << false << true << QString();
    QTest::newRow("a shared video with its list")
        << u"https://youtu.be/a?list=PL1&si=x"_s << true << false << u"https://youtu.be/a?si=x"_s;
    QTest::newRow("a playlist") << u"https://www.youtube.com/playlist?list=PL1"_s << false << false << QString();
    QTest::newRow("a channel") << u"https://www.youtube.com/@someone"_s << false << false << QString();
    QTest::newRow("another site's watch")
        << u"https://v.example/watch?v=a&list=b"_s << true << false << u"https://v.example/watch?v=a"_s;
    QTest::newRow("a look-alike host") << u"https://notyoutube.com/watch?v=a"_s << false << false << QString();
}

void TestPlaylistModel::linkShapes()
{
    QFETCH(QString, link);
    QFETCH(bool, videoInList);
    QFETCH(bool, singleVideo);
    QFETCH(QString, alone);
    QCOMPARE(isVideoInPlaylist(link), videoInList);
    QCOMPARE(isSingleVideoLink(link), singleVideo);
    if (videoInList)
        QCOMPARE(withoutPlaylist(link), alone);
}

QTEST_APPLESS_MAIN(TestPlaylistModel)
#include "tst_playlistmodel.moc"
