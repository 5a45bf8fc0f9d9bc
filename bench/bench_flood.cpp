// Ten downloads at once whose yt-dlp (the stand-in) each redraw the progress line 2,000 times a
// second: does the event loop stay responsive, does the in-app log stay capped, and does memory
// come back once they end? Then one download that prints a 10 MiB line without a newline: how
// much does memory grow, and how long is the event loop kept waiting?

#include "benchengine.h"

#include "app/qmlsetup.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>

using namespace Qt::StringLiterals;
using namespace bench;

namespace {
constexpr int Downloads = 10;
constexpr int LinesPerSecond = 2000;
constexpr qint64 TickNs = 5'000'000; // the probe timer's interval

// This thread's time on a CPU and time spent runnable but waiting for one, from the scheduler.
struct SchedTimes
{
    qint64 onCpuNs = 0;
    qint64 waitingNs = 0;
};

SchedTimes threadSchedTimes()
{
    SchedTimes times;
    QFile file(u"/proc/thread-self/schedstat"_s);
    if (file.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> fields = file.readAll().simplified().split(' ');
        times.onCpuNs = fields.value(0).toLongLong();
        times.waitingNs = fields.value(1).toLongLong();
    }
    return times;
}

// A 5 ms timer on the event loop; its lateness (actual interval − 5 ms) is how long the loop
// was kept from it. For the longest, the scheduler says how much of the interval this thread
// spent on a CPU (the loop was busy), runnable without one (the machine was busy), or asleep in
// a system call (blocked).
class StallProbe : public QObject
{
public:
    struct Stall
    {
        qint64 lateNs = 0;
        qint64 endedAtNs = 0;
        qint64 onCpuNs = 0;
        qint64 waitingNs = 0;
        qint64 intervalNs = 0;

        double ms() const { return double(lateNs) / 1e6; }
        double blockedMs() const { return double(std::max<qint64>(0, intervalNs - onCpuNs - waitingNs)) / 1e6; }
    };

    StallProbe()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(int(TickNs / 1'000'000));
        connect(&m_timer, &QTimer::timeout, this, &StallProbe::tick);
    }

    void start()
    {
        m_clock.start();
        m_last = 0;
        m_lastSched = threadSchedTimes();
        m_timer.start();
    }
    void stop() { m_timer.stop(); }
    // Ticks from now on also count towards the steady-state maximum.
    void markSteady() { m_steadyFrom = m_clock.nsecsElapsed(); }

    const Stall &longest() const { return m_longest; }
    const Stall &longestSteady() const { return m_longestSteady; }
    qint64 ticks() const { return m_ticks; }
    qint64 lateOver16() const { return m_lateOver16; }
    qint64 lateOver50() const { return m_lateOver50; }

private:
    void tick()
    {
        const qint64 now = m_clock.nsecsElapsed();
        const SchedTimes sched = threadSchedTimes();
        Stall stall;
        stall.lateNs = std::max<qint64>(0, now - m_last - TickNs);
        stall.endedAtNs = now;
        stall.intervalNs = now - m_last;
        stall.onCpuNs = sched.onCpuNs - m_lastSched.onCpuNs;
        stall.waitingNs = sched.waitingNs - m_lastSched.waitingNs;
        if (stall.lateNs > m_longest.lateNs)
            m_longest = stall;
        if (m_steadyFrom >= 0 && m_last >= m_steadyFrom && stall.lateNs > m_longestSteady.lateNs)
            m_longestSteady = stall;
        m_last = now;
        m_lastSched = sched;
        ++m_ticks;
        if (stall.lateNs > 16'000'000)
            ++m_lateOver16;
        if (stall.lateNs > 50'000'000)
            ++m_lateOver50;
    }

    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_last = 0;
    qint64 m_steadyFrom = -1;
    SchedTimes m_lastSched;
    Stall m_longest;
    Stall m_longestSteady;
    qint64 m_ticks = 0;
    qint64 m_lateOver16 = 0;
    qint64 m_lateOver50 = 0;
};

QString describe(const StallProbe::Stall &stall)
{
    return u"%1 ms, ending %2 s in; of its %3 ms interval %4 ms on a CPU, %5 ms waiting for one, %6 ms blocked"_s.arg(
        number(stall.ms(), 1), number(double(stall.endedAtNs) / 1e9, 2), number(double(stall.intervalNs) / 1e6, 1),
        number(double(stall.onCpuNs) / 1e6, 1), number(double(stall.waitingNs) / 1e6, 1), number(stall.blockedMs(), 1));
}
} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    return run("bench_flood", [&] {
        const bool quick = shortMode(argc, argv);
        const int seconds = intOption(argc, argv, "seconds", quick ? 1 : 10);
        const int linesPerDownload = seconds * LinesPerSecond;

        Sandbox sandbox;
        QuietEngineLog quiet;
        const QString ytDlp = standInYtDlp();
        if (!QFileInfo(ytDlp).isExecutable())
            fail(u"the stand-in yt-dlp is missing: "_s + ytDlp);
        if (!QFileInfo::exists(sandbox.bin() + u"/python3"_s)) {
            say(u"bench_flood: SKIPPED, no python3 for the stand-in yt-dlp"_s);
            return 77;
        }

        // Declared before the engine, so they outlive anything it signals while going away.
        qint64 dataChangedCount = 0;
        qint64 logRowsInserted = 0;
        int logCountMax = 0;
        AppState state;
        DownloadManager manager(&state, locationsFor(sandbox, ytDlp, QString()));
        manager.setMaxConcurrentDownloads(Downloads);
        setStandInScenario(sandbox, {});
        warmUp(manager, u"https://example.invalid/warm-up"_s, sandbox.path(u"out"_s));

        setStandInScenario(sandbox,
            QByteArray(R"([{"out": "[download] Destination: flood.mp4\n"},
                {"progress": {"count": )")
                + QByteArray::number(linesPerDownload) + ", \"rate\": " + QByteArray::number(LinesPerSecond)
                + R"(, "size": "100.00MiB"}}])");

        // The log's own flushes from the warm-up are done; start from a quiet loop.
        state.clearLog();
        spin(300);

        QObject::connect(manager.taskModel(), &QAbstractItemModel::dataChanged, &app, [&] { ++dataChangedCount; });
        QObject::connect(state.logModel(), &QAbstractItemModel::rowsInserted, &app,
            [&](const QModelIndex &, int first, int last) { logRowsInserted += last - first + 1; });
        QObject::connect(state.logModel(), &LogModel::countChanged, &app,
            [&] { logCountMax = std::max(logCountMax, state.logModel()->count()); });

        qint64 rssPeak = 0;
        QTimer rssSampler;
        QObject::connect(&rssSampler, &QTimer::timeout, &app, [&] { rssPeak = std::max(rssPeak, rssKiB()); });

        StallProbe probe;
        const qint64 rssBefore = rssKiB();
        rssPeak = rssBefore;
        const qsizetype firstTask = manager.taskModel()->count();
        QStringList urls;
        for (int i = 0; i < Downloads; ++i)
            urls << u"https://example.invalid/flood/%1"_s.arg(i + 1);

        say(u"bench_flood: %1 downloads × %2 progress lines/s for %3 s%4"_s.arg(QString::number(Downloads),
            QString::number(LinesPerSecond), QString::number(seconds), quick ? u", short mode"_s : QString()));

        probe.start();
        rssSampler.start(20);
        const double cpuBefore = selfCpuMs();
        const MachineTimes machineBefore = MachineTimes::now();
        QElapsedTimer wall;
        wall.start();
        manager.startDownloads(urls, optionsInto(sandbox.path(u"out"_s)));
        const double startCallMs = double(wall.nsecsElapsed()) / 1e6;
        probe.markSteady();
        if (!waitUntil([&] { return allSettled(manager); }, seconds * 1000 + 120000, 20))
            fail(u"the downloads did not end within %1 s"_s.arg(seconds + 120));
        const double elapsedS = double(wall.nsecsElapsed()) / 1e9;
        const double cpuMs = selfCpuMs() - cpuBefore;
        const MachineTimes machineAfter = MachineTimes::now();
        const StallProbe::Stall longest = probe.longest();
        const StallProbe::Stall steady = probe.longestSteady();
        const double stallMs = longest.ms();
        const qint64 ticks = probe.ticks();
        const qint64 over16 = probe.lateOver16();
        const qint64 over50 = probe.lateOver50();
        const qint64 changes = dataChangedCount;

        // About a second after the end: what the engine kept.
        spin(1000);
        rssSampler.stop();
        probe.stop();
        const qint64 rssAfter = rssKiB();
        rssPeak = std::max(rssPeak, rssAfter);
        const int logCount = state.logModel()->count();

        const qsizetype completed = countWithStatus(manager, DownloadStatus::Completed) - firstTask;
        if (completed != Downloads) {
            for (qsizetype row = firstTask; row < manager.taskModel()->count(); ++row) {
                const DownloadTask &task = manager.taskModel()->tasks().at(row);
                say(u"  task %1: %2 %3"_s.arg(task.url, rawValue(task.status), task.errorMessage.value_or(QString())));
            }
            fail(u"%1 of %2 downloads completed"_s.arg(completed).arg(Downloads));
        }

        const double rssDeltaMiB = mib(rssAfter - rssBefore);
        say(u"  ended after %1 s (children's pace: %2 s); bench process CPU %3 s (%4 µs per progress line)"_s.arg(
            number(elapsedS, 2), QString::number(seconds), number(cpuMs / 1000, 2),
            number(cpuMs * 1000 / (double(Downloads) * linesPerDownload), 2)));
        say(u"  longest event-loop stall: %1 ms (target ≤ 50 ms); %2 ticks of 5 ms, %3 late by > 16 ms, %4 by > 50 ms"_s
                .arg(number(stallMs, 1), QString::number(ticks), QString::number(over16), QString::number(over50)));
        say(u"    longest:                    "_s + describe(longest));
        say(u"    longest after the start call: "_s + describe(steady));
        say(u"    the startDownloads() call itself took %1 ms"_s.arg(number(startCallMs, 1)));
        say(u"  dataChanged from the task model: %1 (%2 per download per second)"_s.arg(
            QString::number(changes), number(double(changes) / Downloads / elapsedS, 0)));
        say(u"  in-app log: %1 entries at the end, at most %2 (cap %3); %4 rows inserted in all"_s.arg(
            QString::number(logCount), QString::number(logCountMax), QString::number(AppState::MaxLogEntries),
            QString::number(logRowsInserted)));
        say(u"  RSS: %1 MiB before, %2 MiB peak, %3 MiB 1 s after the end (%4%5 MiB; target within 10 MiB)"_s.arg(
            number(mib(rssBefore)), number(mib(rssPeak)), number(mib(rssAfter)), rssDeltaMiB >= 0 ? u"+"_s : QString(),
            number(rssDeltaMiB)));
        say(u"  engine diagnostics composed and dropped: %1"_s.arg(QuietEngineLog::dropped()));
        say(u"  the machine's CPUs during the run: %1"_s.arg(machineAfter.describeSince(machineBefore)));

        writeResult("bench_flood",
            {
                { u"downloads"_s, QString::number(Downloads) },
                { u"seconds"_s, QString::number(seconds) },
                { u"elapsed_s"_s, number(elapsedS, 2) },
                { u"stall_max_ms"_s, number(stallMs, 1) },
                { u"stall_max_oncpu_ms"_s, number(double(longest.onCpuNs) / 1e6, 1) },
                { u"stall_max_blocked_ms"_s, number(longest.blockedMs(), 1) },
                { u"stall_max_steady_ms"_s, number(steady.ms(), 1) },
                { u"start_call_ms"_s, number(startCallMs, 1) },
                { u"ticks_late_over_16ms"_s, QString::number(over16) },
                { u"data_changed"_s, QString::number(changes) },
                { u"log_count"_s, QString::number(logCount) },
                { u"log_count_max"_s, QString::number(logCountMax) },
                { u"rss_before_mib"_s, number(mib(rssBefore)) },
                { u"rss_peak_mib"_s, number(mib(rssPeak)) },
                { u"rss_after_mib"_s, number(mib(rssAfter)) },
                { u"rss_delta_mib"_s, number(rssDeltaMiB) },
                { u"cpu_s"_s, number(cpuMs / 1000, 2) },
                { u"stolen_pct"_s, number(machineAfter.stolenPercentSince(machineBefore), 0) },
            });
        if (logCountMax > AppState::MaxLogEntries)
            fail(u"the in-app log grew to %1 entries, past its cap of %2"_s.arg(logCountMax)
                     .arg(AppState::MaxLogEntries));

        // One line of 10 MiB without a newline (garbage, or a huge JSON answer), with the log panel
        // showing the application's own log: memory growth and the event loop while it arrives.
        const int lineMiB = intOption(argc, argv, "line-mib", 10);
        QQmlApplicationEngine qml;
        setupQmlEngine(qml);
        qml.loadData(R"(import QtQuick
            import Quillbox
            Window { width: 1100; height: 320; visible: true; LogPanelView { anchors.fill: parent } })");
        if (qml.rootObjects().isEmpty())
            fail(u"the log panel did not load"_s);
        DownloadManager panelManager(AppState::instance(), locationsFor(sandbox, ytDlp, QString()));
        setStandInScenario(sandbox, {});
        warmUp(panelManager, u"https://example.invalid/warm-up-2"_s, sandbox.path(u"out"_s));
        setStandInScenario(
            sandbox, R"([{"flood": {"bytes": )" + QByteArray::number(qint64(lineMiB) << 20) + R"(}}, {"out": "\n"}])");
        spin(500);
        StallProbe lineProbe;
        const qint64 lineRssBefore = rssKiB();
        rssPeak = lineRssBefore;
        rssSampler.start(20);
        lineProbe.start();
        wall.restart();
        panelManager.startDownloads({ u"https://example.invalid/long-line"_s }, optionsInto(sandbox.path(u"out"_s)));
        if (!waitUntil([&] { return allSettled(panelManager); }, 300000, 20))
            fail(u"the long-line download did not end within 300 s"_s);
        const double lineElapsedS = double(wall.nsecsElapsed()) / 1e9;
        // The panel lays the new entries out on the next frames.
        spin(500);
        rssSampler.stop();
        lineProbe.stop();
        const qint64 lineRssAfter = rssKiB();
        rssPeak = std::max(rssPeak, lineRssAfter);
        qsizetype longestEntry = 0;
        for (const LogEntry &entry : AppState::instance()->logEntries())
            longestEntry = std::max(longestEntry, entry.message.size());
        if (panelManager.taskModel()->tasks().constLast().status != DownloadStatus::Completed)
            fail(u"the long-line download did not complete"_s);
        const double growthMiB = mib(rssPeak - lineRssBefore);
        say(u"bench_flood: one %1 MiB line without a newline, log panel shown; ended after %2 s"_s.arg(
            QString::number(lineMiB), number(lineElapsedS, 2)));
        say(u"  longest event-loop stall: %1 ms (target ≤ 100 ms)"_s.arg(number(lineProbe.longest().ms(), 1)));
        say(u"  RSS: %1 MiB before, %2 MiB peak (+%3 MiB; target < 50 MiB), %4 MiB after"_s.arg(
            number(mib(lineRssBefore)), number(mib(rssPeak)), number(growthMiB), number(mib(lineRssAfter))));
        say(u"  longest log entry: %1 characters"_s.arg(longestEntry));
        writeResult("bench_flood_longline",
            {
                { u"line_mib"_s, QString::number(lineMiB) },
                { u"elapsed_s"_s, number(lineElapsedS, 2) },
                { u"stall_max_ms"_s, number(lineProbe.longest().ms(), 1) },
                { u"rss_before_mib"_s, number(mib(lineRssBefore)) },
                { u"rss_peak_mib"_s, number(mib(rssPeak)) },
                { u"rss_growth_mib"_s, number(growthMiB) },
                { u"longest_log_entry_chars"_s, QString::number(longestEntry) },
            });
        return 0;
    });
}
