// Quitting stops downloads: runs the real application set-up with the stand-in yt-dlp, starts a
// download whose process leaves a child behind, then quits as the mode says: "quit" closes the
// window (the question asked first is cancelled once, then answered "退出"), "menu_quit" clicks
// "退出 Quillbox" in the menu bar, "quit_key" presses its key equivalent, each answering "退出",
// and "sigterm" sends SIGTERM. Once the event loop has ended it checks that none of those
// processes still runs, and that the queue was kept as it stood, the download still running.

#include "app/applifecycle.h"
#include "app/qmlsetup.h"
#include "engine/downloadmanager.h"
#include "store/queuememory.h"

#include "testsupport.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTest>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <csignal>
#include <cstdio>
#include <functional>
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

// The first shown item under `root` (popups included, they sit in the window's overlay) that
// `matches` accepts.
QQuickItem *findItem(QQuickItem *root, const std::function<bool(QQuickItem *)> &matches)
{
    if (!root || !root->isVisible())
        return nullptr;
    if (matches(root))
        return root;
    for (QQuickItem *child : root->childItems()) {
        if (QQuickItem *found = findItem(child, matches))
            return found;
    }
    return nullptr;
}

// The shown item named `name`, once there is one (null if none comes).
QQuickItem *waitForItem(QQuickWindow *window, const QString &name)
{
    QQuickItem *item = nullptr;
    const bool shown = QTest::qWaitFor([&] {
        item = findItem(window->contentItem(),
            [&name](QQuickItem *candidate) { return candidate->objectName() == name && candidate->height() > 0; });
        return item != nullptr;
    });
    return shown ? item : nullptr;
}

bool click(QQuickWindow *window, const QQuickItem *item)
{
    if (!item)
        return false;
    QTest::qWait(300); // the opening transition of what holds it
    QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier,
        item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint());
    return true;
}

// Waits for the question asked before quitting with a download running, checks it, and answers
// with the button named `answer`.
bool answerQuitQuestion(QQuickWindow *window, const QString &answer)
{
    QQuickItem *button = waitForItem(window, answer);
    const QQuickItem *message = waitForItem(window, u"quitMessage"_s);
    if (!button || !message || message->property("text").toString() != u"有 1 个下载正在进行，退出将停止它们。"_s) {
        std::fputs("quitting with a download running did not ask first\n", stderr);
        return false;
    }
    return click(window, button);
}
} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    IsolatedEnvironment env;
    QSettings().setValue(QLatin1String(DownloadManager::CustomYtDlpPathKey),
        QString(qEnvironmentVariable("QUILLBOX_TESTS_DIR") + u"/fakes/yt-dlp"_s));
    const QString pidFile = env.root() + u"/pids.txt"_s;
    QFile steps(env.root() + u"/scenario.json"_s);
    if (!steps.open(QIODevice::WriteOnly))
        return 2;
    steps.write(R"([{"spawn_child_sleep": 60}, {"sleep": 60}])");
    steps.close();
    qputenv("FAKE_YTDLP_SCENARIO", steps.fileName().toUtf8());
    qputenv("FAKE_YTDLP_PIDFILE", pidFile.toUtf8());
    QQuickStyle::setStyle(u"Basic"_s);
    AppLifecycle::quitOnTerminationSignals();
    const QString mode = app.arguments().value(1);

    AppLifecycle lifecycle(DownloadManager::instance());
    QQmlApplicationEngine engine;
    const std::unique_ptr<QQuickWindow> owner = loadMainWindow(engine);
    QQuickWindow *window = owner.get();
    if (!window)
        return 2;
    lifecycle.restoreQueueAfterFirstFrame(window, QueueMemory::instance());
    lifecycle.attachMainWindow(window);
    window->requestActivate();

    DownloadManager::instance()->startDownload(
        u"https://quit.example/v"_s, DownloadPreset::Default, QString(), env.root() + u"/out"_s, true, false);

    // Once the download and its child run, quit as the user would.
    QTimer poll;
    poll.setInterval(50);
    QObject::connect(&poll, &QTimer::timeout, window, [&] {
        if (pidsIn(pidFile).size() < 2)
            return;
        poll.stop();
        if (mode == u"sigterm") {
            ::kill(::getpid(), SIGTERM);
            return;
        }
        // The application menu of the in-window menu bar, then its quit item, as a user would.
        const auto menuTitle = [](QQuickItem *item) {
            return item->inherits("QQuickMenuBarItem") && item->property("text").toString() == u"Quillbox"_s;
        };
        if (mode == u"menu_quit"
            && !(click(window, findItem(window->contentItem(), menuTitle))
                && click(window, waitForItem(window, u"menuItem_退出 Quillbox"_s)))) {
            std::fputs("no \"退出 Quillbox\" in the menu bar\n", stderr);
            return QCoreApplication::exit(4);
        }
        if (mode == u"quit_key") {
            // Shortcuts go to the active window.
            if (!QTest::qWaitForWindowActive(window))
                std::fputs("the window never became active\n", stderr);
            QTest::keyClick(window, Qt::Key_Q, Qt::ControlModifier);
        }
        if (mode == u"quit") {
            // Asked, the user first thinks better of it: nothing stops.
            window->close();
            if (!answerQuitQuestion(window, u"quitCancelButton"_s))
                return QCoreApplication::exit(5);
            QTest::qWait(500);
            if (!window->isVisible() || DownloadManager::instance()->runningCount() != 1) {
                std::fputs("cancelling the question did not keep the window and its download\n", stderr);
                return QCoreApplication::exit(5);
            }
            window->close();
        }
        if (!answerQuitQuestion(window, u"quitConfirmButton"_s))
            QCoreApplication::exit(5);
    });
    poll.start();
    QTimer::singleShot(30000, &app, [] {
        std::fputs("the download never started\n", stderr);
        QCoreApplication::exit(3);
    });

    const int status = app.exec();
    if (status != 0)
        return status;
    int failed = 0;
    for (qint64 pid : pidsIn(pidFile)) {
        if (running(pid)) {
            std::fprintf(stderr, "process %lld outlived the application\n", pid);
            ++failed;
        }
    }
    // Stored before the download was stopped: the next start carries it on.
    TaskStore store(QueueMemory::instance()->path());
    const QList<StoredTask> rows
        = store.open().state == TaskStore::OpenState::Opened ? store.loadTasks() : QList<StoredTask>();
    if (rows.size() != 1 || rows.first().task.url != u"https://quit.example/v"_s
        || rows.first().task.status != DownloadStatus::Downloading) {
        std::fprintf(stderr, "the queue was not kept as it stood (%d rows)\n", int(rows.size()));
        ++failed;
    }
    std::printf("%d failed\n", failed);
    return failed == 0 ? 0 : 1;
}
