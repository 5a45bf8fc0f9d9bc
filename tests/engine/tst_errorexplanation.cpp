#include "engine/errorexplanation.h"

#include "enginefixture.h"

#include <QJsonObject>
#include <QtTest>

#include <csignal>

using namespace Qt::StringLiterals;

// Recorded failures of the real yt-dlp (tests/data/failures), replayed by the stand-in through
// the whole engine: each gets its explanation, and the task keeps the tool's own message.
class TestErrorExplanation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void recorded_data();
    void recorded();
    void withoutOutput_data();
    void withoutOutput();

private:
    std::unique_ptr<SandboxEngine> m_engine;
};

void TestErrorExplanation::initTestCase()
{
    m_engine = SandboxEngine::start();
    QVERIFY(m_engine);
}

void TestErrorExplanation::recorded_data()
{
    QTest::addColumn<QString>("recording");
    QTest::addColumn<QString>("says"); // a part of the explanation only this case has
    QTest::addColumn<bool>("toolFix"); // the row offers to fix the tools in the settings
    // Recorded with Debian's yt-dlp against 127.0.0.1.
    QTest::newRow("404") << u"http-404"_s << u"链接不存在或已删除"_s << false;
    QTest::newRow("410") << u"http-410"_s << u"链接不存在或已删除"_s << false;
    QTest::newRow("403") << u"http-403"_s << u"访问被拒绝或请求过多"_s << false;
    QTest::newRow("429") << u"http-429"_s << u"调低“同时下载数”"_s << false;
    QTest::newRow("closed port") << u"connection-refused"_s << u"拒绝了连接"_s << false;
    QTest::newRow("name not resolved") << u"dns-failure"_s << u"无法解析网址中的域名"_s << false;
    QTest::newRow("no answer") << u"timeout"_s << u"连接超时"_s << false;
    QTest::newRow("unknown option") << u"unknown-option"_s << u"不认识“--no-such-option”"_s << true;
    QTest::newRow("silent video as audio") << u"silent-audio-only"_s << u"没有音轨"_s << false;
    QTest::newRow("name too long") << u"name-too-long"_s << u"--trim-filenames"_s << false;
    QTest::newRow("full disk") << u"disk-full"_s << u"磁盘空间不足"_s << false;
    QTest::newRow("read-only folder") << u"read-only-folder"_s << u"无法写入输出目录"_s << false;
    QTest::newRow("not a link") << u"not-a-link"_s << u"不是有效的链接"_s << false;
    QTest::newRow("page without video") << u"unsupported-url"_s << u"不支持的链接"_s << false;
    QTest::newRow("format not offered") << u"format-not-available"_s << u"没有所需的格式"_s << false;
    QTest::newRow("ffmpeg missing") << u"ffmpeg-missing"_s << u"找不到 FFmpeg"_s << false;
    QTest::newRow("cookie file not Netscape") << u"cookie-file-invalid"_s << u"Cookie 文件无法使用"_s << false;
    QTest::newRow("browser without cookies") << u"browser-cookies-missing"_s << u"读不到浏览器的 Cookie"_s << false;
    // Transcribed lines of cases that need a real site.
    QTest::newRow("bot check") << u"sign-in-bot"_s << u"不是机器人"_s << true;
    QTest::newRow("age") << u"sign-in-age"_s << u"年龄限制"_s << false;
    QTest::newRow("members only") << u"members-only"_s << u"频道会员"_s << false;
    QTest::newRow("private") << u"private-video"_s << u"私享视频"_s << false;
    QTest::newRow("login required") << u"login-required"_s << u"只对登录的用户开放"_s << false;
    QTest::newRow("no JavaScript runtime") << u"no-js-runtime"_s << u"请安装 Deno"_s << true;
    QTest::newRow("n challenge") << u"n-challenge"_s << u"请安装 Deno"_s << true;
    QTest::newRow("JavaScript runtime too old")
        << u"js-runtime-unsupported"_s << u"JavaScript 运行时不受支持"_s << true;
    QTest::newRow("challenge unsolved by an old yt-dlp")
        << u"nsig-failed"_s << u"解不开 YouTube 的验证（nsig）"_s << true;
    QTest::newRow("storyboards only") << u"only-images"_s << u"只拿到了预览图"_s << true;
    QTest::newRow("extractor behind the site") << u"extractor-outdated"_s << u"读不懂这个页面"_s << true;
    QTest::newRow("geo-restricted") << u"geo-restricted"_s << u"地区限制"_s << false;
}

void TestErrorExplanation::recorded()
{
    QFETCH(QString, recording);
    QFETCH(QString, says);
    QFETCH(bool, toolFix);

    QFile file(qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/data/failures/"_s + recording + u".json"_s);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonObject record = QJsonDocument::fromJson(file.readAll()).object();
    const QJsonArray steps { QJsonObject { { u"out"_s, record.value(u"stdout"_s) } },
        QJsonObject { { u"err"_s, record.value(u"stderr"_s) } } };
    m_engine->fake.setScenario(QJsonDocument(steps).toJson(QJsonDocument::Compact), record.value(u"exit"_s).toInt());

    m_engine->download(u"https://x.example/"_s + recording);
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->manager->tasks().constLast().status, DownloadStatus::Failed, 20000);
    const DownloadTask task = m_engine->manager->tasks().constLast();

    const QString explanation = task.explanation.value_or(QString());
    QVERIFY2(explanation.contains(says), qPrintable(explanation));
    QCOMPARE(task.needsToolFix, toolFix);
    // The tool's own message stays, apart from the explanation.
    const QString message = task.errorMessage.value_or(QString());
    QVERIFY(!message.isEmpty() && !message.contains(explanation));
    // The log says it once more, after the tool's lines.
    const QList<LogEntry> log = m_engine->state.logEntries();
    QCOMPARE(log.constLast().message, explanation);
    QCOMPARE(log.constLast().type, LogEntry::LogType::Error);
}

void TestErrorExplanation::withoutOutput_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<bool>("crashed");
    QTest::addColumn<QString>("says");
    QTest::addColumn<bool>("toolFix");

    QTest::newRow("killed by a signal") << QStringList() << int(SIGKILL) << true << u"被外部结束"_s << false;
    QTest::newRow("shell reports SIGKILL") << QStringList() << 128 + SIGKILL << false << u"被外部结束"_s << false;
    QTest::newRow("not executable") << QStringList { u"sh: 1: /x/yt-dlp: Permission denied"_s } << 126 << false
                                    << u"yt-dlp 无法运行（/x/yt-dlp）"_s << true;
    // A warning is a cause only when no error line names one.
    QTest::newRow("error line first") << QStringList { u"WARNING: ffmpeg not found"_s, u"ERROR: HTTP Error 404"_s } << 1
                                      << false << u"链接不存在或已删除"_s << false;
    // A library's "(unsupported)" in the debug lines is not the JavaScript runtime's.
    QTest::newRow("library unsupported") << QStringList { u"[debug] Optional libraries: urllib3-1.26 (unsupported)"_s,
        u"ERROR: Requested format is not available"_s }
                                         << 1 << false << u"没有所需的格式"_s << false;
    QTest::newRow("bun too new") << QStringList { u"WARNING: bun version 1.4.0 is not supported!"_s,
        u"ERROR: unable to download video data: HTTP Error 403: Forbidden"_s }
                                 << 1 << false << u"JavaScript 运行时不受支持"_s << true;
}

void TestErrorExplanation::withoutOutput()
{
    QFETCH(QStringList, lines);
    QFETCH(int, exitCode);
    QFETCH(bool, crashed);
    QFETCH(QString, says);
    QFETCH(bool, toolFix);
    const std::optional<Explanation> explanation
        = describeFailure(FailedRun { lines, exitCode, crashed, u"/x/yt-dlp"_s });
    QVERIFY(explanation);
    QVERIFY2(explanation->text.contains(says), qPrintable(explanation->text));
    QCOMPARE(explanation->toolchainFix, toolFix);
}

QTEST_GUILESS_MAIN(TestErrorExplanation)
#include "tst_errorexplanation.moc"
