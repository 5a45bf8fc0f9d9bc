#include "views/colors.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestHexColor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data();
    void parse();
};

void TestHexColor::parse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRgb>("rgb");
    QTest::newRow("no hash") << u"00D4FF"_s << QRgb(0x00D4FF);
    QTest::newRow("trimmed, lower case") << u" #00d4ff\n"_s << QRgb(0x00D4FF);
    QTest::newRow("unreadable is black") << u"zz"_s << QRgb(0x000000);
    QTest::newRow("three digits not expanded") << u"#FFF"_s << QRgb(0x000FFF);
    QTest::newRow("alpha byte dropped") << u"#80FF0000"_s << QRgb(0xFF0000);
    QTest::newRow("longest hex prefix") << u"#12G456"_s << QRgb(0x000012);
    QTest::newRow("only one hash removed") << u"##FF0000"_s << QRgb(0x000000);
    QTest::newRow("scanner skips a space after the hash") << u"# FF6B35"_s << QRgb(0xFF6B35);
    QTest::newRow("0x prefix") << u"0xff0054"_s << QRgb(0xFF0054);
    QTest::newRow("overflow saturates") << u"FFFFFFFFFFFFFFFFFF"_s << QRgb(0xFFFFFF);
    QTest::newRow("sixteen digits keep low bits") << u"0123456789ABCDEF"_s << QRgb(0xABCDEF);
}

void TestHexColor::parse()
{
    QFETCH(QString, text);
    QFETCH(QRgb, rgb);
    const QColor color = colorFromHex(text);
    QCOMPARE(color.rgb() & 0xFFFFFF, rgb);
    QCOMPARE(color.alphaF(), 1.0f);
}

QTEST_GUILESS_MAIN(TestHexColor)
#include "tst_colors.moc"
