#include "engine/secretarguments.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestSecretArguments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void masked_data();
    void masked();
};

void TestSecretArguments::masked_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    const QString m = SecretMask.toString();
    QTest::newRow("nothing secret") << u"-f 'bv*+ba/b' --no-mtime -P ~/dl"_s << u"-f 'bv*+ba/b' --no-mtime -P ~/dl"_s;
    QTest::newRow("value apart") << u"-u me --password hunter2 -f b"_s << u"-u me --password "_s + m + u" -f b"_s;
    QTest::newRow("value joined") << u"--video-password=v1 --ap-password=\"a b\""_s
                                  << u"--video-password="_s + m + u" --ap-password="_s + m;
    QTest::newRow("short -p, apart and joined") << u"-p hunter2 -phunter2"_s << u"-p "_s + m + u" -p"_s + m;
    QTest::newRow("quoted value, quote inside") << u"--client-certificate-password \"a\\\" b\" --twofactor 123456"_s
                                                << u"--client-certificate-password "_s + m + u" --twofactor "_s + m;
    QTest::newRow("quoted option name") << u"'--password' 's e c' -x"_s << u"'--password' "_s + m + u" -x"_s;
    QTest::newRow("blanks kept, newline between")
        << u"--password\n\tpw  -f  b"_s << u"--password\n\t"_s + m + u"  -f  b"_s;
    QTest::newRow("open quote masked to the end") << u"--password 'hunter2 -f b"_s << u"--password "_s + m;
    QTest::newRow("option last, no value") << u"-f b --password"_s << u"-f b --password"_s;
    QTest::newRow("not the option, only like it")
        << u"--password-x=1 --passwords y -P pp"_s << u"--password-x=1 --passwords y -P pp"_s;
    QTest::newRow("non-ASCII value") << u"--password 密码😀 -f b"_s << u"--password "_s + m + u" -f b"_s;
    // A whole command: what follows "--" is the link, whatever it looks like.
    QTest::newRow("rendered command")
        << u"/usr/bin/yt-dlp --no-playlist -o '/tmp/x/%(title)s.%(ext)s' --password 'p w' --progress -- "
           u"'https://e.test/--password'"_s
        << u"/usr/bin/yt-dlp --no-playlist -o '/tmp/x/%(title)s.%(ext)s' --password "_s + m
            + u" --progress -- 'https://e.test/--password'"_s;
    QTest::newRow("after --, -p is the link") << u"-- -p secret"_s << u"-- -p secret"_s;
}

void TestSecretArguments::masked()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QCOMPARE(maskSecrets(text), shown);
}

QTEST_GUILESS_MAIN(TestSecretArguments)
#include "tst_secretarguments.moc"
