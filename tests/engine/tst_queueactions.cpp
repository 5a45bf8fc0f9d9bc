#include "engine/downloadmanager.h"
#include "model/appstate.h"

#include "enginefixture.h"

#include <QtTest>

#include <csignal>

using namespace Qt::StringLiterals;

// What the user does to single tasks, and how the queue keeps two runs of one link apart, with
// the stand-in yt-dlp as real child processes.
class TestQueueActions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_engine = SandboxEngine::start();
        QVERIFY(m_engine);
    }
    void cleanup() { m_engine.reset(); }
    void stopOneOfThree();
    void retryReusesTheRow();
    void removeRunningLeavesNoProcess();
    void sameLinkRunsInTurn();
    void oneProgressEntryPerTask();

private:
    std::unique_ptr<SandboxEngine> m_engine; // a new one for every test
};

namespace {
bool alive(qint64 pid)
{
    return ::kill(pid_t(pid), 0) == 0;
}

QString idOf(const DownloadTask &task)
{
    return task.id.toString(QUuid::WithoutBraces);
}

// A stand-in download that runs until stopped, with a child in its group; it ignores SIGTERM,
// so only the SIGKILL after the grace period ends it.
constexpr auto endless = R"([{"spawn_child_sleep": 60}, {"ignore_sigterm": true},
    {"out": "[download]  10.0% of 1.00MiB at 1.00KiB/s ETA 10:00\n"}, {"sleep": 60}])";
} // namespace

void TestQueueActions::stopOneOfThree()
{
    m_engine->fake.setScenario(endless);
    for (int i = 0; i < 3; ++i)
        m_engine->download(u"https://s.example/%1"_s.arg(i));
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->fake.pids().size(), 6, 20000); // three stand-ins, three children
    QTRY_VERIFY(m_engine->manager->tasks().at(1).progress > 0);
    const QList<qint64> pids = m_engine->fake.pids();
    const auto living = [&pids] { return std::count_if(pids.cbegin(), pids.cend(), alive); };

    const DownloadTask second = m_engine->manager->tasks().at(1);
    m_engine->manager->stopDownload(idOf(second));
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->manager->runningCount(), 2, 10000);
    // Its stand-in and the stand-in's child went; the other two groups run on.
    QTRY_COMPARE_WITH_TIMEOUT(living(), 4, 5000);
    QTest::qWait(200);
    QCOMPARE(living(), 4);
    for (int i : { 0, 1, 2 })
        QCOMPARE(
            m_engine->manager->tasks().at(i).status, i == 1 ? DownloadStatus::Cancelled : DownloadStatus::Downloading);
    QTRY_COMPARE(m_engine->log().filter(u"⏹ 已停止"_s),
        QStringList { u"⏹ 已停止: "_s + m_engine->manager->tasks().at(1).title });
    m_engine->manager->cancelAllDownloads();
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->manager->runningCount(), 0, 10000);
}

void TestQueueActions::retryReusesTheRow()
{
    m_engine->fake.setScenario(R"([{"err": "ERROR: Unable to download webpage: HTTP Error 503\n"}])", 1);
    m_engine->download(u"https://r.example/v"_s, DownloadPreset::AudioOnly, u"--limit-rate 1M"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    const DownloadTask failed = m_engine->only();
    QCOMPARE(failed.status, DownloadStatus::Failed);

    m_engine->fake.setScenario(R"([{"out": "[download] 100% of 1.00MiB in 00:01\n"}])");
    m_engine->manager->retryDownload(idOf(failed));
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    QCOMPARE(m_engine->manager->tasks().size(), 1);
    const DownloadTask retried = m_engine->only();
    QCOMPARE(retried.id, failed.id);
    QCOMPARE(retried.status, DownloadStatus::Completed);
    QVERIFY(!retried.errorMessage && !retried.explanation);
    const QList<QStringList> runs = m_engine->fake.runs();
    QCOMPARE(runs.size(), 2);
    QCOMPARE(runs.at(1), runs.at(0));
}

void TestQueueActions::removeRunningLeavesNoProcess()
{
    m_engine->fake.setScenario(endless);
    m_engine->download(u"https://m.example/running"_s);
    m_engine->manager->setMaxConcurrentDownloads(1);
    m_engine->download(u"https://m.example/waiting"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->fake.pids().size(), 2, 20000);
    const QList<qint64> pids = m_engine->fake.pids();

    const auto tasks = m_engine->manager->tasks();
    m_engine->manager->removeDownload(idOf(tasks.at(1))); // waiting: it never starts
    m_engine->manager->removeDownload(idOf(tasks.at(0)));
    QCOMPARE(m_engine->manager->tasks().size(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->manager->runningCount(), 0, 10000);
    for (qint64 pid : pids)
        QTRY_VERIFY2_WITH_TIMEOUT(!alive(pid), qPrintable(QString::number(pid)), 5000);
    QTest::qWait(300);
    QCOMPARE(m_engine->fake.runs().size(), 1);
}

void TestQueueActions::sameLinkRunsInTurn()
{
    m_engine->fake.setScenario(R"([{"sleep": 0.5}, {"write_output": true}])");
    QList<int> running;
    connect(m_engine->manager.get(), &DownloadManager::runningCountChanged, this,
        [&] { running << m_engine->manager->runningCount(); });
    const QString same = u"https://d.example/same"_s;
    m_engine->download(same);
    m_engine->download(same, DownloadPreset::Default, QString(), u"~/../out"_s); // the same folder
    m_engine->download(u"https://d.example/other"_s);
    // The second run of the link waits; the other link does not wait behind it.
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->manager->runningCount(), 2, 20000);
    QCOMPARE(m_engine->manager->tasks().at(1).status, DownloadStatus::Pending);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    for (const DownloadTask &task : m_engine->manager->tasks())
        QCOMPARE(task.status, DownloadStatus::Completed);
    QCOMPARE(*std::max_element(running.cbegin(), running.cend()), 2);
    // In another folder the same link is another file, and runs at once; a relative "-o" lands
    // in that folder, where the download runs.
    const QString elsewhere = m_engine->fixture.path(u"elsewhere"_s);
    m_engine->download(same, DownloadPreset::Custom, u"-o 'rel/%(title)s.%(ext)s'"_s, elsewhere);
    m_engine->download(same);
    QTRY_COMPARE_WITH_TIMEOUT(m_engine->manager->runningCount(), 2, 20000);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    QVERIFY(QFileInfo::exists(elsewhere + u"/rel/fake.mp4"_s));
}

void TestQueueActions::oneProgressEntryPerTask()
{
    m_engine->fake.setScenario(R"([{"out": "[download] Destination: fake.mp4\n"},
        {"progress": {"count": 100, "rate": 400}}, {"out": "[download] Destination: fake.m4a\n"},
        {"progress": {"count": 100, "rate": 400}}])");
    m_engine->download(u"https://p.example/1"_s);
    m_engine->download(u"https://p.example/2"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_engine->settled(), 20000);
    QTest::qWait(50); // the last lines reach the log on the next turn
    const QStringList log = m_engine->log();
    // Each stream's redraws became one entry, which ends at 100%; the other lines are all there.
    const QStringList progress = log.filter(QRegularExpression(u"^\\[download\\]\\s+[0-9.]+%"_s));
    QCOMPARE(progress.size(), 4);
    for (const QString &line : progress)
        QVERIFY2(line.contains(u"100"_s), qPrintable(line));
    QCOMPARE(log.filter(u"[download] Destination"_s).size(), 4);
}

QTEST_GUILESS_MAIN(TestQueueActions)
#include "tst_queueactions.moc"
