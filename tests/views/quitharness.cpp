// Quitting stops downloads: runs the real application set-up with the stand-in yt-dlp, starts a
// download whose process leaves a child behind, closes the window (or, with --sigterm, is sent
// SIGTERM), and once the event loop has ended checks that none of those processes still runs.
// Exits 0 when none does.

#include "app/applifecycle.h"
#include "engine/downloadmanager.h"
#include "views/qmlsetup.h"

#include "testsupport.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <csignal>
#include <cstdio>
#include <unistd.h>

Q_IMPORT_QML_PLUGIN(QuillboxPlugin)

using namespace Qt::StringLiterals;

namespace {
QList<qint64> pidsIn(const QString &file)
{
    QList<qint64> pids;
    QFile in(file);
    if (in.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : in.readAll().split('\n')) {
            if (!line.trimmed().isEmpty())
                pids << line.trimmed().toLongLong();
        }
    }
    return pids;
}

// Running, as opposed to gone or a zombie waiting to be collected.
bool running(qint64 pid)
{
    QFile stat(u"/proc/%1/stat"_s.arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = stat.readAll();
    const qsizetype close = text.lastIndexOf(')');
    return close > 0 && text.mid(close + 2, 1) != "Z";
}
} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    IsolatedEnvironment env;
    const QString fake = QString::fromLocal8Bit(qgetenv("QUILLBOX_TESTS_DIR")) + u"/fakes/yt-dlp"_s;
    if (!QFileInfo(fake).isExecutable()) {
        std::fputs("no stand-in yt-dlp: set QUILLBOX_TESTS_DIR to the tests folder\n", stderr);
        return 2;
    }
    QSettings().setValue(QLatin1String(DownloadManager::CustomYtDlpPathKey), fake);
    const QString pidFile = env.root() + u"/pids.txt"_s;
    const QString scenario = env.root() + u"/scenario.json"_s;
    QFile steps(scenario);
    if (!steps.open(QIODevice::WriteOnly))
        return 2;
    steps.write(R"([{"spawn_child_sleep": 60}, {"sleep": 60}])");
    steps.close();
    qputenv("FAKE_YTDLP_SCENARIO", scenario.toUtf8());
    qputenv("FAKE_YTDLP_PIDFILE", pidFile.toUtf8());
    QQuickStyle::setStyle(u"Basic"_s);
    AppLifecycle::quitOnTerminationSignals();
    const bool bySignal = app.arguments().contains(u"--sigterm"_s);

    AppLifecycle lifecycle(DownloadManager::instance());
    QQmlApplicationEngine engine;
    const std::unique_ptr<QQuickWindow> owner = loadMainWindow(engine);
    QQuickWindow *window = owner.get();
    if (!window)
        return 2;
    lifecycle.attachMainWindow(window);

    DownloadManager::instance()->startDownload(
        u"https://quit.example/v"_s, DownloadPreset::Default, QString(), env.root() + u"/out"_s, true, false);

    // Once the download and its child run, close the window as the user would.
    QTimer poll;
    poll.setInterval(50);
    QObject::connect(&poll, &QTimer::timeout, window, [&] {
        if (pidsIn(pidFile).size() >= 2) {
            poll.stop();
            if (bySignal)
                ::kill(::getpid(), SIGTERM);
            else
                window->close();
        }
    });
    poll.start();
    QTimer::singleShot(30000, &app, [] {
        std::fputs("the download never started\n", stderr);
        QCoreApplication::exit(3);
    });

    const int status = app.exec();
    if (status != 0)
        return status;
    int survivors = 0;
    for (qint64 pid : pidsIn(pidFile)) {
        if (running(pid)) {
            std::fprintf(stderr, "process %lld outlived the application\n", pid);
            ++survivors;
        }
    }
    const int checked = int(pidsIn(pidFile).size());
    std::printf("%d passed, %d failed\n", checked - survivors, survivors);
    return survivors == 0 && checked >= 2 ? 0 : 1;
}
