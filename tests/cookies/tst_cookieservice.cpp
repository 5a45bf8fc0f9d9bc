#include "cookies/cookiedatabase.h"
#include "cookies/cookieservice.h"
#include "support/localserver.h"
#include "testsupport.h"

#include <QMutex>
#include <QSignalSpy>
#include <QtTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QMutex logMutex;
QStringList cookieLog;

void captureCookieLog(QtMsgType, const QMessageLogContext &context, const QString &message)
{
    if (qstrcmp(context.category, "quillbox.cookies") == 0) {
        QMutexLocker lock(&logMutex);
        cookieLog << message;
    }
}

QStringList takeLog()
{
    QMutexLocker lock(&logMutex);
    return std::exchange(cookieLog, {});
}

const QByteArray KeyringPassword = "keyring-pass";

} // namespace

class TestCookieService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void routes_data();
    void routes();
    void failures_data();
    void failures();
    void publishedState();
    void chromiumToYtDlp();

private:
    // A home and a temporary folder whose names hold quotes, a keyring that answers.
    CookieServiceSetup setup() const;
    QString profileOneDatabase() const;

    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestCookieService::initTestCase()
{
    qInstallMessageHandler(captureCookieLog);
}

void TestCookieService::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    const CookieServiceSetup s = setup();
    QVERIFY(QDir().mkpath(s.home) && QDir().mkpath(s.tempDir));
    QFile keyring(s.keyringTool);
    QVERIFY(keyring.open(QIODevice::WriteOnly));
    keyring.write("#!/bin/sh\n[ \"$1 $2\" = \"lookup application\" ] && printf '%s\\n' '" + KeyringPassword + "'\n");
    keyring.close();
    keyring.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    takeLog();
}

CookieServiceSetup TestCookieService::setup() const
{
    CookieServiceSetup s;
    s.home = m_dir->filePath(u"it's \"home\""_s);
    s.tempDir = m_dir->filePath(u"tmp 'dir'"_s);
    s.keyringTool = m_dir->filePath(u"secret-tool"_s);
    return s;
}

QString TestCookieService::profileOneDatabase() const
{
    return setup().home + u"/Library/Application Support/Google/Chrome/Profile 1/Cookies"_s;
}

void TestCookieService::routes_data()
{
    QTest::addColumn<bool>("python");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("logLine");

    // Python keeps "b'…'", "\x" and any UTF-8 text but not blobs, and converts the expiry to Unix
    // seconds; sqlite3 keeps printable ASCII only, blobs included, and Chrome's expiry as stored.
    QTest::newRow("python") << true
                            << u".example.com\tTRUE\t/\tTRUE\t1655526400\tsid\tabc123\n"
                               "www.example.org\tFALSE\t/\tFALSE\t0\tpref\tb'xyz'\n"
                               ".x.com\tTRUE\t/\tFALSE\t0\tesc\ta\\x41\n"
                               "media.example.net\tFALSE\t/\tFALSE\t0\thost\tplain\n"
                               ".enc.com\tTRUE\t/\tTRUE\t1655526400\ttoken\tsecret-v10\n"
                               ".enc.com\tTRUE\t/\tFALSE\t0\tring\tsecret-v11\n"
                               ".utf.com\tTRUE\t/\tFALSE\t0\tcn\t中文\n"_s
                            << u"[CookieService] 提取到 6 个有效 cookies"_s;
    QTest::newRow("sqlite3") << false
                             << u".example.com\tTRUE\t/\tTRUE\t13300000000000000\tsid\tabc123\n"
                                "media.example.net\tFALSE\t/\tFALSE\t0\thost\tplain\n"
                                ".blob.com\tTRUE\t/\tFALSE\t0\tbytes\tABC\n"
                                ".enc.com\tTRUE\t/\tTRUE\t13300000000000000\ttoken\tsecret-v10\n"
                                ".enc.com\tTRUE\t/\tFALSE\t0\tring\tsecret-v11\n"_s
                             << u"[CookieService] sqlite3 方式成功: "_s;
}

void TestCookieService::routes()
{
#ifndef Q_OS_LINUX
    QSKIP("The keys of encrypted values here are Linux's");
#endif
    QFETCH(bool, python);
    QFETCH(QString, expected);
    QFETCH(QString, logLine);

    const QList<ChromeCookieRow> rows {
        { u".example.com"_s, u"sid"_s, u"abc123"_s, {}, 13300000000000000, true, {} },
        { u"www.example.org"_s, u"pref"_s, u"b'xyz'"_s, {}, 0, false, {} },
        { u".x.com"_s, u"esc"_s, u"a\\x41"_s, {}, 0, false, {} },
        { u"media.example.net"_s, u"host"_s, u"plain"_s, {}, 0, false, {} },
        { u".empty.com"_s, u"empty"_s, QString(), {}, 0, false, {} },
        { u".blob.com"_s, u"bytes"_s, QString(), {}, 0, false, "ABC" },
        { u".enc.com"_s, u"token"_s, QString(), chromeEncrypt("secret-v10", ".enc.com", "peanuts"), 13300000000000000,
            true, {} },
        { u".enc.com"_s, u"ring"_s, QString(), chromeEncrypt("secret-v11", ".enc.com", KeyringPassword, "v11"), 0,
            false, {} },
        { u".utf.com"_s, u"cn"_s, u"中文"_s, {}, 0, false, {} },
    };
    // Only "Profile 1" exists, under a home whose name holds both kinds of quote.
    QVERIFY(writeChromeCookieDatabase(profileOneDatabase(), rows));

    CookieServiceSetup s = setup();
    if (!python)
        s.python = m_dir->filePath(u"no-python"_s);
    const CookieExportResult result = CookieService::runExport(s);
    const QStringList log = takeLog();
    QVERIFY2(result.ok, qPrintable(result.error.localizedDescription() + u'\n' + log.join(u'\n')));
    QVERIFY(log.contains(u"[CookieService] Chrome cookies 路径: "_s + profileOneDatabase()));
    QVERIFY(!log.filter(logLine).isEmpty());

    QFile file(result.path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll()),
        u"# Netscape HTTP Cookie File\n# This file was generated by Quillbox\n\n"_s + expected);
    QCOMPARE(file.permissions() & 0x7777, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
    // The scripts are gone: the file is all that is left in the temporary folder.
    QCOMPARE(QDir(s.tempDir).entryList(QDir::Files | QDir::Hidden), QStringList { QFileInfo(result.path).fileName() });
}

void TestCookieService::failures_data()
{
    QTest::addColumn<QString>("situation");
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("logLine");

    const QString none = u"未找到可用的 cookies。请先登录要下载的视频网站。"_s;
    QTest::newRow("no database") << u"none"_s << u"未找到 Chrome 浏览器。请确保已安装 Google Chrome。"_s
                                 << u"[CookieService] Chrome cookies 文件不存在"_s;
    QTest::newRow("all values empty") << u"empty"_s << none
                                      << u"[CookieService] Python 方式失败，尝试 sqlite3 方式..."_s;
    // Python hands the encrypted values over; without a keyring none can be read.
    QTest::newRow("all encrypted, no keyring")
        << u"v11"_s << none << u"[CookieService] 2 个加密的 cookies 无法解密，已跳过（未能从密钥环取得密码）"_s;
    QTest::newRow("all encrypted, no keyring, sqlite3")
        << u"v11-sqlite3"_s << none << u"[CookieService] sqlite3 方式失败: "_s + none;
    QTest::newRow("temporary folder missing")
        << u"no temp"_s << u"无法写入 Python 脚本"_s << u"[CookieService] 异常: "_s;
    QTest::newRow("no python, no bash") << u"no tools"_s << u"无法启动"_s << u"[CookieService] sqlite3 方式失败: "_s;
}

void TestCookieService::failures()
{
    QFETCH(QString, situation);
    QFETCH(QString, description);
    QFETCH(QString, logLine);

    CookieServiceSetup s = setup();
    s.keyringTool = m_dir->filePath(u"no-keyring"_s);
    const ChromeCookieRow empty { u".a.com"_s, u"a"_s, QString(), {}, 0, false, {} };
    const ChromeCookieRow v11 { u".a.com"_s, u"b"_s, QString(), chromeEncrypt("x", ".a.com", "other", "v11"), 0, false,
        {} };
    if (situation == u"empty")
        QVERIFY(writeChromeCookieDatabase(profileOneDatabase(), { empty, empty }));
    else if (situation.startsWith(u"v11"_s))
        QVERIFY(writeChromeCookieDatabase(profileOneDatabase(), { v11, v11 }));
    else if (situation != u"none")
        QVERIFY(writeChromeCookieDatabase(profileOneDatabase(), { { u".a.com"_s, u"a"_s, u"1"_s, {}, 0, false, {} } }));
    if (situation == u"v11-sqlite3" || situation == u"no tools")
        s.python = m_dir->filePath(u"no-python"_s);
    if (situation == u"no tools")
        s.bash = m_dir->filePath(u"no-bash"_s);
    if (situation == u"no temp")
        s.tempDir = m_dir->filePath(u"missing"_s);

    const CookieExportResult result = CookieService::runExport(s);
    const QStringList log = takeLog();
    QVERIFY(!result.ok);
    QVERIFY2(result.error.localizedDescription().startsWith(description),
        qPrintable(result.error.localizedDescription() + u'\n' + log.join(u'\n')));
    QVERIFY2(!log.filter(logLine).isEmpty(), qPrintable(log.join(u'\n')));
    // No script and no half-written file is left behind.
    QCOMPARE(QDir(setup().tempDir).entryList({ u"extract*"_s, u".quillbox-*"_s }, QDir::Files | QDir::Hidden),
        QStringList());
}

void TestCookieService::publishedState()
{
    QVERIFY(writeChromeCookieDatabase(profileOneDatabase(), { { u".a.com"_s, u"a"_s, u"1"_s, {}, 0, false, {} } }));
    CookieService service(setup());
    QSignalSpy finished(&service, &CookieService::exportFinished);
    std::optional<CookieExportResult> answer;
    service.extractCookiesFromChrome([&](const CookieExportResult &result) {
        // The published state is settled before the completion runs.
        QVERIFY(!service.isExtracting());
        answer = result;
    });
    QVERIFY(service.isExtracting());
    QTRY_VERIFY_WITH_TIMEOUT(answer, 30000);
    QVERIFY(answer->ok);
    QCOMPARE(service.extractedCookiesPath(), answer->path);

    // A failure after it keeps the last good file. (What the page shows of each: tst_cookiemanager.)
    QVERIFY(QFile::remove(profileOneDatabase()));
    service.exportChromeCookies();
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 2, 30000);
    QCOMPARE(service.lastError(), u"未找到 Chrome 浏览器。请确保已安装 Google Chrome。"_s);
    QCOMPARE(service.extractedCookiesPath(), answer->path);
}

// Debian's Chromium stores cookies from a page on 127.0.0.1, the export decrypts them (both ways),
// and Debian's yt-dlp sends them back from the exported file.
void TestCookieService::chromiumToYtDlp()
{
    QString chromium = QStandardPaths::findExecutable(u"chromium"_s);
    if (chromium.isEmpty())
        chromium = QStandardPaths::findExecutable(u"chromium-browser"_s);
    if (chromium.isEmpty())
        QSKIP("Chromium is not installed (Debian: apt-get install chromium)");
    const QString ytDlp = QStandardPaths::findExecutable(u"yt-dlp"_s);
    QVERIFY2(!ytDlp.isEmpty(), "yt-dlp is not installed");

    const QString record = m_dir->filePath(u"requests.txt"_s);
    LocalServer server(u"cookie server"_s,
        { qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/support/cookieserver.py"_s, u"--record"_s, record }, 30000);
    QVERIFY2(!server.base().isEmpty(), qPrintable(server.error()));

    // The profile where the export looks for Chromium's on Linux; the cookies are encrypted with
    // the fixed key, as with any Chromium that has no keyring.
    CookieServiceSetup withoutKeyring = setup();
    withoutKeyring.keyringTool = m_dir->filePath(u"no-keyring"_s);
    QProcess browser;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, withoutKeyring.home);
    browser.setProcessEnvironment(environment);
    browser.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QStringList arguments { u"--headless=new"_s, u"--disable-gpu"_s, u"--no-first-run"_s, u"--password-store=basic"_s,
        u"--user-data-dir="_s + withoutKeyring.home + u"/.config/chromium"_s, u"--dump-dom"_s,
        server.base() + u"set"_s };
    if (geteuid() == 0)
        arguments.prepend(u"--no-sandbox"_s); // Chromium refuses to run as root otherwise
    browser.start(chromium, arguments);
    QVERIFY(browser.waitForFinished(120000));
    QCOMPARE(browser.exitCode(), 0);
    QVERIFY(browser.readAllStandardOutput().contains("ok"));

    for (const bool python : { true, false }) {
        CookieServiceSetup route = withoutKeyring;
        if (!python)
            route.python = m_dir->filePath(u"no-python"_s);
        const CookieExportResult result = CookieService::runExport(route);
        QVERIFY2(result.ok, qPrintable(result.error.localizedDescription()));
        QCOMPARE(result.cookieCount, 2);
        QCOMPARE(result.domains, QStringList { u"127.0.0.1"_s });
        QFile file(result.path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY2(text.contains("\tsession\tabc123\n") && text.contains("\tpref\tdark\n"), text.constData());

        QFile::remove(record);
        QProcess download;
        download.setWorkingDirectory(m_dir->path());
        download.setProcessChannelMode(QProcess::MergedChannels);
        download.start(ytDlp,
            { u"--ignore-config"_s, u"--no-progress"_s, u"--cookies"_s, result.path, u"-o"_s,
                m_dir->filePath(u"video-%(id)s.%(ext)s"_s), server.base() + u"video.mp4"_s });
        QVERIFY(download.waitForFinished(120000));
        const QByteArray output = download.readAll();
        QVERIFY2(download.exitCode() == 0, output.constData());
        QVERIFY2(!output.contains("WARNING: skipping cookie file entry"), output.constData());
        QFile requests(record);
        QVERIFY(requests.open(QIODevice::ReadOnly));
        const QByteArray seen = requests.readAll();
        QVERIFY2(seen.contains("/video.mp4\t") && seen.contains("session=abc123") && seen.contains("pref=dark"),
            seen.constData());
        QVERIFY2(!seen.contains("/video.mp4\t-"), seen.constData());
    }
}

QTEST_GUILESS_MAIN(TestCookieService)
#include "tst_cookieservice.moc"
