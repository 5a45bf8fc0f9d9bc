#include "engine/shellrunner.h"
#include "engine/videoinfofetch.h"

#include "enginefixture.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

// The work on yt-dlp itself, with the stand-in: updating it, listing a link's formats, reading a
// link's information.
class TestMaintenance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void update_data();
    void update();
    void shellThatCannotStart();
    void answers_data();
    void answers();
    void commands_data();
    void commands();
    void fetchVideoInfoStops();
};

namespace {
const QByteArray emoji = QByteArray("\xF0\x9F\x98\x80"); // one character, two UTF-16 units

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

// What `ask` hands its completion, which must come exactly once; `none` if nothing comes in time.
template <typename Result>
Result answer(const std::function<void(std::function<void(const Result &)>)> &ask, const Result &none)
{
    std::optional<Result> result;
    ask([&result](const Result &r) {
        QVERIFY(!result);
        result = r;
    });
    return QTest::qWaitFor([&result] { return result.has_value(); }, 20000) ? *result : none;
}

QString runUpdate(DownloadManager &manager)
{
    return answer<UpdateResult>([&](auto done) { manager.updateYtDlp(done); }, { u"(no answer)"_s, {} }).text;
}

FormatListResult listFormats(DownloadManager &manager, const QString &url, bool cookies = false)
{
    return answer<FormatListResult>([&](auto done) { manager.listFormats(url, cookies, done); },
        { false, {}, { u"test"_s, -2, u"(no answer)"_s } });
}

VideoInfoResult fetchInfo(DownloadManager &manager, const QString &url, bool cookies = false)
{
    return answer<VideoInfoResult>([&](auto done) { manager.fetchVideoInfo(url, cookies, done); },
        { false, {}, 0, false, { u"test"_s, -2, u"(no answer)"_s } });
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

    const QString updated = u"✅ 更新成功，当前版本: 2026.02.01"_s;
    QTest::newRow("brew upgrades") << QByteArray("echo \"brew $*\"; exit 0") << QByteArray() << 0 << 0 << updated
                                   << false;
    QTest::newRow("no brew: yt-dlp -U") << QByteArray() << QByteArray("Updated yt-dlp") << 0 << 0 << updated << true;
    QTest::newRow("brew fails: yt-dlp -U")
        << QByteArray("echo 'Error: no formula'; exit 1") << QByteArray("done") << 0 << 0 << updated << true;
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

    auto engine = makeEngine();
    QVERIFY(engine);
    if (!brew.isEmpty())
        engine->fixture.writeScript(u"bin/brew"_s, brew);
    qputenv("FAKE_YTDLP_UPDATE_OUTPUT", updateOutput);
    qputenv("FAKE_YTDLP_UPDATE_EXIT", QByteArray::number(updateExit));
    qputenv("FAKE_YTDLP_VERSION", "2026.02.01");
    qputenv("FAKE_YTDLP_VERSION_EXIT", QByteArray::number(versionExit));

    QCOMPARE(runUpdate(*engine->manager), answer);
    QTEST(engine->fake.runs().contains(QStringList { u"-U"_s }), "selfUpdateRan");
    // The answer is in the log too, a failure in red.
    if (versionExit == 0) {
        QTRY_VERIFY(engine->log().contains(answer));
        const LogEntry entry = engine->state.logEntries().constLast();
        QCOMPARE(entry.type, updateExit == 0 ? LogEntry::LogType::Info : LogEntry::LogType::Error);
    }
    QCOMPARE(engine->manager->ytDlpVersion(), versionExit == 0 && updateExit == 0 ? u"2026.02.01"_s : u"2025.11.12"_s);
}

void TestMaintenance::shellThatCannotStart()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    qputenv("QUILLBOX_SHELL", engine->fixture.path(u"missing-shell"_s).toUtf8());
    const QString answer = runUpdate(*engine->manager);
    QVERIFY2(answer.startsWith(u"❌ 更新失败: 无法启动"_s), qPrintable(answer));
    QTRY_VERIFY(engine->log().contains(answer));

    const FormatListResult result = listFormats(*engine->manager, u"https://x.example/v"_s);
    QVERIFY(!result.ok);
    QCOMPARE(result.error.domain, u"QProcess"_s);
    QVERIFY(result.error.localizedDescription.contains(u"无法启动"_s));
    QTRY_VERIFY(engine->log().contains(u"获取格式列表失败: "_s + result.error.localizedDescription));

    std::optional<QString> text;
    engine->manager->checkYtDlpInstallation([&](bool ok, const QString &output) { text = ok ? QString() : output; });
    QTRY_VERIFY(text);
    QVERIFY2(text->contains(u"无法启动"_s), qPrintable(*text));
}

// What -F ("formats: …" rows) and -J ("info: …") answer, and what the log says of it.
void TestMaintenance::answers_data()
{
    QTest::addColumn<QByteArray>("out"); // empty: the stand-in's own
    QTest::addColumn<QByteArray>("err"); // empty: nothing on stderr
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("answer"); // the format table, the title, or the error's description
    QTest::addColumn<int>("code"); // the error's; 0 for an answer
    QTest::addColumn<int>("playlistEntries");
    QTest::addColumn<QString>("logLine");

    // The stand-in ends what it prints with a newline.
    QTest::newRow("formats: table with warnings") << QByteArray("ID EXT\n") << QByteArray("WARNING: slow") << 0
                                                  << u"ID EXT\n\nWARNING: slow\n"_s << 0 << 0 << u"格式列表获取成功"_s;
    // (A failure's stderr, and for the information its error lines without the warnings, reach
    // the alerts in tst_inputqueue.)
    QTest::newRow("formats: failure on stdout only, the log has 200 characters")
        << emoji.repeated(1000) << QByteArray() << 2 << QString::fromUtf8(emoji.repeated(1000) + '\n') << 2 << 0
        << u"获取格式列表失败: "_s + QString::fromUtf8(emoji.repeated(200));

    QTest::newRow("info: recorded playlist, the first video, and the log says so")
        << fileBytes(qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/data/videoinfo/playlist.json"_s)
        << QByteArray("WARNING: slow") << 0 << u"两个视频 (1)"_s << 0 << 2
        << u"链接是一个播放列表（2 个视频），显示第一个视频的信息"_s;
    QTest::newRow("info: failure without a word")
        << QByteArray(" ") << QByteArray() << 2 << u"yt-dlp 以状态 2 退出，没有给出原因"_s << 2 << 0
        << u"获取视频信息失败: yt-dlp 以状态 2 退出，没有给出原因"_s;
    QTest::newRow("info: output that is not a record")
        << QByteArray("[generic] Extracting URL") << QByteArray() << 0 << u"yt-dlp 的输出不是可以读取的视频信息"_s << -1
        << 0 << u"获取视频信息失败: yt-dlp 的输出不是可以读取的视频信息"_s;
    QTest::newRow("info: empty playlist")
        << QByteArray(R"({"_type": "playlist", "entries": []})") << QByteArray() << 0 << u"这个播放列表中没有视频"_s
        << -1 << 0 << u"获取视频信息失败: 这个播放列表中没有视频"_s;
}

void TestMaintenance::answers()
{
    QFETCH(QByteArray, out);
    QFETCH(QByteArray, err);
    QFETCH(int, exitCode);
    QFETCH(int, code);
    QFETCH(QString, logLine);

    auto engine = makeEngine();
    QVERIFY(engine);
    const bool info = QByteArray(QTest::currentDataTag()).startsWith("info");
    const QByteArray variable = info ? "FAKE_YTDLP_INFO" : "FAKE_YTDLP_FORMATS";
    if (info && !out.isEmpty()) { // the stand-in reads the record from a file
        engine->fixture.writeFile(u"info.json"_s, out);
        out = engine->fixture.path(u"info.json"_s).toUtf8();
    }
    if (!out.isEmpty())
        qputenv(variable, out);
    if (!err.isEmpty())
        qputenv(QByteArray(variable + "_STDERR"), err);
    qputenv(QByteArray(variable + "_EXIT"), QByteArray::number(exitCode));

    const QString url = u"https://i.example/v"_s;
    QString answer;
    EngineError error;
    if (info) {
        const VideoInfoResult result = fetchInfo(*engine->manager, url);
        QCOMPARE(result.ok, code == 0);
        answer = result.ok ? result.info.title : result.error.localizedDescription;
        error = result.error;
        QTEST(result.playlistEntries, "playlistEntries");
        if (result.ok)
            QCOMPARE(result.info.url, url);
        QVERIFY(engine->log().contains(u"正在获取视频信息..."_s));
    } else {
        const FormatListResult result = listFormats(*engine->manager, url);
        QCOMPARE(result.ok, code == 0);
        answer = result.ok ? result.text : result.error.localizedDescription;
        error = result.error;
        if (!result.ok)
            QCOMPARE(error.domain, u"DownloadManager"_s);
    }
    QTEST(answer, "answer");
    QCOMPARE(error.code, code);
    QTRY_VERIFY2(engine->log().contains(logLine), qPrintable(engine->log().join(u'\n')));
}

// The words -F and -J get: the runtime's, then the cookies' when asked for (whether Chrome is
// there is the downloads' concern), and the link after "--", a link that looks like an option
// included.
void TestMaintenance::commands_data()
{
    QTest::addColumn<bool>("withTools"); // a runtime found, cookies asked for and Chrome there
    QTest::addColumn<QString>("url");
    QTest::addColumn<QStringList>("expected"); // before "--", "DENO" for the runtime's path

    const QString odd = u"https://q.example/it's a \"test\" $HOME"_s;
    const QStringList tools { u"--js-runtimes"_s, u"deno:DENO"_s, u"--cookies-from-browser"_s, u"chrome"_s };
    QTest::newRow("formats, bare") << false << odd << QStringList { u"--list-formats"_s };
    QTest::newRow("formats, cookies after the runtime") << true << odd << QStringList { u"--list-formats"_s } + tools;
    QTest::newRow("info, cookies after the runtime")
        << true << u"--exec=it's $HOME"_s << QStringList { u"-J"_s, u"--no-playlist"_s } + tools;
}

void TestMaintenance::commands()
{
    QFETCH(bool, withTools);
    QFETCH(QString, url);
    QFETCH(QStringList, expected);
    auto engine = makeEngine(withTools);
    QVERIFY(engine);
    if (withTools)
        engine->fixture.writeFile(u"home/Library/Application Support/Google/Chrome/Profile 1/Cookies"_s, "db");
    if (expected.constFirst() == u"-J"_s)
        QVERIFY(fetchInfo(*engine->manager, url, withTools).ok);
    else
        QVERIFY(listFormats(*engine->manager, url, withTools).ok);
    expected.replaceInStrings(u"DENO"_s, engine->fixture.path(u"tools/deno"_s));
    expected << u"--"_s << url;
    QCOMPARE(engine->fake.runs(true), QList<QStringList> { expected });
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
