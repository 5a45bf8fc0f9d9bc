#include "engine/linesplitter.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestLineSplitter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCutGivesTheSameLines();
    void longLinesAreBounded_data();
    void longLinesAreBounded();
};

// Newlines, carriage returns (a progress redraw) and both together end a line, with no empty line
// between; a last line without an end comes at the finish; and no cut of the stream into reads
// changes what comes out.
void TestLineSplitter::everyCutGivesTheSameLines()
{
    const QByteArray stream = "[info] 标题\n\r[download]   0.5% of 1.00MiB at 1.00KiB/s\r[download] 100% of 1.00MiB\r\n"
                              "WARNING: x\nlast";
    const QStringList expected { u"[info] 标题"_s, u"[download]   0.5% of 1.00MiB at 1.00KiB/s"_s,
        u"[download] 100% of 1.00MiB"_s, u"WARNING: x"_s, u"last"_s };
    for (int cut = 0; cut <= stream.size(); ++cut) {
        for (int second = cut; second <= stream.size(); second += 7) {
            LineSplitter splitter;
            QStringList seen = splitter.feed(stream.left(cut));
            seen += splitter.feed(stream.mid(cut, second - cut));
            seen += splitter.feed(stream.mid(second));
            seen += splitter.finish();
            QCOMPARE(seen, expected);
            QVERIFY(splitter.finish().isEmpty());
        }
    }
}

void TestLineSplitter::longLinesAreBounded_data()
{
    QTest::addColumn<QByteArray>("unit"); // repeated to make the line
    QTest::addColumn<int>("repeat");
    QTest::addColumn<QString>("kept"); // the line's start that is kept
    QTest::newRow("10 MiB without an end") << QByteArray("x") << 10 << QString(LineSplitter::MaxLineBytes, u'x');
    QTest::newRow("a character is never cut")
        << QByteArray("下") << 1 << QString(LineSplitter::MaxLineBytes / 3, u'下');
}

void TestLineSplitter::longLinesAreBounded()
{
    QFETCH(QByteArray, unit);
    QFETCH(int, repeat);
    QFETCH(QString, kept);
    // `repeat` MiB of `unit` in 64 KiB reads: nothing is passed on, and nothing beyond the bound
    // is held, until the line ends; then one line with a note of what was left out.
    const QByteArray chunk = unit.repeated(64 * 1024 / unit.size());
    LineSplitter splitter;
    for (int i = 0; i < repeat * 16; ++i) {
        QVERIFY(splitter.feed(chunk).isEmpty());
        QVERIFY(splitter.pending().toUtf8().size() <= LineSplitter::MaxLineBytes);
    }
    const QStringList lines = splitter.feed("\nnext\n");
    const qint64 total = qint64(repeat) * 16 * chunk.size();
    QCOMPARE(lines, QStringList({ kept + LineSplitter::elisionNote(total - kept.toUtf8().size()), u"next"_s }));
    QVERIFY(splitter.finish().isEmpty());
}

QTEST_GUILESS_MAIN(TestLineSplitter)
#include "tst_linesplitter.moc"
