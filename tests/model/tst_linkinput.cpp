#include "model/linkinput.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestLinkInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void links_data();
    void links();
};

void TestLinkInput::links_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QStringList>("links");
    QTest::addColumn<QStringList>("rejected");
    const QString a = u"https://a.example/v?x=1"_s;
    const QString b = u"youtu.be/b"_s;
    QTest::newRow("trimmed of any blank, blank lines dropped")
        << u"  "_s + a + u"\u00a0 \n\n\t"_s + b + u"\u3000\n   "_s << QStringList { a, b } << QStringList();
    QTest::newRow("any line break") << a + u"\r\n"_s + b + u"\r"_s + a + u"\u2028"_s + b + u"\u0085"_s + a
                                    << QStringList { a, b, a, b, a } << QStringList();
    QTest::newRow("two links on a line") << a + u" \t"_s + b << QStringList { a, b } << QStringList();
    QTest::newRow("words are not links") << u"hello world\n"_s + a << QStringList { a }
                                         << QStringList { u"hello world"_s };
    QTest::newRow("a link beside words") << b + u" 好看的视频"_s << QStringList { b }
                                         << QStringList { u"好看的视频"_s };
    QTest::newRow("options are never links")
        << u"--exec rm\n-https://a.example/v\n--config-locations=x.example\n-x.com/a"_s << QStringList()
        << QStringList { u"--exec rm"_s, u"-https://a.example/v"_s, u"--config-locations=x.example"_s, u"-x.com/a"_s };
    QTest::newRow("hosts, addresses and schemes")
        << u"www.example.com 127.0.0.1:8000/v bücher.example ytsearch:cats ftp://h/x"_s
        << QStringList { u"www.example.com"_s, u"127.0.0.1:8000/v"_s, u"bücher.example"_s, u"ytsearch:cats"_s,
               u"ftp://h/x"_s }
        << QStringList();
    QTest::newRow("no host") << u"localhost/x a.b1 file.mp4 .example"_s << QStringList()
                             << QStringList { u"localhost/x a.b1 file.mp4 .example"_s };
}

void TestLinkInput::links()
{
    QFETCH(QString, input);
    const LinkInput read = readLinkInput(input);
    QTEST(read.links, "links");
    QTEST(read.rejected, "rejected");
}

QTEST_GUILESS_MAIN(TestLinkInput)
#include "tst_linkinput.moc"
