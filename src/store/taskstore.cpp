#include "store/taskstore.h"

#include "engine/privatefiles.h"
#include "model/downloadpreset.h"
#include "model/logcategories.h"

#include <QAtomicInt>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QVariant>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {
QAtomicInt connectionCount;

const QString taskColumns = u"id, ordinal, url, title, status, progress, speed, size, error_message, explanation, "
                            u"start_time, end_time, output_path, duration, thumbnail, preset, custom_args, "
                            u"output_dir, playlist, cookies, options, playlist_item"_s;

QVariant optionalText(const std::optional<QString> &text)
{
    return text ? QVariant(*text) : QVariant(QMetaType(QMetaType::QString));
}

std::optional<QString> optionalText(const QVariant &value)
{
    return value.isNull() ? std::nullopt : std::optional<QString>(value.toString());
}

QVariant timeValue(const QDateTime &time)
{
    return time.isValid() ? QVariant(time.toMSecsSinceEpoch()) : QVariant(QMetaType(QMetaType::LongLong));
}

QDateTime timeFrom(const QVariant &value)
{
    return value.isNull() ? QDateTime() : QDateTime::fromMSecsSinceEpoch(value.toLongLong());
}

// The statuses of rows that are done with: history, bounded by HistoryLimit.
QString finishedStatuses()
{
    return u"'%1', '%2', '%3'"_s.arg(storageKey(DownloadStatus::Completed), storageKey(DownloadStatus::Failed),
        storageKey(DownloadStatus::Cancelled));
}
} // namespace

QString TaskStore::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + u"/quillbox.sqlite"_s;
}

TaskStore::TaskStore(QString path)
    : m_path(std::move(path))
    , m_connection(u"quillbox-store-%1"_s.arg(connectionCount.fetchAndAddRelaxed(1)))
{
}

TaskStore::~TaskStore()
{
    closeConnection();
}

bool TaskStore::isOpen() const
{
    return QSqlDatabase::contains(m_connection) && QSqlDatabase::database(m_connection, false).isOpen();
}

bool TaskStore::exec(const QString &sql)
{
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    if (query.exec(sql))
        return true;
    m_lastError = query.lastError().text();
    return false;
}

bool TaskStore::isWritable() const
{
    return !m_readOnly && isOpen();
}

bool TaskStore::openConnection(bool readOnly)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, m_connection);
    db.setDatabaseName(m_path);
    // Another connection to the file (a second window of the store) waits rather than fails.
    db.setConnectOptions(
        readOnly ? u"QSQLITE_BUSY_TIMEOUT=3000;QSQLITE_OPEN_READONLY"_s : u"QSQLITE_BUSY_TIMEOUT=3000"_s);
    if (!db.open()) {
        m_lastError = db.lastError().text();
        return false;
    }
    return true;
}

void TaskStore::closeConnection()
{
    if (!QSqlDatabase::contains(m_connection))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_connection);
}

QString TaskStore::checkAndMigrate(int &version)
{
    // The version is read over a read-only connection: a later version's file is never written,
    // not even by the checkpoint a read-write connection makes when it closes. That connection is
    // then the one this run reads the file through.
    if (!openConnection(true))
        return m_lastError;
    {
        QSqlQuery query(QSqlDatabase::database(m_connection, false));
        // The first statement reads the file: one that is not a database fails here.
        if (!query.exec(u"PRAGMA user_version"_s) || !query.next())
            return query.lastError().text();
        version = query.value(0).toInt();
    }
    if (version > SchemaVersion) {
        m_readOnly = true;
        return {};
    }
    closeConnection();
    if (!openConnection(false))
        return m_lastError;
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    if (!query.exec(u"PRAGMA quick_check"_s) || !query.next())
        return query.lastError().text();
    if (const QString verdict = query.value(0).toString(); verdict != u"ok")
        return verdict;
    // A statement left open holds a read transaction, and the journal cannot change inside one.
    query.finish();
    // FULL: each commit reaches the disk, so a power cut loses no more than the write pending.
    if (!exec(u"PRAGMA journal_mode=WAL"_s) || !exec(u"PRAGMA synchronous=FULL"_s))
        return m_lastError;
    if (version < SchemaVersion && !migrate(version))
        return m_lastError;
    version = SchemaVersion;
    return {};
}

bool TaskStore::migrate(int from)
{
    const auto statements = [this](const QStringList &sql) {
        return
            [this, sql] { return std::all_of(sql.cbegin(), sql.cend(), [this](const QString &s) { return exec(s); }); };
    };
    // Each step is one transaction that ends by recording its version.
    const QList<std::function<bool()>> steps = {
        statements({
            u"CREATE TABLE tasks (id TEXT PRIMARY KEY, ordinal INTEGER NOT NULL, url TEXT NOT NULL, "
            u"title TEXT NOT NULL, status TEXT NOT NULL, progress REAL NOT NULL DEFAULT 0, "
            u"speed TEXT NOT NULL DEFAULT '', size TEXT NOT NULL DEFAULT '', error_message TEXT, "
            u"start_time INTEGER, end_time INTEGER, output_path TEXT, preset TEXT NOT NULL, "
            u"custom_args TEXT NOT NULL DEFAULT '', output_dir TEXT NOT NULL, playlist INTEGER NOT NULL, "
            u"cookies INTEGER NOT NULL)"_s,
            u"CREATE INDEX tasks_by_ordinal ON tasks (ordinal)"_s,
        }),
        statements({
            u"ALTER TABLE tasks ADD COLUMN explanation TEXT"_s,
            u"ALTER TABLE tasks ADD COLUMN duration TEXT NOT NULL DEFAULT ''"_s,
            u"ALTER TABLE tasks ADD COLUMN thumbnail TEXT NOT NULL DEFAULT ''"_s,
            u"CREATE TABLE presets (id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL, "
            u"arguments TEXT NOT NULL)"_s,
        }),
        statements({
            u"CREATE TABLE process_groups (id INTEGER PRIMARY KEY, started INTEGER NOT NULL)"_s,
        }),
        [this] { return labelsToKeys(); },
        statements({
            u"ALTER TABLE tasks ADD COLUMN options TEXT NOT NULL DEFAULT ''"_s,
            u"ALTER TABLE presets ADD COLUMN options TEXT NOT NULL DEFAULT ''"_s,
        }),
        statements({ u"ALTER TABLE tasks ADD COLUMN playlist_item TEXT NOT NULL DEFAULT ''"_s }),
    };
    static_assert(SchemaVersion == 6, "one migration step per schema version");
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    for (int version = from; version < SchemaVersion; ++version) {
        if (!db.transaction()) {
            m_lastError = db.lastError().text();
            return false;
        }
        const bool ok = steps.at(version)() && exec(u"PRAGMA user_version = %1"_s.arg(version + 1));
        if (!ok || !db.commit()) {
            if (ok)
                m_lastError = db.lastError().text();
            db.rollback();
            return false;
        }
        qCInfo(lcEngine, "[Quillbox] 队列数据库已升级到第 %d 版", version + 1);
    }
    return true;
}

// Versions 1 to 3 kept a row's status and preset by the label the interface showed; each label
// becomes its key. A text that is neither stays as it is, and reads as it always did (a status
// as cancelled, a preset as the default).
bool TaskStore::labelsToKeys()
{
    const auto relabel = [this](const QString &column, const std::function<QString(QStringView)> &keyOf) {
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        QSqlQuery query(db);
        if (!query.exec(u"SELECT DISTINCT %1 FROM tasks"_s.arg(column))) {
            m_lastError = query.lastError().text();
            return false;
        }
        QList<std::pair<QString, QString>> changes;
        while (query.next()) {
            const QString label = query.value(0).toString();
            if (const QString key = keyOf(label); !key.isEmpty())
                changes.append({ label, key });
        }
        QSqlQuery update(db);
        bool ok = update.prepare(u"UPDATE tasks SET %1 = ? WHERE %1 = ?"_s.arg(column));
        for (qsizetype i = 0; ok && i < changes.size(); ++i) {
            update.bindValue(0, changes.at(i).second);
            update.bindValue(1, changes.at(i).first);
            ok = update.exec();
        }
        if (!ok)
            m_lastError = update.lastError().text();
        return ok;
    };
    return relabel(u"status"_s, [](QStringView label) {
        const auto status = downloadStatusFromRawValue(label);
        return status ? storageKey(*status) : QString();
    }) && relabel(u"preset"_s, [](QStringView label) {
        const auto preset = downloadPresetFromRawValue(label);
        return preset ? storageKey(*preset) : QString();
    });
}

// SQLite creates a database 0644 whatever the umask, and gives its -wal and -shm the database's
// own mode: a file that is owner-only before SQLite opens it keeps all three so. Files left by an
// earlier, wider run are narrowed too.
void TaskStore::makeFilesPrivate() const
{
    PrivateFiles::makeFile(m_path);
    for (const QString &suffix : { u"-wal"_s, u"-shm"_s })
        PrivateFiles::restrictFile(m_path + suffix);
}

TaskStore::OpenResult TaskStore::open()
{
    closeConnection();
    m_readOnly = false;
    const QFileInfo file(m_path);
    if (!PrivateFiles::makeFolder(file.absolutePath()))
        return { OpenState::Failed,
            QCoreApplication::translate("TaskStore", "无法创建文件夹 %1").arg(file.absolutePath()) };
    makeFilesPrivate();

    int version = 0;
    const QString problem = checkAndMigrate(version);
    if (problem.isEmpty())
        return { version > SchemaVersion ? OpenState::Newer : OpenState::Opened, {} };
    closeConnection();
    if (!file.exists())
        return { OpenState::Failed, problem };

    // Whatever is wrong with it, the file is kept for whoever wants to look, out of the way.
    QString aside = m_path + u".broken-"_s + QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    for (int again = 2; QFile::exists(aside); ++again)
        aside = aside.section(u'~', 0, 0) + u'~' + QString::number(again);
    if (!QFile::rename(m_path, aside))
        return { OpenState::Failed, problem };
    for (const QString &suffix : { u"-wal"_s, u"-shm"_s }) {
        if (QFile::exists(m_path + suffix))
            QFile::rename(m_path + suffix, aside + suffix);
    }
    qCWarning(
        lcEngine, "[Quillbox] 队列数据库无法读取 (%ls), 已移到 %ls", qUtf16Printable(problem), qUtf16Printable(aside));
    makeFilesPrivate();
    if (const QString again = checkAndMigrate(version); !again.isEmpty()) {
        closeConnection();
        return { OpenState::Failed, again };
    }
    return { OpenState::Replaced, aside };
}

QList<StoredTask> TaskStore::loadTasks()
{
    QList<StoredTask> rows;
    if (!isOpen())
        return rows;
    if (!m_readOnly)
        exec(u"DELETE FROM tasks WHERE status IN (%1) AND id NOT IN (SELECT id FROM tasks WHERE status IN (%1) "
             u"ORDER BY ordinal DESC LIMIT %2)"_s.arg(finishedStatuses())
                 .arg(HistoryLimit));
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.setForwardOnly(true);
    if (!query.exec(u"SELECT %1 FROM tasks ORDER BY ordinal"_s.arg(taskColumns))) {
        m_lastError = query.lastError().text();
        return rows;
    }
    while (query.next()) {
        StoredTask row;
        DownloadTask &task = row.task;
        task.id = QUuid::fromString(query.value(0).toString());
        if (task.id.isNull())
            continue;
        row.ordinal = query.value(1).toLongLong();
        task.url = query.value(2).toString();
        task.title = query.value(3).toString();
        task.status = downloadStatusFromStorageKey(query.value(4).toString()).value_or(DownloadStatus::Cancelled);
        task.progress = query.value(5).toDouble();
        task.speed = query.value(6).toString();
        task.size = query.value(7).toString();
        task.errorMessage = optionalText(query.value(8));
        task.explanation = optionalText(query.value(9));
        task.startTime = timeFrom(query.value(10));
        if (const QDateTime end = timeFrom(query.value(11)); end.isValid())
            task.endTime = end;
        task.outputPath = optionalText(query.value(12));
        task.duration = query.value(13).toString();
        task.thumbnail = query.value(14).toString();
        DownloadRequest &request = row.request;
        request.url = task.url;
        request.preset = downloadPresetFromStorageKey(query.value(15).toString()).value_or(DownloadPreset::Default);
        request.customArgs = query.value(16).toString();
        request.outputDir = query.value(17).toString();
        request.downloadPlaylist = query.value(18).toBool();
        request.useCookies = query.value(19).toBool();
        request.choices = DownloadChoices::fromJsonText(query.value(20).toString());
        request.playlist = task.playlist = PlaylistPlace::fromJsonText(query.value(21).toString());
        rows.append(std::move(row));
    }
    return rows;
}

bool TaskStore::apply(const StoreBatch &batch)
{
    if (!isWritable() || batch.isEmpty())
        return isWritable();
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    if (!db.transaction()) {
        m_lastError = db.lastError().text();
        return false;
    }
    bool ok = true;
    if (!batch.upserts.isEmpty()) {
        QSqlQuery write(db);
        // A text Qt holds as null (an empty folder never typed in) is bound as NULL: the columns
        // that cannot be NULL take it as empty.
        const QString text = u"COALESCE(?, '')"_s;
        const QStringList values = { u"?"_s, u"?"_s, text, text, text, u"?"_s, text, text, u"?"_s, u"?"_s, u"?"_s,
            u"?"_s, u"?"_s, text, text, text, text, text, u"?"_s, u"?"_s, text, text };
        ok = write.prepare(u"INSERT OR REPLACE INTO tasks (%1) VALUES (%2)"_s.arg(taskColumns, values.join(u", "_s)));
        for (qsizetype i = 0; ok && i < batch.upserts.size(); ++i) {
            const StoredTask &row = batch.upserts.at(i);
            const DownloadTask &task = row.task;
            const QVariantList values = { task.id.toString(QUuid::WithoutBraces), row.ordinal, task.url, task.title,
                storageKey(task.status), task.progress, task.speed, task.size, optionalText(task.errorMessage),
                optionalText(task.explanation), timeValue(task.startTime),
                timeValue(task.endTime.value_or(QDateTime())), optionalText(task.outputPath), task.duration,
                task.thumbnail, storageKey(row.request.preset), row.request.customArgs, row.request.outputDir,
                int(row.request.downloadPlaylist), int(row.request.useCookies), row.request.choices.toJsonText(),
                task.playlist.toJsonText() };
            for (int column = 0; column < values.size(); ++column)
                write.bindValue(column, values.at(column));
            ok = write.exec();
        }
        if (!ok)
            m_lastError = write.lastError().text();
    }
    if (ok && !batch.removals.isEmpty()) {
        QSqlQuery remove(db);
        ok = remove.prepare(u"DELETE FROM tasks WHERE id = ?"_s);
        for (qsizetype i = 0; ok && i < batch.removals.size(); ++i) {
            remove.bindValue(0, batch.removals.at(i).toString(QUuid::WithoutBraces));
            ok = remove.exec();
        }
        if (!ok)
            m_lastError = remove.lastError().text();
    }
    if (ok && db.commit())
        return true;
    if (ok)
        m_lastError = db.lastError().text();
    db.rollback();
    return false;
}

QList<SavedPreset> TaskStore::loadPresets()
{
    QList<SavedPreset> presets;
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    if (!isOpen() || !query.exec(u"SELECT id, name, arguments, options FROM presets ORDER BY id"_s))
        return presets;
    while (query.next()) {
        presets.append({ query.value(0).toLongLong(), query.value(1).toString(), query.value(2).toString(),
            DownloadChoices::fromJsonText(query.value(3).toString()) });
    }
    return presets;
}

qint64 TaskStore::savePreset(const SavedPreset &preset)
{
    if (!isWritable())
        return 0;
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    if (preset.id == 0) {
        query.prepare(u"INSERT INTO presets (name, arguments, options) VALUES (?, ?, ?)"_s);
    } else {
        query.prepare(u"UPDATE presets SET name = ?, arguments = ?, options = ? WHERE id = ?"_s);
        query.bindValue(3, preset.id);
    }
    query.bindValue(0, preset.name);
    query.bindValue(1, preset.arguments);
    query.bindValue(2, preset.choices.toJsonText());
    if (!query.exec()) {
        m_lastError = query.lastError().text();
        return 0;
    }
    if (preset.id != 0)
        return query.numRowsAffected() > 0 ? preset.id : 0;
    return query.lastInsertId().toLongLong();
}

QList<TaskStore::ProcessGroup> TaskStore::loadProcessGroups()
{
    QList<ProcessGroup> groups;
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    if (!isOpen() || !query.exec(u"SELECT id, started FROM process_groups"_s))
        return groups;
    while (query.next())
        groups.append({ query.value(0).toLongLong(), query.value(1).toLongLong() });
    return groups;
}

bool TaskStore::recordProcessGroup(const ProcessGroup &group)
{
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.prepare(u"INSERT OR REPLACE INTO process_groups (id, started) VALUES (?, ?)"_s);
    query.bindValue(0, group.id);
    query.bindValue(1, group.started);
    if (isWritable() && query.exec())
        return true;
    m_lastError = query.lastError().text();
    return false;
}

bool TaskStore::forgetProcessGroups(const QList<qint64> &ids)
{
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.prepare(u"DELETE FROM process_groups WHERE id = ?"_s);
    for (const qint64 id : ids) {
        query.bindValue(0, id);
        if (!isWritable() || !query.exec()) {
            m_lastError = query.lastError().text();
            return false;
        }
    }
    return true;
}

bool TaskStore::removePreset(qint64 id)
{
    if (!isWritable())
        return false;
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.prepare(u"DELETE FROM presets WHERE id = ?"_s);
    query.bindValue(0, id);
    if (query.exec())
        return true;
    m_lastError = query.lastError().text();
    return false;
}
