#include "cookies/cookieservice.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

// Debian's Chromium stores cookies from a page on 127.0.0.1, the export decrypts them, and
// Debian's yt-dlp sends them back from the exported file.
class TestChromeExport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chromiumToYtDlp();
};

void TestChromeExport::chromiumToYtDlp()
{
    QString chromium = QStandardPaths::findExecutable(u"chromium"_s);
    if (chromium.isEmpty())
        chromium = QStandardPaths::findExecutable(u"chromium-browser"_s);
    if (chromium.isEmpty())
        QSKIP("Chromium is not installed (Debian: apt-get install chromium)");
    const QString ytDlp = QStandardPaths::findExecutable(u"yt-dlp"_s);
    QVERIFY2(!ytDlp.isEmpty(), "yt-dlp is not installed");

    QTemporaryDir dir;
    const QString record = dir.filePath(u"requests.txt"_s);
    QProcess server;
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    server.start(u"/usr/bin/python3"_s,
        { qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/support/cookieserver.py"_s, u"--record"_s, record });
    QVERIFY(server.waitForStarted());
    QDeadlineTimer ready(30000);
    while (!server.canReadLine() && server.state() == QProcess::Running && !ready.hasExpired())
        server.waitForReadyRead(1000);
    const QRegularExpressionMatch match = QRegularExpression(u"^READY (http://127\\.0\\.0\\.1:\\d+/)$"_s)
                                              .match(QString::fromUtf8(server.readLine()).trimmed());
    QVERIFY2(match.hasMatch(), "the cookie server did not start");
    const QString base = match.captured(1);

    // The profile where the export looks for Chromium's on Linux; the cookies are encrypted with
    // the fixed key, as with any Chromium that has no keyring.
    CookieServiceSetup setup;
    setup.home = dir.filePath(u"home"_s);
    setup.tempDir = dir.filePath(u"tmp"_s);
    setup.keyringTool = dir.filePath(u"no-keyring"_s);
    QVERIFY(QDir().mkpath(setup.tempDir));
    QProcess browser;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, setup.home);
    browser.setProcessEnvironment(environment);
    browser.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QStringList arguments { u"--headless=new"_s, u"--disable-gpu"_s, u"--no-first-run"_s, u"--password-store=basic"_s,
        u"--user-data-dir="_s + setup.home + u"/.config/chromium"_s, u"--dump-dom"_s, base + u"set"_s };
    if (geteuid() == 0)
        arguments.prepend(u"--no-sandbox"_s); // Chromium refuses to run as root otherwise
    browser.start(chromium, arguments);
    QVERIFY(browser.waitForFinished(120000));
    QCOMPARE(browser.exitCode(), 0);
    QVERIFY(browser.readAllStandardOutput().contains("ok"));

    for (const bool python : { true, false }) {
        CookieServiceSetup route = setup;
        if (!python)
            route.python = dir.filePath(u"no-python"_s);
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
        download.setWorkingDirectory(dir.path());
        download.setProcessChannelMode(QProcess::MergedChannels);
        download.start(ytDlp,
            { u"--ignore-config"_s, u"--no-progress"_s, u"--cookies"_s, result.path, u"-o"_s,
                dir.filePath(u"video-%(id)s.%(ext)s"_s), base + u"video.mp4"_s });
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
    server.closeWriteChannel();
    QVERIFY(server.waitForFinished(10000));
}

QTEST_GUILESS_MAIN(TestChromeExport)
#include "tst_chromeexport.moc"
