#include "cookies/cookiecheck.h"
#include "cookies/cookiedatabase.h"
#include "cookies/cookiefile.h"
#include "cookies/cookiewords.h"
#include "engine/tooldiscovery.h"
#include "model/appstate.h"
#include "testsupport.h"

#include <QtTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(CookieCheckProblem)

// The cookie words a source gives yt-dlp, the hosts of a cookie file, and what yt-dlp reads of a
// source: the real yt-dlp loads a cookie file or a stand-in Chrome database with no link, and what
// it printed and wrote becomes the page's words.
class TestCookieCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void words_data();
    void words();
    void domains();
    void toolLines_data();
    void toolLines();
    void signIn_data();
    void signIn();
    void realYtDlp_data();
    void realYtDlp();

private:
    std::unique_ptr<IsolatedEnvironment> m_env;
};

namespace {
const QDateTime Now = QDateTime::fromSecsSinceEpoch(1800000000);
// Chrome's microseconds since 1601 for Unix seconds.
qint64 chromeTime(qint64 unixSeconds)
{
    return (unixSeconds + 11644473600) * 1000000;
}
} // namespace

void TestCookieCheck::initTestCase()
{
    m_env = std::make_unique<IsolatedEnvironment>();
    QVERIFY(QDir().mkpath(m_env->root() + u"/tmp"_s));
    qputenv("TMPDIR", QFile::encodeName(m_env->root() + u"/tmp"_s));
    // No desktop: yt-dlp asks no keyring, as on a machine whose Chrome keeps its key in plain text.
    qunsetenv("XDG_CURRENT_DESKTOP");
    qunsetenv("DESKTOP_SESSION");
    qunsetenv("KDE_FULL_SESSION");
}

void TestCookieCheck::words_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("cookieFile");
    QTest::addColumn<QStringList>("present"); // files made under the home first
    QTest::addColumn<QStringList>("words"); // HOME stands for the home folder
    QTest::addColumn<QString>("warning");

    QTest::newRow("none") << u"none"_s << u"HOME/c.txt"_s << QStringList { u"c.txt"_s } << QStringList() << QString();
    QTest::newRow("chrome there") << u"chrome"_s << QString()
                                  << QStringList { u".config/google-chrome/Default/Network/Cookies"_s }
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

void TestCookieCheck::words()
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

void TestCookieCheck::domains()
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

// What only a real browser shows: a keyring that refuses, a database in use.
void TestCookieCheck::toolLines_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<CookieCheckProblem>("problem");
    QTest::addColumn<int>("undecryptable");
    QTest::addColumn<bool>("keyringTrouble");

    QTest::newRow("some undecryptable") << QStringList { u"WARNING: cannot decrypt v11 cookies: no key found"_s,
        u"Extracted 3 cookies from chrome (2 could not be decrypted)"_s }
                                        << CookieCheckProblem::None << 2 << true;
    QTest::newRow("no keyring, read anyway")
        << QStringList { u"ERROR: secretstorage not available as the `secretstorage` module is not installed."_s,
               u"[Cookies] Extracted 2 cookies from chrome"_s }
        << CookieCheckProblem::None << 0 << true;
    QTest::newRow("locked") << QStringList { u"ERROR: database is locked"_s } << CookieCheckProblem::DatabaseLocked << 0
                            << false;
}

void TestCookieCheck::toolLines()
{
    QFETCH(QStringList, lines);
    QFETCH(CookieCheckProblem, problem);
    QFETCH(int, undecryptable);
    QFETCH(bool, keyringTrouble);
    const CookieLoadReport report = parseCookieLoadOutput(lines);
    QCOMPARE(report.problem, problem);
    QCOMPARE(report.undecryptable, undecryptable);
    QCOMPARE(report.keyringTrouble, keyringTrouble);
}

void TestCookieCheck::signIn_data()
{
    QTest::addColumn<QList<CookieFileEntry>>("cookies");
    QTest::addColumn<QString>("site");
    QTest::addColumn<QString>("says");

    const qint64 later = Now.toSecsSinceEpoch() + 86400;
    const qint64 muchLater = later + 86400 * 30;
    const qint64 before = Now.toSecsSinceEpoch() - 86400;
    QTest::newRow("live: the first to run out")
        << QList<CookieFileEntry> { { u".youtube.com"_s, u"LOGIN_INFO"_s, muchLater },
               { u".youtube.com"_s, u"SID"_s, later }, { u".youtube.com"_s, u"PREF"_s, before } }
        << u"youtube"_s
        << u"找到 YouTube 的登录 Cookie（SID、LOGIN_INFO），有效期至 "_s
            + QDateTime::fromSecsSinceEpoch(later).toString(u"yyyy-MM-dd HH:mm"_s);
    QTest::newRow("all run out") << QList<CookieFileEntry> { { u".youtube.com"_s, u"SID"_s, before },
        { u".youtube.com"_s, u"__Secure-3PSID"_s, before - 60 } }
                                 << u"youtube"_s
                                 << u"已于 "_s + QDateTime::fromSecsSinceEpoch(before).toString(u"yyyy-MM-dd HH:mm"_s)
            + u" 过期"_s;
    QTest::newRow("session") << QList<CookieFileEntry> { { u"www.bilibili.com"_s, u"SESSDATA"_s, 0 } } << u"bilibili"_s
                             << u"找到 哔哩哔哩 的登录 Cookie（SESSDATA），是会话 Cookie"_s;
    QTest::newRow("look-alike host") << QList<CookieFileEntry> { { u".notyoutube.com"_s, u"SID"_s, later },
        { u".youtube.com.evil.example"_s, u"SID"_s, later }, { u".google.com"_s, u"SID"_s, later } }
                                     << u"youtube"_s << u"其中没有 YouTube 的登录 Cookie"_s;
}

void TestCookieCheck::signIn()
{
    QFETCH(QList<CookieFileEntry>, cookies);
    QFETCH(QString, site);
    QFETCH(QString, says);
    CookieCheckResult result;
    result.sourceLabel = u"Chrome"_s;
    result.cookies = cookies;
    const QString text = describeCookieCheck(result, signInSite(site), Now);
    QVERIFY2(text.startsWith(u"yt-dlp 从 Chrome 读到 %1 个 Cookie。"_s.arg(cookies.size())), qPrintable(text));
    QVERIFY2(text.contains(says), qPrintable(text));
}

void TestCookieCheck::realYtDlp_data()
{
    QTest::addColumn<QString>("ytDlp");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("store"); // what the source holds: "good", "junk", "v11", "none"
    QTest::addColumn<CookieCheckProblem>("problem");
    QTest::addColumn<QString>("says");

    const QList<std::pair<const char *, QString>> tools { { "current", sharedYtDlp() },
        { "Debian", QFileInfo(u"/usr/bin/yt-dlp"_s).isExecutable() ? u"/usr/bin/yt-dlp"_s : QString() } };
    for (const auto &[name, path] : tools) {
        const auto row = [&](const char *what) {
            return &QTest::newRow(qPrintable(QString::fromLatin1(name) + u": "_s + QString::fromLatin1(what)));
        };
        *row("cookie file")
            << path << u"file"_s << u"good"_s << CookieCheckProblem::None
            << u"yt-dlp 从 Cookie 文件 读到 3 个 Cookie。\n找到 YouTube 的登录 Cookie（SID、LOGIN_INFO）"_s;
        *row("file not Netscape") << path << u"file"_s << u"junk"_s << CookieCheckProblem::NotNetscape
                                  << u"不是 Netscape 格式"_s;
        *row("Chrome") << path << u"chrome"_s << u"good"_s << CookieCheckProblem::None
                       << u"yt-dlp 从 Chrome 读到 3 个 Cookie。\n找到 YouTube 的登录 Cookie（SID、__Secure-3PSID）"_s;
        *row("Chrome, keyring's cookies only")
            << path << u"chrome"_s << u"v11"_s << CookieCheckProblem::KeyringRefused << u"系统钥匙串没有提供密钥"_s;
        *row("Chrome, not a database") << path << u"chrome"_s << u"junk"_s << CookieCheckProblem::Unreadable
                                       << u"file is not a database"_s;
        *row("Chromium absent") << path << u"chromium"_s << u"none"_s << CookieCheckProblem::BrowserNotFound
                                << u"找不到 Chromium 的 Cookie 数据库"_s;
    }
}

void TestCookieCheck::realYtDlp()
{
    QFETCH(QString, ytDlp);
    QFETCH(QString, source);
    QFETCH(QString, store);
    QFETCH(CookieCheckProblem, problem);
    QFETCH(QString, says);
    if (ytDlp.isEmpty())
        QSKIP("this yt-dlp is not installed here");

    // yt-dlp looks for browsers in $HOME.
    const QDir home(m_env->home());
    QVERIFY(QDir(home.filePath(u".config"_s)).removeRecursively());
    const QString database = home.filePath(u".config/google-chrome/Default/Cookies"_s);
    const qint64 expiry = QDateTime::currentSecsSinceEpoch() + 86400 * 400;
    const QByteArray fileText = store == u"junk"_s ? QByteArray("this is not a cookie file\n")
                                                   : "# Netscape HTTP Cookie File\n.youtube.com\tTRUE\t/\tTRUE\t"
            + QByteArray::number(expiry) + "\tSID\ts\n#HttpOnly_.youtube.com\tTRUE\t/\tTRUE\t"
            + QByteArray::number(expiry) + "\tLOGIN_INFO\tl\n.example.com\tTRUE\t/\tFALSE\t0\tsession\tv\n";
    const QString cookieFile = home.filePath(u"my cookies.txt"_s);
    const QString written = source == u"file"_s ? cookieFile : database;
    QFile file(written);
    if (source == u"file"_s || store == u"junk"_s) {
        QVERIFY(QDir().mkpath(QFileInfo(written).path()));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(fileText) == fileText.size());
        file.close();
    } else if (store != u"none"_s) {
        // Without a keyring Chromium encrypts "v10" with a fixed password; "v11" needs the keyring's.
        const QByteArray prefix = store == u"v11"_s ? "v11" : "v10";
        // Debian's yt-dlp predates the host hash that databases from version 24 on put before a value.
        const int version = ytDlp == sharedYtDlp() ? 24 : 23;
        const auto row = [&](const char *host, const char *name) {
            return ChromeCookieRow { QString::fromLatin1(host), QString::fromLatin1(name), {},
                chromeEncrypt("value", host, "peanuts", prefix, version), chromeTime(expiry), true, {} };
        };
        QVERIFY(writeChromeCookieDatabase(database,
            { row(".youtube.com", "SID"), row(".youtube.com", "__Secure-3PSID"), row(".example.com", "other") },
            version));
    }

    AppState state;
    ToolLocations locations;
    locations.home = home.path();
    locations.ytDlp = { ytDlp };
    QSettings().remove(QLatin1String(ToolDiscovery::CustomYtDlpPathKey));
    ToolDiscovery tools(&state, locations);
    tools.start();
    CookieCheck check(&tools);
    std::optional<CookieCheckResult> result;
    QVERIFY(check.start(source, cookieFile, home.path(), [&result](const CookieCheckResult &r) { result = r; }));
    QVERIFY(check.isRunning());
    QVERIFY(!check.start(source, cookieFile, home.path(), [](const CookieCheckResult &) {}));
    QTRY_VERIFY_WITH_TIMEOUT(result.has_value(), CookieCheck::TimeoutMs + 5000);
    QVERIFY(!check.isRunning());

    const QString text = describeCookieCheck(*result, signInSite(u"youtube"_s), QDateTime::currentDateTime());
    QVERIFY2(result->problem == problem, qPrintable(text));
    QVERIFY2(text.contains(says), qPrintable(text));
    // yt-dlp rewrote its own copy; the user's file is as it was.
    if (source == u"file"_s)
        QVERIFY(file.open(QIODevice::ReadOnly) && file.readAll() == fileText);
    // Nothing of the cookies is left behind in the temporary folder.
    QCOMPARE(QDir(QDir::tempPath()).entryList({ u"quillbox-cookiecheck-*"_s }), QStringList());
}

QTEST_GUILESS_MAIN(TestCookieCheck)
#include "tst_cookiecheck.moc"
