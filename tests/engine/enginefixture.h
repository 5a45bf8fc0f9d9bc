#pragma once

#include "engine/downloadmanager.h"
#include "model/appstate.h"
#include "model/taskmodel.h"

#include "testsupport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMutex>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <functional>
#include <memory>

inline QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A sandbox for engine tests: a temporary home and settings store, a bin directory that holds
// the only programs the shell can find by name, executable scripts written on demand, and a
// capture of the engine's system-log lines.
class EngineFixture
{
public:
    EngineFixture()
    {
        m_bin = m_env.root() + QStringLiteral("/bin");
        QDir().mkpath(m_bin);
        // The few utilities the tools' command lines use; nothing that could be found as a tool.
        for (const char *tool : { "head", "cat", "sleep", "env", "python3", "printf", "sh", "ls", "mkdir" }) {
            // The system's own first: a version manager's shim would need the PATH we take away.
            QString found = QStandardPaths::findExecutable(
                QString::fromLatin1(tool), { QStringLiteral("/usr/bin"), QStringLiteral("/bin") });
            if (found.isEmpty())
                found = QStandardPaths::findExecutable(QString::fromLatin1(tool));
            if (!found.isEmpty())
                QFile::link(found, m_bin + u'/' + QString::fromLatin1(tool));
        }
        m_savedPath = qgetenv("PATH");
        qputenv("PATH", m_bin.toUtf8());
        s_capture = &m_systemLog;
        m_previousHandler = qInstallMessageHandler(&EngineFixture::captureMessage);
        IsolatedEnvironment::clearSettings();
    }

    ~EngineFixture()
    {
        qInstallMessageHandler(m_previousHandler);
        s_capture = nullptr;
        qputenv("PATH", m_savedPath);
        qunsetenv("QUILLBOX_SHELL");
    }

    QString root() const { return m_env.root(); }
    QString home() const { return m_env.home(); }
    QString path(const QString &relative) const { return m_env.root() + u'/' + relative; }

    // Writes an executable /bin/sh script at `relative` (under the sandbox) and returns its path.
    QString writeScript(const QString &relative, const QByteArray &body) const
    {
        const QString file = writeFile(relative, "#!/bin/sh\n" + body + "\n");
        QFile::setPermissions(file, QFile::Permissions(0x7755));
        return file;
    }

    // Returns the file's path.
    QString writeFile(const QString &relative, const QByteArray &content) const
    {
        const QString file = path(relative);
        QDir().mkpath(QFileInfo(file).absolutePath());
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(content) != content.size())
            qFatal("cannot write a file");
        return file;
    }

    QString readFile(const QString &relative) const { return QString::fromUtf8(fileBytes(path(relative))); }

    QStringList systemLog() const
    {
        QMutexLocker locker(&s_mutex);
        return m_systemLog;
    }

    // Locations that look only inside the sandbox unless told otherwise.
    ToolLocations emptyLocations() const
    {
        ToolLocations locations;
        locations.home = home();
        locations.runtimes
            = { { QStringLiteral("deno"), {} }, { QStringLiteral("node"), {} }, { QStringLiteral("bun"), {} } };
        return locations;
    }

    static QStringList messages(const AppState &state)
    {
        QStringList result;
        for (const LogEntry &entry : state.logEntries())
            result << entry.message;
        return result;
    }

private:
    static void captureMessage(QtMsgType, const QMessageLogContext &context, const QString &message)
    {
        QMutexLocker locker(&s_mutex);
        if (s_capture && context.category && QByteArrayView(context.category) == "quillbox.engine")
            s_capture->append(message);
        else
            std::fprintf(stderr, "%s\n", qPrintable(message));
    }

    IsolatedEnvironment m_env;
    QString m_bin;
    QByteArray m_savedPath;
    QStringList m_systemLog;
    QtMessageHandler m_previousHandler = nullptr;
    static inline QMutex s_mutex;
    static inline QStringList *s_capture = nullptr;
};

inline QString idOf(const DownloadTask &task)
{
    return task.id.toString(QUuid::WithoutBraces);
}

// Alive, and not just awaiting collection.
inline bool isRunning(qint64 pid)
{
    if (::kill(pid_t(pid), 0) != 0)
        return false;
    const QByteArray stat = fileBytes(QStringLiteral("/proc/%1/stat").arg(pid));
    const qsizetype close = stat.lastIndexOf(')');
    return close < 0 || stat.mid(close + 2, 1) != "Z";
}

// The stand-in yt-dlp (tests/fakes/yt-dlp) and what it recorded.
class FakeYtDlp
{
public:
    explicit FakeYtDlp(const EngineFixture &fixture)
        : m_fixture(fixture)
    {
        m_path = QString::fromLocal8Bit(qgetenv("QUILLBOX_TESTS_DIR")) + QStringLiteral("/fakes/yt-dlp");
        if (!QFileInfo(m_path).isExecutable())
            qFatal("the stand-in yt-dlp is missing");
        m_before = told();
        qputenv("FAKE_YTDLP_ARGV_FILE", fixture.path(QStringLiteral("argv.jsonl")).toUtf8());
        qputenv("FAKE_YTDLP_PIDFILE", fixture.path(QStringLiteral("pids.txt")).toUtf8());
    }

    // What a test told the stand-in since ends with it.
    ~FakeYtDlp()
    {
        for (const QString &name : told().keys())
            qunsetenv(name.toLocal8Bit().constData());
        for (auto variable = m_before.cbegin(); variable != m_before.cend(); ++variable)
            qputenv(variable.key().toLocal8Bit().constData(), variable.value().toLocal8Bit());
    }

    QString path() const { return m_path; }

    // Replays `steps` (a JSON list) for every download from now on.
    void setScenario(const QByteArray &steps, int exitCode = 0) const
    {
        m_fixture.writeFile(QStringLiteral("scenario.json"), steps);
        qputenv("FAKE_YTDLP_SCENARIO", m_fixture.path(QStringLiteral("scenario.json")).toUtf8());
        qputenv("FAKE_YTDLP_EXIT", QByteArray::number(exitCode));
    }

    // The argv of every run so far, without the --version probes and, unless asked for, without
    // "-J" information requests and the words by which a download writes its own information.
    QList<QStringList> runs(bool withInfo = false) const
    {
        QList<QStringList> result;
        const QString text = m_fixture.readFile(QStringLiteral("argv.jsonl"));
        for (const QString &line : text.split(u'\n', Qt::SkipEmptyParts)) {
            QStringList argv;
            for (const QJsonValue &word : QJsonDocument::fromJson(line.toUtf8()).array())
                argv << word.toString();
            // "-v" without a link is discovery asking how yt-dlp was built.
            const bool selfReport = argv.contains(QStringLiteral("-v")) && !argv.contains(QStringLiteral("--"));
            if (const qsizetype at = argv.indexOf(QStringLiteral("--print-to-file")); at >= 0 && !withInfo)
                argv.remove(at, 3);
            if (argv != QStringList { QStringLiteral("--version") } && !selfReport
                && (withInfo || !argv.contains(QStringLiteral("-J"))))
                result << argv;
        }
        return result;
    }

    QList<qint64> pids() const
    {
        QList<qint64> result;
        for (const QString &line : m_fixture.readFile(QStringLiteral("pids.txt")).split(u'\n', Qt::SkipEmptyParts))
            result << line.trimmed().toLongLong();
        return result;
    }

private:
    // The FAKE_YTDLP_ variables set now.
    static QMap<QString, QString> told()
    {
        QMap<QString, QString> variables;
        const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString &name : environment.keys()) {
            if (name.startsWith(u"FAKE_YTDLP_"))
                variables.insert(name, environment.value(name));
        }
        return variables;
    }

    const EngineFixture &m_fixture;
    QString m_path;
    QMap<QString, QString> m_before;
};

// An engine in its own sandbox, its yt-dlp the stand-in unless `edit` changes the locations.
struct SandboxEngine
{
    EngineFixture fixture;
    FakeYtDlp fake { fixture };
    AppState state;
    ToolLocations locations;
    std::unique_ptr<DownloadManager> manager;

    using Edit = std::function<void(SandboxEngine &, ToolLocations &)>;
    using Ready = std::function<bool(const DownloadManager &)>;
    static bool versionKnown(const DownloadManager &manager) { return !manager.ytDlpVersion().isEmpty(); }

    // Null if `ready` does not hold within `patience` ms.
    static std::unique_ptr<SandboxEngine> start(
        const Edit &edit = {}, const Ready &ready = versionKnown, int patience = 20000)
    {
        auto engine = std::make_unique<SandboxEngine>();
        engine->locations = engine->fixture.emptyLocations();
        engine->locations.ytDlp << engine->fake.path();
        if (edit)
            edit(*engine, engine->locations);
        engine->restart();
        const DownloadManager &manager = *engine->manager;
        if (ready && !QTest::qWaitFor([&] { return ready(manager); }, patience))
            return nullptr;
        return engine;
    }

    // A new engine in the same sandbox, as the next start of the application.
    void restart()
    {
        manager.reset();
        manager = std::make_unique<DownloadManager>(&state, locations);
    }

    void download(const QString &url, DownloadPreset preset = DownloadPreset::Default, const QString &custom = {},
        const QString &folder = {}, bool playlist = true, bool cookies = false)
    {
        manager->startDownload(
            url, preset, custom, folder.isEmpty() ? fixture.path(QStringLiteral("out")) : folder, playlist, cookies);
    }

    const DownloadTask &only() const { return manager->taskModel()->tasks().constFirst(); }
    QStringList log() const { return EngineFixture::messages(state); }

    // Every task has ended and nothing runs.
    bool settled() const
    {
        const auto &tasks = manager->taskModel()->tasks();
        return manager->runningCount() == 0 && !tasks.isEmpty()
            && std::all_of(tasks.cbegin(), tasks.cend(), [](const DownloadTask &task) {
                   return task.status == DownloadStatus::Completed || task.status == DownloadStatus::Failed
                       || task.status == DownloadStatus::Cancelled;
               });
    }
};
