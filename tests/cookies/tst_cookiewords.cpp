#include "cookies/chromecookies.h"
#include "cookies/cookiefile.h"
#include "cookies/cookiewords.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestCookieWords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void words_data();
    void words();
    void domains();
};

void TestCookieWords::words_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("cookieFile");
    QTest::addColumn<QStringList>("present"); // files made under the home first
    QTest::addColumn<QStringList>("words"); // HOME stands for the home folder
    QTest::addColumn<QString>("warning");

    QTest::newRow("none") << u"none"_s << u"HOME/c.txt"_s << QStringList { u"c.txt"_s } << QStringList() << QString();
    QTest::newRow("chrome there") << u"chrome"_s << QString() << QStringList { u".config/google-chrome/Default/Network/Cookies"_s }
                                  << QStringList { u"--cookies-from-browser"_s, u"chrome"_s } << QString();
    // yt-dlp reads Chromium's profile only as "chromium": each browser has its own places.
    QTest::newRow("only chromium, chrome asked")
        << u"chrome"_s << QString() << QStringList { u".config/chromium/Default/Cookies"_s } << QStringList()
        << u"⚠️ 未找到 Chrome 浏览器的 Cookie 数据库，本次不使用浏览器 Cookie"_s;
    QTest::newRow("firefox profile") << u"firefox"_s << QString()
                                     << QStringList { u".mozilla/firefox/ab12.default-release/cookies.sqlite"_s }
                                     << QStringList { u"--cookies-from-browser"_s, u"firefox"_s } << QString();
    // The path is one raw word (the command quotes it), "~" the home folder as in a shell.
    QTest::newRow("file under ~") << u"file"_s << u"~/c.txt"_s << QStringList { u"c.txt"_s }
                                  << QStringList { u"--cookies"_s, u"HOME/c.txt"_s } << QString();
    QTest::newRow("file missing") << u"file"_s << u"HOME/gone.txt"_s << QStringList() << QStringList()
                                  << u"⚠️ Cookie 文件不存在: HOME/gone.txt，本次不使用 Cookie"_s;
    QTest::newRow("no file chosen")
        << u"file"_s << u"  "_s << QStringList() << QStringList()
        << u"⚠️ 未选择 Cookie 文件，本次不使用 Cookie（可在“Cookie 管理”中选择）"_s;
}

void TestCookieWords::words()
{
    QFETCH(QString, source);
    QFETCH(QString, cookieFile);
    QFETCH(QStringList, present);
    QFETCH(QStringList, words);
    QFETCH(QString, warning);

    QTemporaryDir dir;
    const QString home = dir.path();
    for (const QString &relative : std::as_const(present)) {
        QDir().mkpath(QFileInfo(home + u'/' + relative).absolutePath());
        QFile file(home + u'/' + relative);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    const CookieWords result = cookieWords(source, QString(cookieFile).replace(u"HOME"_s, home), home);
    for (QString &word : words)
        word.replace(u"HOME"_s, home);
    QCOMPARE(result.words, words);
    QCOMPARE(result.warning, warning.replace(u"HOME"_s, home));
    QCOMPARE(result.notice.isEmpty(), words.isEmpty());
}

void TestCookieWords::domains()
{
    QTemporaryDir dir;
    QFile file(dir.filePath(u"cookies.txt"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    // Unix seconds, Chrome's microseconds since 1601 (as the sqlite3 export writes them), session
    // cookies, a "#HttpOnly_" line, a comment and a broken line.
    file.write("# Netscape HTTP Cookie File\n\n"
               ".old.com\tTRUE\t/\tFALSE\t1600000000\ta\t1\n"
               ".old.com\tTRUE\t/\tFALSE\t13300000000000000\tb\t2\n"
               ".mixed.com\tTRUE\t/\tFALSE\t1600000000\ta\t1\n"
               "#HttpOnly_.mixed.com\tTRUE\t/\tTRUE\t1900000000\tb\t2\n"
               "live.example\tFALSE\t/\tFALSE\t0\ts\t3\r\n"
               "# a comment\tx\ty\tz\tw\tv\tu\n"
               "broken line\n");
    file.close();

    const QDateTime now = QDateTime::fromSecsSinceEpoch(1700000000);
    QString error;
    const QList<CookieDomainSummary> hosts = summarizeCookieFile(file.fileName(), now, &error);
    QCOMPARE(hosts.size(), 3);
    QCOMPARE(hosts.at(0).domain, u".mixed.com"_s);
    QCOMPARE(hosts.at(0).count, 2);
    QCOMPARE(hosts.at(0).expiredCount, 1);
    QVERIFY(!hosts.at(0).expired());
    QCOMPARE(hosts.at(0).latestExpiry, QDateTime::fromSecsSinceEpoch(1900000000));
    QCOMPARE(hosts.at(1).domain, u".old.com"_s);
    QVERIFY(hosts.at(1).expired());
    QCOMPARE(hosts.at(1).latestExpiry, QDateTime::fromSecsSinceEpoch(1655526400));
    QCOMPARE(hosts.at(2).domain, u"live.example"_s);
    QVERIFY(!hosts.at(2).expired());
    QVERIFY(!hosts.at(2).latestExpiry.isValid());

    QVERIFY(summarizeCookieFile(dir.filePath(u"missing.txt"_s), now, &error).isEmpty());
    QVERIFY(!error.isEmpty());
}

QTEST_GUILESS_MAIN(TestCookieWords)
#include "tst_cookiewords.moc"
