// The store against real SQLite files: what is written comes back, an older schema is brought
// up to date with its rows, and a file that cannot be read never stops the application.

#include "store/taskstore.h"

#include "model/downloadpreset.h"

#include "engine/enginefixture.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

using namespace Qt::StringLiterals;

namespace {
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
    void init() { QVERIFY(m_dir.isValid()); }

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
        QVERIFY(store.savePreset({ 0, u"字幕"_s, u"--write-subs"_s }) > 0);
        QVERIFY(store.apply({ { sampleRow(DownloadStatus::Failed, 2000) }, {} }));
        QCOMPARE(store.loadTasks().last().task.status, DownloadStatus::Failed);
    }

    // A real store with its middle overwritten. (A file that is not a database at all, through the
    // application: tst_queuememory.)
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
    // through the application: tst_queuememory.)
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
        QVERIFY(store.savePreset({ 0, u"登录"_s, u"--password secret"_s }) > 0);
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

    void presets()
    {
        TaskStore store(m_dir.filePath(u"presets.sqlite"_s));
        QCOMPARE(store.open().state, TaskStore::OpenState::Opened);
        const qint64 first = store.savePreset({ 0, u"字幕"_s, u"--write-subs --sub-langs zh-Hans"_s });
        const qint64 second = store.savePreset({ 0, u"720p"_s, u"-f 'bv*[height<=720]+ba/b'"_s });
        QVERIFY(first > 0 && second > first);
        QCOMPARE(store.savePreset({ first, u"中文字幕"_s, u"--write-subs"_s }), first);
        QCOMPARE(store.savePreset({ 12345, u"gone"_s, u""_s }), 0);
        QVERIFY(store.removePreset(second));
        QCOMPARE(store.loadPresets(), (QList<SavedPreset> { { first, u"中文字幕"_s, u"--write-subs"_s } }));
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestTaskStore)
#include "tst_taskstore.moc"
