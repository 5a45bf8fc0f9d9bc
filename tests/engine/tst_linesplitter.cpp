#include "engine/linesplitter.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestLineSplitter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void split_data();
    void split();
    void everyCutGivesTheSameLines();
    void invalidUtf8IsKept();
    void endlessLineIsPassedOn();
};

void TestLineSplitter::split_data()
{
    QTest::addColumn<QList<QByteArray>>("reads");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("newlines") << QList<QByteArray> { "a\nb\n" } << QStringList { u"a"_s, u"b"_s };
    QTest::newRow("carriage returns") << QList<QByteArray> { "\r[download] 1%\r[download] 2%\r" }
                                      << QStringList { u"[download] 1%"_s, u"[download] 2%"_s };
    QTest::newRow("crlf gives no empty line") << QList<QByteArray> { "a\r\nb\r\n" } << QStringList { u"a"_s, u"b"_s };
    QTest::newRow("line across reads") << QList<QByteArray> { "[downl", "oad] 42", ".3%\r" }
                                       << QStringList { u"[download] 42.3%"_s };
    QTest::newRow("partial held until the end") << QList<QByteArray> { "a\nb" } << QStringList { u"a"_s, u"b"_s };
    QTest::newRow("character split across reads")
        << QList<QByteArray> { "\xe4\xb8", "\x8b\xe8\xbd\xbd\n" } << QStringList { u"下载"_s };
    QTest::newRow("empty reads") << QList<QByteArray> { "", "\n\n", "" } << QStringList();
}

void TestLineSplitter::split()
{
    QFETCH(QList<QByteArray>, reads);
    QFETCH(QStringList, lines);
    LineSplitter splitter;
    QStringList seen;
    for (const QByteArray &read : reads)
        seen += splitter.feed(read);
    seen += splitter.finish();
    QCOMPARE(seen, lines);
    QVERIFY(splitter.finish().isEmpty());
}

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
        }
    }
}

void TestLineSplitter::invalidUtf8IsKept()
{
    LineSplitter splitter;
    const QStringList lines = splitter.feed("ok \xff\xfe end\n");
    QCOMPARE(lines.size(), 1);
    QVERIFY(lines.constFirst().startsWith(u"ok "_s));
    QVERIFY(lines.constFirst().endsWith(u" end"_s));
    QVERIFY(lines.constFirst().contains(QChar::ReplacementCharacter));
}

void TestLineSplitter::endlessLineIsPassedOn()
{
    LineSplitter splitter;
    const QByteArray chunk(64 * 1024, 'x');
    qsizetype passed = 0;
    for (int i = 0; i < 40; ++i) {
        for (const QString &line : splitter.feed(chunk))
            passed += line.size();
    }
    // Nothing is held beyond the limit, and nothing is lost.
    QVERIFY(passed >= 40 * chunk.size() - LineSplitter::MaxLineBytes);
    for (const QString &line : splitter.finish())
        passed += line.size();
    QCOMPARE(passed, 40 * chunk.size());
}

QTEST_GUILESS_MAIN(TestLineSplitter)
#include "tst_linesplitter.moc"
