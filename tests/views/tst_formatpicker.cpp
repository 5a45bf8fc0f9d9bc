#include "model/appstate.h"
#include "views/presenters/formatpicker.h"

#include "testsupport.h"

#include <QAbstractItemModelTester>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestFormatPicker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choose_data();
    void choose();
    void cells_data();
    void cells();
    void apply();
};

namespace {
VideoFormat format(const QString &id, const char *vcodec, const char *acodec)
{
    VideoFormat f;
    f.formatId = id;
    f.ext = u"mp4"_s;
    if (vcodec)
        f.vcodec = QString::fromLatin1(vcodec);
    if (acodec)
        f.acodec = QString::fromLatin1(acodec);
    return f;
}

// Rows: 0, 1 audio only; 2, 3 video only; 4 combined; 5 a storyboard (neither); 6 codecs unknown;
// 7 combined, with an id that needs quoting.
QList<VideoFormat> sampleFormats()
{
    return { format(u"1"_s, "none", "mp4a.40.2"), format(u"2"_s, "none", "opus"), format(u"3"_s, "avc1", "none"),
        format(u"5"_s, "vp9", "none"), format(u"18"_s, "avc1.42001E", "mp4a.40.2"), format(u"sb0"_s, "none", "none"),
        format(u"mp4"_s, nullptr, nullptr), format(u"a b"_s, "avc1", "mp4a") };
}
} // namespace

void TestFormatPicker::choose_data()
{
    QTest::addColumn<QList<int>>("clicks");
    QTest::addColumn<QString>("arguments");
    QTest::newRow("video and audio") << QList<int> { 3, 0 } << u"-f 5+1"_s;
    QTest::newRow("audio first still reads video+audio") << QList<int> { 0, 3 } << u"-f 5+1"_s;
    QTest::newRow("another audio replaces the audio") << QList<int> { 3, 0, 1 } << u"-f 5+2"_s;
    QTest::newRow("a combined format replaces both") << QList<int> { 3, 0, 4 } << u"-f 18"_s;
    QTest::newRow("a video replaces the combined one") << QList<int> { 4, 2 } << u"-f 3"_s;
    QTest::newRow("audio alone") << QList<int> { 1 } << u"-f 2"_s;
    QTest::newRow("a second click unchooses") << QList<int> { 3, 0, 3 } << u"-f 1"_s;
    QTest::newRow("a storyboard cannot be chosen") << QList<int> { 5 } << QString();
    QTest::newRow("unknown codecs count as combined") << QList<int> { 3, 6 } << u"-f mp4"_s;
    QTest::newRow("an id with a space is quoted") << QList<int> { 7 } << u"-f 'a b'"_s;
}

void TestFormatPicker::choose()
{
    QFETCH(QList<int>, clicks);
    FormatPicker picker(nullptr, nullptr);
    QAbstractItemModelTester tester(&picker);
    picker.setFormats(sampleFormats());
    for (int row : clicks)
        picker.toggle(row);
    QTEST(picker.arguments(), "arguments");
}

void TestFormatPicker::cells_data()
{
    QTest::addColumn<int>("role");
    QTest::addColumn<QString>("text");
    QTest::newRow("size in binary units") << int(FormatPicker::SizeRole) << u"1.18MiB"_s;
    QTest::newRow("fps without trailing zeros") << int(FormatPicker::FpsRole) << u"29.97"_s;
    QTest::newRow("codecs that are there") << int(FormatPicker::CodecsRole) << u"avc1.4d401f"_s;
    QTest::newRow("resolution") << int(FormatPicker::ResolutionRole) << u"1280x720"_s;
}

void TestFormatPicker::cells()
{
    QFETCH(int, role);
    VideoFormat video = format(u"5"_s, "avc1.4d401f", "none");
    video.filesize = 1234567;
    video.fps = 29.97;
    video.resolution = u"1280x720"_s;
    FormatPicker picker(nullptr, nullptr);
    picker.setFormats({ video, format(u"x"_s, nullptr, nullptr) });
    QTEST(picker.index(0).data(role).toString(), "text");
    QCOMPARE(picker.index(1).data(role).toString(), QString()); // nothing known, nothing shown
    QCOMPARE(FormatPicker::sizeText(512), u"512B"_s);
    QCOMPARE(FormatPicker::sizeText(3LL << 30), u"3.00GiB"_s);
}

void TestFormatPicker::apply()
{
    IsolatedEnvironment env;
    AppState state;
    state.setCustomArguments(u"--limit-rate 1M"_s);
    FormatPicker picker(&state, nullptr);
    picker.setFormats(sampleFormats());
    QVERIFY(!picker.apply()); // nothing chosen: nothing changes
    QCOMPARE(state.customArguments(), u"--limit-rate 1M"_s);
    picker.toggle(2);
    picker.toggle(1);
    QVERIFY(picker.apply());
    QCOMPARE(state.customArguments(), u"-f 3+2"_s);
    QCOMPARE(state.selectedPreset(), DownloadPreset::Custom);
}

QTEST_GUILESS_MAIN(TestFormatPicker)
#include "tst_formatpicker.moc"
