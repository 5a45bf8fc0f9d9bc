// Ten thousand links at once: how long until every one is a task in the model, what the first
// turn of the event loop afterwards costs, and whether the number of yt-dlp processes ever goes
// past the limit. Each stand-in download sleeps 0.2 s; at most three run at a time.

#include "benchengine.h"

#include <QVarLengthArray>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace bench;

namespace {
constexpr int Limit = 3;

// Up to `size` bytes of the file at `path`; -1 when it cannot be read.
qsizetype readFile(const char *path, char *buffer, size_t size)
{
    const int fd = ::open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    const ssize_t length = ::read(fd, buffer, size);
    ::close(fd);
    return length;
}

// The process group of `pid` while it runs; 0 once it has exited (a zombie) or gone.
long long liveGroupOf(long long pid)
{
    char path[64];
    char buffer[1024];
    std::snprintf(path, sizeof path, "/proc/%lld/stat", pid);
    const qsizetype length = readFile(path, buffer, sizeof buffer - 1);
    if (length <= 0)
        return 0;
    buffer[length] = '\0';
    // After the command name: state, parent, process group.
    const char *close = std::strrchr(buffer, ')');
    char state = 0;
    long long parent = 0;
    long long group = 0;
    if (!close || std::sscanf(close + 1, " %c %lld %lld", &state, &parent, &group) != 3 || state == 'Z' || state == 'X')
        return 0;
    return group;
}

// Counts downloads with a live stand-in process (those running the stand-in's script) by reading
// /proc, every 10 ms on a thread of its own, so the count does not depend on the event loop being
// free. A download is a process group (the engine starts each in a group of its own), and it is
// counted once however many of its processes run the script: the stand-in's first line is a
// shell whose command substitution forks a second copy of it for a moment.
class ProcessCounter
{
public:
    // Marks this process's environment, which the downloads inherit: other programs may run the
    // stand-in at the same time (tests in parallel), and only this benchmark's count.
    explicit ProcessCounter(QString script)
        : m_script(script.toLocal8Bit())
        , m_owner("QUILLBOX_BENCH_OWNER=" + QByteArray::number(qint64(::getpid())))
    {
        qputenv("QUILLBOX_BENCH_OWNER", QByteArray::number(qint64(::getpid())));
    }
    ~ProcessCounter() { stop(); }

    ProcessCounter(const ProcessCounter &) = delete;
    ProcessCounter &operator=(const ProcessCounter &) = delete;

    void start()
    {
        m_running = true;
        m_thread = std::thread([this] {
            while (m_running) {
                const int live = count();
                m_samples.fetch_add(1);
                int seen = m_max.load();
                while (live > seen && !m_max.compare_exchange_weak(seen, live)) { }
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        });
    }

    void stop()
    {
        m_running = false;
        if (m_thread.joinable())
            m_thread.join();
    }

    int max() const { return m_max.load(); }
    qint64 samples() const { return m_samples.load(); }

    // Process groups with a stand-in process alive now (zombies not counted). Plain system calls
    // rather than QFile: this runs every 10 ms and should take as little of the machine as it can.
    //
    // A pass over /proc is not one instant: a download seen early in it may end, and the next
    // begin, before the pass gets to the latter's pid. So the processes found are looked at once
    // more after the pass, and only those still alive then are counted: each was alive from its
    // first look to its second, and every first look comes before every second one, so all of
    // them were alive together in between.
    int count() const
    {
        QVarLengthArray<std::pair<long long, long long>, 16> found; // pid, group
        DIR *proc = opendir("/proc");
        if (!proc)
            return 0;
        char path[300];
        char buffer[4096];
        while (const dirent *entry = readdir(proc)) {
            if (entry->d_name[0] < '0' || entry->d_name[0] > '9')
                continue;
            std::snprintf(path, sizeof path, "/proc/%s/cmdline", entry->d_name);
            const qsizetype length = readFile(path, buffer, sizeof buffer);
            if (length <= 0)
                continue;
            // python3 SCRIPT ..., or /usr/bin/env python3 SCRIPT ... just before env hands over.
            bool standIn = false;
            qsizetype at = 0;
            for (int word = 0; word < 3 && at < length && !standIn; ++word) {
                const qsizetype end = qsizetype(::strnlen(buffer + at, size_t(length - at)));
                standIn = QByteArrayView(buffer + at, end) == QByteArrayView(m_script);
                at += end + 1;
            }
            // The "-J" information request that goes with each running download is not a download.
            bool informationRequest = false;
            for (qsizetype word = 0; word < length;
                 word += qsizetype(::strnlen(buffer + word, size_t(length - word))) + 1)
                informationRequest = informationRequest || QByteArrayView(buffer + word) == QByteArrayView("-J");
            if (!standIn || informationRequest || !ours(entry->d_name))
                continue;
            const long long pid = std::atoll(entry->d_name);
            const long long group = liveGroupOf(pid);
            if (group > 0)
                found.append({ pid, group });
        }
        closedir(proc);

        QVarLengthArray<long long, 16> groups;
        for (const auto &[pid, group] : found) {
            if (liveGroupOf(pid) == group && !groups.contains(group))
                groups.append(group);
        }
        return int(groups.size());
    }

private:
    // Whether the process `pid` carries this benchmark's mark in its environment.
    bool ours(const char *pid) const
    {
        char path[300];
        std::snprintf(path, sizeof path, "/proc/%s/environ", pid);
        char *buffer = m_environment.get();
        const qsizetype length = readFile(path, buffer, EnvironmentSize);
        for (qsizetype at = 0; at < length;) {
            const qsizetype end = qsizetype(::strnlen(buffer + at, size_t(length - at)));
            if (QByteArrayView(buffer + at, end) == QByteArrayView(m_owner))
                return true;
            at += end + 1;
        }
        return false;
    }

    static constexpr size_t EnvironmentSize = 256 * 1024;
    std::unique_ptr<char[]> m_environment { new char[EnvironmentSize] };
    QByteArray m_script;
    QByteArray m_owner;
    std::thread m_thread;
    std::atomic<bool> m_running { false };
    std::atomic<int> m_max { 0 };
    std::atomic<qint64> m_samples { 0 };
};

struct Outcome
{
    double callMs = 0; // the call (or loop of calls) that queued every link
    double firstTurnMs = 0; // from its return until the event loop next ran a timer
    int maxRunning = 0; // runningCount(), sampled on every change
    int maxProcesses = 0; // downloads with a live stand-in process, sampled from /proc
    qint64 procSamples = 0;
    qsizetype completedMeanwhile = 0;
    double cancelCallMs = 0;
    double drainMs = 0; // from cancelAllDownloads() until runningCount() == 0
    int leftAfter = 0; // downloads with a stand-in process alive after the drain
};

enum class Way { Loop, Batch };

Outcome measure(Sandbox &sandbox, Way way, int links, int observeMs)
{
    Outcome outcome; // before the engine, which may signal while going away
    AppState state;
    DownloadManager manager(&state, locationsFor(sandbox, standInYtDlp(), QString()));
    manager.setMaxConcurrentDownloads(Limit);
    if (manager.maxConcurrentDownloads() != Limit)
        fail(u"the limit did not take"_s);
    setStandInScenario(sandbox, {});
    warmUp(manager, u"https://example.invalid/warm-up"_s, sandbox.path(u"out"_s));
    setStandInScenario(sandbox, R"([{"out": "[download] Destination: queued.mp4\n"}, {"sleep": 0.2},
        {"out": "[download] 100% of 1.00MiB in 00:00:00 at 5.00MiB/s\n"}])");
    state.clearLog();
    spin(200);

    const auto sampling = QObject::connect(&manager, &DownloadManager::runningCountChanged, &manager,
        [&] { outcome.maxRunning = std::max(outcome.maxRunning, manager.runningCount()); });
    ProcessCounter counter(standInYtDlp());
    counter.start();

    QStringList urls;
    urls.reserve(links);
    for (int i = 0; i < links; ++i)
        urls << u"https://example.invalid/queue/%1"_s.arg(i + 1);
    const QString folder = sandbox.path(u"out"_s);
    const qsizetype before = manager.taskModel()->count();
    const qsizetype completedBefore = countWithStatus(manager, DownloadStatus::Completed);

    QElapsedTimer clock;
    clock.start();
    if (way == Way::Loop) {
        for (const QString &url : std::as_const(urls))
            manager.startDownload(url, DownloadPreset::Default, QString(), folder, true, false);
    } else {
        manager.startDownloads(urls, optionsInto(folder));
    }
    outcome.callMs = double(clock.nsecsElapsed()) / 1e6;
    if (manager.taskModel()->count() - before != links)
        fail(u"%1 tasks in the model after queuing %2 links"_s.arg(manager.taskModel()->count() - before).arg(links));

    // Whatever the call left for the event loop (the in-app log's entries) runs before this.
    const qint64 returned = clock.nsecsElapsed();
    bool turned = false;
    QTimer::singleShot(0, &manager, [&] {
        outcome.firstTurnMs = double(clock.nsecsElapsed() - returned) / 1e6;
        turned = true;
    });
    if (!waitUntil([&] { return turned; }, 60000, 1))
        fail(u"the event loop did not come back within 60 s"_s);

    spin(observeMs);
    outcome.completedMeanwhile = countWithStatus(manager, DownloadStatus::Completed) - completedBefore;

    clock.restart();
    manager.cancelAllDownloads();
    outcome.cancelCallMs = double(clock.nsecsElapsed()) / 1e6;
    if (!waitUntil([&] { return manager.runningCount() == 0; }, DownloadManager::CancelGraceMs + 10000, 1))
        fail(u"%1 downloads still running 10 s after the cancel grace period"_s.arg(manager.runningCount()));
    outcome.drainMs = double(clock.nsecsElapsed()) / 1e6;
    spin(100);
    QObject::disconnect(sampling);
    counter.stop();
    outcome.maxProcesses = counter.max();
    outcome.procSamples = counter.samples();
    outcome.leftAfter = counter.count();

    const qsizetype cancelled = countWithStatus(manager, DownloadStatus::Cancelled);
    const qsizetype failed = countWithStatus(manager, DownloadStatus::Failed);
    if (failed > 0) {
        for (const DownloadTask &task : manager.taskModel()->tasks()) {
            if (task.status == DownloadStatus::Failed)
                say(u"  failed: %1: %2"_s.arg(task.url, task.errorMessage.value_or(QString())));
        }
        fail(u"%1 downloads failed"_s.arg(failed));
    }
    if (cancelled + outcome.completedMeanwhile != links)
        fail(u"%1 cancelled + %2 completed, expected %3 in all"_s.arg(cancelled)
                 .arg(outcome.completedMeanwhile)
                 .arg(links));
    return outcome;
}

struct Series
{
    QList<double> callMs, firstTurnMs, cancelMs, drainMs;
    int maxRunning = 0;
    int maxProcesses = 0;
    qint64 procSamples = 0;
    int leftAfter = 0;
    qsizetype completedMeanwhile = 0;

    void add(const Outcome &outcome)
    {
        callMs << outcome.callMs;
        firstTurnMs << outcome.firstTurnMs;
        cancelMs << outcome.cancelCallMs;
        drainMs << outcome.drainMs;
        maxRunning = std::max(maxRunning, outcome.maxRunning);
        maxProcesses = std::max(maxProcesses, outcome.maxProcesses);
        procSamples += outcome.procSamples;
        leftAfter += outcome.leftAfter;
        completedMeanwhile += outcome.completedMeanwhile;
    }
};

void report(const char *label, const Series &series)
{
    say(u"  %1: queued in %2 ms; next event-loop turn after %3 ms"_s.arg(
        QString::fromLatin1(label), spread(series.callMs), spread(series.firstTurnMs)));
    say(u"    most running at once: %1 by runningCount(), %2 by stand-in processes in /proc (%3 samples); limit %4"_s
            .arg(QString::number(series.maxRunning), QString::number(series.maxProcesses),
                QString::number(series.procSamples), QString::number(Limit)));
    say(u"    cancelAllDownloads() took %1 ms, nothing running after %2 ms, %3 stand-ins left; %4 completed before it"_s
            .arg(spread(series.cancelMs), spread(series.drainMs), QString::number(series.leftAfter),
                QString::number(series.completedMeanwhile)));
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    return run("bench_queuescale", [&] {
        const bool quick = shortMode(argc, argv);
        const int links = intOption(argc, argv, "links", quick ? 1000 : 10000);
        const int observeMs = quick ? 1000 : 2000;
        const int reps = intOption(argc, argv, "runs", quick ? 1 : 3);

        Sandbox sandbox;
        QuietEngineLog quiet;
        if (!QFileInfo(standInYtDlp()).isExecutable())
            fail(u"the stand-in yt-dlp is missing: "_s + standInYtDlp());
        if (!QFileInfo::exists(sandbox.bin() + u"/python3"_s)) {
            say(u"bench_queuescale: SKIPPED, no python3 for the stand-in yt-dlp"_s);
            return 77;
        }

        say(u"bench_queuescale: %1 links, at most %2 at once, each download 0.2 s%3"_s.arg(
            QString::number(links), QString::number(Limit), quick ? u", short mode"_s : QString()));
        const qint64 rssStart = rssKiB();
        Series loop, batch;
        for (int rep = 0; rep < reps; ++rep) {
            loop.add(measure(sandbox, Way::Loop, links, observeMs));
            batch.add(measure(sandbox, Way::Batch, links, observeMs));
        }
        say(u"  median (min–max) of %1 runs each, alternating:"_s.arg(reps));
        report("loop of startDownload()", loop);
        report("one startDownloads()   ", batch);
        const qint64 rssEnd = rssKiB();
        say(u"  RSS %1 MiB at the start, %2 MiB at the end, %3 MiB peak"_s.arg(
            number(mib(rssStart)), number(mib(rssEnd)), number(mib(peakRssKiB()))));

        writeResult("bench_queuescale",
            {
                { u"links"_s, QString::number(links) },
                { u"limit"_s, QString::number(Limit) },
                { u"runs"_s, QString::number(reps) },
                { u"loop_call_ms"_s, number(median(loop.callMs)) },
                { u"loop_first_turn_ms"_s, number(median(loop.firstTurnMs)) },
                { u"batch_call_ms"_s, number(median(batch.callMs)) },
                { u"batch_first_turn_ms"_s, number(median(batch.firstTurnMs)) },
                { u"max_running"_s, QString::number(std::max(loop.maxRunning, batch.maxRunning)) },
                { u"max_processes"_s, QString::number(std::max(loop.maxProcesses, batch.maxProcesses)) },
                { u"loop_cancel_ms"_s, number(median(loop.cancelMs)) },
                { u"batch_cancel_ms"_s, number(median(batch.cancelMs)) },
                { u"left_after"_s, QString::number(loop.leftAfter + batch.leftAfter) },
                { u"rss_peak_mib"_s, number(mib(peakRssKiB())) },
            });
        if (std::max(loop.maxRunning, batch.maxRunning) > Limit
            || std::max(loop.maxProcesses, batch.maxProcesses) > Limit)
            fail(u"more than %1 downloads ran at once"_s.arg(Limit));
        if (loop.leftAfter + batch.leftAfter > 0)
            fail(u"stand-in processes were left running after the cancel"_s);
        return 0;
    });
}
