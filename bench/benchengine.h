#pragma once

// The engine in a benchmark: tool locations that name only what the benchmark hands over, the
// stand-in yt-dlp of the tests, and a warm-up download that also waits out tool discovery.

#include "engine/downloadmanager.h"
#include "model/appstate.h"
#include "model/taskmodel.h"

#include "benchsupport.h"

#include <QDir>

namespace bench {

// Looks nowhere but `ytDlp` and `ffmpeg` (either may be empty); the JavaScript runtimes are
// searched by name only, which the sandbox's PATH does not find.
inline ToolLocations locationsFor(const Sandbox &sandbox, const QString &ytDlp, const QString &ffmpeg)
{
    ToolLocations locations;
    locations.home = sandbox.home();
    if (!ytDlp.isEmpty())
        locations.ytDlp << ytDlp;
    if (!ffmpeg.isEmpty())
        locations.ffmpeg << ffmpeg;
    locations.runtimes = { { u"deno"_s, {} }, { u"node"_s, {} }, { u"bun"_s, {} } };
    return locations;
}

// tests/fakes/yt-dlp, steered by FAKE_YTDLP_* variables (see tests/support/README.md).
inline QString standInYtDlp()
{
    return sourceDir() + u"/tests/fakes/yt-dlp"_s;
}

// Replays `steps` (a JSON list) for every stand-in download from now on; empty: its default.
inline void setStandInScenario(const Sandbox &sandbox, const QByteArray &steps)
{
    if (steps.isEmpty()) {
        qunsetenv("FAKE_YTDLP_SCENARIO");
        return;
    }
    if (!sandbox.writeFile(u"scenario.json"_s, steps))
        fail(u"cannot write the scenario"_s);
    qputenv("FAKE_YTDLP_SCENARIO", sandbox.path(u"scenario.json"_s).toUtf8());
}

inline bool isFinal(DownloadStatus status)
{
    return status == DownloadStatus::Completed || status == DownloadStatus::Failed
        || status == DownloadStatus::Cancelled;
}

// True once every task in the model has ended and no process of the engine is running.
inline bool allSettled(const DownloadManager &manager)
{
    if (manager.runningCount() != 0)
        return false;
    const QList<DownloadTask> &tasks = manager.taskModel()->tasks();
    return std::all_of(tasks.cbegin(), tasks.cend(), [](const DownloadTask &task) { return isFinal(task.status); });
}

inline qsizetype countWithStatus(const DownloadManager &manager, DownloadStatus status)
{
    const QList<DownloadTask> &tasks = manager.taskModel()->tasks();
    return std::count_if(
        tasks.cbegin(), tasks.cend(), [status](const DownloadTask &task) { return task.status == status; });
}

inline DownloadOptions optionsInto(const QString &folder)
{
    DownloadOptions options;
    options.preset = DownloadPreset::Default;
    options.outputDir = folder;
    options.downloadPlaylist = true;
    options.useCookies = false;
    return options;
}

// One download of `url` into `folder`, waited for; downloads only start once discovery has
// finished, so afterwards the engine is ready. Fails the benchmark unless it completed.
inline void warmUp(DownloadManager &manager, const QString &url, const QString &folder, int timeoutMs = 120000)
{
    const qsizetype before = manager.taskModel()->count();
    manager.startDownloads({ url }, optionsInto(folder));
    const auto ended = [&] {
        return manager.taskModel()->count() > before && isFinal(manager.taskModel()->tasks().at(before).status)
            && manager.runningCount() == 0;
    };
    if (!waitUntil(ended, timeoutMs, 10))
        fail(u"the warm-up download did not end within %1 s"_s.arg(timeoutMs / 1000));
    const DownloadTask &task = manager.taskModel()->tasks().at(before);
    if (task.status != DownloadStatus::Completed)
        fail(u"the warm-up download did not complete: "_s + task.errorMessage.value_or(rawValue(task.status)));
}

} // namespace bench
