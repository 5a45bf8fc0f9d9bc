#include "engine/downloadmanager.h"
#include "model/appstate.h"

#include "enginefixture.h"

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
};

namespace {
std::unique_ptr<SandboxEngine> makeEngine(bool withRuntime = false)
{
    return SandboxEngine::start(
        [withRuntime](SandboxEngine &engine, ToolLocations &locations) {
            if (withRuntime)
                locations.runtimes[0].candidates << engine.fixture.writeScript(u"tools/deno"_s, "exit 0");
        },
        [withRuntime](const DownloadManager &manager) {
            return !manager.ytDlpVersion().isEmpty() && (!withRuntime || !manager.detectedJSRuntime().isEmpty());
        });
}

QString runUpdate(DownloadManager &manager)
{
    std::optional<QString> answer;
    manager.updateYtDlp([&answer](const QString &text) {
        QVERIFY(!answer); // exactly once
        answer = text;
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

QTEST_GUILESS_MAIN(TestMaintenance)
#include "tst_maintenance.moc"
