#include "engine/toolinstaller.h"
#include "engine/toolkeeper.h"

#include "enginefixture.h"
#include "support/mediaserver.h"
#include "support/releaseserver.h"

#include <QCryptographicHash>
#include <QProcess>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTcpServer>

using namespace Qt::StringLiterals;
using Tool = ToolInstaller::Tool;

// Quillbox's own yt-dlp and Deno from releaseserver.py on 127.0.0.1, laid out as GitHub's release
// pages are: the installer on its own, then the keeper with the engine, installing the current
// yt-dlp (../shared/tools/yt-dlp) under this system's asset name: it is used at once, downloads,
// and is only ever replaced while no download runs.
class TestToolInstaller : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void addressesAndChecksums();
    void failuresLeaveTheOldCopy_data();
    void failuresLeaveTheOldCopy();
    void replaceWaitsForTheGate();
    void installsDeno_data();
    void installsDeno();
    void installedCopyIsUsedAtOnceAndDownloads();
    void updatesWaitForTheRunningDownload();
    void homebrewInstallsWhereItIs();

private:
    IsolatedEnvironment m_environment;
    QString m_testsDir;
    QTemporaryDir m_releases; // the current yt-dlp's release, for the keeper
    std::unique_ptr<ReleaseServer> m_server;
    QByteArray m_build;
};

namespace {
constexpr int Patience = 60000;
const QString tag = u"2026.08.19"_s;
const QByteArray oldCopy = "#!/bin/sh\necho 2023.03.04\n";
const auto mode0755 = QFileDevice::Permissions::fromInt(0x7755);

QByteArray sha256(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex();
}

bool writeFile(const QString &path, const QByteArray &data, QFileDevice::Permissions permissions = {})
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size()
        && (!permissions || file.setPermissions(permissions));
}

// Bytes no compressor shrinks much, so a download or an inflate takes several blocks.
QByteArray noise(qsizetype size)
{
    QByteArray data(size, Qt::Uninitialized);
    QRandomGenerator(42).fillRange(reinterpret_cast<quint32 *>(data.data()), size / 4);
    return data;
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

QString versionOf(const QString &program)
{
    QProcess process;
    process.start(program, { u"--version"_s });
    process.waitForFinished(Patience);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

// A release folder to serve and an install folder holding an old yt-dlp.
struct Release
{
    QTemporaryDir served, folder;

    Release() { writeFile(installed(), oldCopy, mode0755); }
    QString installed() const { return folder.filePath(u"yt-dlp"_s); }
    QString tagFolder(const QString &repo, const QString &releaseTag) const
    {
        return served.filePath(repo + u'/' + releaseTag + u'/');
    }
    // yt-dlp's asset "yt-dlp" and a SHA2-256SUMS with its digest under `sumsName`.
    bool publishYtDlp(const QByteArray &asset, const QString &sumsName = u"yt-dlp"_s) const
    {
        const QString release = tagFolder(u"yt-dlp/yt-dlp"_s, tag);
        return writeFile(release + u"yt-dlp"_s, asset)
            && writeFile(release + u"SHA2-256SUMS"_s, sha256(asset) + "  " + sumsName.toUtf8() + '\n');
    }
    // The real release layout at `base`, yt-dlp's asset called "yt-dlp".
    static ReleaseLocations locations(const QString &base)
    {
        qputenv("QUILLBOX_RELEASES_URL", base.toUtf8());
        ReleaseLocations locations = ReleaseLocations::standard();
        qunsetenv("QUILLBOX_RELEASES_URL");
        locations.ytDlp.assetName = u"yt-dlp"_s;
        return locations;
    }
    std::unique_ptr<ToolInstaller> installer(const ReleaseLocations &locations, const QString &denoFolder = {}) const
    {
        return std::make_unique<ToolInstaller>(locations, folder.path(), denoFolder);
    }
};
} // namespace

#define START_SERVER(server, ...)                                                                                      \
    ReleaseServer server(m_testsDir, __VA_ARGS__);                                                                     \
    QVERIFY2(!server.base().isEmpty(), qPrintable(server.error()))

void TestToolInstaller::initTestCase()
{
    m_testsDir = qEnvironmentVariable("QUILLBOX_TESTS_DIR");
    QVERIFY(!m_testsDir.isEmpty());
    if (ReleaseServer::python().isEmpty())
        QSKIP("python3 is not installed");
    const QString shared = sharedYtDlp();
    const QString asset = ReleaseLocations::standard().ytDlp.assetName;
    if (shared.isEmpty() || asset.isEmpty())
        return; // the keeper's tests say why they skip
    m_build = fileBytes(shared);
    const QString folder = m_releases.filePath(u"yt-dlp/yt-dlp/"_s + tag + u'/');
    QVERIFY(writeFile(folder + asset, m_build)
        && writeFile(folder + u"SHA2-256SUMS"_s, sha256(m_build) + "  " + asset.toUtf8() + '\n'));
    m_server = std::make_unique<ReleaseServer>(m_testsDir, m_releases.path());
    QVERIFY2(m_server->error().isEmpty(), qPrintable(m_server->error()));
}

void TestToolInstaller::addressesAndChecksums()
{
    for (const char *allowed :
        { "https://github.com/x", "http://127.0.0.1:8123/x", "http://localhost/x", "http://[::1]/x" })
        QVERIFY2(ReleaseLocations::isAllowed(QUrl(QString::fromLatin1(allowed))), allowed);
    for (const char *refused : { "http://example.com/x", "http://127.0.0.2/x", "ftp://127.0.0.1/x", "file:///bin/sh" })
        QVERIFY2(!ReleaseLocations::isAllowed(QUrl(QString::fromLatin1(refused))), refused);

    using Format = ReleaseLocations::ChecksumFormat;
    const QByteArray a(64, 'a'), b(64, 'B');
    const QByteArray sums = a + "  yt-dlp_linux_aarch64\n" + b + " *yt-dlp_linux\n";
    QCOMPARE(ReleaseLocations::expectedDigest(Format::NamedLines, sums, u"yt-dlp_linux"_s), b.toLower());
    QCOMPARE(ReleaseLocations::expectedDigest(Format::NamedLines, sums, u"yt-dlp"_s), QByteArray());
    QCOMPARE(ReleaseLocations::expectedDigest(Format::FirstDigest, "abc 123\n", {}), QByteArray());
}

void TestToolInstaller::failuresLeaveTheOldCopy_data()
{
    QTest::addColumn<QStringList>("serverArguments");
    QTest::addColumn<QString>("sumsName"); // the name SHA2-256SUMS lists the asset's digest under
    // Replaces the API's address; "closed": a port nobody listens on; "folder": install under the
    // old file; "cancel": cancelled while it downloads
    QTest::addColumn<QString>("apiUrl");
    QTest::addColumn<QString>("message");

    const QString sums = u"yt-dlp"_s, api;
    const QString rateLimited = u"GitHub 暂时限制了请求次数，请过一会儿再试。"_s;
    const auto fault = [](const char *fault) { return QStringList { u"--fault"_s, QString::fromLatin1(fault) }; };
    QTest::newRow("tampered") << fault("tamper:yt-dlp") << sums << api
                              << u"下载的文件校验失败（SHA-256 不符），已丢弃，原有文件未改动。"_s;
    QTest::newRow("cut off") << fault("cut:yt-dlp") << sums << api << u"下载中断，文件不完整，已丢弃。"_s;
    QTest::newRow("not found") << fault("404:yt-dlp") << sums << api << u"HTTP 404"_s;
    QTest::newRow("rate limited") << fault("ratelimit:latest") << sums << api << rateLimited;
    QTest::newRow("too many requests") << fault("429:SHA2-256SUMS") << sums << api << rateLimited;
    QTest::newRow("sums without the asset") << QStringList {} << u"yt-dlp_linux"_s << api << u"校验文件里没有 yt-dlp"_s;
    // The server itself, under an address that is not one of the allowed names: were it not
    // refused, the download would succeed.
    QTest::newRow("redirect to a refused address") << QStringList { u"--redirect"_s, u"yt-dlp"_s,
        u"http://[::ffff:127.0.0.1]:{port}/assets/yt-dlp/yt-dlp/"_s + tag + u"/yt-dlp"_s }
                                                   << sums << api << u"已拒绝"_s;
    QTest::newRow("http to a non-loopback host")
        << QStringList {} << sums << u"http://example.com/repos/yt-dlp/yt-dlp/releases/latest"_s << u"已拒绝"_s;
    QTest::newRow("nobody listening") << QStringList {} << sums << u"closed"_s
                                      << u"无法连接到下载服务器，请检查网络后重试。"_s;
    QTest::newRow("folder cannot be made") << QStringList {} << sums << u"folder"_s << u"无法写入文件夹"_s;
    QTest::newRow("cancelled while downloading") << fault("slow:yt-dlp") + QStringList { u"--rate"_s, u"100000"_s }
                                                 << sums << u"cancel"_s << u"已取消安装，原有文件未改动。"_s;
}

void TestToolInstaller::failuresLeaveTheOldCopy()
{
    QFETCH(QStringList, serverArguments);
    QFETCH(QString, sumsName);
    QFETCH(QString, apiUrl);
    QFETCH(QString, message);

    Release release;
    QVERIFY(release.publishYtDlp(noise(4 * 1024 * 1024), sumsName));
    START_SERVER(server, release.served.path(), serverArguments);
    ReleaseLocations locations = Release::locations(server.base());
    if (apiUrl == u"closed"_s) {
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost));
        apiUrl = u"http://127.0.0.1:%1/repos/yt-dlp/yt-dlp/releases/latest"_s.arg(closed.serverPort());
    }
    if (apiUrl.startsWith(u"http"_s))
        locations.ytDlp.latestApi = QUrl(apiUrl);

    const auto installer = apiUrl == u"folder"_s
        ? std::make_unique<ToolInstaller>(locations, release.installed() + u"/bin"_s, QString())
        : release.installer(locations);
    QSignalSpy finished(installer.get(), &ToolInstaller::finished);
    installer->install(Tool::YtDlp);
    if (apiUrl == u"cancel"_s) {
        QTRY_VERIFY_WITH_TIMEOUT(installer->progress() > 0, Patience);
        QVERIFY2(installer->statusText().endsWith(u" / 4.0 MB"_s), qPrintable(installer->statusText()));
        installer->cancel();
        QCOMPARE(finished.size(), 1); // at once
        QVERIFY(!installer->isBusy());
    }
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, Patience);
    QCOMPARE(finished.constFirst().at(1).toBool(), false);
    const QString said = finished.constFirst().at(4).toString();
    QVERIFY2(said.contains(message), qPrintable(said));
    QCOMPARE(installer->statusText(), said);
    QCOMPARE(fileBytes(release.installed()), oldCopy);
    QCOMPARE(entries(release.folder.path()), QStringList { u"yt-dlp"_s });
}

void TestToolInstaller::replaceWaitsForTheGate()
{
    Release release;
    const QByteArray asset = "#!/bin/sh\necho " + tag.toUtf8() + '\n';
    QVERIFY(release.publishYtDlp(asset));
    START_SERVER(server, release.served.path());
    const auto installer = release.installer(Release::locations(server.base()));
    std::function<void()> proceed;
    installer->setReplaceGate([&proceed](std::function<void()> next) { proceed = std::move(next); });
    QSignalSpy finished(installer.get(), &ToolInstaller::finished);

    // Held, then cancelled: the old copy stays. A second install meanwhile is refused.
    installer->install(Tool::YtDlp);
    QTRY_VERIFY_WITH_TIMEOUT(proceed, Patience);
    QCOMPARE(installer->statusText(), u"等待下载结束后替换…"_s);
    installer->install(Tool::Deno);
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(finished.takeFirst().at(0).value<Tool>(), Tool::Deno);
    QVERIFY(installer->isBusy());
    installer->cancel();
    QCOMPARE(finished.takeFirst().at(1).toBool(), false);
    proceed(); // too late: nothing happens
    QCOMPARE(fileBytes(release.installed()), oldCopy);
    QCOMPARE(entries(release.folder.path()), QStringList { u"yt-dlp"_s });

    // Held, then let go.
    proceed = nullptr;
    installer->install(Tool::YtDlp);
    QTRY_VERIFY_WITH_TIMEOUT(proceed, Patience);
    QCOMPARE(fileBytes(release.installed()), oldCopy);
    QVERIFY(finished.isEmpty());
    proceed();
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.constFirst().at(1).toBool(), true);
    QCOMPARE(versionOf(release.installed()), tag);
}

void TestToolInstaller::installsDeno_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<bool>("damageData"); // a byte of the stored data changed, the zip's digest matching
    QTest::addColumn<bool>("realDeno"); // the Deno from npm instead of a script
    QTest::addColumn<QString>("message"); // empty when it installs
    QTest::newRow("deflated") << u"deflated"_s << u"deno"_s << false << false << QString();
    QTest::newRow("stored") << u"stored"_s << u"deno"_s << false << false << QString();
    QTest::newRow("real Deno, stored") << u"stored"_s << u"deno"_s << false << true << QString();
    QTest::newRow("no deno inside") << u"deflated"_s << u"node"_s << false << false << u"压缩包里没有 deno"_s;
    QTest::newRow("bad CRC") << u"stored"_s << u"deno"_s << true << false << u"压缩包已损坏"_s;
}

void TestToolInstaller::installsDeno()
{
    QFETCH(QString, method);
    QFETCH(QString, entry);
    QFETCH(bool, damageData);
    QFETCH(bool, realDeno);
    QFETCH(QString, message);

    Release release;
    QString version = u"deno 2.9.6 (stable, release, x86_64-unknown-linux-gnu)"_s;
    QString program = release.folder.filePath(u"script"_s);
    if (realDeno) {
        program = npmDeno();
        if (program.isEmpty())
            QSKIP("the test set-up installed no Deno from npm");
        version = versionOf(program);
        QVERIFY(version.startsWith(u"deno "_s));
    } else {
        // A long tail of noise, so the zip's data spans several blocks.
        QVERIFY(writeFile(
            program, "#!/bin/sh\necho '" + version.toUtf8() + "'\nexit 0\n" + noise(700 * 1024).toBase64(), mode0755));
    }
    const QString zipPath
        = release.tagFolder(u"denoland/deno"_s, u"v2.9.6"_s) + ReleaseLocations::standard().deno.assetName;
    QVERIFY(QDir().mkpath(QFileInfo(zipPath).path()));
    const QString zipError = ReleaseServer::makeZip(m_testsDir, { zipPath, method, entry + u'=' + program });
    QVERIFY2(zipError.isEmpty(), qPrintable(zipError));
    QByteArray zip = fileBytes(zipPath);
    if (damageData) {
        zip[zip.indexOf("exit 0")] = 'E';
        QVERIFY(writeFile(zipPath, zip));
    }
    QVERIFY(writeFile(zipPath + u".sha256sum"_s, "Algorithm : SHA256\nHash      : " + sha256(zip).toUpper() + '\n'));
    zip.clear();

    START_SERVER(server, release.served.path());
    const QString home = m_environment.home() + u"/.deno/bin"_s;
    QDir(home).removeRecursively();
    const auto installer = release.installer(Release::locations(server.base()), home);
    QSignalSpy finished(installer.get(), &ToolInstaller::finished);
    installer->install(Tool::Deno);
    QVERIFY(finished.wait(Patience));
    const QList<QVariant> outcome = finished.constFirst(); // tool, ok, path, version, message
    QCOMPARE(outcome.at(1).toBool(), message.isEmpty());
    QVERIFY2(outcome.at(4).toString().contains(message), qPrintable(outcome.at(4).toString()));
    QCOMPARE(entries(home), message.isEmpty() ? QStringList { u"deno"_s } : QStringList());
    if (message.isEmpty()) {
        QCOMPARE(outcome.at(3).toString(), u"v2.9.6"_s);
        QCOMPARE(outcome.at(2).toString(), home + u"/deno"_s);
        QVERIFY(fileBytes(home + u"/deno"_s) == fileBytes(program));
        QCOMPARE(QFile::permissions(home + u"/deno"_s), mode0755);
        QCOMPARE(versionOf(home + u"/deno"_s), version);
    }
}

#define NEEDS_RELEASES()                                                                                               \
    if (!m_server)                                                                                                     \
        QSKIP("needs ../shared/tools/yt-dlp/yt-dlp beside the project (a clone outside the workspace has none) and "   \
              "an official yt-dlp build for this system");                                                             \
    qputenv("QUILLBOX_RELEASES_URL", m_server->base().toUtf8())

void TestToolInstaller::installedCopyIsUsedAtOnceAndDownloads()
{
    NEEDS_RELEASES();
    auto engine = SandboxEngine::start([](SandboxEngine &, ToolLocations &locations) {
        locations.keptYtDlp = ToolInstaller::defaultYtDlpFolder() + u"/yt-dlp"_s;
    });
    QVERIFY(engine);
    DownloadManager &manager = *engine->manager;
    QTRY_VERIFY(manager.tools()->isReady());
    const QString kept = manager.keeper()->installer()->toolPath(ToolInstaller::Tool::YtDlp);

    manager.keeper()->installYtDlp();
    QTRY_VERIFY_WITH_TIMEOUT(manager.ytDlpPath() == kept, 60000);
    QVERIFY(manager.tools()->isYtDlpPathChosen());
    QCOMPARE(QSettings().value(u"customYtDlpPath"_s).toString(), kept);
    QTRY_COMPARE_WITH_TIMEOUT(manager.ytDlpVersion(), u"2026.08.19"_s, 60000);
    QTRY_VERIFY_WITH_TIMEOUT(manager.tools()->isYtDlpKept(), 60000);
    QCOMPARE(fileBytes(kept), m_build); // the verified file, whole, mode 0755
    QCOMPARE(int(QFile::permissions(kept)), 0x7755);
    QVERIFY(engine->log().filter(u"✅ 已安装 yt-dlp 2026.08.19: "_s).size() == 1);

    // The next download runs the installed copy, and ends with the file.
    QTemporaryDir media;
    QProcessEnvironment withFfmpeg = QProcessEnvironment::systemEnvironment();
    withFfmpeg.insert(u"PATH"_s, u"/usr/bin:/bin"_s); // the server makes its media with ffmpeg
    MediaServer server(qEnvironmentVariable("QUILLBOX_TESTS_DIR"), media.path(), {}, withFfmpeg);
    QVERIFY2(server.error().isEmpty(), qPrintable(server.error()));
    engine->download(server.base() + u"video.mp4"_s);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 120000);
    QVERIFY2(engine->only().status == DownloadStatus::Completed, qPrintable(engine->log().join(u'\n')));
    QVERIFY(QFileInfo(engine->only().outputPath.value_or(QString())).size() > 0);
    QVERIFY(engine->fake.runs().isEmpty()); // the stand-in found first was not run for it
}

void TestToolInstaller::updatesWaitForTheRunningDownload()
{
    NEEDS_RELEASES();
    // An older copy of Quillbox's own (the stand-in, calling itself an official build of
    // 2026.01.01) is in use and downloading when the daily check finds 2026.08.19.
    qputenv("FAKE_YTDLP_VERSION", "2026.01.01");
    qputenv("FAKE_YTDLP_VARIANT", "linux_exe");
    auto engine = SandboxEngine::start([](SandboxEngine &engine, ToolLocations &locations) {
        locations.keptYtDlp = ToolInstaller::defaultYtDlpFolder() + u"/yt-dlp"_s;
        QDir().mkpath(ToolInstaller::defaultYtDlpFolder());
        QFile::copy(engine.fake.path(), locations.keptYtDlp);
        QSettings().setValue(u"customYtDlpPath"_s, locations.keptYtDlp);
    });
    QVERIFY(engine);
    DownloadManager &manager = *engine->manager;
    QTRY_VERIFY(manager.tools()->isReady() && !manager.tools()->isProbing());
    QVERIFY(manager.tools()->isYtDlpKept());
    const QString kept = manager.ytDlpPath();
    const QByteArray before = fileBytes(kept);

    engine->fake.setScenario(R"([{"out": "[download]  10.0% of 1.00MiB at 1.00MiB/s ETA 00:09\n"}, {"sleep": 30}])");
    engine->download(u"https://videos.example/watch?v=long"_s);
    QTRY_COMPARE_WITH_TIMEOUT(engine->only().status, DownloadStatus::Downloading, 20000);

    // The daily check learns of the release; the automatic update waits for the queue to be idle.
    manager.keeper()->checkForUpdates();
    QTRY_COMPARE_WITH_TIMEOUT(manager.tools()->latestYtDlpVersion(), u"2026.08.19"_s, 30000);
    QTest::qWait(1000);
    QVERIFY(!manager.keeper()->installer()->isBusy());
    QCOMPARE(manager.tools()->ytDlpVerdict().action, quillbox::ToolAction::UpdateYtDlp);
    // Asked for by hand, the new file is fetched and verified, then waits to replace the old one.
    manager.keeper()->installYtDlp();
    QTRY_VERIFY_WITH_TIMEOUT(manager.keeper()->installer()->statusText().contains(u"等待"_s), 60000);
    QTest::qWait(500);
    QCOMPARE(fileBytes(kept), before); // untouched while the download runs

    manager.stopDownload(engine->only().id.toString(QUuid::WithoutBraces));
    QTRY_VERIFY_WITH_TIMEOUT(!manager.keeper()->installer()->isBusy(), 60000);
    QCOMPARE(fileBytes(kept), m_build);
    QTRY_COMPARE_WITH_TIMEOUT(manager.ytDlpVersion(), u"2026.08.19"_s, 60000);

    // Checked today: the next start does not ask again.
    QVERIFY(QSettings().value(QLatin1String(ToolKeeper::CheckedAtKey)).toDateTime().isValid());
}

void TestToolInstaller::homebrewInstallsWhereItIs()
{
    // Where Homebrew is (macOS), it installs Deno; discovery then finds it. A stand-in brew
    // puts a Deno where the real one would be found.
    auto engine = SandboxEngine::start([](SandboxEngine &engine, ToolLocations &locations) {
        locations.runtimes[0].candidates << engine.fixture.path(u"home/.deno/bin/deno"_s);
    });
    QVERIFY(engine);
    DownloadManager &manager = *engine->manager;
    QTRY_VERIFY(manager.tools()->isReady());
    const QString deno = engine->fixture.path(u"home/.deno/bin/deno"_s);
    const QString brew = engine->fixture.writeScript(u"brew bin/brew"_s,
        "echo \"$*\" >> \"$HOME/brew.log\"\n/bin/mkdir -p \"$HOME/.deno/bin\"\n"
        "printf '#!/bin/sh\\necho deno 2.5.0\\n' > \"$HOME/.deno/bin/deno\"\n/bin/chmod +x \"$HOME/.deno/bin/deno\"\n");
    manager.keeper()->setHomebrew(brew);

    manager.keeper()->installDeno();
    QVERIFY(manager.keeper()->isBusy());
    QVERIFY(!manager.keeper()->canCancel());
    QTRY_VERIFY_WITH_TIMEOUT(!manager.keeper()->isBusy(), 20000);
    QCOMPARE(engine->fixture.readFile(u"home/brew.log"_s), u"install deno\n"_s);
    QVERIFY(!manager.keeper()->installer()->isBusy()); // no official build was fetched
    QTRY_COMPARE_WITH_TIMEOUT(manager.detectedJSRuntimePath(), deno, 20000);
    QCOMPARE(manager.keeper()->statusText(), u"✅ Homebrew 已安装 deno"_s);
}

QTEST_GUILESS_MAIN(TestToolInstaller)
#include "tst_toolinstaller.moc"
