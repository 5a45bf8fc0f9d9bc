// A playlist of a thousand items in the real main window, drawn with Qt Quick's software scene
// graph on a private Xvfb, in two runs of a process each:
//
// - "feed": the tests' media server serves an RSS feed of a thousand items on 127.0.0.1 and the
//   real yt-dlp lists it. With "下载播放列表" on and the feed's link in the links box, "开始下载"
//   is pressed: how long until the sheet "播放列表" shows its first item, and all of them, and
//   how long the window's frames take while the sheet fills. Then "下载所选" queues every item:
//   the longest frame while they join the queue. The downloads that start are cancelled.
// - "memory": the stand-in yt-dlp lists as many items, they are queued the same way, and each is
//   a short download; the resident memory and the heap in use once all have finished, against
//   the window with an empty queue.
//
// The real yt-dlp is ../shared/tools/yt-dlp/yt-dlp beside the source tree, or --yt-dlp PATH;
// without one the feed run is skipped and says so.

#include "benchengine.h"
#include "windowbench.h"

#include "app/applifecycle.h"
#include "app/cjkfont.h"
#include "app/interfacelanguage.h"
#include "app/qmlsetup.h"
#include "store/queuememory.h"
#include "support/localserver.h"
#include "views/presenters/playlistpicker.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>

using namespace Qt::StringLiterals;
using namespace bench;

namespace {
constexpr int FirstFramePatienceMs = 60000;
constexpr int SettleMs = 3000;
// How long the frames are watched once "下载所选" has queued the items: the sheet closes, the
// queue lays out its new rows and the first downloads start.
constexpr int QueueWatchMs = 2000;

struct Checkpoint
{
    int finished = 0;
    double seconds = 0;
    qint64 rssKiB = 0;
    qint64 heapKiB = 0;
};

QString signedMiB(qint64 kib)
{
    return (kib >= 0 ? u"+"_s : QString()) + number(mib(kib));
}

QString frameLine(const QList<double> &frames)
{
    return u"%1 frames, median %2 ms, 99th percentile %3 ms, longest %4 ms"_s.arg(QString::number(frames.size()),
        number(percentile(frames, 0.5), 1), number(percentile(frames, 0.99), 1), number(maximum(frames), 1));
}

QString realYtDlp(int argc, char **argv)
{
    return stringOption(argc, argv, "yt-dlp", QDir::cleanPath(sourceDir() + u"/../shared/tools/yt-dlp/yt-dlp"_s));
}

// The main window with the engine behind it, from its first frame on.
class MainWindow
{
public:
    MainWindow(const Sandbox &sandbox, const QString &ytDlp)
    {
        DownloadManager::deferDiscovery();
        DownloadManager::useLocations(locationsFor(sandbox, ytDlp, QString()));
        downloads = DownloadManager::instance();
        state = AppState::instance();
        state->setOutputDirectory(sandbox.path(u"Downloads"_s));
        m_lifecycle = std::make_unique<AppLifecycle>(downloads);
        m_owner = loadMainWindow(m_engine, &preferCjkFont);
        window = m_owner.get();
        if (!window)
            fail(u"the main window did not load"_s);
        frames = std::make_unique<FrameClock>(window);
        m_lifecycle->startDiscoveryAfterFirstFrame(window);
        m_lifecycle->restoreQueueAfterFirstFrame(window, QueueMemory::instance());
        m_lifecycle->attachMainWindow(window);
        if (!waitUntil([&] { return frames->count() > 0; }, FirstFramePatienceMs, 10))
            fail(u"no frame within %1 s"_s.arg(FirstFramePatienceMs / 1000));
        const QString drew = graphicsApiName(window->rendererInterface()->graphicsApi());
        if (drew != u"software")
            fail(u"the window draws with %1, not the software renderer (QT_QUICK_BACKEND=software)"_s.arg(drew));
        if (!waitUntil([&] { return downloads->tools()->isReady(); }, 60000, 20))
            fail(u"tool discovery did not end within 60 s"_s);
        picker = window->findChild<PlaylistPicker *>();
        startButton = window->findChild<QQuickItem *>(u"startButton"_s);
        auto *playlistSwitch = window->findChild<QQuickItem *>(u"playlistSwitch"_s);
        if (!picker || !startButton || !playlistSwitch)
            fail(u"the main window has no playlist picker, start button or playlist switch"_s);
        state->setDownloadPlaylist(true);
        if (!playlistSwitch->property("checked").toBool())
            fail(u"\"下载播放列表\" did not turn on"_s);
        spin(SettleMs);
    }

    // The sheet's list of items, once it has been made.
    QQuickItem *sheetList() const { return sceneItem(window->contentItem(), u"playlistItems"_s); }
    bool sheetShown() const
    {
        QQuickItem *list = sheetList();
        return picker->isActive() && list && list->isVisible();
    }

    DownloadManager *downloads = nullptr;
    AppState *state = nullptr;
    QQuickWindow *window = nullptr;
    std::unique_ptr<FrameClock> frames;
    PlaylistPicker *picker = nullptr;
    QQuickItem *startButton = nullptr;

private:
    std::unique_ptr<AppLifecycle> m_lifecycle;
    QQmlApplicationEngine m_engine;
    std::unique_ptr<QQuickWindow> m_owner;
};

struct Filling
{
    double firstMs = -1; // "开始下载" pressed to the first item in the sheet
    double allMs = -1; // to every item in it
    QList<double> frames;
    QList<double> late;
};

// "开始下载" with `link` in the links box, until the sheet shows `items` items.
Filling fillSheet(MainWindow &main, const QString &link, int items, int patienceMs)
{
    Filling filling;
    AnswerProbe probe;
    QElapsedTimer clock;
    QString failure;
    QEventLoop loop;
    const auto look = [&] {
        if (filling.firstMs < 0 && main.picker->listedCount() >= 1 && main.sheetShown())
            filling.firstMs = double(clock.nsecsElapsed()) / 1e6;
        QQuickItem *list = main.sheetList();
        if (main.picker->listedCount() >= items && main.sheetShown() && list->property("count").toInt() >= items) {
            filling.allMs = double(clock.nsecsElapsed()) / 1e6;
            loop.quit();
        } else if (!main.picker->isListing() && !main.picker->isActive() && main.picker->waitingLinks() == 0) {
            failure = u"the link was not listed as a playlist (the queue has %1 tasks)"_s.arg(
                main.downloads->taskModel()->count());
            loop.quit();
        } else if (!main.picker->isListing() && main.picker->isActive()) {
            failure = u"the listing ended with %1 of %2 items: %3"_s.arg(main.picker->listedCount())
                          .arg(items)
                          .arg(main.picker->progressText());
            loop.quit();
        }
    };
    QObject::connect(main.picker, &PlaylistPicker::progressChanged, &loop, look);
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, look);
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, &loop, [&] {
        failure = u"the sheet showed %1 of %2 items within %3 s"_s.arg(main.picker->listedCount())
                      .arg(items)
                      .arg(patienceMs / 1000);
        loop.quit();
    });
    main.state->setUrlInput(link);
    main.frames->take();
    main.frames->record(true);
    probe.start();
    clock.start();
    click(main.window, main.startButton);
    poll.start(10);
    deadline.start(patienceMs);
    if (filling.allMs < 0 && failure.isEmpty())
        loop.exec();
    main.frames->record(false);
    probe.stop();
    if (!failure.isEmpty())
        fail(failure);
    filling.frames = main.frames->take();
    filling.late = probe.late();
    return filling;
}

struct Queueing
{
    double clickMs = 0; // how long the click on "下载所选" kept the event loop
    QElapsedTimer since; // started at the click
    QList<double> frames;
    QList<double> late;
};

// "下载所选" with every item picked; the frames until QueueWatchMs after the items are queued.
Queueing queueAll(MainWindow &main, int items)
{
    auto *confirm = sceneItem(main.window->contentItem(), u"playlistConfirmButton"_s);
    if (!confirm)
        fail(u"the sheet has no \"下载所选\""_s);
    if (main.picker->selectedCount() != items)
        fail(u"%1 of %2 items are picked"_s.arg(main.picker->selectedCount()).arg(items));
    const qsizetype before = main.downloads->taskModel()->count();
    Queueing queueing;
    AnswerProbe probe;
    main.frames->take();
    main.frames->record(true);
    probe.start();
    queueing.since.start();
    click(main.window, confirm);
    queueing.clickMs = double(queueing.since.nsecsElapsed()) / 1e6;
    if (!waitUntil([&] { return main.downloads->taskModel()->count() >= before + items; }, 30000, 5))
        fail(u"\"下载所选\" queued %1 tasks, not %2"_s.arg(main.downloads->taskModel()->count() - before).arg(items));
    spin(QueueWatchMs);
    main.frames->record(false);
    probe.stop();
    if (main.sheetShown())
        fail(u"the sheet is still open after \"下载所选\""_s);
    queueing.frames = main.frames->take();
    queueing.late = probe.late();
    return queueing;
}

void reportFilling(QList<std::pair<QString, QString>> &fields, const Filling &filling, int items)
{
    say(u"  \"开始下载\" to the first item in the sheet: %1 ms; to all %2: %3 ms"_s.arg(
        number(filling.firstMs, 0), QString::number(items), number(filling.allMs, 0)));
    say(u"  frames while the sheet fills: "_s + frameLine(filling.frames));
    say(u"  the window's answer (a %1 ms timer's lateness) meanwhile: 99th percentile %2 ms, longest %3 ms"_s.arg(
        QString::number(ProbeMs), number(percentile(filling.late, 0.99), 1), number(maximum(filling.late), 1)));
    fields += QList<std::pair<QString, QString>> {
        { u"first_item_ms"_s, number(filling.firstMs, 0) },
        { u"all_items_ms"_s, number(filling.allMs, 0) },
        { u"fill_frames"_s, QString::number(filling.frames.size()) },
        { u"fill_frame_p99_ms"_s, number(percentile(filling.frames, 0.99), 1) },
        { u"fill_frame_max_ms"_s, number(maximum(filling.frames), 1) },
        { u"fill_answer_max_ms"_s, number(maximum(filling.late), 1) },
    };
}

void reportQueueing(QList<std::pair<QString, QString>> &fields, const Queueing &queueing, int items)
{
    say(u"  \"下载所选\" with %1 picked: the click took %2 ms; frames until %3 s after: %4"_s.arg(
        QString::number(items), number(queueing.clickMs, 1), QString::number(QueueWatchMs / 1000),
        frameLine(queueing.frames)));
    say(u"  the window's answer meanwhile: 99th percentile %1 ms, longest %2 ms"_s.arg(
        number(percentile(queueing.late, 0.99), 1), number(maximum(queueing.late), 1)));
    fields += QList<std::pair<QString, QString>> {
        { u"queue_click_ms"_s, number(queueing.clickMs, 1) },
        { u"queue_frame_p99_ms"_s, number(percentile(queueing.frames, 0.99), 1) },
        { u"queue_frame_max_ms"_s, number(maximum(queueing.frames), 1) },
        { u"queue_answer_max_ms"_s, number(maximum(queueing.late), 1) },
    };
}

// The feed listed by the real yt-dlp, the sheet filled and every item queued.
int feedPart(int argc, char **argv, const Sandbox &sandbox, int items)
{
    const QString ytDlp = realYtDlp(argc, argv);
    if (!QFileInfo(ytDlp).isExecutable()) {
        say(u"feed: SKIPPED, no yt-dlp at %1 (--yt-dlp PATH names another)"_s.arg(ytDlp));
        return 77;
    }
    // The server makes its clip with ffmpeg, for the downloads that start once the items are
    // queued; without one they fail, which changes nothing measured here.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QStringList serverArguments { sourceDir() + u"/tests/support/mediaserver.py"_s, u"--root"_s,
        sandbox.path(u"media"_s) };
    if (const QString ffmpeg = QStandardPaths::findExecutable(u"ffmpeg"_s, { u"/usr/bin"_s, u"/usr/local/bin"_s });
        !ffmpeg.isEmpty()) {
        environment.insert(u"PATH"_s, QFileInfo(ffmpeg).absolutePath() + u':' + environment.value(u"PATH"_s));
        serverArguments << u"--generate"_s;
    }
    QDir().mkpath(sandbox.path(u"media"_s));
    const LocalServer media(u"media server"_s, serverArguments, 60000, environment);
    if (media.base().isEmpty())
        fail(media.error());
    const QString link = media.base() + u"feed/%1.xml"_s.arg(items);

    MainWindow main(sandbox, ytDlp);
    say(u"feed: the real yt-dlp %1 (%2) lists %3"_s.arg(main.downloads->tools()->ytDlpVersion(), ytDlp, link));
    QList<std::pair<QString, QString>> fields { { u"items"_s, QString::number(items) } };
    reportFilling(fields, fillSheet(main, link, items, 120000 + items * 100), items);
    reportQueueing(fields, queueAll(main, items), items);
    main.downloads->cancelAllDownloads();
    if (!waitUntil([&] { return main.downloads->runningCount() == 0; }, 30000, 20))
        fail(u"a download is still running 30 s after they were all cancelled"_s);
    writeResult("bench_playlist_part", fields);
    return 0;
}

// The stand-in's list queued the same way, every item a short download, and the memory once
// they have all finished against the empty queue.
int memoryPart(const Sandbox &sandbox, int items)
{
    const QString ytDlp = standInYtDlp();
    if (!QFileInfo(ytDlp).isExecutable())
        fail(u"the stand-in yt-dlp is missing: "_s + ytDlp);
    if (LocalServer::python().isEmpty()) {
        say(u"memory: SKIPPED, no python3 for the stand-in yt-dlp"_s);
        return 77;
    }
    if (!sandbox.writeFile(u"playlist.json"_s, u"{\"title\": \"测试列表 %1\", \"count\": %1}"_s.arg(items).toUtf8())
        || !sandbox.writeFile(
            u"info.json"_s, R"({"id": "v%(key)s", "title": "第 %(key)s 个视频", "duration": 4.0, "formats": []})"_ba))
        fail(u"cannot write the stand-in's list"_s);
    qputenv("FAKE_YTDLP_PLAYLIST", sandbox.path(u"playlist.json"_s).toUtf8());
    qputenv("FAKE_YTDLP_INFO", sandbox.path(u"info.json"_s).toUtf8());
    setStandInScenario(sandbox, {});

    MainWindow main(sandbox, ytDlp);
    const qint64 emptyKiB = rssKiB();
    const qint64 emptyHeapKiB = heapInUseKiB();
    say(u"memory: the stand-in yt-dlp lists %1 items, each then a short download; %2 at once"_s.arg(
        QString::number(items), QString::number(main.downloads->maxConcurrentDownloads())));
    say(u"  the window with an empty queue: RSS %1 MiB, heap in use %2 MiB"_s.arg(
        number(mib(emptyKiB)), number(mib(emptyHeapKiB))));
    QList<std::pair<QString, QString>> fields { { u"items"_s, QString::number(items) },
        { u"rss_empty_mib"_s, number(mib(emptyKiB)) } };
    reportFilling(fields, fillSheet(main, u"https://videos.example/playlist?list=bench"_s, items, 60000), items);
    const Queueing queueing = queueAll(main, items);
    reportQueueing(fields, queueing, items);

    // Every fifth finished: the memory then.
    const int every = std::max(1, items / 5);
    QList<Checkpoint> checkpoints;
    QString failure;
    const QElapsedTimer &wall = queueing.since;
    const bool ended = waitUntil(
        [&] {
            const QList<DownloadTask> &tasks = main.downloads->taskModel()->tasks();
            int finished = 0;
            for (const DownloadTask &task : tasks) {
                if (task.status == DownloadStatus::Completed)
                    ++finished;
                else if (isFinal(task.status))
                    failure = task.url + u": "_s + task.errorMessage.value_or(rawValue(task.status));
            }
            // Read at the first look past each fifth: the count is what had finished by then.
            if (checkpoints.size() < items / every && finished >= (checkpoints.size() + 1) * every)
                checkpoints.append({ finished, double(wall.elapsed()) / 1000, rssKiB(), heapInUseKiB() });
            return !failure.isEmpty() || finished == items;
        },
        120000 + items * 1000, 50);
    if (!failure.isEmpty())
        fail(failure);
    if (!ended)
        fail(u"%1 of %2 downloads finished in time"_s.arg(countWithStatus(*main.downloads, DownloadStatus::Completed))
                 .arg(items));
    const double seconds = double(wall.elapsed()) / 1000;
    if (!waitUntil([&] { return main.downloads->runningCount() == 0; }, 30000, 20))
        fail(u"a download process is still running 30 s after the last download finished"_s);
    spin(SettleMs);
    const qint64 endKiB = rssKiB();
    const qint64 endHeapKiB = heapInUseKiB();
    say(u"  %1 downloads finished %2 s after \"下载所选\""_s.arg(QString::number(items), number(seconds, 1)));
    for (const Checkpoint &point : std::as_const(checkpoints)) {
        say(u"  after %1: RSS %2 MiB (%3), heap in use %4 MiB (%5), at %6 s"_s.arg(QString::number(point.finished),
            number(mib(point.rssKiB)), signedMiB(point.rssKiB - emptyKiB), number(mib(point.heapKiB)),
            signedMiB(point.heapKiB - emptyHeapKiB), number(point.seconds, 1)));
    }
    say(u"  %1 s after the last: RSS %2 MiB (%3 MiB against the empty queue), heap in use %4 MiB (%5 MiB)"_s.arg(
        QString::number(SettleMs / 1000), number(mib(endKiB)), signedMiB(endKiB - emptyKiB), number(mib(endHeapKiB)),
        signedMiB(endHeapKiB - emptyHeapKiB)));
    fields += QList<std::pair<QString, QString>> {
        { u"seconds"_s, number(seconds, 1) },
        { u"rss_end_mib"_s, number(mib(endKiB)) },
        { u"rss_growth_mib"_s, number(mib(endKiB - emptyKiB)) },
        { u"heap_growth_mib"_s, number(mib(endHeapKiB - emptyHeapKiB)) },
    };
    writeResult("bench_playlist_part", fields);
    return 0;
}

// One part in this process, in the window's own sandbox; the application quits as it does for
// the user at the end.
int runPart(int argc, char **argv, const QString &part)
{
    qputenv("QT_QUICK_BACKEND", "software");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(u"Basic"_s);
    InterfaceLanguage::instance()->applyAtStart();
    return run("bench_playlist", [&] {
        const int items = std::max(1, intOption(argc, argv, "items", shortMode(argc, argv) ? 100 : 1000));
        Sandbox sandbox;
        QuietEngineLog quiet;
        useSandboxFolders(sandbox);
        int status = 0;
        if (part == u"feed")
            status = feedPart(argc, argv, sandbox, items);
        else if (part == u"memory")
            status = memoryPart(sandbox, items);
        else
            fail(u"no part called "_s + part);
        if (status == 0) {
            QTimer::singleShot(0, &app, &QCoreApplication::quit);
            app.exec();
        }
        return status;
    });
}

// Both parts, each in a process of its own on one private X server; their lines as they come,
// then one RESULT line with both.
int runAll(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    return run("bench_playlist", [&] {
        const QStringList arguments = QCoreApplication::arguments().mid(1);
        const ChildDisplay display("bench_playlist", arguments.contains(u"--offscreen"_s));
        say(u"bench_playlist: a playlist in the real main window, software renderer; %1, load average %2%3"_s.arg(
            display.platform(), loadAverage(), shortMode(argc, argv) ? u", short mode"_s : QString()));
        QProcessEnvironment environment = display.environment();
        environment.insert(u"QT_QUICK_BACKEND"_s, u"software"_s);
        QList<std::pair<QString, QString>> fields { { u"display"_s, display.isX() ? u"xvfb"_s : u"offscreen"_s } };
        for (const QString &part : { u"feed"_s, u"memory"_s }) {
            const ChildResult child
                = runSelf(arguments + QStringList { u"--part"_s, part }, environment, u"bench_playlist_part"_s);
            if (child.exitCode == 77)
                continue;
            if (child.exitCode != 0 || child.fields.isEmpty())
                fail(u"the %1 run failed (exit status %2)"_s.arg(part).arg(child.exitCode));
            for (const QString &field : child.fields)
                fields.append({ part + u'_' + field.section(u'=', 0, 0), field.section(u'=', 1) });
        }
        if (fields.size() == 1)
            return 77;
        writeResult("bench_playlist", fields);
        return 0;
    });
}
} // namespace

int main(int argc, char **argv)
{
    for (int i = 1; i + 1 < argc; ++i) {
        if (qstrcmp(argv[i], "--part") == 0)
            return runPart(argc, argv, QString::fromLatin1(argv[i + 1]));
    }
    return runAll(argc, argv);
}
