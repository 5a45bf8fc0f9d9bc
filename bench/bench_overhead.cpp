// What the engine adds to a download: one locally served 10-second video fetched by Debian's
// real yt-dlp (with ffmpeg), once through DownloadManager and once as the very same command run
// directly with QProcess, alternating, each into a fresh folder.

#include "benchengine.h"
#include "engine/shellrunner.h"
#include "support/mediaserver.h"

#include <QProcess>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace bench;

namespace {
const QString ytDlp = u"/usr/bin/yt-dlp"_s;
const QString ffmpeg = u"/usr/bin/ffmpeg"_s;
const QString python = u"/usr/bin/python3"_s;
constexpr int Patience = 120000;

struct Run
{
    double wallMs = 0;
    double cpuMs = 0; // this process's own CPU time (children excluded)
    double childrenCpuMs = 0; // the shell's, yt-dlp's and whatever they started
};

// The newest "执行命令: ..." line of the in-app log: the command the engine ran.
QString loggedCommand(const AppState &state)
{
    const QString prefix = u"执行命令: "_s;
    const LogModel *log = state.logModel();
    for (int row = log->count() - 1; row >= 0; --row) {
        if (log->at(row).message.startsWith(prefix))
            return log->at(row).message.mid(prefix.size());
    }
    return QString();
}

// Fails unless `folder` holds exactly one file, of `expectedSize` bytes when that is positive.
qint64 downloadedSize(const QString &folder, const char *what)
{
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files);
    if (files.size() != 1)
        fail(u"%1 run: %2 files in %3"_s.arg(QString::fromLatin1(what)).arg(files.size()).arg(folder));
    return files.constFirst().size();
}

Run engineRun(DownloadManager &manager, const AppState &state, const QString &url, const QString &folder)
{
    const int row = int(manager.taskModel()->count());

    QEventLoop loop;
    QElapsedTimer clock;
    double endedMs = -1;
    const auto connection = QObject::connect(manager.taskModel(), &QAbstractItemModel::dataChanged, &loop,
        [&](const QModelIndex &topLeft, const QModelIndex &bottomRight) {
            if (topLeft.row() > row || bottomRight.row() < row || endedMs >= 0)
                return;
            if (isFinal(manager.taskModel()->tasks().at(row).status)) {
                endedMs = double(clock.nsecsElapsed()) / 1e6;
                loop.quit();
            }
        });
    QTimer::singleShot(Patience, &loop, &QEventLoop::quit);

    const double cpuBefore = selfCpuMs();
    const double childrenBefore = childrenCpuMs();
    clock.start();
    manager.startDownloads({ url }, optionsInto(folder));
    if (endedMs < 0)
        loop.exec();
    Run run;
    run.cpuMs = selfCpuMs() - cpuBefore;
    run.childrenCpuMs = childrenCpuMs() - childrenBefore;
    run.wallMs = endedMs;
    QObject::disconnect(connection);

    if (endedMs < 0)
        fail(u"the engine's download did not end within %1 s"_s.arg(Patience / 1000));
    const DownloadTask &task = manager.taskModel()->tasks().at(row);
    if (task.status != DownloadStatus::Completed)
        fail(u"the engine's download did not complete: "_s + task.errorMessage.value_or(rawValue(task.status)));
    // The command the engine logged is the one the direct run uses, plus the file the download
    // wrote the video's information to for the row (log entries arrive a turn of the event loop
    // after they are made).
    const QString expected = DownloadManager::buildDownloadCommand(manager.ytDlpPath(),
        DownloadRequest { optionsInto(folder), url, {} }, manager.jsRuntimeArgs(), manager.ffmpegArgs(), {},
        manager.infoFolder() + u'/' + task.id.toString(QUuid::WithoutBraces) + u".json"_s);
    if (!waitUntil([&] { return loggedCommand(state) == expected; }, 5000))
        fail(u"the engine ran «%1», not «%2»"_s.arg(loggedCommand(state), expected));
    return run;
}

// `command` through the same shell the engine uses, its output read and dropped as it comes.
Run directRun(const QString &command)
{
    QProcess process;
    process.setProgram(shellProgram());
    process.setArguments({ u"-c"_s, command });
    process.setStandardInputFile(QProcess::nullDevice());
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &process, [&] { process.readAllStandardOutput(); });
    QObject::connect(&process, &QProcess::readyReadStandardError, &process, [&] { process.readAllStandardError(); });

    QEventLoop loop;
    QElapsedTimer clock;
    double endedMs = -1;
    QObject::connect(&process, &QProcess::finished, &loop, [&] {
        endedMs = double(clock.nsecsElapsed()) / 1e6;
        loop.quit();
    });
    QObject::connect(&process, &QProcess::errorOccurred, &loop, [&](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            loop.quit();
    });
    QTimer::singleShot(Patience, &loop, &QEventLoop::quit);

    const double cpuBefore = selfCpuMs();
    const double childrenBefore = childrenCpuMs();
    clock.start();
    process.start();
    loop.exec();
    Run run;
    run.cpuMs = selfCpuMs() - cpuBefore;
    run.childrenCpuMs = childrenCpuMs() - childrenBefore;
    run.wallMs = endedMs;

    if (endedMs < 0) {
        process.kill();
        process.waitForFinished(5000);
        fail(u"the direct download did not end within %1 s: "_s.arg(Patience / 1000) + process.errorString());
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        fail(u"the direct download exited with %1"_s.arg(process.exitCode()));
    return run;
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    return run("bench_overhead", [&] {
        const bool quick = shortMode(argc, argv);
        const int runs = std::max(1, intOption(argc, argv, "runs", quick ? 1 : 5));
        // The short run serves a shorter clip: making the 10-second one takes most of its time.
        const int duration = intOption(argc, argv, "duration", quick ? 2 : 10);
        // Pairs are engine then direct; --direct-first swaps that, to see whether order matters.
        const bool directFirst = QCoreApplication::arguments().contains(u"--direct-first"_s);
        for (const QString &tool : { ytDlp, ffmpeg, python }) {
            if (!QFileInfo(tool).isExecutable()) {
                say(u"bench_overhead: SKIPPED, %1 is not installed"_s.arg(tool));
                return 77;
            }
        }

        Sandbox sandbox;
        QuietEngineLog quiet;
        // The tests' media server. It makes the clip with the ffmpeg on its PATH, which the
        // sandbox's PATH leaves out.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"PATH"_s, QFileInfo(ffmpeg).absolutePath() + u':' + environment.value(u"PATH"_s));
        const MediaServer server(sourceDir() + u"/tests"_s, sandbox.path(u"media"_s),
            { u"--duration"_s, QString::number(duration) }, environment);
        if (server.base().isEmpty())
            fail(server.error());
        const QString url = server.base() + u"video.mp4"_s;

        AppState state;
        DownloadManager manager(&state, locationsFor(sandbox, ytDlp, ffmpeg));
        // Discovery, the page cache and yt-dlp's own first-run work, untimed, both ways.
        warmUp(manager, url, sandbox.path(u"out/warm-up-engine"_s), Patience);
        if (manager.detectedFfmpeg() != ffmpeg)
            fail(u"the engine did not take ffmpeg from "_s + ffmpeg);
        const auto commandFor = [&](const QString &folder) {
            const DownloadRequest request { optionsInto(folder), url, {} };
            return DownloadManager::buildDownloadCommand(
                manager.ytDlpPath(), request, manager.jsRuntimeArgs(), manager.ffmpegArgs(), {});
        };
        directRun(commandFor(sandbox.path(u"out/warm-up-direct"_s)));
        const qint64 size = downloadedSize(sandbox.path(u"out/warm-up-direct"_s), "warm-up direct");

        say(u"bench_overhead: %1 pairs (%2 first), yt-dlp %3, shell %4%5"_s.arg(QString::number(runs),
            directFirst ? u"direct"_s : u"engine"_s, manager.ytDlpVersion(), shellProgram(),
            quick ? u", short mode"_s : QString()));
        say(u"  command: "_s + commandFor(sandbox.path(u"out/<engine|direct>-N"_s)));

        QList<double> engineWall, directWall, ratios, engineCpu, directCpu, engineChildren, directChildren;
        // Wall time not spent on the children's CPU: start-up, pipes, waiting, the engine itself.
        QList<double> engineRest, directRest;
        for (int i = 1; i <= runs; ++i) {
            const QString engineFolder = sandbox.path(u"out/engine-%1"_s.arg(i));
            const QString directFolder = sandbox.path(u"out/direct-%1"_s.arg(i));
            Run engine, direct;
            if (directFirst)
                direct = directRun(commandFor(directFolder));
            engine = engineRun(manager, state, url, engineFolder);
            if (!directFirst)
                direct = directRun(commandFor(directFolder));
            if (downloadedSize(engineFolder, "engine") != size)
                fail(u"the engine's file differs in size from the direct run's"_s);
            if (downloadedSize(directFolder, "direct") != size)
                fail(u"the direct run's file differs in size from the warm-up's"_s);
            engineWall << engine.wallMs;
            directWall << direct.wallMs;
            ratios << engine.wallMs / direct.wallMs;
            engineCpu << engine.cpuMs;
            directCpu << direct.cpuMs;
            engineChildren << engine.childrenCpuMs;
            directChildren << direct.childrenCpuMs;
            engineRest << engine.wallMs - engine.childrenCpuMs;
            directRest << direct.wallMs - direct.childrenCpuMs;
            say(u"  pair %1: engine %2 ms, direct %3 ms, ratio %4; this process's CPU %5 vs %6 ms, "
                "yt-dlp's %7 vs %8 ms"_s.arg(QString::number(i), number(engine.wallMs), number(direct.wallMs),
                    number(ratios.last(), 3), number(engine.cpuMs, 2), number(direct.cpuMs, 2),
                    number(engine.childrenCpuMs, 0), number(direct.childrenCpuMs, 0)));
        }

        const double ratio = median(engineWall) / median(directWall);
        say(u"  engine: %1 ms wall, median (min–max)"_s.arg(spread(engineWall)));
        say(u"  direct: %1 ms wall"_s.arg(spread(directWall)));
        say(u"  ratio engine/direct: %1 of the medians; per pair %2 (target ≤ 1.03)"_s.arg(
            number(ratio, 3), spread(ratios, 3)));
        say(u"  this process's CPU per run (children excluded): engine %1 ms, direct %2 ms"_s.arg(
            spread(engineCpu, 2), spread(directCpu, 2)));
        say(u"  the children's CPU per run (shell, yt-dlp): engine %1 ms, direct %2 ms"_s.arg(
            spread(engineChildren, 0), spread(directChildren, 0)));
        say(u"  wall time minus the children's CPU: engine %1 ms, direct %2 ms"_s.arg(
            spread(engineRest, 1), spread(directRest, 1)));

        writeResult("bench_overhead",
            {
                { u"runs"_s, QString::number(runs) },
                { u"engine_ms"_s, number(median(engineWall)) },
                { u"direct_ms"_s, number(median(directWall)) },
                { u"ratio"_s, number(ratio, 3) },
                { u"ratio_pair_median"_s, number(median(ratios), 3) },
                { u"ratio_min"_s, number(minimum(ratios), 3) },
                { u"ratio_max"_s, number(maximum(ratios), 3) },
                { u"engine_cpu_ms"_s, number(median(engineCpu), 2) },
                { u"engine_cpu_ms_max"_s, number(maximum(engineCpu), 2) },
                { u"direct_cpu_ms"_s, number(median(directCpu), 2) },
                { u"engine_children_cpu_ms"_s, number(median(engineChildren), 0) },
                { u"direct_children_cpu_ms"_s, number(median(directChildren), 0) },
                { u"engine_rest_ms"_s, number(median(engineRest), 1) },
                { u"direct_rest_ms"_s, number(median(directRest), 1) },
            });
        return 0;
    });
}
