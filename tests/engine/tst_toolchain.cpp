#include "engine/toolchain.h"

#include <QtTest>

using namespace Qt::StringLiterals;
using quillbox::ToolAction;

class TestToolchain : public QObject
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
} // namespace

void TestToolchain::verboseReports()
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

void TestToolchain::runtimeVersions_data()
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

void TestToolchain::runtimeVersions()
{
    QFETCH(QString, name);
    QFETCH(QString, output);
    QFETCH(QString, version);
    QCOMPARE(parseRuntimeVersion(name, output), version);
    QTEST(meetsRuntimeMinimum(name, version), "accepted");
}

void TestToolchain::updateRoutes_data()
{
    QTest::addColumn<QString>("variant");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("route");
    QTest::newRow("Debian's package") << u"debian*"_s << u"/usr/bin/yt-dlp"_s << int(UpdateRoute::PackageManager);
    QTest::newRow("official zip") << u"zip"_s << u"/usr/local/bin/yt-dlp"_s << int(UpdateRoute::SelfUpdate);
    QTest::newRow("Quillbox's own copy") << u"linux_exe"_s << u"/data/bin/yt-dlp"_s << int(UpdateRoute::Kept);
    QTest::newRow("nothing said") << QString() << u"/usr/bin/yt-dlp"_s << int(UpdateRoute::Unknown);
}

void TestToolchain::updateRoutes()
{
    QFETCH(QString, variant);
    QFETCH(QString, path);
    QTEST(int(updateRouteFor(variant, path, u"/data/bin/yt-dlp"_s)), "route");
}

void TestToolchain::updateFailures_data()
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

void TestToolchain::updateFailures()
{
    QFETCH(QString, output);
    QFETCH(int, route);
    QFETCH(QString, says);
    const QString advice = explainUpdateFailure(output, UpdateRoute(route));
    QVERIFY2(says.isEmpty() ? advice.isEmpty() : advice.contains(says), qPrintable(advice));
}

void TestToolchain::verdicts_data()
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

void TestToolchain::verdicts()
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

QTEST_GUILESS_MAIN(TestToolchain)
#include "tst_toolchain.moc"
