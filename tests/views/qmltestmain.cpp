// Qt Quick Test runner for the views: the real QML module and the real AppState and
// DownloadManager singletons, offscreen, in a sandboxed home whose yt-dlp is the stand-in.
// Built a second time with QUILLBOX_REAL_YTDLP, it uses Debian's yt-dlp instead and serves test
// media on 127.0.0.1 (TestHelper.baseUrl), for end-to-end runs through the real window.

#include "app/qmlsetup.h"
#include "engine/downloadmanager.h"
#include "model/appstate.h"
#include "model/videoinfo.h"
#include "store/queuememory.h"
#include "store/taskstore.h"

#include "cookies/cookiedatabase.h"
#include "support/mediaserver.h"
#include "testsupport.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest>

Q_IMPORT_QML_PLUGIN(QuillboxPlugin)

using namespace Qt::StringLiterals;

namespace {
// Writes `text` to `path`, folders made as needed, as a program if `executable`.
bool writeTextFile(const QString &path, const QString &text, bool executable = false)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text.toUtf8()) != text.toUtf8().size())
        return false;
    file.close();
    return !executable || file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
}
} // namespace

// What the QML tests need to arrange that the views themselves never do.
class TestHelper : public QObject
{
    Q_OBJECT

public:
    TestHelper(QString root, QString baseUrl)
        : m_root(std::move(root))
        , m_baseUrl(std::move(baseUrl))
    {
    }

    Q_INVOKABLE QString tempDir() const { return m_root; }
    Q_INVOKABLE QString baseUrl() const { return m_baseUrl; }

    // A record from its JSON form (camel-case keys); undefined when it does not decode.
    Q_INVOKABLE QVariant videoInfo(const QString &json) const
    {
        const auto info = VideoInfo::fromJson(json.toUtf8());
        return info ? QVariant::fromValue(*info) : QVariant();
    }

    // The kinds of stream ("video", "audio") in a media file, as ffprobe reads them.
    Q_INVOKABLE QStringList streamsOf(const QString &path) const
    {
        QProcess probe;
        probe.start(u"ffprobe"_s,
            { u"-v"_s, u"error"_s, u"-show_entries"_s, u"stream=codec_type"_s, u"-of"_s, u"csv=p=0"_s, path });
        probe.waitForFinished(30000);
        return QString::fromUtf8(probe.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    }

    Q_INVOKABLE QStringList filesIn(const QString &dir) const
    {
        return QDir(dir).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
    }

    Q_INVOKABLE void addLogs(int count, const QString &prefix, int type) const
    {
        for (int i = 0; i < count; ++i)
            AppState::instance()->addLog(u"%1 %2"_s.arg(prefix).arg(i), LogEntry::LogType(type));
    }

    Q_INVOKABLE QString env(const QString &name) const { return qEnvironmentVariable(name.toLatin1()); }
    Q_INVOKABLE void setEnv(const QString &name, const QString &value) const
    {
        if (value.isEmpty())
            qunsetenv(name.toLatin1());
        else
            qputenv(name.toLatin1(), value.toUtf8());
    }

    // The steps the stand-in replays for downloads started from now on, and its exit status.
    Q_INVOKABLE void setScenario(const QString &steps, int exitCode) const
    {
        writeTextFile(m_root + u"/scenario.json"_s, steps);
        qputenv("FAKE_YTDLP_SCENARIO", (m_root + u"/scenario.json"_s).toUtf8());
        qputenv("FAKE_YTDLP_EXIT", QByteArray::number(exitCode));
    }

    // Each task's link, or its status as the row names it.
    Q_INVOKABLE QStringList taskUrls() const
    {
        return tasks([](const DownloadTask &task) { return task.url; });
    }
    Q_INVOKABLE QStringList taskStatuses() const
    {
        return tasks([](const DownloadTask &task) { return rawValue(task.status); });
    }

    // A task list of its own, with one task in each of the given states at the given progress,
    // for rows the engine never produces on cue (paused) or only for an instant (preparing).
    // Each may be given a phase and the file it ends in.
    Q_INVOKABLE TaskModel *sampleTasks(const QStringList &statuses, double progress, const QString &notice,
        const QString &phase, const QString &outputPath)
    {
        auto *model = new TaskModel(this);
        for (const QString &status : statuses) {
            DownloadTask task = DownloadTask::create(u"https://sample.example/"_s + status);
            task.status = downloadStatusFromRawValue(status).value_or(DownloadStatus::Pending);
            task.progress = progress;
            task.notice = notice;
            task.phase = phase;
            if (!outputPath.isEmpty())
                task.outputPath = outputPath;
            model->append(task);
        }
        return model;
    }

    Q_INVOKABLE QVariant setting(const QString &key) const { return QSettings().value(key); }
    // Stores `value` as a previous run would have left it, and reads the settings back as a start does.
    Q_INVOKABLE void setSetting(const QString &key, const QVariant &value) const { QSettings().setValue(key, value); }
    Q_INVOKABLE void readPreferences() const { AppState::instance()->loadPreferences(); }

    Q_INVOKABLE bool writeFile(const QString &path, const QString &text, bool executable = false) const
    {
        return writeTextFile(path, text, executable);
    }
    Q_INVOKABLE QString readFile(const QString &path) const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    Q_INVOKABLE bool removeFile(const QString &path) const { return QFile::remove(path); }

    // A Chrome cookie database at `path` with one cookie whose value is encrypted as Chromium
    // does without a keyring.
    Q_INVOKABLE bool writeChromeDatabase(
        const QString &path, const QString &host, const QString &name, const QString &value) const
    {
        return writeChromeCookieDatabase(
            path, { { host, name, QString(), chromeEncrypt(value.toUtf8(), host.toUtf8(), "peanuts"), 0, false, {} } });
    }

    // The presets in the application's store file as "name=arguments", read on a connection of its own.
    Q_INVOKABLE QStringList storedPresets() const
    {
        TaskStore store(QueueMemory::instance()->path());
        if (store.open().state != TaskStore::OpenState::Opened)
            return { u"(cannot open the store)"_s };
        QStringList names;
        for (const SavedPreset &preset : store.loadPresets())
            names << preset.name + u'=' + preset.arguments;
        return names;
    }

private:
    template <typename Field>
    static QStringList tasks(Field field)
    {
        QStringList values;
        for (const DownloadTask &task : DownloadManager::instance()->tasks())
            values << field(task);
        return values;
    }

    QString m_root;
    QString m_baseUrl;
};

class Setup : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void applicationAvailable()
    {
        m_env = std::make_unique<IsolatedEnvironment>();
        const QString tests = QString::fromLocal8Bit(qgetenv("QUILLBOX_TESTS_DIR"));
#ifdef QUILLBOX_REAL_YTDLP
        QSettings().setValue(QLatin1String(DownloadManager::CustomYtDlpPathKey), u"/usr/bin/yt-dlp"_s);
        m_server = std::make_unique<MediaServer>(
            tests, m_env->root() + u"/media"_s, QStringList { u"--duration"_s, u"3"_s });
        if (m_server->base().isEmpty())
            qFatal("%s", qPrintable(m_server->error()));
        // A page that names its video the way sites do (a schema.org VideoObject: title, length,
        // picture), with the served DASH manifest as its content and a picture beside it.
        const QString media = m_env->root() + u"/media"_s;
        QProcess::execute(u"/usr/bin/ffmpeg"_s,
            { u"-loglevel"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, u"color=c=teal:s=160x90"_s, u"-frames:v"_s,
                u"1"_s, media + u"/thumb.jpg"_s });
        writeTextFile(media + u"/page.html"_s,
            u"<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>页面</title>\n"
            "<script type=\"application/ld+json\">\n{\"@context\": \"https://schema.org\", \"@type\": \"VideoObject\", "
            "\"name\": \"端到端 测试视频\", \"thumbnailUrl\": \"%1thumb.jpg\", \"duration\": \"PT1M5S\", "
            "\"contentUrl\": \"%1dash/manifest.mpd\"}\n</script></head><body></body></html>\n"_s.arg(m_server->base()));
#else
        QSettings().setValue(QLatin1String(DownloadManager::CustomYtDlpPathKey), QString(tests + u"/fakes/yt-dlp"_s));
        // Deno in the sandboxed home is the only JavaScript runtime, so a test decides whether one
        // is there (whatever this machine has installed).
        ToolLocations locations = ToolLocations::standard(m_env->home());
        locations.runtimes = { { u"deno"_s, { m_env->home() + u"/.deno/bin/deno"_s } } };
        // So are the places yt-dlp is looked for: the usual two first, then one more.
        locations.ytDlp = { m_env->root() + u"/opt/homebrew/bin/yt-dlp"_s, m_env->root() + u"/usr/local/bin/yt-dlp"_s,
            m_env->home() + u"/.local/bin/yt-dlp"_s };
        DownloadManager::useLocations(locations);
#endif
        qputenv("QUILLBOX_NO_BROWSER", "1");
        // An installation asked for in a test stays on this machine (a closed port on 127.0.0.1).
        qputenv("QUILLBOX_RELEASES_URL", "http://127.0.0.1:9");
        // Exported cookie files go to the sandbox's temporary folder.
        QDir().mkpath(m_env->root() + u"/tmp"_s);
        qputenv("TMPDIR", (m_env->root() + u"/tmp"_s).toUtf8());
        qputenv("FAKE_YTDLP_ARGV_FILE", (m_env->root() + u"/argv.jsonl"_s).toUtf8());
        QQuickStyle::setStyle(u"Basic"_s);
        m_helper = new TestHelper(m_env->root(), m_server ? m_server->base() : QString());
        qmlRegisterSingletonInstance("QuillboxTest", 1, 0, "TestHelper", m_helper);
    }

    void qmlEngineAvailable(QQmlEngine *engine)
    {
        setupQmlEngine(*engine);
    }

    void cleanupTestCase()
    {
        // The store's thread ends before the engine does.
        QueueMemory::instance()->close();
        DownloadManager::instance()->shutdown();
        m_server.reset();
    }

private:
    std::unique_ptr<MediaServer> m_server;
    std::unique_ptr<IsolatedEnvironment> m_env;
    TestHelper *m_helper = nullptr;
};

QUICK_TEST_MAIN_WITH_SETUP(qmlviews, Setup)

#include "qmltestmain.moc"
