#include "engine/shellrunner.h"
#include "engine/toolchain.h"
#include "engine/tooldiscovery.h"

#include "enginefixture.h"

#include <QSignalSpy>
#include <QTimer>
#include <QTranslator>

using namespace Qt::StringLiterals;
using quillbox::ToolAction;

// Where the tools are found, what they say of themselves, and the verdicts on them: the parsing and
// verdict tables on their own, discovery with scripts in a sandbox and with the real tools.
class TestToolDiscovery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void verboseReports();
    void runtimeVersions_data();
    void runtimeVersions();
    void updateRoutes_data();
    void updateRoutes();
    void updateFailures_data();
    void updateFailures();
    void verdicts_data();
    void verdicts();
    void choosingTheYtDlpPath_data();
    void choosingTheYtDlpPath();
    void pathsWithSpacesAndRuntimeOnPath();
    void runtimeOrderAndSilentFfmpeg();
    void nothingFound();
    void verdictsFollowTheLanguage();
    void jsRuntimesNeedARecentYtDlp();
    void setCustomPath();
    void realRuntimesJudgedByCurrentYtDlp();
    void debiansYtDlpCannotUpdateItself();
    void startDoesNotWaitForTheShell();
};

namespace {
QString recorded(const char *name)
{
    QFile file(qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/data/"_s + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

JsRuntimeInfo runtime(const QString &name, const QString &version, bool supported)
{
    return { name, u"/bin/"_s + name, version, supported, true };
}

QByteArray versionScript(const QByteArray &version, int exitCode = 0)
{
    return "case \"$*\" in *--version*) echo " + version + "; exit " + QByteArray::number(exitCode) + ";; esac\nexit 0";
}

// A stand-in for a loaded translation: every text of one context comes back marked.
class MarkingTranslator : public QTranslator
{
public:
    explicit MarkingTranslator(const char *context)
        : m_context(context)
    {
    }
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *source, const char *, int) const override
    {
        return qstrcmp(context, m_context) == 0 ? u"EN "_s + QString::fromUtf8(source) : QString();
    }

private:
    const char *m_context;
};

struct WithState
{
    AppState state;
};

// Discovery on its own with its own log, started as the engine starts it.
struct StartedDiscovery : WithState, ToolDiscovery
{
    explicit StartedDiscovery(ToolLocations locations)
        : ToolDiscovery(&state, std::move(locations))
    {
        start();
    }
    QStringList log() const { return EngineFixture::messages(state); }
};
} // namespace

void TestToolDiscovery::verboseReports()
{
    const YtDlpReport debian = parseVerboseReport(recorded("ytdlp-verbose-debian.txt"));
    QCOMPARE(debian.variant, u"debian*"_s);
    QVERIFY(!debian.printedRuntimes);

    const YtDlpReport current = parseVerboseReport(recorded("ytdlp-verbose-2026.txt"));
    QCOMPARE(current.variant, u"zip"_s);
    QVERIFY(current.printedRuntimes);
    const QList<std::pair<QString, bool>> expected { { u"deno"_s, true }, { u"node"_s, false } };
    QCOMPARE(current.runtimes, expected);

    const YtDlpReport none
        = parseVerboseReport(u"[debug] yt-dlp version 2026.01.01 [abc]\n[debug] JS runtimes: none\n"_s);
    QCOMPARE(none.variant, QString());
    QVERIFY(none.printedRuntimes && none.runtimes.isEmpty());
    const YtDlpReport quickjs
        = parseVerboseReport(u"[debug] JS runtimes: bun-1.1.0 (unsupported), quickjs-2024-01-13"_s);
    const QList<std::pair<QString, bool>> both { { u"bun"_s, false }, { u"quickjs"_s, true } };
    QCOMPARE(quickjs.runtimes, both);
}

void TestToolDiscovery::runtimeVersions_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("node 20") << u"node"_s << u"v20.20.2\n"_s << u"20.20.2"_s << false;
    QTest::newRow("node 22") << u"node"_s << u"v22.0.0"_s << u"22.0.0"_s << true;
    QTest::newRow("deno banner") << u"deno"_s << u"deno 2.9.6 (stable, release, x86_64-unknown-linux-gnu)\nv8 15.0"_s
                                 << u"2.9.6"_s << true;
    QTest::newRow("says nothing") << u"node"_s << QString() << QString() << false;
}

void TestToolDiscovery::runtimeVersions()
{
    QFETCH(QString, name);
    QFETCH(QString, output);
    QFETCH(QString, version);
    QCOMPARE(parseRuntimeVersion(name, output), version);
    QTEST(meetsRuntimeMinimum(name, version), "accepted");
}

void TestToolDiscovery::updateRoutes_data()
{
    QTest::addColumn<QString>("variant");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("route");
    QTest::newRow("Debian's package") << u"debian*"_s << u"/usr/bin/yt-dlp"_s << int(UpdateRoute::PackageManager);
    QTest::newRow("official zip") << u"zip"_s << u"/usr/local/bin/yt-dlp"_s << int(UpdateRoute::SelfUpdate);
    QTest::newRow("Quillbox's own copy") << u"linux_exe"_s << u"/data/bin/yt-dlp"_s << int(UpdateRoute::Kept);
    QTest::newRow("nothing said") << QString() << u"/usr/bin/yt-dlp"_s << int(UpdateRoute::Unknown);
}

void TestToolDiscovery::updateRoutes()
{
    QFETCH(QString, variant);
    QFETCH(QString, path);
    QTEST(int(updateRouteFor(variant, path, u"/data/bin/yt-dlp"_s)), "route");
}

void TestToolDiscovery::updateFailures_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("route");
    QTest::addColumn<QString>("says");
    QTest::newRow("apt refuses") << u"ERROR: As yt-dlp has been installed via apt, you should use that to update."_s
                                 << int(UpdateRoute::Unknown) << u"软件包管理器"_s;
    QTest::newRow("offline, Debian's package") << u"ERROR: Unable to obtain version info; Please try again later"_s
                                               << int(UpdateRoute::PackageManager) << u"安装最新 yt-dlp"_s;
    QTest::newRow("offline") << u"ERROR: Unable to obtain version info (HTTPSConnection(host='api.github.com', "
                                u"port=443): Failed to resolve 'api.github.com')"_s
                             << int(UpdateRoute::SelfUpdate) << u"无法连接到 GitHub"_s;
    QTest::newRow("rate limited") << u"ERROR: HTTP Error 403: rate limit exceeded"_s << int(UpdateRoute::SelfUpdate)
                                  << u"限制了请求次数"_s;
    QTest::newRow("not writable") << u"ERROR: Unable to write to /usr/local/bin/yt-dlp; Permission denied"_s
                                  << int(UpdateRoute::SelfUpdate) << u"没有权限"_s;
    QTest::newRow("unknown") << u"something else"_s << int(UpdateRoute::SelfUpdate) << QString();
}

void TestToolDiscovery::updateFailures()
{
    QFETCH(QString, output);
    QFETCH(int, route);
    QFETCH(QString, says);
    const QString advice = explainUpdateFailure(output, UpdateRoute(route));
    QVERIFY2(says.isEmpty() ? advice.isEmpty() : advice.contains(says), qPrintable(advice));
}

void TestToolDiscovery::verdicts_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<int>("route");
    QTest::addColumn<QList<JsRuntimeInfo>>("runtimes");
    QTest::addColumn<QString>("ffprobe");
    // yt-dlp, runtime, ffmpeg: tint and action; then the download page's notice
    QTest::addColumn<QList<int>>("expected");
    QTest::addColumn<QString>("says");

    const auto g = int(Tint::Green), o = int(Tint::Orange), r = int(Tint::Red);
    const auto none = int(ToolAction::None);
    const QList<JsRuntimeInfo> deno { runtime(u"deno"_s, u"2.9.6"_s, true), runtime(u"node"_s, u"20.20.2"_s, false) };
    const QList<JsRuntimeInfo> oldNode { runtime(u"node"_s, u"20.20.2"_s, false) };
    QTest::newRow("all good") << u"2026.11.20"_s << int(UpdateRoute::Kept) << deno << u"/usr/bin/ffprobe"_s
                              << QList<int> { g, none, g, none, g, none, none } << u"使用 deno 2.9.6"_s;
    QTest::newRow("Debian's yt-dlp: a kept copy fixes it")
        << u"2023.03.04"_s << int(UpdateRoute::PackageManager) << deno << u"/usr/bin/ffprobe"_s
        << QList<int> { r, int(ToolAction::InstallYtDlp), o, none, g, none, int(ToolAction::OpenSettings) }
        << u"不能自行更新"_s;
    QTest::newRow("only an old node") << u"2026.11.20"_s << int(UpdateRoute::SelfUpdate) << oldNode
                                      << u"/usr/bin/ffprobe"_s
                                      << QList<int> { g, none, r, int(ToolAction::InstallDeno), g, none,
                                             int(ToolAction::OpenSettings) }
                                      << u"node 20.20.2 版本过旧（需要 ≥ 22.0.0）"_s;
    QTest::newRow("no runtime, no ffprobe")
        << u"2026.11.20"_s << int(UpdateRoute::SelfUpdate) << QList<JsRuntimeInfo>() << QString()
        << QList<int> { g, none, r, int(ToolAction::InstallDeno), o, int(ToolAction::CopyFfmpegCommand),
               int(ToolAction::OpenSettings) }
        << u"缺少 ffprobe"_s;
    QTest::newRow("behind the latest release")
        << u"2026.08.19"_s << int(UpdateRoute::SelfUpdate) << deno << u"/usr/bin/ffprobe"_s
        << QList<int> { o, int(ToolAction::UpdateYtDlp), g, none, g, none, none } << u"最新版本是 2026.11.20"_s;
    QTest::newRow("no yt-dlp") << QString() << int(UpdateRoute::Unknown) << deno << u"/usr/bin/ffprobe"_s
                               << QList<int> { r, int(ToolAction::InstallYtDlp), g, none, g, none,
                                      int(ToolAction::OpenSettings) }
                               << u"未找到可用的 yt-dlp"_s;
}

void TestToolDiscovery::verdicts()
{
    QFETCH(QString, version);
    QFETCH(int, route);
    QFETCH(QList<JsRuntimeInfo>, runtimes);
    QFETCH(QString, ffprobe);
    QFETCH(QList<int>, expected);
    QFETCH(QString, says);

    ToolchainFacts facts;
    facts.probed = true;
    facts.ytDlpVersion = version;
    facts.route = UpdateRoute(route);
    facts.latestYtDlp = u"2026.11.20"_s;
    facts.today = QDate(2026, 11, 24);
    facts.runtimes = runtimes;
    facts.ffmpeg = u"/usr/bin/ffmpeg"_s;
    facts.ffprobe = ffprobe;
    const ToolchainVerdicts verdicts = judgeToolchain(facts);
    const QList<int> actual { int(verdicts.ytDlp.tint), int(verdicts.ytDlp.action), int(verdicts.runtime.tint),
        int(verdicts.runtime.action), int(verdicts.ffmpeg.tint), int(verdicts.ffmpeg.action),
        int(verdicts.notice.action) };
    QCOMPARE(actual, expected);
    QCOMPARE(verdicts.notice.text.isEmpty(), expected.last() == int(ToolAction::None));
    const QString all = verdicts.ytDlp.text + verdicts.runtime.text + verdicts.ffmpeg.text;
    QVERIFY2(all.contains(says), qPrintable(all));
}

void TestToolDiscovery::choosingTheYtDlpPath_data()
{
    QTest::addColumn<QString>("stored"); // "" = nothing stored, "<empty>" = an empty text
    QTest::addColumn<QStringList>("candidates"); // "bad:" = exists but fails --version, "missing:" = not there
    QTest::addColumn<QString>("chosen");
    const QStringList a { u"a/yt-dlp"_s };
    QTest::newRow("first working candidate") << QString() << a + QStringList { u"b/yt-dlp"_s } << u"a/yt-dlp"_s;
    QTest::newRow("failing candidate skipped")
        << QString() << QStringList { u"bad:a/yt-dlp"_s, u"b/yt-dlp.exe"_s } << u"b/yt-dlp.exe"_s;
    QTest::newRow("missing candidate skipped")
        << QString() << QStringList { u"missing:a/yt-dlp"_s, u"b/yt-dlp"_s } << u"b/yt-dlp"_s;
    QTest::newRow("stored path used") << u"custom/yt-dlp"_s << a << u"custom/yt-dlp"_s;
    QTest::newRow("stored path gone") << u"missing:custom/yt-dlp"_s << a << u"a/yt-dlp"_s;
    QTest::newRow("stored empty text") << u"<empty>"_s << a << u"a/yt-dlp"_s;
}

void TestToolDiscovery::choosingTheYtDlpPath()
{
    QFETCH(QString, stored);
    QFETCH(QStringList, candidates);
    QFETCH(QString, chosen);
    EngineFixture fixture;
    // The program for "name", "bad:name" or "missing:name".
    const auto place = [&fixture](const QString &name, const QByteArray &version) {
        if (name.startsWith(u"missing:"_s))
            return fixture.path(name.mid(8));
        const bool bad = name.startsWith(u"bad:"_s);
        return fixture.writeScript(bad ? name.mid(4) : name, versionScript(version, bad ? 1 : 0));
    };
    ToolLocations locations = fixture.emptyLocations();
    for (const QString &candidate : std::as_const(candidates))
        locations.ytDlp << place(candidate, "2025.11.12");
    if (!stored.isEmpty())
        QSettings().setValue(u"customYtDlpPath"_s, stored == u"<empty>"_s ? QString() : place(stored, "2025.01.01"));

    StartedDiscovery manager(locations);
    QTRY_VERIFY_WITH_TIMEOUT(manager.isYtDlpPathKnown(), 20000);
    QCOMPARE(manager.ytDlpPath(), fixture.path(chosen));
}

// Places with spaces and quotes are used as they are; a runtime the shell finds on its PATH beats
// runtimes that come later in the order.
void TestToolDiscovery::pathsWithSpacesAndRuntimeOnPath()
{
    EngineFixture fixture;
    ToolLocations locations = fixture.emptyLocations();
    locations.ytDlp << fixture.writeScript(u"My Tools/it's here/yt-dlp"_s, versionScript("2025.12.01"));
    locations.ffmpeg << fixture.writeScript(u"My Tools/ffmpeg"_s, "echo 'ffmpeg version 9 spaced'");
    const QString deno = fixture.writeScript(u"bin/deno"_s, "echo deno 2.5.0"); // on PATH only
    locations.runtimes[1].candidates << fixture.writeScript(u"n/node"_s, "echo v22.11.0");
    StartedDiscovery manager(locations);
    QTRY_VERIFY_WITH_TIMEOUT(manager.isYtDlpPathKnown(), 20000);
    QCOMPARE(manager.ytDlpPath(), locations.ytDlp.constFirst());
    QTRY_COMPARE(manager.ytDlpVersion(), u"2025.12.01"_s);
    QTRY_COMPARE(manager.detectedFfmpegVersion(), u"ffmpeg version 9 spaced"_s);
    QCOMPARE(manager.ffmpegArgs(), QStringList({ u"--ffmpeg-location"_s, locations.ffmpeg.constFirst() }));
    QTRY_COMPARE_WITH_TIMEOUT(manager.detectedJSRuntime(), u"deno"_s, 20000);
    QCOMPARE(manager.detectedJSRuntimePath(), deno);
}

// node only at its third place: the deno places and deno's own lookup come first, and node is
// found without a lookup of its own. An ffmpeg that says nothing is still the one found.
void TestToolDiscovery::runtimeOrderAndSilentFfmpeg()
{
    EngineFixture fixture;
    fixture.writeFile(u"home/.zshrc"_s, "which() { echo \"$@\" >> \"$HOME/which.log\"; builtin which \"$@\"; }\n");
    qputenv("QUILLBOX_SHELL", "/bin/zsh");
    ToolLocations locations = fixture.emptyLocations();
    locations.runtimes = {
        { u"deno"_s, { fixture.path(u"d1/deno"_s), fixture.path(u"d2/deno"_s), fixture.path(u"d3/deno"_s) } },
        { u"node"_s,
            { fixture.path(u"n1/node"_s), fixture.path(u"n2/node"_s),
                fixture.writeScript(u"n3/node"_s, "echo v22.11.0") } },
        { u"bun"_s, { fixture.writeScript(u"b1/bun"_s, "echo 1.2.11") } },
    };
    locations.ffmpeg << fixture.path(u"nope/ffmpeg"_s) << fixture.writeScript(u"f/ffmpeg.exe"_s, "exit 3");
    StartedDiscovery manager(locations);
    QTRY_COMPARE_WITH_TIMEOUT(manager.detectedJSRuntime(), u"node"_s, 20000);
    QCOMPARE(manager.detectedJSRuntimePath(), fixture.path(u"n3/node"_s));
    const QStringList lookedUp = fixture.readFile(u"home/which.log"_s).split(u'\n', Qt::SkipEmptyParts);
    QVERIFY2(lookedUp.contains(u"deno"_s), qPrintable(lookedUp.join(u',')));
    QVERIFY(!lookedUp.contains(u"node"_s));

    QTRY_COMPARE_WITH_TIMEOUT(manager.detectedFfmpeg(), fixture.path(u"f/ffmpeg.exe"_s), 20000);
    QCOMPARE(manager.detectedFfmpegVersion(), QString());
    QTRY_VERIFY(manager.log().contains(u"✅ 检测到 FFmpeg: "_s));
}

void TestToolDiscovery::nothingFound()
{
    // No runtime is a warning in the log; no ffmpeg is left to yt-dlp without a word.
    EngineFixture fixture;
    StartedDiscovery manager(fixture.emptyLocations());
    const QString text = u"⚠️ 未检测到 JS 运行时（Deno/Node/Bun），YouTube 下载可能失败"_s;
    QTRY_VERIFY_WITH_TIMEOUT(manager.log().contains(text), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(fixture.systemLog().contains(u"[Quillbox] [detectFfmpeg] 未检测到 ffmpeg"_s), 20000);
    const auto entries = manager.state.logEntries();
    QCOMPARE(std::find_if(entries.cbegin(), entries.cend(), [&](const LogEntry &e) { return e.message == text; })->type,
        LogEntry::LogType::Warning);
    QCOMPARE(manager.ytDlpPath(), u"yt-dlp"_s); // left to the shell's PATH
    QCOMPARE(manager.jsRuntimeArgs(), QStringList());
    QCOMPARE(manager.ffmpegArgs(), QStringList());
    QVERIFY(!manager.log().join(u'\n').contains(u"FFmpeg"_s));
}

// The verdicts are texts judged once: a language installed or removed while Quillbox runs has
// them judged again, and the button's label follows too.
void TestToolDiscovery::verdictsFollowTheLanguage()
{
    EngineFixture fixture;
    StartedDiscovery manager(fixture.emptyLocations());
    QTRY_VERIFY_WITH_TIMEOUT(manager.isReady(), 20000);
    const ToolVerdict before = manager.runtimeVerdict();
    QVERIFY2(before.text.startsWith(u"未检测到 JS 运行时，YouTube 等需要 JS 运行时的网站会下载失败。"_s),
        qPrintable(before.text));
    QCOMPARE(before.actionLabel(), u"安装 Deno"_s);

    QSignalSpy changed(&manager, &ToolDiscovery::verdictsChanged);
    MarkingTranslator marking("Toolchain");
    QVERIFY(QCoreApplication::installTranslator(&marking));
    QCOMPARE(changed.size(), 1);
    const ToolVerdict after = manager.runtimeVerdict();
    QVERIFY2(after.text.startsWith(u"EN 未检测到 JS 运行时，EN YouTube 等需要 JS 运行时的网站会下载失败。EN 点"_s),
        qPrintable(after.text));
    QCOMPARE(after.actionLabel(), u"EN 安装 Deno"_s);
    QCOMPARE(after.tint, before.tint);

    QVERIFY(QCoreApplication::removeTranslator(&marking));
    QCOMPARE(changed.size(), 2);
    QCOMPARE(manager.runtimeVerdict(), before);
}

// "--js-runtimes" came with yt-dlp 2025.11.12: an older one gets no runtime words, and the log
// says so once, with where the fix is. (A recent one gets them: see the download commands.)
void TestToolDiscovery::jsRuntimesNeedARecentYtDlp()
{
    QVERIFY(ToolDiscovery::supportsJsRuntimes(u"2025.11.12"_s));
    QVERIFY(ToolDiscovery::supportsJsRuntimes(u"2025.11.12.232915"_s)); // a nightly of that day
    QVERIFY(!ToolDiscovery::supportsJsRuntimes(u"unknown"_s));

    EngineFixture fixture;
    ToolLocations locations = fixture.emptyLocations();
    locations.ytDlp << fixture.writeScript(u"y/yt-dlp"_s, versionScript("2025.11.11"));
    locations.runtimes[1].candidates << fixture.writeScript(u"n/node"_s, "echo v22.11.0");
    StartedDiscovery manager(locations);
    QTRY_COMPARE_WITH_TIMEOUT(manager.ytDlpVersion(), u"2025.11.11"_s, 20000);
    QTRY_COMPARE(manager.detectedJSRuntime(), u"node"_s);
    QCOMPARE(manager.jsRuntimeArgs(), QStringList());
    QTRY_COMPARE(manager.log().filter(u"⚠️ yt-dlp 2025.11.11 版本过旧"_s).size(), 1);
    QTest::qWait(50);
    QCOMPARE(manager.log().filter(u"设置 → 更新 yt-dlp 到最新版"_s).size(), 1);
}

// A chosen path that is not there is kept for the next start, but the one in use stays; "reset"
// goes back to what is found. (Choosing one that is there, through the settings sheet:
// tst_settingsview.)
void TestToolDiscovery::setCustomPath()
{
    EngineFixture fixture;
    ToolLocations locations = fixture.emptyLocations();
    const QString found = fixture.writeScript(u"y/yt-dlp"_s, versionScript("2025.11.20"));
    locations.ytDlp << found;
    StartedDiscovery manager(locations);
    QTRY_COMPARE_WITH_TIMEOUT(manager.ytDlpVersion(), u"2025.11.20"_s, 20000);
    manager.setCustomYtDlpPath(fixture.path(u"missing/yt-dlp"_s));
    QCOMPARE(QSettings().value(u"customYtDlpPath"_s).toString(), fixture.path(u"missing/yt-dlp"_s));
    QCOMPARE(manager.ytDlpPath(), found);
    manager.resetYtDlpPath();
    QVERIFY(!QSettings().contains(u"customYtDlpPath"_s));
    QCOMPARE(manager.ytDlpPath(), found);
    QVERIFY(!manager.isYtDlpPathChosen());
}

void TestToolDiscovery::realRuntimesJudgedByCurrentYtDlp()
{
    // The current yt-dlp says which runtimes it accepts: a real Deno is passed, this machine's
    // Node (18 or 20) is too old and only shown.
    const QString ytDlp = sharedYtDlp();
    const QString deno = npmDeno();
    if (ytDlp.isEmpty() || deno.isEmpty())
        QSKIP("needs ../shared/tools/yt-dlp/yt-dlp beside the project and Deno from the test set-up");
    if (!QFileInfo::exists(u"/usr/bin/node"_s))
        QSKIP("needs Debian's Node.js at /usr/bin/node");
    EngineFixture fixture;
    ToolLocations locations = fixture.emptyLocations();
    locations.ytDlp << ytDlp;
    locations.runtimes[0].candidates << deno;
    locations.runtimes[1].candidates << u"/usr/bin/node"_s;
    StartedDiscovery manager(locations);
    QTRY_VERIFY_WITH_TIMEOUT(manager.isReady(), 60000);

    QCOMPARE(manager.ytDlpVersion(), u"2026.08.19"_s);
    QCOMPARE(manager.ytDlpVariant(), u"zip"_s);
    QCOMPARE(manager.jsRuntimeArgs(), QStringList({ u"--js-runtimes"_s, u"deno:"_s + deno }));
    const QList<JsRuntimeInfo> runtimes = manager.jsRuntimes();
    QCOMPARE(runtimes.size(), 2);
    QVERIFY(runtimes[0].supported && runtimes[0].judgedByYtDlp);
    QVERIFY2(!runtimes[1].supported && runtimes[1].judgedByYtDlp, qPrintable(runtimes[1].version));
    QTRY_VERIFY(manager.runtimeVerdict().text.contains(u"node "_s + runtimes[1].version + u" 版本过旧"_s));
    QCOMPARE(manager.log().filter(u"版本过旧，yt-dlp 需要 ≥ 22.0.0"_s).size(), 1);
}

void TestToolDiscovery::debiansYtDlpCannotUpdateItself()
{
    if (!QFileInfo::exists(u"/usr/bin/yt-dlp"_s))
        QSKIP("needs Debian's yt-dlp");
    EngineFixture fixture;
    ToolLocations locations = fixture.emptyLocations();
    locations.ytDlp << u"/usr/bin/yt-dlp"_s;
    AppState state;
    DownloadManager manager(&state, locations);
    QTRY_VERIFY_WITH_TIMEOUT(manager.tools()->isReady() && !manager.tools()->isProbing(), 60000);
    QCOMPARE(manager.tools()->ytDlpUpdateRoute(), UpdateRoute::PackageManager);
    const ToolVerdict verdict = manager.tools()->ytDlpVerdict();
    QCOMPARE(verdict.action, quillbox::ToolAction::InstallYtDlp);
    QVERIFY2(verdict.text.contains(u"不能自行更新"_s), qPrintable(verdict.text));

    // Its own update refuses (or cannot reach the network here): never a success, and the advice
    // names the way out.
    std::optional<UpdateResult> answer;
    manager.updateYtDlp([&answer](const UpdateResult &result) { answer = result; });
    QTRY_VERIFY_WITH_TIMEOUT(answer.has_value(), 120000);
    QVERIFY2(answer->text.startsWith(u"❌ 更新失败: "_s), qPrintable(answer->text));
    QVERIFY2(answer->advice.contains(u"安装最新 yt-dlp"_s), qPrintable(answer->advice));
    QVERIFY(EngineFixture::messages(state).contains(answer->advice));
}

void TestToolDiscovery::startDoesNotWaitForTheShell()
{
    // The login files take two seconds to read: the engine must come back at once and the
    // event loop must keep turning while the lookups run.
    EngineFixture fixture;
    fixture.writeFile(u"home/.zshrc"_s, "sleep 2\n");
    fixture.writeFile(u"home/.zprofile"_s, "sleep 2\n");
    qputenv("QUILLBOX_SHELL", "/bin/zsh");
    QStringList order;
    QTimer::singleShot(0, [&order] { order << u"event loop turned"_s; });
    StartedDiscovery manager(fixture.emptyLocations());
    order << u"engine created"_s;
    QVERIFY(!manager.isYtDlpPathKnown());
    connect(&manager, &ToolDiscovery::ytDlpPathChanged, [&order] { order << u"path chosen"_s; });
    QTRY_VERIFY_WITH_TIMEOUT(manager.isYtDlpPathKnown(), 20000);
    QCOMPARE(order, QStringList({ u"engine created"_s, u"event loop turned"_s, u"path chosen"_s }));
}

QTEST_GUILESS_MAIN(TestToolDiscovery)
#include "tst_tooldiscovery.moc"
