// The queue across restarts, with the engine and the stand-in yt-dlp: what a quit leaves comes
// back in order and can be carried on, and a killed application loses no row.

#include "store/queuememory.h"

#include "engine/enginefixture.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace {
// yt-dlp that is still downloading half a minute later, with a child of its own (as ffmpeg is).
const QByteArray slowSteps
    = R"({"steps": [{"spawn_child_sleep": 60}, {"progress": {"count": 600, "rate": 20, "size": "10.00MiB"}}]})";
} // namespace

class TestQueueMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<EngineFixture>();
        m_fake = std::make_unique<FakeYtDlp>(*m_fixture);
        m_fixture->writeFile(u"scenarios/done.json"_s, R"({"steps": [{"write_output": true}]})");
        m_fixture->writeFile(u"scenarios/fail.json"_s,
            R"({"steps": [{"err": "ERROR: [generic] fail: HTTP Error 404: Not Found\n"}], "exit": 1})");
        m_fixture->writeFile(u"scenarios/slow.json"_s, slowSteps);
        m_fixture->writeFile(u"scenarios/later.json"_s, slowSteps);
        qputenv("FAKE_YTDLP_SCENARIO_DIR", m_fixture->path(u"scenarios"_s).toUtf8());
        m_store = m_fixture->path(u"data/quillbox.sqlite"_s);
    }

    void cleanup()
    {
        for (const qint64 pid : m_fake->pids())
            ::kill(pid_t(pid), SIGKILL);
        m_fake.reset();
        m_fixture.reset();
    }

    void quitAndStartAgain()
    {
        QList<QStringList> firstRuns;
        QList<DownloadTask> before;
        {
            AppState state;
            DownloadManager downloads(&state, locations());
            QueueMemory memory(&downloads, &state, m_store);
            memory.start();
            QTRY_VERIFY(memory.isRestored());
            downloads.setMaxConcurrentDownloads(1);
            DownloadOptions options { DownloadPreset::Custom, u"--no-mtime --password 'hunter 2'"_s,
                m_fixture->path(u"out"_s), false, false };
            downloads.startDownloads({ u"https://q.example/v=done"_s, u"https://q.example/v=fail"_s,
                                         u"https://q.example/v=slow"_s, u"https://q.example/v=later"_s },
                options);
            QTRY_VERIFY_WITH_TIMEOUT(downloads.tasks().at(2).progress > 0, 20000);
            firstRuns = m_fake->runs();
            before = downloads.tasks();
            // As quitting does: the queue is kept first, then the downloads stop.
            memory.close();
            downloads.shutdown();
        }
        QCOMPARE(firstRuns.size(), 3);

        AppState state;
        DownloadManager downloads(&state, locations());
        downloads.setMaxConcurrentDownloads(1);
        QueueMemory memory(&downloads, &state, m_store);
        memory.start();
        QTRY_VERIFY(memory.isRestored());
        const QList<DownloadTask> tasks = downloads.tasks();
        QCOMPARE(tasks.size(), 4);
        // Finished rows come back as they were.
        QCOMPARE(tasks.at(0).status, DownloadStatus::Completed);
        QCOMPARE(tasks.at(0), before.at(0));
        QCOMPARE(tasks.at(1).status, DownloadStatus::Failed);
        QCOMPARE(tasks.at(1), before.at(1));
        QVERIFY(tasks.at(1).explanation);
        // Running when the application quit: cancelled, its progress as it was.
        QCOMPARE(tasks.at(2).status, DownloadStatus::Cancelled);
        QVERIFY(tasks.at(2).progress > 0);
        // Waiting then, waiting now: it starts with its own request.
        QTRY_COMPARE_WITH_TIMEOUT(downloads.tasks().at(3).status, DownloadStatus::Downloading, 20000);
        QTRY_COMPARE_WITH_TIMEOUT(m_fake->runs().size(), 4, 10000);
        QVERIFY(m_fake->runs().last().contains(u"--no-mtime"_s));
        QVERIFY(m_fake->runs().last().contains(u"https://q.example/v=later"_s));

        // "重试" runs the interrupted download again exactly as before, the password as it was typed.
        downloads.stopDownload(idOf(downloads.tasks().at(3)));
        downloads.retryDownload(idOf(tasks.at(2)));
        QTRY_COMPARE_WITH_TIMEOUT(m_fake->runs().size(), 5, 20000);
        QCOMPARE(m_fake->runs().last(), firstRuns.at(2));
        QVERIFY(firstRuns.at(2).contains(u"hunter 2"_s));

        // What changed since is stored too: cleared history stays cleared.
        downloads.clearCompleted();
        memory.close();
        downloads.shutdown();
        TaskStore store(m_store);
        QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
        const QList<StoredTask> rows = store.loadTasks();
        QCOMPARE(rows.size(), 3);
        QCOMPARE(rows.at(0).task.status, DownloadStatus::Failed);
        QCOMPARE(rows.at(1).task.status, DownloadStatus::Downloading);
        QCOMPARE(rows.at(2).task.status, DownloadStatus::Cancelled);
    }

    void killedApplicationLosesNoRow_data()
    {
        QTest::addColumn<bool>("guardianKilled");
        QTest::newRow("its downloads end with it") << false;
        QTest::newRow("its guardian killed too: the next start ends them") << true;
    }

    void killedApplicationLosesNoRow()
    {
        QFETCH(bool, guardianKilled);
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const QStringList links
            = { u"https://k.example/v=slow"_s, u"https://k.example/v=later"_s, u"https://k.example/third/slow"_s };
        child.start(QCoreApplication::applicationDirPath() + u"/queuechild"_s,
            QStringList { m_store, m_fake->path(), m_fixture->path(u"out"_s) } + links);
        QVERIFY2(child.waitForStarted(), qPrintable(child.errorString()));
        QByteArray said;
        QTRY_VERIFY_WITH_TIMEOUT((said += child.readAllStandardOutput()).contains("downloading"), 30000);
        // Progress reaches the disk at most a second after it is shown.
        QTest::qWait(QueueMemory::ProgressWriteMs + 300);
        const QList<qint64> started = m_fake->pids();
        QCOMPARE(started.size(), 6); // three downloads and a child of each
        if (guardianKilled) {
            const qint64 guardian = said.mid(said.indexOf("guardian ") + 9).split('\n').constFirst().toLongLong();
            QVERIFY(guardian > 0);
            ::kill(pid_t(guardian), SIGKILL);
        }
        ::kill(pid_t(child.processId()), SIGKILL);
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        if (guardianKilled) {
            // Left behind on purpose: the stand-ins die writing to nobody, their children (as an
            // ffmpeg would) live on.
            QTest::qWait(500);
            QVERIFY(std::any_of(started.cbegin(), started.cend(), isRunning));
        } else {
            // Nothing it started outlives it: every download and its child are gone within 2 s.
            QTRY_VERIFY_WITH_TIMEOUT(std::none_of(started.cbegin(), started.cend(), isRunning), 2000);
        }

        {
            TaskStore store(m_store);
            QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
            const QList<StoredTask> rows = store.loadTasks();
            QCOMPARE(rows.size(), 3);
            for (qsizetype i = 0; i < rows.size(); ++i) {
                QCOMPARE(rows.at(i).task.url, links.at(i));
                QCOMPARE(rows.at(i).task.status, DownloadStatus::Downloading);
                QVERIFY(rows.at(i).task.progress > 0);
                QCOMPARE(rows.at(i).request.outputDir, m_fixture->path(u"out"_s));
            }
            QCOMPARE(store.loadProcessGroups().size(), 3);
        }

        // The next start ends what is left before the rows come back, finds them stopped, the
        // dead run's lock no obstacle, and "重试" runs alone.
        AppState state;
        DownloadManager downloads(&state, locations());
        QueueMemory memory(&downloads, &state, m_store);
        memory.start();
        QTRY_COMPARE(downloads.tasks().size(), 3);
        QVERIFY(std::none_of(started.cbegin(), started.cend(), isRunning));
        // The line about them is posted to the log just before the rows come back.
        QCoreApplication::sendPostedEvents();
        const QStringList ended = EngineFixture::messages(state).filter(u"已结束上次运行遗留的"_s);
        QCOMPARE(ended,
            guardianKilled
                ? QStringList { u"⏹ 已结束上次运行遗留的 3 个下载进程，它们的任务可以用“重试”继续"_s }
                : QStringList());
        for (const DownloadTask &task : downloads.tasks())
            QCOMPARE(task.status, DownloadStatus::Cancelled);
        m_fixture->writeFile(u"scenarios/slow.json"_s, R"({"steps": [{"write_output": true}]})");
        downloads.retryDownload(idOf(downloads.tasks().constFirst()));
        QTRY_COMPARE_WITH_TIMEOUT(downloads.tasks().constFirst().status, DownloadStatus::Completed, 20000);
        const QFileInfoList written = QDir(m_fixture->path(u"out"_s)).entryInfoList(QDir::Files);
        QVERIFY(std::any_of(written.cbegin(), written.cend(), [](const QFileInfo &file) { return file.size() > 0; }));
    }

    void clearingALongHistoryIsKept()
    {
        {
            // Completed and failed rows by turns: clearing them is a reset of the model.
            QList<StoredTask> rows;
            for (int i = 0; i < 300; ++i) {
                StoredTask row { DownloadTask::create(u"https://h.example/%1"_s.arg(i)), {}, i };
                row.task.status = i % 2 ? DownloadStatus::Failed : DownloadStatus::Completed;
                rows.append(row);
            }
            TaskStore store(m_store);
            QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
            QVERIFY(store.apply({ rows, {} }));
        }
        AppState state;
        DownloadManager downloads(&state, locations());
        QueueMemory memory(&downloads, &state, m_store);
        memory.start();
        QTRY_COMPARE(downloads.tasks().size(), 300);
        downloads.clearCompleted();
        memory.close();
        TaskStore store(m_store);
        QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
        const QList<StoredTask> kept = store.loadTasks();
        QCOMPARE(kept.size(), 150);
        QVERIFY(std::all_of(kept.cbegin(), kept.cend(),
            [](const StoredTask &row) { return row.task.status == DownloadStatus::Failed; }));
    }

    void damagedStoreStillStarts()
    {
        m_fixture->writeFile(u"data/quillbox.sqlite"_s, QByteArray("not a database\n").repeated(100));
        AppState state;
        DownloadManager downloads(&state, locations());
        QueueMemory memory(&downloads, &state, m_store);
        memory.start();
        QTRY_VERIFY(memory.isRestored());
        QCOMPARE(downloads.tasks().size(), 0);
        QTRY_VERIFY(EngineFixture::messages(state).join(u'\n').contains(u"队列数据库已损坏，已移到 "_s + m_store));
    }

    void secondInstanceLeavesTheStoreAlone()
    {
        AppState firstState, secondState;
        DownloadManager first(&firstState, locations());
        DownloadManager second(&secondState, locations());
        QueueMemory firstMemory(&first, &firstState, m_store);
        firstMemory.start();
        QTRY_VERIFY(firstMemory.isRestored());
        QueueMemory secondMemory(&second, &secondState, m_store);
        secondMemory.start();
        QTRY_VERIFY(secondMemory.isRestored());
        QTRY_VERIFY(EngineFixture::messages(secondState).join(u'\n').contains(u"另一个 Quillbox 正在使用它"_s));
        second.startDownloads(
            { u"https://q.example/v=done"_s }, { DownloadPreset::Default, {}, m_fixture->path(u"out"_s), true, false });
        secondMemory.close();
        firstMemory.close();
        TaskStore store(m_store);
        QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
        QCOMPARE(store.loadTasks().size(), 0);
    }

    void newerStoreIsOnlyRead()
    {
        const StoredTask earlier { DownloadTask::create(u"https://n.example/earlier"_s), {}, 1 };
        {
            TaskStore store(m_store);
            QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
            QVERIFY(store.apply({ { earlier }, {} }));
        }
        {
            // As a later Quillbox would leave it: its own version, our rows still readable.
            QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"later"_s);
            db.setDatabaseName(m_store);
            QVERIFY(db.open());
            QVERIFY(QSqlQuery(db).exec(u"PRAGMA user_version = 99"_s));
        }
        QSqlDatabase::removeDatabase(u"later"_s);
        const QByteArray before = fileBytes(m_store);
        QVERIFY(!before.isEmpty());

        AppState state;
        DownloadManager downloads(&state, locations());
        QueueMemory memory(&downloads, &state, m_store);
        memory.start();
        QTRY_VERIFY(memory.isRestored());
        QTRY_VERIFY(EngineFixture::messages(state).join(u'\n').contains(u"本次不会保存队列"_s));
        QVERIFY(memory.storeNotice().contains(u"更新版本"_s)); // what the settings sheet says
        // The queue works for this run: what was there comes back, a new download runs to the end.
        QCOMPARE(downloads.tasks().size(), 1);
        QCOMPARE(downloads.tasks().at(0).id, earlier.task.id);
        downloads.startDownloads(
            { u"https://n.example/v=done"_s }, { DownloadPreset::Default, {}, m_fixture->path(u"out"_s), true, false });
        QTRY_COMPARE_WITH_TIMEOUT(downloads.tasks().at(1).status, DownloadStatus::Completed, 20000);
        downloads.removeDownload(idOf(downloads.tasks().at(0)));
        // Writes whatever is pending, as quitting does.
        memory.close();
        downloads.shutdown();

        QCOMPARE(fileBytes(m_store), before);
        QCOMPARE(QFileInfo(m_store + u"-wal"_s).size(), 0);
        QVERIFY(!EngineFixture::messages(state).join(u'\n').contains(u"无法保存队列"_s));
    }

private:
    ToolLocations locations() const
    {
        ToolLocations locations = m_fixture->emptyLocations();
        locations.ytDlp << m_fake->path();
        return locations;
    }

    std::unique_ptr<EngineFixture> m_fixture;
    std::unique_ptr<FakeYtDlp> m_fake;
    QString m_store;
};

QTEST_GUILESS_MAIN(TestQueueMemory)
#include "tst_queuememory.moc"
