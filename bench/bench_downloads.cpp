// A thousand short downloads in the real main window, under each renderer: the resident memory once
// the first frame has settled, after every fifth of the downloads and at the end, and how long the
// window's frames and its answers take while they run. The downloads go as a person's would: ten
// links at a time in the links box and "开始下载" pressed, the engine running three at once, each
// row added, run, merged and finished, its title and picture fetched, and scrolled out of view as
// the next links join the end of the queue. At every fifth the queue is looked through from its
// top down to its end again, a screen at a time.
//
// The renderer is fixed for the life of a process, so the benchmark starts itself once per
// renderer (--renderer software: Qt Quick's software scene graph; --renderer opengl: Qt's default,
// OpenGL, which on a machine without a GPU is Mesa's llvmpipe) on a private Xvfb, and reports both.

#include "benchengine.h"
#include "windowbench.h"

#include "app/applifecycle.h"
#include "app/cjkfont.h"
#include "app/interfacelanguage.h"
#include "app/qmlsetup.h"
#include "store/queuememory.h"
#include "support/localserver.h"

#include <QGuiApplication>
#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>

using namespace Qt::StringLiterals;
using namespace bench;

namespace {
constexpr int FirstFramePatienceMs = 60000;
constexpr int SettleMs = 3000;

struct Checkpoint
{
    int finished = 0;
    double seconds = 0;
    qint64 rssKiB = 0;
    qint64 filesKiB = 0; // the part of RSS that is mapped files (libraries, fonts)
    qint64 heapKiB = 0;
};

QString signedMiB(qint64 kib)
{
    return (kib >= 0 ? u"+"_s : QString()) + number(mib(kib));
}

// One renderer, in this process: the window, the downloads, the figures, and a RESULT line for
// the process that started this one.
int runOne(int argc, char **argv, const QString &renderer)
{
    if (renderer == u"software")
        qputenv("QT_QUICK_BACKEND", "software");
    else
        qunsetenv("QT_QUICK_BACKEND");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(u"Basic"_s);
    InterfaceLanguage::instance()->applyAtStart();
    return run("bench_downloads", [&] {
        const bool quick = shortMode(argc, argv);
        const int total = std::max(1, intOption(argc, argv, "downloads", quick ? 100 : 1000));
        const int batch = std::max(1, intOption(argc, argv, "batch", 10));
        const int every = std::max(1, total / 5);
        const QString label = renderer + u": "_s;

        Sandbox sandbox;
        QuietEngineLog quiet;
        useSandboxFolders(sandbox);
        const QString ytDlp = standInYtDlp();
        if (!QFileInfo(ytDlp).isExecutable())
            fail(u"the stand-in yt-dlp is missing: "_s + ytDlp);
        if (LocalServer::python().isEmpty()) {
            say(label + u"SKIPPED, no python3 for the stand-in yt-dlp"_s);
            return 77;
        }

        // Every video has its own title and picture (a 480×360 JPEG, as video sites serve them),
        // served on 127.0.0.1; every download redraws its progress line a dozen times.
        QImage picture(480, 360, QImage::Format_RGB32);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, qRgb(x / 2, y * 255 / 360, (x * y) % 256));
        }
        QDir().mkpath(sandbox.path(u"media"_s));
        if (!picture.save(sandbox.path(u"media/thumb.jpg"_s), "JPEG"))
            fail(u"cannot write the thumbnail (no JPEG image plugin?)"_s);
        const LocalServer media(u"media server"_s,
            { sourceDir() + u"/tests/support/mediaserver.py"_s, u"--root"_s, sandbox.path(u"media"_s) }, 30000);
        if (media.base().isEmpty())
            fail(media.error());
        const QByteArray info = R"({"id": "v%(key)s", "title": "第 %(key)s 个视频 — 一段足够长、像真的一样的标题",
            "duration": 215.0, "uploader": "频道", "thumbnail": ")"
            + media.base().toUtf8() + R"(named/thumb.jpg/%(key)s.jpg", "formats": []})";
        if (!sandbox.writeFile(u"info.json"_s, info))
            fail(u"cannot write the video information"_s);
        qputenv("FAKE_YTDLP_INFO", sandbox.path(u"info.json"_s).toUtf8());
        // A download of the video and the audio, merged at the end: the row sweeps its bar meanwhile.
        setStandInScenario(sandbox,
            R"([{"out": "[download] Destination: 视频.f137.mp4\n"},
                {"progress": {"count": 12, "rate": 30, "size": "23.50MiB"}},
                {"out": "[Merger] Merging formats into \"视频.mp4\"\n"}, {"sleep": 0.3}])");

        DownloadManager::deferDiscovery();
        DownloadManager::useLocations(locationsFor(sandbox, ytDlp, QString()));
        DownloadManager *downloads = DownloadManager::instance();
        AppState *state = AppState::instance();
        state->setOutputDirectory(sandbox.path(u"Downloads"_s));
        // Each link is one video, queued as "开始下载" is pressed; with "下载播放列表" on, each
        // would be listed first, one after another (bench_playlist measures that).
        state->setDownloadPlaylist(false);
        AppLifecycle lifecycle(downloads);
        QQmlApplicationEngine engine;
        const std::unique_ptr<QQuickWindow> owner = loadMainWindow(engine, &preferCjkFont);
        QQuickWindow *window = owner.get();
        if (!window)
            fail(u"the main window did not load"_s);
        FrameClock frames(window);
        lifecycle.startDiscoveryAfterFirstFrame(window);
        lifecycle.restoreQueueAfterFirstFrame(window, QueueMemory::instance());
        lifecycle.attachMainWindow(window);
        if (!waitUntil([&] { return frames.count() > 0; }, FirstFramePatienceMs, 10))
            fail(u"no frame within %1 s"_s.arg(FirstFramePatienceMs / 1000));

        const QString drew = graphicsApiName(window->rendererInterface()->graphicsApi());
        if (drew != renderer && QGuiApplication::platformName() == u"offscreen") {
            say(label + u"SKIPPED: the offscreen platform has no %1; the window draws with %2"_s.arg(renderer, drew));
            return 77;
        }
        if (drew != renderer)
            fail(u"asked for %1, but the window draws with %2"_s.arg(renderer, drew));
        if (!waitUntil([&] { return downloads->tools()->isReady(); }, 60000, 20))
            fail(u"tool discovery did not end within 60 s"_s);
        spin(SettleMs);
        const QString glRenderer = frames.glRenderer();
        auto *list = window->findChild<QQuickItem *>(u"taskList"_s);
        auto *startButton = window->findChild<QQuickItem *>(u"startButton"_s);
        if (!list || !startButton)
            fail(u"the main window has no task list or no start button"_s);
        say(label
            + u"drawn with %1%2 in a %3×%4 window (%5); %6 downloads, %7 links at a time, %8 at once"_s.arg(drew,
                glRenderer.isEmpty() ? QString() : u" ("_s + glRenderer + u')', QString::number(window->width()),
                QString::number(window->height()), QGuiApplication::platformName(), QString::number(total),
                QString::number(batch), QString::number(downloads->maxConcurrentDownloads())));

        const qint64 settledKiB = rssKiB();
        const qint64 settledHeapKiB = heapInUseKiB();
        const qint64 settledFilesKiB = procStatusKiB("RssFile");
        say(label
            + u"first frame settled: RSS %1 MiB, heap in use %2 MiB"_s.arg(
                number(mib(settledKiB)), number(mib(settledHeapKiB))));

        QList<Checkpoint> checkpoints;
        AnswerProbe probe;
        QElapsedTimer wall;
        int submitted = 0;
        int finished = 0;
        bool lookingThrough = false;
        qsizetype looks = 0;
        QString failure;
        QEventLoop loop;
        QTimer driver;
        // Every 20 ms: the next links once the last ones have all started, a reading at each
        // fifth, and the end once every download has finished.
        QObject::connect(&driver, &QTimer::timeout, &loop, [&] {
            const QList<DownloadTask> &tasks = downloads->taskModel()->tasks();
            int waiting = 0;
            finished = 0;
            for (const DownloadTask &task : tasks) {
                if (task.status == DownloadStatus::Pending)
                    ++waiting;
                else if (task.status == DownloadStatus::Failed || task.status == DownloadStatus::Cancelled)
                    failure = task.url + u": "_s + task.errorMessage.value_or(rawValue(task.status));
                else if (task.status == DownloadStatus::Completed)
                    ++finished;
            }
            while (checkpoints.size() < total / every && finished >= (checkpoints.size() + 1) * every) {
                checkpoints.append({ int(checkpoints.size() + 1) * every, double(wall.elapsed()) / 1000, rssKiB(),
                    procStatusKiB("RssFile"), heapInUseKiB() });
            }
            if (!failure.isEmpty() || finished == total) {
                loop.quit();
                return;
            }
            // A screen further down every 20 ms, from the top to the end.
            if (lookingThrough) {
                const double end = list->property("originY").toDouble() + list->property("contentHeight").toDouble()
                    - list->height();
                const double next = list->property("contentY").toDouble() + list->height();
                list->setProperty("contentY", std::min(end, next));
                lookingThrough = next < end;
                return;
            }
            if (qsizetype(checkpoints.size()) > looks) {
                ++looks;
                lookingThrough = true;
                list->setProperty("contentY", list->property("originY"));
                return;
            }
            if (waiting == 0 && submitted < total) {
                QStringList links;
                for (int i = submitted; i < std::min(total, submitted + batch); ++i)
                    links << u"https://videos.example/watch?v=%1"_s.arg(i + 1);
                state->setUrlInput(links.join(u'\n'));
                click(window, startButton);
                if (downloads->taskModel()->count() != submitted + links.size())
                    failure = u"\"开始下载\" queued %1 tasks, not %2"_s.arg(downloads->taskModel()->count() - submitted)
                                  .arg(links.size());
                submitted += int(links.size());
            }
        });
        QTimer deadline;
        deadline.setSingleShot(true);
        QObject::connect(&deadline, &QTimer::timeout, &loop, [&] {
            failure
                = u"%1 of %2 downloads finished within %3 s"_s.arg(finished).arg(total).arg(deadline.interval() / 1000);
            loop.quit();
        });
        frames.record(true);
        probe.start();
        wall.start();
        driver.start(20);
        deadline.start(120000 + total * 2000);
        loop.exec();
        driver.stop();
        probe.stop();
        frames.record(false);
        if (!failure.isEmpty())
            fail(failure);
        const double seconds = double(wall.elapsed()) / 1000;
        if (!waitUntil([&] { return downloads->runningCount() == 0; }, 30000, 20))
            fail(u"a download process is still running 30 s after the last download finished"_s);
        spin(SettleMs);
        const qint64 endKiB = rssKiB();
        // Nothing changes any more: a window that still draws has an animation running somewhere.
        const int framesBeforeIdle = frames.count();
        spin(SettleMs);
        const int idleFrames = frames.count() - framesBeforeIdle;
        const qint64 endHeapKiB = heapInUseKiB();

        // The rows that exist now: those in view, the list's cache, and its pool for reuse.
        int rows = 0;
        for (const QQuickItem *item : list->property("contentItem").value<QQuickItem *>()->childItems()) {
            if (item->property("taskId").isValid())
                ++rows;
        }
        const bool scrolled = list->property("contentY").toDouble() > 0;
        const QList<double> frameTimes = frames.frames();
        const QList<double> late = probe.late();
        say(label
            + u"%1 downloads finished in %2 s (%3 a second); %4 rows exist, the queue %5"_s.arg(QString::number(total),
                number(seconds, 1), number(total / seconds, 1), QString::number(rows),
                scrolled ? u"scrolled to its end"_s : u"NOT scrolled"_s));
        for (const Checkpoint &point : std::as_const(checkpoints)) {
            say(label
                + u"  after %1: RSS %2 MiB (%3, files %4), heap in use %5 MiB (%6), at %7 s"_s.arg(
                    QString::number(point.finished), number(mib(point.rssKiB)), signedMiB(point.rssKiB - settledKiB),
                    signedMiB(point.filesKiB - settledFilesKiB), number(mib(point.heapKiB)),
                    signedMiB(point.heapKiB - settledHeapKiB), number(point.seconds, 1)));
        }
        say(label
            + u"%1 s after the last: RSS %2 MiB (%3 MiB), heap in use %4 MiB (%5 MiB)"_s.arg(
                QString::number(SettleMs / 1000), number(mib(endKiB)), signedMiB(endKiB - settledKiB),
                number(mib(endHeapKiB)), signedMiB(endHeapKiB - settledHeapKiB)));
        say(label
            + u"frames drawn from %1 to %2 s after the last, with nothing left to change: %3"_s.arg(
                QString::number(SettleMs / 1000), QString::number(2 * SettleMs / 1000), QString::number(idleFrames)));
        say(label
            + u"frames during the downloads: %1, median %2 ms, 99th percentile %3 ms, longest %4 ms"_s.arg(
                QString::number(frameTimes.size()), number(percentile(frameTimes, 0.5), 1),
                number(percentile(frameTimes, 0.99), 1), number(maximum(frameTimes), 1)));
        say(label
            + u"the window's answer (a %1 ms timer's lateness): 99th percentile %2 ms, longest %3 ms"_s.arg(
                QString::number(ProbeMs), number(percentile(late, 0.99), 1), number(maximum(late), 1)));

        QList<std::pair<QString, QString>> fields {
            { u"renderer"_s, drew },
            { u"downloads"_s, QString::number(total) },
            { u"seconds"_s, number(seconds, 1) },
            { u"rss_settled_mib"_s, number(mib(settledKiB)) },
        };
        for (const Checkpoint &point : std::as_const(checkpoints))
            fields.append({ u"rss_after_%1_mib"_s.arg(point.finished), number(mib(point.rssKiB)) });
        fields += QList<std::pair<QString, QString>> {
            { u"rss_end_mib"_s, number(mib(endKiB)) },
            { u"rss_growth_mib"_s, number(mib(endKiB - settledKiB)) },
            { u"heap_growth_mib"_s, number(mib(endHeapKiB - settledHeapKiB)) },
            { u"frame_p99_ms"_s, number(percentile(frameTimes, 0.99), 1) },
            { u"frame_max_ms"_s, number(maximum(frameTimes), 1) },
            { u"answer_p99_ms"_s, number(percentile(late, 0.99), 1) },
            { u"answer_max_ms"_s, number(maximum(late), 1) },
            { u"rows"_s, QString::number(rows) },
            { u"idle_frames"_s, QString::number(idleFrames) },
        };
        writeResult("bench_downloads_one", fields);
        if (const QString folder = stringOption(argc, argv, "screenshots"); !folder.isEmpty()) {
            QDir().mkpath(folder);
            const QString file = QDir(folder).filePath(renderer + u".png"_s);
            if (!window->grabWindow().save(file))
                fail(u"cannot write "_s + file);
            say(label + u"the window as it is now: "_s + file);
        }
        // For a heap profiler: what is still held now shows as never freed.
        if (QCoreApplication::arguments().contains(u"--no-teardown"_s))
            std::_Exit(0);
        // Quit as the application does: the queue is stored, the engine stopped.
        QTimer::singleShot(0, &app, &QCoreApplication::quit);
        app.exec();
        return 0;
    });
}

// Both renderers, each in a process of its own on one private X server; their lines as they come,
// then one RESULT line with both.
int runBoth(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    return run("bench_downloads", [&] {
        const bool quick = shortMode(argc, argv);
        const QStringList arguments = QCoreApplication::arguments().mid(1);
        const ChildDisplay display("bench_downloads", arguments.contains(u"--offscreen"_s));
        say(u"bench_downloads: short downloads of the stand-in yt-dlp in the real main window, under each "
            "renderer; %1, load average %2%3"_s.arg(
                display.platform(), loadAverage(), quick ? u", short mode"_s : QString()));

        QList<std::pair<QString, QString>> fields { { u"display"_s, display.isX() ? u"xvfb"_s : u"offscreen"_s } };
        for (const QString &renderer : { u"software"_s, u"opengl"_s }) {
            QProcessEnvironment environment = display.environment();
            if (renderer == u"software")
                environment.insert(u"QT_QUICK_BACKEND"_s, u"software"_s);
            const ChildResult child
                = runSelf(arguments + QStringList { u"--renderer"_s, renderer }, environment, u"bench_downloads_one"_s);
            if (child.exitCode == 77)
                continue;
            if (child.exitCode != 0 || child.fields.isEmpty())
                fail(u"the %1 run failed (exit status %2)"_s.arg(renderer).arg(child.exitCode));
            for (const QString &field : child.fields) {
                if (!field.startsWith(u"renderer="_s))
                    fields.append({ renderer + u'_' + field.section(u'=', 0, 0), field.section(u'=', 1) });
            }
        }
        if (fields.size() == 1)
            return 77;
        writeResult("bench_downloads", fields);
        return 0;
    });
}
} // namespace

int main(int argc, char **argv)
{
    for (int i = 1; i + 1 < argc; ++i) {
        if (qstrcmp(argv[i], "--renderer") == 0)
            return runOne(argc, argv, QString::fromLatin1(argv[i + 1]));
    }
    return runBoth(argc, argv);
}
