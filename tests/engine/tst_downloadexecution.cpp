#include "engine/downloadmanager.h"
#include "engine/secretarguments.h"
#include "model/appstate.h"
#include "model/taskmodel.h"

#include "enginefixture.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestDownloadExecution : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_engine.reset(); }
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
    void launchFailuresLoseNothing();
    void outputThatIsNotUtf8();
    void silentDownloadSaysSo();
    void foldersAndArgumentsCheckedFirst();
    void secretsRunButAreNotShown();

private:
    std::unique_ptr<SandboxEngine> m_engine; // a new one for every test
};

namespace {
// The stand-in as yt-dlp, with node and ffmpeg found (null if discovery did not finish).
std::unique_ptr<SandboxEngine> makeEngine(bool ready = true)
{
    const auto tools = [](SandboxEngine &engine, ToolLocations &locations) {
        locations.runtimes[1].candidates << engine.fixture.writeScript(u"tools/node"_s, "echo v22.11.0");
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

void TestDownloadExecution::init()
{
    m_engine = makeEngine();
    QVERIFY(m_engine);
}

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

    m_engine->fake.setScenario(R"([{"out": "[download] 100% of 1.00MiB in 00:01\n"}])");
    const QString outputDir = m_engine->fixture.path(folder);
    m_engine->download(url, preset, custom, outputDir, playlist, false);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    QCOMPARE(m_engine->only().status, DownloadStatus::Completed);

    QStringList expected { u"--js-runtimes"_s, u"node:"_s + m_engine->fixture.path(u"tools/node"_s),
        u"--ffmpeg-location"_s, m_engine->fixture.path(u"tools/ffmpeg"_s) };
    if (!playlist)
        expected << u"--no-playlist"_s;
    expected << u"-o"_s << outputDir + u"/%(title)s.%(ext)s"_s;
    expected += presetAndCustomWords;
    // After "--" the link is only ever a link.
    expected << u"--progress"_s << u"--"_s << url;
    const auto runs = m_engine->fake.runs();
    QCOMPARE(runs.size(), 1);
    QCOMPARE(runs.constFirst(), expected);
    QVERIFY(!QFileInfo::exists(u"PWNED"_s) && !QFileInfo::exists(outputDir + u"/PWNED"_s));
}

void TestDownloadExecution::cookiesOnlyWithChrome()
{
    m_engine->fake.setScenario("[]");
    m_engine->download(u"https://a.example/1"_s, DownloadPreset::Default, QString(), QString(), false, true);
    m_engine->download(u"https://a.example/2"_s, DownloadPreset::Default, QString(), QString(), false, true);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    for (const QStringList &argv : m_engine->fake.runs())
        QVERIFY(!argv.contains(u"--cookies-from-browser"_s));
    QTRY_COMPARE(m_engine->log().filter(u"未找到 Chrome"_s).size(), 1);

    m_engine->fixture.writeFile(u"home/.config/google-chrome/Default/Cookies"_s, "SQLite format 3");
    m_engine->download(u"https://a.example/3"_s, DownloadPreset::Default, QString(), QString(), false, true);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled() && m_engine->fake.runs().size() == 3, 20000);
    const QStringList argv = m_engine->fake.runs().constLast();
    // After the tool words, before the playlist switch.
    const int at = int(argv.indexOf(u"--cookies-from-browser"_s));
    QCOMPARE(argv.value(at + 1), u"chrome"_s);
    QCOMPARE(argv.value(at - 1), m_engine->fixture.path(u"tools/ffmpeg"_s));
    QCOMPARE(argv.value(at + 2), u"--no-playlist"_s);
    QVERIFY(m_engine->log().contains(u"使用 Chrome 浏览器 Cookie"_s));
}

void TestDownloadExecution::outputTyping()
{
    m_engine->fake.setScenario(R"([{"err": "WARNING: slow\nERROR: broken\nplain note\n"},
        {"out": "ERROR looks bad but is stdout\n"}])");
    m_engine->download(u"https://t.example/v"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    QHash<QString, LogEntry::LogType> types;
    for (const LogEntry &entry : m_engine->state.logEntries())
        types.insert(entry.message, entry.type);
    QCOMPARE(types.value(u"WARNING: slow"_s), LogEntry::LogType::Warning);
    QCOMPARE(types.value(u"ERROR: broken"_s), LogEntry::LogType::Error);
    QCOMPARE(types.value(u"plain note"_s), LogEntry::LogType::Download);
    QCOMPARE(types.value(u"ERROR looks bad but is stdout"_s), LogEntry::LogType::Download);
    QCOMPARE(m_engine->only().status, DownloadStatus::Completed); // exit status decides, not the words
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
    m_engine->fake.setScenario(steps, exitCode);
    m_engine->download(u"https://f.example/v"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    QCOMPARE(m_engine->only().status, DownloadStatus::Failed);
    QCOMPARE(m_engine->only().errorMessage, std::optional(message));
    QCOMPARE(m_engine->only().explanation, std::nullopt); // nothing known: the tool's text alone
    QVERIFY(!m_engine->only().endTime);
    QTRY_VERIFY(m_engine->log().contains(u"❌ 下载失败 (错误码: %1)"_s.arg(exitCode)));
}

void TestDownloadExecution::friendlyMessageWhileRunning()
{
    m_engine->fake.setScenario(R"([{"err": "ERROR: [youtube] x: Login required\n"}, {"sleep": 1.5}])", 1);
    m_engine->download(u"https://f.example/v"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->only().errorMessage, std::optional(u"需要登录或 Cookie 已过期"_s), 10000);
    QCOMPARE(m_engine->only().status, DownloadStatus::Downloading);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    // The tool's own line replaces it once the run has failed.
    QCOMPARE(m_engine->only().errorMessage, std::optional(u"ERROR: [youtube] x: Login required"_s));
}

void TestDownloadExecution::missingYtDlp()
{
    m_engine.reset();
    m_engine = SandboxEngine::start([](SandboxEngine &, ToolLocations &locations) { locations.ytDlp.clear(); }, {});
    m_engine->download(u"https://m.example/v"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->only().status, DownloadStatus::Failed, 20000);
    // The usual message, and beside it which tool is missing.
    QCOMPARE(m_engine->only().errorMessage, std::optional(u"下载失败 (错误码: 127)"_s));
    const QString explanation = m_engine->only().explanation.value_or(QString());
    QVERIFY2(explanation.startsWith(u"找不到 yt-dlp"_s), qPrintable(explanation));
}

void TestDownloadExecution::atMostNAtOnce()
{
    m_engine->manager->setMaxConcurrentDownloads(2);
    m_engine->fake.setScenario(R"([{"sleep": 0.3}])");
    int most = 0;
    connect(m_engine->manager.get(), &DownloadManager::runningCountChanged, this,
        [&] { most = std::max(most, m_engine->manager->runningCount()); });
    QStringList urls;
    for (int i = 0; i < 6; ++i)
        urls << u"https://q.example/%1"_s.arg(i);
    for (const QString &url : std::as_const(urls))
        m_engine->download(url);

    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 30000);
    QCOMPARE(most, 2);
    // Started in the order they were asked for (the children themselves may write in any order).
    QStringList startedOrder;
    for (const QString &line : m_engine->fixture.systemLog().filter(u"[executeDownload] 任务ID"_s))
        startedOrder << line.section(u", URL: "_s, 1);
    QCOMPARE(startedOrder, urls);
    for (const DownloadTask &task : m_engine->manager->tasks())
        QCOMPARE(task.status, DownloadStatus::Completed);
}

void TestDownloadExecution::requestedBeforeThePathIsKnown()
{
    m_engine.reset(); // one whose discovery has not finished
    m_engine = makeEngine(false);
    QVERIFY(m_engine);
    m_engine->fake.setScenario("[]");
    QVERIFY(!m_engine->manager->isYtDlpPathKnown());
    m_engine->download(u"https://early.example/v"_s);
    QCOMPARE(m_engine->only().status, DownloadStatus::Pending);
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->only().status, DownloadStatus::Completed, 20000);
    // It waited for the version probe, so it carries the runtime words.
    QVERIFY(m_engine->fake.runs().constFirst().contains(u"--js-runtimes"_s));
}

void TestDownloadExecution::launchFailuresLoseNothing()
{
    m_engine->fake.setScenario("[]");
    m_engine->fixture.writeFile(u"a-file"_s, "x");
    m_engine->download(
        u"https://l.example/1"_s, DownloadPreset::Default, QString(), m_engine->fixture.path(u"a-file/sub"_s));
    m_engine->download(u"https://l.example/2"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    const auto tasks = m_engine->manager->tasks();
    QCOMPARE(tasks.at(0).status, DownloadStatus::Failed);
    QCOMPARE(
        tasks.at(0).errorMessage, std::optional(u"无法创建输出目录: "_s + m_engine->fixture.path(u"a-file/sub"_s)));
    QCOMPARE(tasks.at(1).status, DownloadStatus::Completed);

    // A shell that cannot be started fails the task with the reason, and the queue goes on.
    qputenv("QUILLBOX_SHELL", m_engine->fixture.path(u"no-shell"_s).toUtf8());
    m_engine->download(u"https://l.example/3"_s);
    m_engine->download(u"https://l.example/4"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    for (int i : { 2, 3 }) {
        const DownloadTask &task = m_engine->manager->tasks().at(i);
        QCOMPARE(task.status, DownloadStatus::Failed);
        QVERIFY(task.errorMessage.has_value());
        QVERIFY(task.explanation.value_or(QString()).contains(
            u"无法启动命令解释器 "_s + m_engine->fixture.path(u"no-shell"_s)));
        // The log has the explanation alone; the platform's words stay in the task's message.
        QTRY_VERIFY(m_engine->log().contains(*task.explanation));
        QVERIFY(!m_engine->log().contains(*task.errorMessage));
        QVERIFY(!m_engine->log().contains(u"❌ "_s + *task.errorMessage));
    }
    QCOMPARE(
        m_engine->log().filter(u"无法创建输出目录"_s), QStringList { *m_engine->manager->tasks().at(0).explanation });
    QCOMPARE(m_engine->manager->runningCount(), 0);
}

void TestDownloadExecution::outputThatIsNotUtf8()
{
    m_engine->fake.setScenario(R"([{"out_hex": "5b646f776e6c6f61645d2035302e30252066ff0a"}])");
    m_engine->download(u"https://u.example/v"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    QCOMPARE(m_engine->only().status, DownloadStatus::Completed);
    QVERIFY(m_engine->log().contains(u"[download] 50.0% f\uFFFD"_s));
}

void TestDownloadExecution::silentDownloadSaysSo()
{
    // A download that goes quiet says so on its row and in the log, takes it back when output
    // resumes, and can still be stopped. The quiet period is shortened from 60 s to 1 s.
    m_engine->manager->setStallNoticeMs(1000);
    m_engine->fake.setScenario(R"([{"out": "[download]   5.0% of 1.00MiB\n"}, {"sleep": 2},
        {"out": "[download]  60.0% of 1.00MiB\n"}, {"sleep": 60}])");
    const QString url = u"https://quiet.example/v"_s;
    m_engine->download(url);
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->only().notice, u"1 秒无响应"_s, 10000);
    QCOMPARE(m_engine->only().status, DownloadStatus::Downloading);
    QCOMPARE(m_engine->only().progress, 0.05);
    QTRY_VERIFY(m_engine->log().contains(u"⚠️ 1 秒无响应："_s + url));

    QTRY_COMPARE_WITH_TIMEOUT(m_engine->only().progress, 0.6, 10000);
    QCOMPARE(m_engine->only().notice, QString());
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->only().notice, u"1 秒无响应"_s, 10000);

    m_engine->manager->cancelAllDownloads();
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), DownloadManager::CancelGraceMs + 10000);
    QCOMPARE(m_engine->only().status, DownloadStatus::Cancelled);
    QCOMPARE(m_engine->only().notice, QString());
    QCOMPARE(m_engine->log().filter(u"秒无响应"_s).size(), 2);
}

void TestDownloadExecution::foldersAndArgumentsCheckedFirst()
{
    m_engine->fake.setScenario("[]");
    // "~/" is the home folder, as in a shell.
    m_engine->download(u"https://h.example/tilde"_s, DownloadPreset::Default, QString(), u"~/Videos"_s);
    // A relative folder would depend on where Quillbox was started from.
    m_engine->download(u"https://h.example/relative"_s, DownloadPreset::Default, QString(), u"Videos"_s);
    // An open quote in the custom arguments would swallow the link: refused before running.
    m_engine->download(u"https://h.example/;echo INJECTED;#"_s, DownloadPreset::Custom, u"--match-title Don't"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);

    const auto tasks = m_engine->manager->tasks();
    QCOMPARE(tasks.at(0).status, DownloadStatus::Completed);
    const QStringList argv = m_engine->fake.runs().constFirst();
    QCOMPARE(argv.at(argv.indexOf(u"-o"_s) + 1), m_engine->fixture.home() + u"/Videos/%(title)s.%(ext)s"_s);
    QVERIFY(QFileInfo(m_engine->fixture.home() + u"/Videos"_s).isDir());

    QCOMPARE(tasks.at(1).status, DownloadStatus::Failed);
    QCOMPARE(tasks.at(1).errorMessage, std::optional(u"输出目录必须是完整路径: Videos"_s));
    QCOMPARE(tasks.at(2).status, DownloadStatus::Failed);
    QVERIFY(tasks.at(2).errorMessage.value_or(QString()).startsWith(u"自定义参数中的单引号没有闭合"_s));
    QCOMPARE(m_engine->fake.runs().size(), 1);
}

void TestDownloadExecution::secretsRunButAreNotShown()
{
    m_engine->fake.setScenario("[]", 1); // fails, so that it can be retried
    const QString typed = u"-u me --password 'hunter 2' --video-password=vp-99"_s;
    m_engine->download(u"https://s.example/v"_s, DownloadPreset::Custom, typed);
    // Refused for its open quote: the message on the row quotes the text, masked.
    m_engine->download(u"https://s.example/w"_s, DownloadPreset::Custom, u"-p 'ap-77"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    const auto tasks = m_engine->manager->tasks();
    QCOMPARE(tasks.at(0).status, DownloadStatus::Failed);
    QCOMPARE(tasks.at(1).status, DownloadStatus::Failed);
    QVERIFY(tasks.at(1).errorMessage.value_or(QString()).endsWith(u"-p "_s + SecretMask));

    const QStringList argv = m_engine->fake.runs().constFirst();
    QCOMPARE(argv.mid(argv.indexOf(u"--password"_s), 2), (QStringList { u"--password"_s, u"hunter 2"_s }));
    QVERIFY(argv.contains(u"--video-password=vp-99"_s));
    const QString shown = u"--password "_s + SecretMask + u" --video-password="_s + SecretMask;
    QVERIFY(!m_engine->log().filter(u"执行命令: "_s).filter(shown).isEmpty());
    QVERIFY(!m_engine->fixture.systemLog().filter(shown).isEmpty());
    for (const QString &secret : { u"hunter"_s, u"vp-99"_s, u"ap-77"_s }) {
        QVERIFY2(m_engine->log().filter(secret).isEmpty(), qPrintable(secret));
        QVERIFY2(m_engine->fixture.systemLog().filter(secret).isEmpty(), qPrintable(secret));
        for (const DownloadTask &task : tasks) {
            QVERIFY(!task.errorMessage.value_or(QString()).contains(secret));
            QVERIFY(!task.title.contains(secret));
        }
    }

    // "重试" runs it with the password, as typed.
    QCOMPARE(m_engine->manager->requestFor(tasks.at(0).id)->customArgs, typed);
    m_engine->manager->retryDownload(tasks.at(0).id.toString(QUuid::WithoutBraces));
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->fake.runs().size(), 2, 20000);
    QCOMPARE(m_engine->fake.runs().constLast(), argv);
}

QTEST_GUILESS_MAIN(TestDownloadExecution)
#include "tst_downloadexecution.moc"
