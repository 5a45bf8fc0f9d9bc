#include "engine/toolkeeper.h"

#include "enginefixture.h"
#include "support/mediaserver.h"
#include "support/releaseserver.h"

using namespace Qt::StringLiterals;

// Quillbox's own yt-dlp, installed from a stand-in for the release pages on 127.0.0.1 that
// serves the current yt-dlp (../shared/tools/yt-dlp) under this system's asset name: it is used
// at once, downloads, and is only ever replaced while no download runs.
class TestToolKeeper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void installedCopyIsUsedAtOnceAndDownloads();
    void updatesWaitForTheRunningDownload();
    void homebrewInstallsWhereItIs();

private:
    QTemporaryDir m_releases;
    std::unique_ptr<ReleaseServer> m_server;
    QByteArray m_build;
};

void TestToolKeeper::initTestCase()
{
    const QString shared = sharedYtDlp();
    const QString asset = ReleaseLocations::standard().ytDlp.assetName;
    if (shared.isEmpty() || asset.isEmpty())
        return; // the tests that install say why they skip
    m_build = fileBytes(shared);
    // The same bytes and digest, under the name this system's build has.
    const QByteArray digest = fileBytes(QFileInfo(shared).dir().filePath(u"SHA2-256SUMS"_s)).split(' ').constFirst();
    const QString folder = m_releases.filePath(u"yt-dlp/yt-dlp/2026.08.19/"_s);
    QVERIFY(QDir().mkpath(folder) && QFile::copy(shared, folder + asset));
    QFile list(folder + u"SHA2-256SUMS"_s);
    QVERIFY(list.open(QIODevice::WriteOnly) && list.write(digest + "  " + asset.toUtf8() + '\n') > 0);
    list.close();
    m_server = std::make_unique<ReleaseServer>(qEnvironmentVariable("QUILLBOX_TESTS_DIR"), m_releases.path());
    QVERIFY2(m_server->error().isEmpty(), qPrintable(m_server->error()));
    qputenv("QUILLBOX_RELEASES_URL", m_server->base().toUtf8());
}

#define NEEDS_RELEASES()                                                                                               \
    if (!m_server)                                                                                                     \
    QSKIP("needs ../shared/tools/yt-dlp/yt-dlp beside the project (a clone outside the workspace has none) and an "    \
          "official yt-dlp build for this system")

void TestToolKeeper::installedCopyIsUsedAtOnceAndDownloads()
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

void TestToolKeeper::updatesWaitForTheRunningDownload()
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

void TestToolKeeper::homebrewInstallsWhereItIs()
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

QTEST_GUILESS_MAIN(TestToolKeeper)
#include "tst_toolkeeper.moc"
