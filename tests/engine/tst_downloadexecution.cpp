#include "engine/downloadmanager.h"
#include "model/appstate.h"
#include "model/taskmodel.h"

#include "enginefixture.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestDownloadExecution : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandWords_data();
    void commandWords();
    void cookiesOnlyWithChrome();
    void outputTyping();
    void failureMessages_data();
    void failureMessages();
    void friendlyMessageWhileRunning();
    void missingYtDlp();
    void atMostNAtOnce();
    void requestedBeforeThePathIsKnown();
    void cancelStopsTheWholeGroup();
    void launchFailuresLoseNothing();
    void outputThatIsNotUtf8();
    void silentDownloadSaysSo();
    void foldersAndArgumentsCheckedFirst();
};

namespace {
// The stand-in as yt-dlp, with node and ffmpeg found (null if discovery did not finish).
std::unique_ptr<SandboxEngine> makeEngine(bool ready = true)
{
    const auto tools = [](SandboxEngine &engine, ToolLocations &locations) {
        locations.runtimes[1].candidates << engine.fixture.writeScript(u"tools/node"_s, "exit 0");
        locations.ffmpeg << engine.fixture.writeScript(u"tools/ffmpeg"_s, "echo 'ffmpeg version 6'");
    };
    const auto found = [](const DownloadManager &manager) {
        return !manager.ytDlpVersion().isEmpty() && !manager.detectedJSRuntime().isEmpty()
            && !manager.detectedFfmpeg().isEmpty();
    };
    auto engine = SandboxEngine::start(tools, ready ? SandboxEngine::Ready(found) : SandboxEngine::Ready());
    if (engine)
        QFile::remove(engine->fixture.path(u"pids.txt"_s)); // forget the probes
    return engine;
}

} // namespace

void TestDownloadExecution::commandWords_data()
{
    QTest::addColumn<DownloadPreset>("preset");
    QTest::addColumn<QString>("custom");
    QTest::addColumn<bool>("playlist");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("folder"); // under the sandbox
    QTest::addColumn<QStringList>("presetAndCustomWords");

    const QString url = u"https://v.example/watch?v=1&t=2"_s;
    QTest::newRow("default") << DownloadPreset::Default << QString() << true << url << u"out"_s << QStringList();
    QTest::newRow("custom, empty: no format at all")
        << DownloadPreset::Custom << QString() << true << url << u"out"_s << QStringList();
    QTest::newRow("custom words split by the shell")
        << DownloadPreset::Custom << u"--limit-rate 1M -f 'best[height<=480]'"_s << true << url << u"out"_s
        << QStringList { u"--limit-rate"_s, u"1M"_s, u"-f"_s, u"best[height<=480]"_s };
    QTest::newRow("custom words after preset words")
        << DownloadPreset::AudioOnly << u"--limit-rate 1M"_s << true << url << u"out"_s
        << QStringList { u"-x"_s, u"--audio-format"_s, u"mp3"_s, u"--limit-rate"_s, u"1M"_s };
    QTest::newRow("quotes and spaces") << DownloadPreset::Default << QString() << true << u"https://a'b.example/x y"_s
                                       << u"Down's 文件夹/$HOME `x`"_s << QStringList();
    QTest::newRow("template zsh would refuse unquoted")
        << DownloadPreset::Custom << u"-o %(title)s.%(ext)s --match-filter 'a;b'"_s << true << url << u"out"_s
        << QStringList { u"-o"_s, u"%(title)s.%(ext)s"_s, u"--match-filter"_s, u"a;b"_s };
    // Once the open ANSI-C quote swallowed the link and ran its text as a command.
    QTest::newRow("ANSI-C quote before a link holding a command")
        << DownloadPreset::Custom << u"$'\\'"_s << true << u"https://h.example/;touch PWNED;#"_s << u"out"_s
        << QStringList { u"$\\"_s };
    // After "--" yt-dlp reads even an option-shaped link as a link.
    QTest::newRow("option-shaped link") << DownloadPreset::Default << QString() << true
                                        << u"--config-locations=/tmp/x.conf"_s << u"out"_s << QStringList();
}

void TestDownloadExecution::commandWords()
{
    QFETCH(DownloadPreset, preset);
    QFETCH(QString, custom);
    QFETCH(bool, playlist);
    QFETCH(QString, url);
    QFETCH(QString, folder);
    QFETCH(QStringList, presetAndCustomWords);

    auto engine = makeEngine();
    QVERIFY(engine);
    engine->fake.setScenario(R"([{"out": "[download] 100% of 1.00MiB in 00:01\n"}])");
    const QString outputDir = engine->fixture.path(folder);
    engine->download(url, preset, custom, outputDir, playlist, false);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 20000);
    QCOMPARE(engine->only().status, DownloadStatus::Completed);

    QStringList expected { u"--js-runtimes"_s, u"node:"_s + engine->fixture.path(u"tools/node"_s),
        u"--ffmpeg-location"_s, engine->fixture.path(u"tools/ffmpeg"_s) };
    if (!playlist)
        expected << u"--no-playlist"_s;
    expected << u"-o"_s << outputDir + u"/%(title)s.%(ext)s"_s;
    expected += presetAndCustomWords;
    // After "--" the link is only ever a link.
    expected << u"--progress"_s << u"--"_s << url;
    const auto runs = engine->fake.runs();
    QCOMPARE(runs.size(), 1);
    QCOMPARE(runs.constFirst(), expected);
    QVERIFY(!QFileInfo::exists(u"PWNED"_s) && !QFileInfo::exists(outputDir + u"/PWNED"_s));
}

void TestDownloadExecution::cookiesOnlyWithChrome()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    engine->fake.setScenario("[]");
    engine->download(u"https://a.example/1"_s, DownloadPreset::Default, QString(), QString(), false, true);
    engine->download(u"https://a.example/2"_s, DownloadPreset::Default, QString(), QString(), false, true);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 20000);
    for (const QStringList &argv : engine->fake.runs())
        QVERIFY(!argv.contains(u"--cookies-from-browser"_s));
    QTRY_COMPARE(engine->log().filter(u"未找到 Chrome"_s).size(), 1);

    engine->fixture.writeFile(u"home/.config/google-chrome/Default/Cookies"_s, "SQLite format 3");
    engine->download(u"https://a.example/3"_s, DownloadPreset::Default, QString(), QString(), false, true);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled() && engine->fake.runs().size() == 3, 20000);
    const QStringList argv = engine->fake.runs().constLast();
    // After the tool words, before the playlist switch.
    const int at = int(argv.indexOf(u"--cookies-from-browser"_s));
    QCOMPARE(argv.value(at + 1), u"chrome"_s);
    QCOMPARE(argv.value(at - 1), engine->fixture.path(u"tools/ffmpeg"_s));
    QCOMPARE(argv.value(at + 2), u"--no-playlist"_s);
    QVERIFY(engine->log().contains(u"使用 Chrome 浏览器 Cookie"_s));
}

void TestDownloadExecution::outputTyping()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    engine->fake.setScenario(R"([{"err": "WARNING: slow\nERROR: broken\nplain note\n"},
        {"out": "ERROR looks bad but is stdout\n"}])");
    engine->download(u"https://t.example/v"_s);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 20000);
    QHash<QString, LogEntry::LogType> types;
    for (const LogEntry &entry : engine->state.logEntries())
        types.insert(entry.message, entry.type);
    QCOMPARE(types.value(u"WARNING: slow"_s), LogEntry::LogType::Warning);
    QCOMPARE(types.value(u"ERROR: broken"_s), LogEntry::LogType::Error);
    QCOMPARE(types.value(u"plain note"_s), LogEntry::LogType::Download);
    QCOMPARE(types.value(u"ERROR looks bad but is stdout"_s), LogEntry::LogType::Download);
    QCOMPARE(engine->only().status, DownloadStatus::Completed); // exit status decides, not the words
}

void TestDownloadExecution::failureMessages_data()
{
    QTest::addColumn<QByteArray>("steps");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    QTest::newRow("first three error lines of stderr")
        << QByteArray(R"([{"err": "ERROR: 1\nERROR: 2\nnoise\nERROR: 3\nERROR: 4\nERROR: 5\n"}])") << 1
        << u"ERROR: 1\nERROR: 2\nERROR: 3"_s;
    QTest::newRow("warnings count on stderr")
        << QByteArray(R"([{"err": "WARNING: w\nsome error here\n"}])") << 2 << u"WARNING: w\nsome error here"_s;
    QTest::newRow("stdout only when stderr is silent")
        << QByteArray(R"([{"out": "ERROR: x\nWARNING: not counted\nerror: y\n"}])") << 2 << u"ERROR: x\nerror: y"_s;
    QTest::newRow("stderr without error words: default")
        << QByteArray(R"([{"err": "just talk\n"}, {"out": "ERROR: ignored, stderr spoke\n"}])") << 3
        << u"下载失败 (错误码: 3)"_s;
    QTest::newRow("silent failure: default") << QByteArray("[]") << 4 << u"下载失败 (错误码: 4)"_s;
    QTest::newRow("last line without a newline")
        << QByteArray(R"([{"err": "ERROR: cut off"}])") << 1 << u"ERROR: cut off"_s;
}

void TestDownloadExecution::failureMessages()
{
    QFETCH(QByteArray, steps);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    auto engine = makeEngine();
    QVERIFY(engine);
    engine->fake.setScenario(steps, exitCode);
    engine->download(u"https://f.example/v"_s);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 20000);
    QCOMPARE(engine->only().status, DownloadStatus::Failed);
    QCOMPARE(engine->only().errorMessage, std::optional(message));
    QCOMPARE(engine->only().explanation, std::nullopt); // nothing known: the tool's text alone
    QVERIFY(!engine->only().endTime);
    QTRY_VERIFY(engine->log().contains(u"❌ 下载失败 (错误码: %1)"_s.arg(exitCode)));
}

void TestDownloadExecution::friendlyMessageWhileRunning()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    engine->fake.setScenario(R"([{"err": "ERROR: [youtube] x: Login required\n"}, {"sleep": 1.5}])", 1);
    engine->download(u"https://f.example/v"_s);
    QTRY_COMPARE_WITH_TIMEOUT(engine->only().errorMessage, std::optional(u"需要登录或 Cookie 已过期"_s), 10000);
    QCOMPARE(engine->only().status, DownloadStatus::Downloading);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 20000);
    // The tool's own line replaces it once the run has failed.
    QCOMPARE(engine->only().errorMessage, std::optional(u"ERROR: [youtube] x: Login required"_s));
}

void TestDownloadExecution::missingYtDlp()
{
    auto engine = SandboxEngine::start([](SandboxEngine &, ToolLocations &locations) { locations.ytDlp.clear(); }, {});
    engine->download(u"https://m.example/v"_s);
    QTRY_COMPARE_WITH_TIMEOUT(engine->only().status, DownloadStatus::Failed, 20000);
    // The usual message, and beside it which tool is missing.
    QCOMPARE(engine->only().errorMessage, std::optional(u"下载失败 (错误码: 127)"_s));
    const QString explanation = engine->only().explanation.value_or(QString());
    QVERIFY2(explanation.startsWith(u"找不到 yt-dlp"_s), qPrintable(explanation));
}

void TestDownloadExecution::atMostNAtOnce()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    engine->manager->setMaxConcurrentDownloads(2);
    engine->fake.setScenario(R"([{"sleep": 0.3}])");
    int most = 0;
    connect(engine->manager.get(), &DownloadManager::runningCountChanged, this,
        [&] { most = std::max(most, engine->manager->runningCount()); });
    QStringList urls;
    for (int i = 0; i < 6; ++i)
        urls << u"https://q.example/%1"_s.arg(i);
    for (const QString &url : std::as_const(urls))
        engine->download(url);

    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 30000);
    QCOMPARE(most, 2);
    // Started in the order they were asked for (the children themselves may write in any order).
    QStringList startedOrder;
    for (const QString &line : engine->fixture.systemLog().filter(u"[executeDownload] 任务ID"_s))
        startedOrder << line.section(u", URL: "_s, 1);
    QCOMPARE(startedOrder, urls);
    for (const DownloadTask &task : engine->manager->tasks())
        QCOMPARE(task.status, DownloadStatus::Completed);
}

void TestDownloadExecution::requestedBeforeThePathIsKnown()
{
    auto engine = makeEngine(false);
    QVERIFY(engine);
    engine->fake.setScenario("[]");
    QVERIFY(!engine->manager->isYtDlpPathKnown());
    engine->download(u"https://early.example/v"_s);
    QCOMPARE(engine->only().status, DownloadStatus::Pending);
    QTRY_COMPARE_WITH_TIMEOUT(engine->only().status, DownloadStatus::Completed, 20000);
    // It waited for the version probe, so it carries the runtime words.
    QVERIFY(engine->fake.runs().constFirst().contains(u"--js-runtimes"_s));
}

void TestDownloadExecution::cancelStopsTheWholeGroup()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    engine->manager->setMaxConcurrentDownloads(2);
    engine->fake.setScenario(R"([{"spawn_child_sleep": 60}, {"ignore_sigterm": true},
        {"out": "[download]  10.0% of 1.00MiB at 1.00KiB/s ETA 10:00\r"}, {"sleep": 60}])");
    for (int i = 0; i < 3; ++i)
        engine->download(u"https://c.example/%1"_s.arg(i));
    QTRY_COMPARE_WITH_TIMEOUT(engine->fake.pids().size(), 4, 20000); // two stand-ins, two children
    QTRY_VERIFY(engine->only().progress > 0);
    const QList<qint64> pids = engine->fake.pids();

    engine->manager->cancelAllDownloads();
    for (const DownloadTask &task : engine->manager->tasks())
        QCOMPARE(task.status, DownloadStatus::Cancelled);
    // The stand-ins ignore SIGTERM, so they go only with the SIGKILL after the grace period.
    QTRY_VERIFY_WITH_TIMEOUT(engine->manager->runningCount() == 0, DownloadManager::CancelGraceMs + 10000);
    for (qint64 pid : pids)
        QTRY_VERIFY2_WITH_TIMEOUT(!alive(pid), qPrintable(QString::number(pid)), 5000);
    QTest::qWait(100);
    for (const DownloadTask &task : engine->manager->tasks())
        QCOMPARE(task.status, DownloadStatus::Cancelled);
    QCOMPARE(engine->fake.runs().size(), 2); // the waiting one never started
    QVERIFY(engine->log().filter(u"下载失败"_s).isEmpty());
}

void TestDownloadExecution::launchFailuresLoseNothing()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    engine->fake.setScenario("[]");
    engine->fixture.writeFile(u"a-file"_s, "x");
    engine->download(
        u"https://l.example/1"_s, DownloadPreset::Default, QString(), engine->fixture.path(u"a-file/sub"_s));
    engine->download(u"https://l.example/2"_s);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 20000);
    const auto tasks = engine->manager->tasks();
    QCOMPARE(tasks.at(0).status, DownloadStatus::Failed);
    QCOMPARE(tasks.at(0).errorMessage, std::optional(u"无法创建输出目录: "_s + engine->fixture.path(u"a-file/sub"_s)));
    QCOMPARE(tasks.at(1).status, DownloadStatus::Completed);

    // A shell that cannot be started fails the task with the reason, and the queue goes on.
    qputenv("QUILLBOX_SHELL", engine->fixture.path(u"no-shell"_s).toUtf8());
    engine->download(u"https://l.example/3"_s);
    engine->download(u"https://l.example/4"_s);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 20000);
    for (int i : { 2, 3 }) {
        const DownloadTask &task = engine->manager->tasks().at(i);
        QCOMPARE(task.status, DownloadStatus::Failed);
        QVERIFY(task.errorMessage.has_value());
        QVERIFY(task.explanation.value_or(QString()).contains(
            u"无法启动命令解释器 "_s + engine->fixture.path(u"no-shell"_s)));
    }
    QCOMPARE(engine->manager->runningCount(), 0);
}

void TestDownloadExecution::outputThatIsNotUtf8()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    engine->fake.setScenario(R"([{"out_hex": "5b646f776e6c6f61645d2035302e30252066ff0a"}])");
    engine->download(u"https://u.example/v"_s);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 20000);
    QCOMPARE(engine->only().status, DownloadStatus::Completed);
    QVERIFY(engine->log().contains(u"[download] 50.0% f\uFFFD"_s));
}

void TestDownloadExecution::silentDownloadSaysSo()
{
    // A download that goes quiet says so on its row and in the log, takes it back when output
    // resumes, and can still be stopped. The quiet period is shortened from 60 s to 1 s.
    auto engine = makeEngine();
    QVERIFY(engine);
    engine->manager->setStallNoticeMs(1000);
    engine->fake.setScenario(R"([{"out": "[download]   5.0% of 1.00MiB\n"}, {"sleep": 2},
        {"out": "[download]  60.0% of 1.00MiB\n"}, {"sleep": 60}])");
    const QString url = u"https://quiet.example/v"_s;
    engine->download(url);
    QTRY_COMPARE_WITH_TIMEOUT(engine->only().notice, u"1 秒无响应"_s, 10000);
    QCOMPARE(engine->only().status, DownloadStatus::Downloading);
    QCOMPARE(engine->only().progress, 0.05);
    QTRY_VERIFY(engine->log().contains(u"⚠️ 1 秒无响应："_s + url));

    QTRY_COMPARE_WITH_TIMEOUT(engine->only().progress, 0.6, 10000);
    QCOMPARE(engine->only().notice, QString());
    QTRY_COMPARE_WITH_TIMEOUT(engine->only().notice, u"1 秒无响应"_s, 10000);

    engine->manager->cancelAllDownloads();
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), DownloadManager::CancelGraceMs + 10000);
    QCOMPARE(engine->only().status, DownloadStatus::Cancelled);
    QCOMPARE(engine->only().notice, QString());
    QCOMPARE(engine->log().filter(u"秒无响应"_s).size(), 2);
}

void TestDownloadExecution::foldersAndArgumentsCheckedFirst()
{
    auto engine = makeEngine();
    QVERIFY(engine);
    engine->fake.setScenario("[]");
    // "~/" is the home folder, as in a shell.
    engine->download(u"https://h.example/tilde"_s, DownloadPreset::Default, QString(), u"~/Videos"_s);
    // A relative folder would depend on where Quillbox was started from.
    engine->download(u"https://h.example/relative"_s, DownloadPreset::Default, QString(), u"Videos"_s);
    // An open quote in the custom arguments would swallow the link: refused before running.
    engine->download(u"https://h.example/;echo INJECTED;#"_s, DownloadPreset::Custom, u"--match-title Don't"_s);
    QTRY_VERIFY_WITH_TIMEOUT(engine->settled(), 20000);

    const auto tasks = engine->manager->tasks();
    QCOMPARE(tasks.at(0).status, DownloadStatus::Completed);
    const QStringList argv = engine->fake.runs().constFirst();
    QCOMPARE(argv.at(argv.indexOf(u"-o"_s) + 1), engine->fixture.home() + u"/Videos/%(title)s.%(ext)s"_s);
    QVERIFY(QFileInfo(engine->fixture.home() + u"/Videos"_s).isDir());

    QCOMPARE(tasks.at(1).status, DownloadStatus::Failed);
    QCOMPARE(tasks.at(1).errorMessage, std::optional(u"输出目录必须是完整路径: Videos"_s));
    QCOMPARE(tasks.at(2).status, DownloadStatus::Failed);
    QVERIFY(tasks.at(2).errorMessage.value_or(QString()).startsWith(u"自定义参数中的单引号没有闭合"_s));
    QCOMPARE(engine->fake.runs().size(), 1);
}

QTEST_GUILESS_MAIN(TestDownloadExecution)
#include "tst_downloadexecution.moc"
