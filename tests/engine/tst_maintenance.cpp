#include "engine/downloadmanager.h"
#include "engine/shellrunner.h"
#include "engine/videoinfofetch.h"
#include "model/appstate.h"

#include "enginefixture.h"

#include <QElapsedTimer>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestMaintenance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void update_data();
    void update();
    void updateWithAShellThatCannotStart();
    void listFormats_data();
    void listFormats();
    void listFormatsCommand_data();
    void listFormatsCommand();
    void fetchVideoInfo_data();
    void fetchVideoInfo();
    void fetchVideoInfoCommand();
    void fetchVideoInfoStops();
};

namespace {
std::unique_ptr<SandboxEngine> makeEngine(bool withRuntime = false)
{
    return SandboxEngine::start(
        [withRuntime](SandboxEngine &engine, ToolLocations &locations) {
            if (withRuntime)
                locations.runtimes[0].candidates << engine.fixture.writeScript(u"tools/deno"_s, "echo deno 2.5.0");
        },
        [withRuntime](const DownloadManager &manager) {
            return manager.tools()->isReady() && (!withRuntime || !manager.detectedJSRuntime().isEmpty());
        });
}

QString runUpdate(DownloadManager &manager)
{
    std::optional<QString> answer;
    manager.updateYtDlp([&answer](const UpdateResult &result) {
        QVERIFY(!answer); // exactly once
        answer = result.text;
    });
    if (!QTest::qWaitFor([&answer] { return answer.has_value(); }, 20000))
        return u"(no answer)"_s;
    return *answer;
}
} // namespace

void TestMaintenance::update_data()
{
    QTest::addColumn<QByteArray>("brew"); // empty: no brew on the path
    QTest::addColumn<QByteArray>("updateOutput");
    QTest::addColumn<int>("updateExit");
    QTest::addColumn<int>("versionExit");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("selfUpdateRan");

    QTest::newRow("brew upgrades") << QByteArray("echo \"brew $*\"; exit 0") << QByteArray() << 0 << 0
                                   << u"✅ 更新成功，当前版本: 2026.02.01"_s << false;
    QTest::newRow("no brew: yt-dlp -U") << QByteArray() << QByteArray("Updated yt-dlp") << 0 << 0
                                        << u"✅ 更新成功，当前版本: 2026.02.01"_s << true;
    QTest::newRow("brew fails: yt-dlp -U") << QByteArray("echo 'Error: no formula'; exit 1") << QByteArray("done") << 0
                                           << 0 << u"✅ 更新成功，当前版本: 2026.02.01"_s << true;
    const QByteArray emoji = QByteArray("\xF0\x9F\x98\x80"); // one character, two UTF-16 units
    QTest::newRow("failure shows the first 300 characters")
        << QByteArray() << emoji.repeated(1000) << 1 << 0 << u"❌ 更新失败: "_s + QString::fromUtf8(emoji.repeated(300))
        << true;
    QTest::newRow("updated but the version probe fails")
        << QByteArray() << QByteArray("ok") << 0 << 1 << u"✅ 命令执行成功，但版本检测失败"_s << true;
}

void TestMaintenance::update()
{
    QFETCH(QByteArray, brew);
    QFETCH(QByteArray, updateOutput);
    QFETCH(int, updateExit);
    QFETCH(int, versionExit);
    QFETCH(QString, answer);
    QFETCH(bool, selfUpdateRan);

    auto engine = makeEngine();
    QVERIFY(engine);
    if (!brew.isEmpty())
        engine->fixture.writeScript(u"bin/brew"_s, brew);
    qputenv("FAKE_YTDLP_UPDATE_OUTPUT", updateOutput);
    qputenv("FAKE_YTDLP_UPDATE_EXIT", QByteArray::number(updateExit));
    qputenv("FAKE_YTDLP_VERSION", "2026.02.01");
    qputenv("FAKE_YTDLP_VERSION_EXIT", QByteArray::number(versionExit));

    QCOMPARE(runUpdate(*engine->manager), answer);
    bool ranSelfUpdate = false;
    for (const QStringList &argv : engine->fake.runs())
        ranSelfUpdate |= argv == QStringList { u"-U"_s };
    QCOMPARE(ranSelfUpdate, selfUpdateRan);

    // The answer is in the log too, a failure in red.
    if (versionExit == 0) {
        QTRY_VERIFY(engine->log().contains(answer));
        const LogEntry entry = engine->state.logEntries().constLast();
        QCOMPARE(entry.type, updateExit == 0 ? LogEntry::LogType::Info : LogEntry::LogType::Error);
    }
    QCOMPARE(engine->manager->ytDlpVersion(), versionExit == 0 && updateExit == 0 ? u"2026.02.01"_s : u"2025.11.12"_s);
}

void TestMaintenance::updateWithAShellThatCannotStart()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    qputenv("QUILLBOX_SHELL", engine->fixture.path(u"missing-shell"_s).toUtf8());
    const QString answer = runUpdate(*engine->manager);
    QVERIFY2(answer.startsWith(u"❌ 更新失败: 无法启动"_s), qPrintable(answer));
    QTRY_VERIFY(engine->log().contains(answer));

    std::optional<FormatListResult> result;
    engine->manager->listFormats(u"https://x.example/v"_s, false, [&](const FormatListResult &r) { result = r; });
    QTRY_VERIFY(result);
    QVERIFY(!result->ok);
    QCOMPARE(result->error.domain, u"QProcess"_s);
    QVERIFY(result->error.localizedDescription.contains(u"无法启动"_s));
    QTRY_VERIFY(engine->log().contains(u"获取格式列表失败: "_s + result->error.localizedDescription));

    std::optional<QString> text;
    engine->manager->checkYtDlpInstallation([&](bool ok, const QString &output) { text = ok ? QString() : output; });
    QTRY_VERIFY(text);
    QVERIFY2(text->contains(u"无法启动"_s), qPrintable(*text));
}

void TestMaintenance::listFormats_data()
{
    QTest::addColumn<QByteArray>("stdoutText");
    QTest::addColumn<QByteArray>("stderrText"); // empty: nothing on stderr
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("text"); // success text or error description (the stand-in ends lines)
    QTest::addColumn<QString>("logLine");

    QTest::newRow("table") << QByteArray("ID EXT\n18 mp4\n") << QByteArray() << 0 << true << u"ID EXT\n18 mp4\n"_s
                           << u"格式列表获取成功"_s;
    QTest::newRow("table with warnings") << QByteArray("ID EXT\n") << QByteArray("WARNING: slow") << 0 << true
                                         << u"ID EXT\n\nWARNING: slow\n"_s << u"格式列表获取成功"_s;
    QTest::newRow("failure says stderr") << QByteArray("partial") << QByteArray("ERROR: Unsupported URL") << 1 << false
                                         << u"ERROR: Unsupported URL\n"_s
                                         << u"获取格式列表失败: ERROR: Unsupported URL\n"_s;
    const QByteArray emoji = QByteArray("\xF0\x9F\x98\x80").repeated(1000);
    QTest::newRow("failure on stdout only: the first 200 characters")
        << emoji << QByteArray() << 2 << false << QString::fromUtf8(emoji + '\n')
        << u"获取格式列表失败: "_s + QString::fromUtf8(QByteArray("\xF0\x9F\x98\x80").repeated(200));
}

void TestMaintenance::listFormats()
{
    QFETCH(QByteArray, stdoutText);
    QFETCH(QByteArray, stderrText);
    QFETCH(int, exitCode);
    QFETCH(bool, ok);
    QFETCH(QString, text);
    QFETCH(QString, logLine);

    auto engine = makeEngine();
    QVERIFY(engine);
    qputenv("FAKE_YTDLP_FORMATS", stdoutText);
    if (!stderrText.isEmpty())
        qputenv("FAKE_YTDLP_FORMATS_STDERR", stderrText);
    qputenv("FAKE_YTDLP_FORMATS_EXIT", QByteArray::number(exitCode));

    std::optional<FormatListResult> result;
    engine->manager->listFormats(u"https://f.example/v"_s, false, [&](const FormatListResult &r) { result = r; });
    QTRY_VERIFY_WITH_TIMEOUT(result, 20000);
    QCOMPARE(result->ok, ok);
    if (ok) {
        QCOMPARE(result->text, text);
    } else {
        QCOMPARE(result->error.domain, u"DownloadManager"_s);
        QCOMPARE(result->error.code, exitCode);
        QCOMPARE(result->error.localizedDescription, text);
    }
    QTRY_VERIFY(engine->log().contains(logLine));
}

void TestMaintenance::listFormatsCommand_data()
{
    QTest::addColumn<bool>("runtime");
    QTest::addColumn<bool>("cookies");
    QTest::addColumn<bool>("chromeInstalled");
    QTest::newRow("bare") << false << false << false;
    QTest::newRow("cookies after the runtime") << true << true << true;
    QTest::newRow("cookies asked for, no Chrome") << false << true << false;
}

void TestMaintenance::listFormatsCommand()
{
    QFETCH(bool, runtime);
    QFETCH(bool, cookies);
    QFETCH(bool, chromeInstalled);
    auto engine = makeEngine(runtime);
    QVERIFY(engine);
    if (chromeInstalled)
        engine->fixture.writeFile(u"home/Library/Application Support/Google/Chrome/Profile 1/Cookies"_s, "db");
    const QString url = u"https://q.example/it's a \"test\" $HOME"_s;
    std::optional<FormatListResult> result;
    engine->manager->listFormats(url, cookies, [&](const FormatListResult &r) { result = r; });
    QTRY_VERIFY_WITH_TIMEOUT(result, 20000);
    QVERIFY(result->ok);

    QStringList expected { u"--list-formats"_s };
    if (runtime)
        expected << u"--js-runtimes"_s << u"deno:"_s + engine->fixture.path(u"tools/deno"_s);
    if (cookies && chromeInstalled)
        expected << u"--cookies-from-browser"_s << u"chrome"_s;
    expected << u"--"_s << url; // a link that looks like an option stays a link
    QCOMPARE(engine->fake.runs(), QList<QStringList> { expected });
    const bool warned = !engine->log().filter(u"未找到 Chrome"_s).isEmpty();
    QCOMPARE(warned, cookies && !chromeInstalled);
}

namespace {
VideoInfoResult fetchInfo(DownloadManager &manager, const QString &url, bool cookies = false)
{
    std::optional<VideoInfoResult> result;
    manager.fetchVideoInfo(url, cookies, [&result](const VideoInfoResult &r) {
        QVERIFY(!result); // exactly once
        result = r;
    });
    if (!QTest::qWaitFor([&result] { return result.has_value(); }, 20000))
        return VideoInfoResult { false, {}, 0, false, { u"test"_s, -2, u"(no answer)"_s } };
    return *result;
}
} // namespace

void TestMaintenance::fetchVideoInfo_data()
{
    QTest::addColumn<QByteArray>("output"); // empty: the stand-in's own record
    QTest::addColumn<QByteArray>("stderrText");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("answer"); // the title, or the error's description
    QTest::addColumn<int>("playlistEntries");
    QTest::addColumn<QString>("logLine");

    QFile playlist(QString::fromLocal8Bit(qgetenv("QUILLBOX_TESTS_DIR")) + u"/data/videoinfo/playlist.json"_s);
    QVERIFY(playlist.open(QIODevice::ReadOnly));
    QTest::newRow("record") << QByteArray() << QByteArray("WARNING: slow") << 0 << u"fake"_s << 0
                            << u"视频信息获取成功: fake"_s;
    QTest::newRow("recorded playlist: the first video, and the log says so")
        << playlist.readAll() << QByteArray() << 0 << u"两个视频 (1)"_s << 2
        << u"链接是一个播放列表（2 个视频），显示第一个视频的信息"_s;
    QTest::newRow("failure: the ERROR lines, not the warnings")
        << QByteArray() << QByteArray("WARNING: [generic] Falling back\nERROR: Unsupported URL: x") << 1
        << u"ERROR: Unsupported URL: x"_s << 0 << u"获取视频信息失败: ERROR: Unsupported URL: x"_s;
    QTest::newRow("failure without a word")
        << QByteArray(" ") << QByteArray() << 2 << u"yt-dlp 以状态 2 退出，没有给出原因"_s << 0
        << u"获取视频信息失败: yt-dlp 以状态 2 退出，没有给出原因"_s;
    QTest::newRow("output that is not a record")
        << QByteArray("[generic] Extracting URL") << QByteArray() << 0 << u"yt-dlp 的输出不是可以读取的视频信息"_s << 0
        << u"获取视频信息失败: yt-dlp 的输出不是可以读取的视频信息"_s;
    QTest::newRow("empty playlist") << QByteArray(R"({"_type": "playlist", "entries": []})") << QByteArray() << 0
                                    << u"这个播放列表中没有视频"_s << 0
                                    << u"获取视频信息失败: 这个播放列表中没有视频"_s;
}

void TestMaintenance::fetchVideoInfo()
{
    QFETCH(QByteArray, output);
    QFETCH(QByteArray, stderrText);
    QFETCH(int, exitCode);
    QFETCH(QString, answer);
    QFETCH(int, playlistEntries);
    QFETCH(QString, logLine);

    auto engine = makeEngine();
    QVERIFY(engine);
    if (!output.isEmpty()) {
        engine->fixture.writeFile(u"info.json"_s, output);
        qputenv("FAKE_YTDLP_INFO", engine->fixture.path(u"info.json"_s).toUtf8());
    }
    if (!stderrText.isEmpty())
        qputenv("FAKE_YTDLP_INFO_STDERR", stderrText);
    qputenv("FAKE_YTDLP_INFO_EXIT", QByteArray::number(exitCode));

    const VideoInfoResult result = fetchInfo(*engine->manager, u"https://i.example/v"_s);
    const bool ok = answer == u"fake"_s || playlistEntries > 0;
    QCOMPARE(result.ok, ok);
    QCOMPARE(ok ? result.info.title : result.error.localizedDescription, answer);
    if (ok)
        QCOMPARE(result.info.url, u"https://i.example/v"_s);
    else
        QCOMPARE(result.error.code, exitCode == 0 ? -1 : exitCode);
    QCOMPARE(result.playlistEntries, playlistEntries);
    QVERIFY(engine->log().contains(u"正在获取视频信息..."_s));
    QTRY_VERIFY2(engine->log().contains(logLine), qPrintable(engine->log().join(u'\n')));
}

void TestMaintenance::fetchVideoInfoCommand()
{
    auto engine = makeEngine(true);
    QVERIFY(engine);
    engine->fixture.writeFile(u"home/Library/Application Support/Google/Chrome/Profile 1/Cookies"_s, "db");
    const QString url = u"--exec=it's $HOME"_s;
    QVERIFY(fetchInfo(*engine->manager, url, true).ok);
    const QList<QStringList> expected { { u"-J"_s, u"--no-playlist"_s, u"--js-runtimes"_s,
        u"deno:"_s + engine->fixture.path(u"tools/deno"_s), u"--cookies-from-browser"_s, u"chrome"_s, u"--"_s, url } };
    QCOMPARE(engine->fake.runs(true), expected);
}

// Cancelling stops the child and answers at once; a child that takes too long is stopped too.
void TestMaintenance::fetchVideoInfoStops()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    qputenv("FAKE_YTDLP_INFO_DELAY", "30");
    std::optional<VideoInfoResult> result;
    QPointer<VideoInfoFetch> fetch = engine->manager->fetchVideoInfo(
        u"https://i.example/slow"_s, false, [&result](const VideoInfoResult &r) { result = r; });
    QTRY_COMPARE_WITH_TIMEOUT(engine->fake.runs(true).size(), 1, 20000);
    fetch->cancel();
    QVERIFY(result && result->cancelled && !result->ok);
    QTRY_VERIFY(!fetch); // gone, and its child with it
    QVERIFY(engine->log().filter(u"获取视频信息失败"_s).isEmpty());

    result.reset();
    auto *timed = new VideoInfoFetch(u"u"_s, &engine->state, [&result](const VideoInfoResult &r) { result = r; });
    QElapsedTimer clock;
    clock.start();
    timed->run(ShellCommand(engine->fake.path(), { u"-J"_s }).link(u"u"_s), 1000);
    QTRY_VERIFY_WITH_TIMEOUT(result, 20000);
    QVERIFY(clock.elapsed() < 20000);
    QCOMPARE(result->error.localizedDescription, u"命令在 1 秒内没有结束，已停止"_s);
}

QTEST_GUILESS_MAIN(TestMaintenance)
#include "tst_maintenance.moc"
