// The store against real SQLite files: what is written comes back, an older schema is brought
// up to date with its rows, and a file that cannot be read never stops the application. Then the
// queue across restarts, with the engine and the stand-in yt-dlp: what a quit leaves comes back in
// order and can be carried on, and a killed application loses no row.

#include "store/queuememory.h"
#include "store/taskstore.h"

#include "model/downloadpreset.h"

#include "engine/enginefixture.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

using namespace Qt::StringLiterals;

namespace {
// yt-dlp that is still downloading half a minute later, with a child of its own (as ffmpeg is).
const QByteArray slowSteps
    = R"({"steps": [{"spawn_child_sleep": 60}, {"progress": {"count": 600, "rate": 20, "size": "10.00MiB"}}]})";

StoredTask sampleRow(DownloadStatus status, qint64 ordinal)
{
    StoredTask row;
    row.task = DownloadTask::create(u"https://example.test/watch?v=%1"_s.arg(ordinal));
    row.task.status = status;
    row.task.title = u"视频 %1 — \"quoted\" 'title'"_s.arg(ordinal);
    row.task.progress = 0.42;
    row.task.speed = u"2.35MiB/s"_s;
    row.task.size = u"10.00MiB"_s;
    // Millisecond precision, as the store keeps it.
    row.task.startTime = QDateTime::fromMSecsSinceEpoch(QDateTime::currentMSecsSinceEpoch());
    row.request.url = row.task.url;
    row.request.preset = DownloadPreset::Custom;
    row.request.customArgs = u"-f 'bv*+ba/b' --no-mtime"_s;
    row.request.outputDir = u"/tmp/下载 folder"_s;
    row.request.downloadPlaylist = false;
    row.request.useCookies = true;
    row.ordinal = ordinal;
    if (status == DownloadStatus::Completed || status == DownloadStatus::Failed) {
        row.task.endTime = row.task.startTime.addSecs(30);
        row.task.outputPath = u"/tmp/下载 folder/fake.mp4"_s;
        row.task.duration = u"3:25"_s;
        row.task.thumbnail = u"http://127.0.0.1:1/t.jpg"_s;
    }
    if (status == DownloadStatus::Failed) {
        row.request.choices.subtitles = u"embed"_s;
        row.request.choices.proxy = u"socks5://127.0.0.1:1080"_s;
        row.request.choices.sponsorCategories.clear();
        row.task.errorMessage = u"ERROR: HTTP Error 404: Not Found"_s;
        row.task.explanation = u"链接指向的视频不存在"_s;
    }
    return row;
}

// The rows `sql` gives, by column name, over a connection of its own.
QList<QVariantMap> sqlRows(const QString &path, const QString &sql)
{
    QList<QVariantMap> rows;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"raw"_s);
        db.setDatabaseName(path);
        QSqlQuery query(db);
        db.open();
        query.exec(sql);
        while (query.next()) {
            QVariantMap row;
            for (int column = 0; column < query.record().count(); ++column)
                row.insert(query.record().fieldName(column), query.value(column));
            rows.append(row);
        }
    }
    QSqlDatabase::removeDatabase(u"raw"_s);
    return rows;
}
} // namespace

class TestTaskStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_dir.isValid());
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

    void everyStatusRoundTrips()
    {
        const QString path = m_dir.filePath(u"round.sqlite"_s);
        QList<StoredTask> rows;
        qint64 ordinal = 10;
        for (const DownloadStatus status : { DownloadStatus::Cancelled, DownloadStatus::Pending,
                 DownloadStatus::Preparing, DownloadStatus::Downloading, DownloadStatus::Completed,
                 DownloadStatus::Failed, DownloadStatus::Paused })
            rows.append(sampleRow(status, ordinal--));
        {
            TaskStore store(path);
            QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
            QVERIFY2(store.apply({ rows, {} }), qPrintable(store.lastError()));
            // Written twice: the second write replaces, it does not add.
            rows[0].task.title = u"新标题"_s;
            QVERIFY(store.apply({ { rows[0] }, { rows[1].task.id } }));
        }
        TaskStore store(path);
        QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
        const QList<StoredTask> loaded = store.loadTasks();
        rows.removeAt(1);
        // In the order of their ordinals, which is the reverse of how they were written.
        QCOMPARE(loaded.size(), rows.size());
        for (qsizetype i = 0; i < rows.size(); ++i) {
            const StoredTask &expected = rows.at(rows.size() - 1 - i);
            QCOMPARE(loaded.at(i).task, expected.task);
            QCOMPARE(loaded.at(i).request, expected.request);
            QCOMPARE(loaded.at(i).ordinal, expected.ordinal);
        }
    }

    // Stores the previous versions wrote (tests/data/README.md), the first version's made from the
    // second's: every row and value comes back, the status and preset by key, shown by the same label.
    void earlierStoresMigrate_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QStringList>("windBack"); // SQL that makes it an older version's file
        QTest::addColumn<int>("presets");
        QTest::addColumn<int>("groups");
        QTest::newRow("version 3") << u"quillbox-v3.sqlite"_s << QStringList() << 2 << 1;
        QTest::newRow("version 2") << u"quillbox-v2.sqlite"_s << QStringList() << 2 << 0;
        QTest::newRow("version 1") << u"quillbox-v2.sqlite"_s
                                   << QStringList { u"DROP TABLE presets"_s, u"ALTER TABLE tasks DROP explanation"_s,
                                          u"ALTER TABLE tasks DROP duration"_s, u"ALTER TABLE tasks DROP thumbnail"_s,
                                          u"PRAGMA user_version = 1"_s }
                                   << 0 << 0;
    }
    void earlierStoresMigrate()
    {
        QFETCH(QString, file);
        QFETCH(QStringList, windBack);
        QFETCH(int, presets);
        QFETCH(int, groups);
        const QString path = m_dir.filePath(QString::fromUtf8(QTest::currentDataTag()));
        QVERIFY(QFile::copy(qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/data/store/"_s + file, path));
        for (const QString &sql : std::as_const(windBack))
            sqlRows(path, sql);
        const QList<QVariantMap> before = sqlRows(path, u"SELECT * FROM tasks ORDER BY ordinal"_s);
        TaskStore store(path);
        QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
        const QList<StoredTask> loaded = store.loadTasks();
        const QList<QVariantMap> after = sqlRows(path, u"SELECT * FROM tasks ORDER BY ordinal"_s);
        const QStringList keys = { u"pending default"_s, u"preparing bestQuality"_s, u"downloading bestAudio"_s,
            u"completed bestVideoAudio"_s, u"failed audioOnly"_s, u"cancelled custom"_s, u"paused bestQuality"_s };
        QCOMPARE(loaded.size(), keys.size());
        QVERIFY(before.size() == keys.size() && after.size() == keys.size());
        for (qsizetype i = 0; i < keys.size(); ++i) {
            QVariantMap was = before.at(i);
            QVariantMap is = after.at(i);
            QCOMPARE(is.take(u"status"_s).toString() + u' ' + is.take(u"preset"_s).toString(), keys.at(i));
            QCOMPARE(rawValue(loaded.at(i).task.status), was.take(u"status"_s).toString());
            QCOMPARE(rawValue(loaded.at(i).request.preset), was.take(u"preset"_s).toString());
            for (auto column = was.cbegin(); column != was.cend(); ++column)
                QCOMPARE(is.value(column.key()), column.value());
        }
        QCOMPARE(store.loadPresets().size(), presets);
        QCOMPARE(store.loadProcessGroups().size(), groups);
        // What the new version adds works on the migrated file.
        const SavedPreset preset { 0, u"字幕"_s, u"--write-subs"_s,
            sampleRow(DownloadStatus::Failed, 0).request.choices };
        QVERIFY(store.savePreset(preset) > 0);
        QCOMPARE(store.loadPresets().last().choices, preset.choices);
        const StoredTask failed = sampleRow(DownloadStatus::Failed, 2000);
        QVERIFY(store.apply({ { failed }, {} }));
        QCOMPARE(store.loadTasks().last().request, failed.request);
    }

    // A real store with its middle overwritten. (A file that is not a database at all, through the
    // application: damagedStoreStillStarts.)
    void damagedFileIsMovedAside()
    {
        const QString path = m_dir.filePath(u"broken.sqlite"_s);
        {
            TaskStore store(path);
            QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
            QList<StoredTask> rows;
            for (int i = 0; i < 300; ++i)
                rows.append(sampleRow(DownloadStatus::Completed, i));
            QVERIFY(store.apply({ rows, {} }));
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.size() > 16 * 4096);
        file.seek(4 * 4096);
        file.write(QByteArray(8 * 4096, '\x5a'));
        file.close();
        const QByteArray before = fileBytes(path);

        TaskStore store(path);
        const TaskStore::OpenResult result = store.open();
        QCOMPARE(result.state, TaskStore::OpenState::Replaced);
        QVERIFY(result.detail.startsWith(path + u".broken-"_s));
        QCOMPARE(fileBytes(result.detail), before);
        // The fresh one in its place works.
        QVERIFY(store.loadTasks().isEmpty());
        QVERIFY(store.apply({ { sampleRow(DownloadStatus::Pending, 1) }, {} }));
        QCOMPARE(store.loadTasks().size(), 1);
    }

    // A folder that cannot be made: no store, and no crash on use. (A store a later version wrote,
    // through the application: newerStoreIsOnlyRead.)
    void folderThatCannotBeMade()
    {
        QFile blocker(m_dir.filePath(u"file"_s));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        TaskStore store(m_dir.filePath(u"file/sub/quillbox.sqlite"_s));
        QCOMPARE(store.open().state, TaskStore::OpenState::Failed);
        QVERIFY(!store.apply({ { sampleRow(DownloadStatus::Pending, 1) }, {} }));
        QVERIFY(store.loadTasks().isEmpty());
    }

    void filesAreOwnerOnly_data()
    {
        QTest::addColumn<bool>("existedWide"); // a store an earlier run left 0644
        QTest::newRow("made new") << false;
        QTest::newRow("left wide") << true;
    }
    // The rows hold typed passwords: the folders made for the store are 0700 and the database
    // with its -wal and -shm 0600, while it is in use and after.
    void filesAreOwnerOnly()
    {
        QFETCH(bool, existedWide);
        const QString folder
            = m_dir.filePath(u"private-%1/data/Quillbox"_s.arg(QString::fromUtf8(QTest::currentDataTag())));
        const QString path = folder + u"/quillbox.sqlite"_s;
        const UmaskScope scope { 0 };
        if (existedWide) {
            QVERIFY(QDir().mkpath(folder));
            TaskStore earlier(path);
            QCOMPARE(earlier.open().state, TaskStore::OpenState::Opened);
            QVERIFY(earlier.apply({ { sampleRow(DownloadStatus::Pending, 1) }, {} }));
            for (const QString &suffix : { u""_s, u"-wal"_s, u"-shm"_s })
                QVERIFY(QFile::setPermissions(path + suffix, QFile::Permissions(0x6444)));
            QVERIFY(QFile::setPermissions(folder, QFile::Permissions(0x7777)));
        }
        TaskStore store(path);
        QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
        QVERIFY(store.apply({ { sampleRow(DownloadStatus::Failed, 2) }, {} }));
        QVERIFY(store.savePreset({ 0, u"登录"_s, u"--password secret"_s, {} }) > 0);
        QCOMPARE(modeOf(folder), 0700);
        if (!existedWide)
            QCOMPARE(modeOf(QFileInfo(folder).absolutePath()), 0700);
        for (const QString &suffix : { u""_s, u"-wal"_s, u"-shm"_s })
            QCOMPARE(modeOf(path + suffix), 0600);
    }

    void historyIsBounded()
    {
        TaskStore store(m_dir.filePath(u"history.sqlite"_s));
        QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
        // The oldest row waits: history never pushes out what is still to do.
        QList<StoredTask> rows { sampleRow(DownloadStatus::Pending, 0) };
        for (int i = 1; i <= TaskStore::HistoryLimit + 5; ++i)
            rows.append(sampleRow(i % 2 ? DownloadStatus::Completed : DownloadStatus::Failed, i));
        QVERIFY(store.apply({ rows, {} }));
        const QList<StoredTask> loaded = store.loadTasks();
        QCOMPARE(loaded.size(), TaskStore::HistoryLimit + 1);
        QCOMPARE(loaded.first().task.status, DownloadStatus::Pending);
        QCOMPARE(loaded.at(1).ordinal, 6);
        QCOMPARE(loaded.last().ordinal, TaskStore::HistoryLimit + 5);
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
                m_fixture->path(u"out"_s), false, false, {} };
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
        // Running when the application quit, it carries on first, exactly as it ran (yt-dlp
        // resumes its ".part" file), the password as it was typed; the one waiting then waits.
        QTRY_COMPARE_WITH_TIMEOUT(downloads.tasks().at(2).status, DownloadStatus::Downloading, 20000);
        QCOMPARE(downloads.tasks().at(3).status, DownloadStatus::Pending);
        QTRY_COMPARE_WITH_TIMEOUT(m_fake->runs().size(), 4, 10000);
        QCOMPARE(m_fake->runs().last(), firstRuns.at(2));
        QVERIFY(firstRuns.at(2).contains(u"hunter 2"_s));
        // Stopped by the user, it stays stopped; the next one starts with its own request.
        downloads.stopDownload(idOf(tasks.at(2)));
        QTRY_COMPARE_WITH_TIMEOUT(m_fake->runs().size(), 5, 20000);
        QVERIFY(m_fake->runs().last().contains(u"https://q.example/v=later"_s));

        // What changed since is stored too: cleared history stays cleared.
        downloads.clearCompleted();
        memory.close();
        downloads.shutdown();
        // Held at the next start, the unfinished row shows paused and does not run; the store
        // keeps it unfinished for a start that carries on.
        AppState heldState;
        DownloadManager held(&heldState, locations());
        held.setResumeAtStart(false);
        QueueMemory heldMemory(&held, &heldState, m_store);
        heldMemory.start();
        QTRY_VERIFY(heldMemory.isRestored() && held.tools()->isReady());
        QCOMPARE(held.tasks().at(1).status, DownloadStatus::Cancelled);
        QCOMPARE(held.tasks().at(2).status, DownloadStatus::Paused);
        QCOMPARE(held.runningCount(), 0);
        heldMemory.close();
        held.setResumeAtStart(true);
        TaskStore store(m_store);
        QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
        QCOMPARE(store.loadTasks().at(1).task.status, DownloadStatus::Cancelled);
        QCOMPARE(store.loadTasks().at(2).task.status, DownloadStatus::Downloading);
    }

    // A download started before the stored queue is read is this run's own: reading the store
    // does not end it as a dead run's leftover.
    void ownDownloadIsNoLeftover()
    {
        AppState state;
        DownloadManager downloads(&state, locations());
        QueueMemory memory(&downloads, &state, m_store);
        downloads.startDownloads({ u"https://q.example/v=slow"_s },
            { DownloadPreset::Default, {}, m_fixture->path(u"out"_s), false, false, {} });
        QTRY_VERIFY_WITH_TIMEOUT(downloads.tasks().at(0).progress > 0, 20000);
        // Its process group is recorded on the store's thread meanwhile.
        QTest::qWait(500);
        memory.start();
        QTRY_VERIFY(memory.isRestored());
        QTest::qWait(500);
        QCOMPARE(downloads.tasks().at(0).status, DownloadStatus::Downloading);
        memory.close();
        downloads.shutdown();
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

        // The next start ends what is left before the rows come back, the dead run's lock no
        // obstacle, and carries them on.
        for (const QString &scenario : { u"slow"_s, u"later"_s })
            m_fixture->writeFile(u"scenarios/%1.json"_s.arg(scenario), R"({"steps": [{"write_output": true}]})");
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
            guardianKilled ? QStringList { u"⏹ 已结束上次运行遗留的 3 个下载进程"_s } : QStringList());
        QTRY_COMPARE_WITH_TIMEOUT(downloads.taskModel()->completedCount(), 3, 20000);
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
        second.startDownloads({ u"https://q.example/v=done"_s },
            { DownloadPreset::Default, {}, m_fixture->path(u"out"_s), true, false, {} });
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
        // As a later Quillbox would leave it: its own version, our rows still readable.
        sqlRows(m_store, u"PRAGMA user_version = 99"_s);
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
        downloads.startDownloads({ u"https://n.example/v=done"_s },
            { DownloadPreset::Default, {}, m_fixture->path(u"out"_s), true, false, {} });
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
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestTaskStore)
#include "tst_taskstore.moc"
