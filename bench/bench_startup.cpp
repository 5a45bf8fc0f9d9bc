// Start-up: from starting the executable to the first frame of its window, for the application
// (src/quillbox) against two yardsticks started the same way: a bare Qt Quick window
// (bench_barewindow) and the same window with a line of Chinese in each weight
// (bench_barewindow --chinese), the floor of any Chinese interface. One start of each per round,
// in an order that rotates from round to round; each one's resident memory 3 s after that frame,
// and how much of it is font files. All draw on a private Xvfb, so the frames are really rendered,
// each under both of Qt Quick's renderers in turn: OpenGL (Mesa's llvmpipe there) and the software
// scene graph.
//
// The clock: this process reads CLOCK_MONOTONIC just before it starts the child; the child, run
// with QUILLBOX_REPORT_FIRST_FRAME=FILE, appends CLOCK_MONOTONIC to FILE when its window's first
// frame has been swapped (QQuickWindow::frameSwapped). The same clock in both processes, so the
// difference covers everything: fork and exec, loading libraries, QML, the first render.

#include "benchsupport.h"

#include "history.h"
#include "virtualdisplay.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QThread>

#include <algorithm>
#include <array>
#include <csignal>
#include <ctime>
#include <memory>
#include <numeric>
#include <tuple>
#include <vector>

#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace bench;

namespace {
constexpr int FirstFramePatienceMs = 60000;
constexpr int SampleAfterMs = 3000;
constexpr int QuitPatienceMs = 10000;

qint64 monotonicNs()
{
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

QByteArray readProcFile(qint64 pid, const char *name)
{
    QFile file(u"/proc/%1/%2"_s.arg(pid).arg(QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A "VmXXX:   1234 kB" field of /proc/PID/status, in KiB; -1 where there is none.
qint64 statusKiB(qint64 pid, const char *field)
{
    const QByteArray wanted = QByteArray(field).append(':');
    const QList<QByteArray> lines = readProcFile(pid, "status").split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(wanted))
            return line.mid(wanted.size()).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

// The fields of /proc/PID/stat after the command name: index 0 is field 3 (the state).
QList<QByteArray> statFields(qint64 pid)
{
    const QByteArray stat = readProcFile(pid, "stat");
    const qsizetype close = stat.lastIndexOf(')');
    return close < 0 ? QList<QByteArray>() : stat.mid(close + 2).split(' ');
}

// The resident part of every font file process `pid` has mapped, in KiB, by file name
// (/proc/PID/smaps): a file mapped in pieces is summed.
QMap<QString, qint64> fontFilesKiB(qint64 pid)
{
    QMap<QString, qint64> found;
    QString current;
    const QList<QByteArray> lines = readProcFile(pid, "smaps").split('\n');
    for (const QByteArray &line : lines) {
        // A mapping's first line starts with its address range ("7f…-7f… r--s 00000000 08:01 …
        // PATH"), each of its fields' lines with the field's name and a colon.
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() >= 5 && words.at(0).contains('-') && !words.at(0).endsWith(':')) {
            const QString path = QString::fromLocal8Bit(words.mid(5).join(' '));
            const QString lower = path.toLower();
            current = lower.endsWith(u".ttc"_s) || lower.endsWith(u".ttf"_s) || lower.endsWith(u".otf"_s)
                ? QFileInfo(path).fileName()
                : QString();
        } else if (!current.isEmpty() && words.value(0) == "Rss:") {
            found[current] += words.value(1).toLongLong();
        }
    }
    return found;
}

// User + system CPU time of process `pid` so far, in milliseconds (to the clock tick).
double cpuMsOf(qint64 pid)
{
    const QList<QByteArray> fields = statFields(pid);
    if (fields.size() < 13)
        return -1;
    const double ticks = double(fields.at(11).toLongLong() + fields.at(12).toLongLong()); // utime, stime
    return ticks * 1000.0 / double(sysconf(_SC_CLK_TCK));
}

// The command name of process `pid`, as /proc/PID/comm gives it.
QString commandName(qint64 pid)
{
    return QString::fromLocal8Bit(readProcFile(pid, "comm")).trimmed();
}

// Processes whose parent is this one, but for `except`.
QList<qint64> childrenOfThisProcess(qint64 except)
{
    QList<qint64> found;
    const QStringList entries = QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        bool isPid = false;
        const qint64 pid = entry.toLongLong(&isPid);
        if (!isPid || pid == except)
            continue;
        const QList<QByteArray> fields = statFields(pid);
        if (fields.size() > 1 && fields.at(1).toLongLong() == qint64(getpid()))
            found.append(pid);
    }
    return found;
}

// This process adopts whatever a child leaves behind when it dies (it is the "subreaper"), so
// what the application left running is seen, reported and ended here instead of under init.
// Returns the command names of what it found; everything found is killed and reaped.
QStringList endLeftovers(qint64 except)
{
    // The application's process-group guardian outlives it by design, for at most a second: it
    // stops the groups still listed, then leaves. It, and what it stops, are not left behind.
    const QDeadlineTimer grace(1500);
    while (!grace.hasExpired()) {
        for (qint64 pid : childrenOfThisProcess(except))
            ::waitpid(pid_t(pid), nullptr, WNOHANG);
        if (childrenOfThisProcess(except).isEmpty())
            break;
        QThread::msleep(50);
    }
    QStringList names;
    QDeadlineTimer deadline(5000);
    for (;;) {
        const QList<qint64> left = childrenOfThisProcess(except);
        if (left.isEmpty() || deadline.hasExpired())
            break;
        for (qint64 pid : left) {
            names.append(commandName(pid));
            const pid_t group = getpgid(pid_t(pid));
            if (group > 0 && group != getpgrp())
                ::kill(-group, SIGKILL);
            ::kill(pid_t(pid), SIGKILL);
            ::waitpid(pid_t(pid), nullptr, 0);
        }
    }
    return names;
}

struct Sample
{
    double firstFrameMs = 0;
    double restoredMs = 0; // the stored queue back in the window, when asked for
    double cpuAtFrameMs = 0; // the child's CPU time when its report was seen (within ~5 ms)
    double cpuAtSampleMs = 0;
    qint64 rssKiB = 0;
    qint64 peakRssKiB = 0;
    QMap<QString, qint64> fontsKiB; // resident part of each font file mapped, at the RSS sample
    qint64 fontsTotalKiB = 0;
    int threads = 0;
    QStringList leftBehind;
};

// What is started: a program and its arguments, and the name its logs and lines go by.
struct Contender
{
    QString name;
    QString program;
    QStringList arguments;
};

// The last lines of `file`, for a failure message.
QString tail(const QString &file, int lines = 15)
{
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return QString();
    const QStringList all = QString::fromLocal8Bit(in.readAll()).trimmed().split(u'\n');
    return all.mid(std::max<qsizetype>(0, all.size() - lines)).join(u"\n    "_s);
}

class Runner
{
public:
    // `logPrefix` starts the names of the children's log files.
    Runner(const Sandbox &sandbox, QProcessEnvironment environment, qint64 displayPid, QString logPrefix = {})
        : m_sandbox(sandbox)
        , m_environment(std::move(environment))
        , m_displayPid(displayPid)
        , m_logPrefix(std::move(logPrefix))
    {
        m_environment.insert(u"QUILLBOX_REPORT_FIRST_FRAME"_s, report());
    }

    QString report() const { return m_sandbox.path(u"first-frame"_s); }

    // With `storedRows`, also waits for the application to say it has put that many stored rows
    // back in its queue, and times it.
    Sample run(const Contender &contender, const QString &what, int storedRows = 0)
    {
        const QString &program = contender.program;
        QFile::remove(report());
        const QString log = m_sandbox.path(u"logs/%1%2-%3.log"_s.arg(m_logPrefix, what).arg(++m_runs));
        QProcess process;
        process.setProgram(program);
        process.setArguments(contender.arguments);
        process.setProcessEnvironment(m_environment);
        process.setWorkingDirectory(m_sandbox.home());
        process.setStandardInputFile(QProcess::nullDevice());
        process.setStandardOutputFile(log);
        process.setStandardErrorFile(log);

        const qint64 startedNs = monotonicNs();
        process.start();
        if (!process.waitForStarted(10000))
            fail(u"%1 did not start: %2"_s.arg(program, process.errorString()));
        const qint64 pid = process.processId();

        Sample sample;
        qint64 frameNs = 0;
        waitUntil(
            [&] {
                frameNs = firstLine(report()).toLongLong();
                if (frameNs > 0)
                    sample.cpuAtFrameMs = cpuMsOf(pid);
                return frameNs > 0 || process.state() == QProcess::NotRunning;
            },
            FirstFramePatienceMs, 5);
        if (frameNs <= 0) {
            const bool exited = process.state() == QProcess::NotRunning;
            stop(process);
            fail(u"%1 %2 without a first frame; its output:\n    %3"_s.arg(what,
                exited ? u"exited (status %1)"_s.arg(process.exitCode())
                       : u"showed nothing for %1 s"_s.arg(FirstFramePatienceMs / 1000),
                tail(log)));
        }
        sample.firstFrameMs = double(frameNs - startedNs) / 1e6;
        if (storedRows > 0) {
            qint64 restoredNs = 0;
            waitUntil(
                [&] {
                    restoredNs = line(report(), 1).toLongLong();
                    return restoredNs > 0 || process.state() == QProcess::NotRunning;
                },
                FirstFramePatienceMs, 5);
            const QByteArray said = u"已恢复上次的 %1 个任务"_s.arg(storedRows).toUtf8();
            QFile output(log);
            if (restoredNs <= 0 || !output.open(QIODevice::ReadOnly) || !output.readAll().contains(said)) {
                stop(process);
                fail(u"%1 did not put its %2 stored rows back; its output:\n    %3"_s.arg(
                    what, QString::number(storedRows), tail(log)));
            }
            sample.restoredMs = double(restoredNs - startedNs) / 1e6;
        }

        const qint64 sampleAtNs = frameNs + qint64(SampleAfterMs) * 1'000'000;
        const qint64 remainingMs = (sampleAtNs - monotonicNs()) / 1'000'000;
        if (remainingMs > 0)
            spin(int(remainingMs));
        if (process.state() != QProcess::Running)
            fail(u"%1 exited within %2 s of its first frame; its output:\n    %3"_s.arg(
                what, QString::number(SampleAfterMs / 1000), tail(log)));
        sample.rssKiB = statusKiB(pid, "VmRSS");
        sample.peakRssKiB = statusKiB(pid, "VmHWM");
        sample.threads = int(statusKiB(pid, "Threads"));
        sample.cpuAtSampleMs = cpuMsOf(pid);
        sample.fontsKiB = fontFilesKiB(pid);
        sample.fontsTotalKiB = std::accumulate(sample.fontsKiB.cbegin(), sample.fontsKiB.cend(), qint64(0));

        stop(process);
        sample.leftBehind = endLeftovers(m_displayPid);
        return sample;
    }

private:
    static QByteArray firstLine(const QString &path) { return line(path, 0); }

    // Line `index` of `path`, once it is whole.
    static QByteArray line(const QString &path, int index)
    {
        QFile in(path);
        if (!in.open(QIODevice::ReadOnly))
            return QByteArray();
        const QList<QByteArray> lines = in.readAll().split('\n');
        // The last piece is what follows the last newline: a line still being written.
        return index < lines.size() - 1 ? lines.at(index).trimmed() : QByteArray();
    }

    // SIGTERM, and the wait for the process to go; SIGKILL if it has not within the patience.
    static void stop(QProcess &process)
    {
        if (process.state() == QProcess::NotRunning)
            return;
        process.terminate();
        if (process.waitForFinished(QuitPatienceMs))
            return;
        process.kill();
        process.waitForFinished(5000);
        fail(u"%1 was still running %2 s after SIGTERM"_s.arg(
            process.program(), QString::number(QuitPatienceMs / 1000)));
    }

    const Sandbox &m_sandbox;
    QProcessEnvironment m_environment;
    qint64 m_displayPid = 0;
    QString m_logPrefix;
    int m_runs = 0;
};

// Every start of one renderer: the three of each round, and the extra starts asked for.
struct Series
{
    QList<Sample> real, yardstick, chineseYardstick, held, stored;
};

// The starts under one renderer, with the runners that make them: plain, discovery held back,
// stored rows.
struct Renderer
{
    QString name;
    std::vector<std::unique_ptr<Runner>> runners;
    Series series;

    Runner &runner() { return *runners.at(0); }
    Runner &lateRunner() { return *runners.at(1); }
    Runner &storedRunner() { return *runners.at(2); }
};

QList<double> mibOf(const QList<Sample> &samples, qint64 Sample::*field)
{
    QList<double> values;
    for (const Sample &sample : samples)
        values << mib(sample.*field);
    return values;
}

QList<double> valuesOf(const QList<Sample> &samples, double Sample::*field)
{
    QList<double> values;
    for (const Sample &sample : samples)
        values << sample.*field;
    return values;
}

// Per round, the first sample's `field` over the second's.
template <typename Value>
QList<double> ratiosOf(const QList<Sample> &over, const QList<Sample> &under, Value Sample::*field)
{
    QList<double> ratios;
    for (qsizetype i = 0; i < std::min(over.size(), under.size()); ++i)
        ratios << double(over.at(i).*field) / double(under.at(i).*field);
    return ratios;
}

// The resident part of each font file over `samples`, "NAME 12.1 MiB + … = 23.5 MiB" (medians,
// a file a start did not map counting 0 there), or "none".
QString describeFonts(const QList<Sample> &samples)
{
    QStringList files;
    for (const Sample &sample : samples) {
        for (auto it = sample.fontsKiB.cbegin(); it != sample.fontsKiB.cend(); ++it) {
            if (!files.contains(it.key()))
                files << it.key();
        }
    }
    if (files.isEmpty())
        return u"none"_s;
    std::sort(files.begin(), files.end());
    QStringList parts;
    for (const QString &file : std::as_const(files)) {
        QList<double> values;
        for (const Sample &sample : samples)
            values << mib(sample.fontsKiB.value(file));
        parts << u"%1 %2 MiB"_s.arg(file, number(median(values)));
    }
    return parts.join(u" + "_s)
        + (parts.size() > 1 ? u" = %1 MiB"_s.arg(number(median(mibOf(samples, &Sample::fontsTotalKiB)))) : QString());
}

// One kind of start over all rounds: "first frame … ms; CPU by then …" as median (min–max).
QString describe(const QList<Sample> &samples)
{
    return u"first frame %1 ms; CPU by then %2 ms; RSS %3 s later %4 MiB (peak %5 MiB), CPU by then %6 ms, %7 "
           "threads; font files resident: %8"_s.arg(spread(valuesOf(samples, &Sample::firstFrameMs)),
               spread(valuesOf(samples, &Sample::cpuAtFrameMs), 0), QString::number(SampleAfterMs / 1000),
               spread(mibOf(samples, &Sample::rssKiB)), spread(mibOf(samples, &Sample::peakRssKiB)),
               spread(valuesOf(samples, &Sample::cpuAtSampleMs), 0), QString::number(samples.constLast().threads),
               describeFonts(samples));
}

// A history of `rows` finished downloads, in the store the application reads from `dataHome`.
void fillStore(const QString &dataHome, int rows)
{
    // The application's per-user data folder under XDG_DATA_HOME: organisation, then application.
    TaskStore store(dataHome + u"/Quillbox/Quillbox/quillbox.sqlite"_s);
    if (store.open().state != TaskStore::OpenState::Opened)
        fail(u"cannot make the store "_s + store.path() + u": "_s + store.lastError());
    if (!store.apply({ historyRows(rows), {} }))
        fail(u"cannot fill the store: "_s + store.lastError());
}

// The lines and RESULT fields of one renderer's starts; the fields' names start with its name.
QList<std::pair<QString, QString>> summarise(
    const QString &renderer, const Series &series, int storedRows, bool lateDiscovery)
{
    const QList<Sample> &real = series.real;
    const QList<Sample> &yardstick = series.yardstick;
    const QList<Sample> &chineseYardstick = series.chineseYardstick;
    const QList<double> realMs = valuesOf(real, &Sample::firstFrameMs);
    const QList<double> realRss = mibOf(real, &Sample::rssKiB);
    const QList<double> ratios = ratiosOf(real, yardstick, &Sample::firstFrameMs);
    const QList<double> chineseRatios = ratiosOf(real, chineseYardstick, &Sample::firstFrameMs);
    const QList<double> rssRatios = ratiosOf(real, yardstick, &Sample::rssKiB);
    const QList<double> chineseRssRatios = ratiosOf(real, chineseYardstick, &Sample::rssKiB);
    const double ratio = median(realMs) / median(valuesOf(yardstick, &Sample::firstFrameMs));
    const double chineseRatio = median(realMs) / median(valuesOf(chineseYardstick, &Sample::firstFrameMs));
    const double bareRss = median(mibOf(yardstick, &Sample::rssKiB));
    const double chineseRss = median(mibOf(chineseYardstick, &Sample::rssKiB));
    const double rssRatio = median(realRss) / bareRss;
    const double chineseRssRatio = median(realRss) / chineseRss;
    say(u"  %1:"_s.arg(renderer));
    say(u"    application: "_s + describe(real));
    say(u"    bare window: "_s + describe(yardstick));
    say(u"    Chinese bare window: "_s + describe(chineseYardstick));
    say(u"    first frame, application/bare: %1 of the medians; per round %2 (target ≤ 1.3)"_s.arg(
        number(ratio, 2), spread(ratios, 2)));
    say(u"    first frame, application/Chinese bare: %1 of the medians; per round %2"_s.arg(
        number(chineseRatio, 2), spread(chineseRatios, 2)));
    say(u"    RSS, application/bare: %1 of the medians (+%2 MiB); per round %3"_s.arg(
        number(rssRatio, 2), number(median(realRss) - bareRss), spread(rssRatios, 2)));
    say(u"    RSS, application/Chinese bare: %1 of the medians (+%2 MiB); per round %3"_s.arg(
        number(chineseRssRatio, 2), number(median(realRss) - chineseRss), spread(chineseRssRatios, 2)));
    // The second yardstick is only one if its text really was drawn with fonts of its own.
    if (std::any_of(chineseYardstick.cbegin(), chineseYardstick.cend(),
            [](const Sample &sample) { return sample.fontsTotalKiB == 0; }))
        fail(u"the Chinese bare window had no font file mapped 3 s after its first frame: its text was not "
             "drawn"_s);
    if (lateDiscovery) {
        const QList<double> heldMs = valuesOf(series.held, &Sample::firstFrameMs);
        say(u"    application with discovery held back 2 s: first frame %1 ms; CPU by then %2 ms; the "
            "application's median is %3 of this one's (discovery's share)"_s.arg(spread(heldMs),
                spread(valuesOf(series.held, &Sample::cpuAtFrameMs), 0), number(median(realMs) / median(heldMs), 2)));
    }
    if (storedRows > 0) {
        const QList<double> storedMs = valuesOf(series.stored, &Sample::firstFrameMs);
        const QList<double> storedRss = mibOf(series.stored, &Sample::rssKiB);
        say(u"    application with %1 stored rows: first frame %2 ms (%3 of the empty store's median); queue "
            "filled at %4 ms; RSS %5 s later %6 MiB (+%7 MiB over the empty store)"_s.arg(QString::number(storedRows),
                spread(storedMs), number(median(storedMs) / median(realMs), 2),
                spread(valuesOf(series.stored, &Sample::restoredMs)), QString::number(SampleAfterMs / 1000),
                spread(storedRss), number(median(storedRss) - median(realRss))));
    }

    const QString p = renderer + u'_';
    QList<std::pair<QString, QString>> fields;
    for (const auto &[kind, samples] : { std::pair { u"app"_s, &real }, std::pair { u"bare"_s, &yardstick },
             std::pair { u"chinese"_s, &chineseYardstick } }) {
        const QList<double> ms = valuesOf(*samples, &Sample::firstFrameMs);
        fields.append({ p + kind + u"_ms"_s, number(median(ms)) });
        fields.append({ p + kind + u"_ms_min"_s, number(minimum(ms)) });
        fields.append({ p + kind + u"_ms_max"_s, number(maximum(ms)) });
        fields.append({ p + kind + u"_rss_mib"_s, number(median(mibOf(*samples, &Sample::rssKiB))) });
        fields.append(
            { p + kind + u"_cpu_at_frame_ms"_s, number(median(valuesOf(*samples, &Sample::cpuAtFrameMs)), 0) });
        fields.append({ p + kind + u"_fonts_mib"_s, number(median(mibOf(*samples, &Sample::fontsTotalKiB))) });
    }
    // "ratio…": against the bare window; "ratio_chinese…": against the Chinese one.
    for (const auto &[suffix, ofMedians, perRound, ofRssMedians] : { std::tuple { QString(), ratio, &ratios, rssRatio },
             std::tuple { u"_chinese"_s, chineseRatio, &chineseRatios, chineseRssRatio } }) {
        fields.append({ p + u"ratio"_s + suffix, number(ofMedians, 3) });
        fields.append({ p + u"ratio"_s + suffix + u"_pair_median"_s, number(median(*perRound), 3) });
        fields.append({ p + u"ratio"_s + suffix + u"_min"_s, number(minimum(*perRound), 3) });
        fields.append({ p + u"ratio"_s + suffix + u"_max"_s, number(maximum(*perRound), 3) });
        fields.append({ p + u"rss_ratio"_s + suffix, number(ofRssMedians, 3) });
    }
    if (storedRows > 0) {
        fields.append({ p + u"stored_ms"_s, number(median(valuesOf(series.stored, &Sample::firstFrameMs))) });
        fields.append({ p + u"stored_filled_ms"_s, number(median(valuesOf(series.stored, &Sample::restoredMs))) });
        fields.append({ p + u"stored_rss_mib"_s, number(median(mibOf(series.stored, &Sample::rssKiB))) });
    }
    if (lateDiscovery)
        fields.append({ p + u"late_discovery_ms"_s, number(median(valuesOf(series.held, &Sample::firstFrameMs))) });
    return fields;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    return run("bench_startup", [&] {
        const bool quick = shortMode(argc, argv);
        // Rounds of one start of each (--pairs: the name from the days of one yardstick).
        const int pairs = std::max(1, intOption(argc, argv, "pairs", quick ? 2 : 10));
        const bool offscreenAsked = QCoreApplication::arguments().contains(u"--offscreen"_s);
        const bool lateDiscovery = QCoreApplication::arguments().contains(u"--late-discovery"_s);
        const int storedRows = std::max(0, intOption(argc, argv, "stored-rows", 10000));
        // --app: another build of the application (an earlier commit's, say) against the same yardsticks.
        const Contender application { u"application"_s,
            stringOption(argc, argv, "app", QStringLiteral(QUILLBOX_APP_EXECUTABLE)), {} };
        const QString rendererAsked = stringOption(argc, argv, "renderer", u"both"_s);
        const Contender bare { u"bare"_s, QStringLiteral(QUILLBOX_BARE_WINDOW_EXECUTABLE), {} };
        const Contender chinese { u"chinese"_s, bare.program, { u"--chinese"_s } };
        for (const QString &program : { application.program, bare.program }) {
            if (!QFileInfo(program).isExecutable())
                fail(u"%1 is not built (cmake --build build-bench --target quillbox bench_barewindow)"_s.arg(program));
        }
        // The X server is found on the PATH the benchmark was started with, not the sandbox's.
        const QString xvfb = QStandardPaths::findExecutable(u"Xvfb"_s);
        const QString path = qEnvironmentVariable("PATH");

        Sandbox sandbox;
        QDir().mkpath(sandbox.path(u"logs"_s));
        // What the children see: the user's environment with another home, settings and caches,
        // and no display but ours.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"PATH"_s, path);
        environment.insert(u"HOME"_s, sandbox.home());
        // The daily release check stays on this machine (a closed port on 127.0.0.1).
        environment.insert(u"QUILLBOX_RELEASES_URL"_s, u"http://127.0.0.1:9"_s);
        for (const auto &[variable, folder] : { std::pair { u"XDG_CONFIG_HOME"_s, u"config"_s },
                 std::pair { u"XDG_CACHE_HOME"_s, u"cache"_s }, std::pair { u"XDG_DATA_HOME"_s, u"data"_s },
                 std::pair { u"XDG_STATE_HOME"_s, u"state"_s }, std::pair { u"XDG_RUNTIME_DIR"_s, u"runtime"_s } }) {
            QDir().mkpath(sandbox.path(folder));
            environment.insert(variable, sandbox.path(folder));
        }
        ::chmod(QFile::encodeName(sandbox.path(u"runtime"_s)).constData(), 0700);
        for (const QString &variable : { u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s,
                 u"QT_QUICK_CONTROLS_STYLE"_s, u"QUILLBOX_SHELL"_s, u"QUILLBOX_REPORT_FIRST_FRAME"_s })
            environment.remove(variable);

        // What the application leaves running when it goes comes back to this process.
        prctl(PR_SET_CHILD_SUBREAPER, 1);

        std::unique_ptr<VirtualDisplay> display;
        QString platform;
        if (!offscreenAsked && !xvfb.isEmpty()) {
            display = std::make_unique<VirtualDisplay>(xvfb, sandbox.path(u"logs/xvfb.log"_s));
            if (!display->isValid()) {
                say(u"bench_startup: Xvfb did not start on any display from :99 to :159; "
                    "falling back to QT_QPA_PLATFORM=offscreen"_s);
                display.reset();
            }
        } else if (!offscreenAsked) {
            say(u"bench_startup: Xvfb is not installed (Debian: xvfb); falling back to QT_QPA_PLATFORM=offscreen"_s);
        }
        if (display) {
            environment.insert(u"DISPLAY"_s, display->name());
            environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
            platform = u"Xvfb "_s + display->name() + u" 1400x900x24"_s;
        } else {
            environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
            platform = u"QT_QPA_PLATFORM=offscreen (no X server: the figures are not those of a real display)"_s;
        }

        say(u"bench_startup: %1 rounds (application, bare window, Chinese bare window; each round starts with "
            "the next of them) under %6, %2, memory sampled %3 s after the first frame, load average %4%5"_s.arg(
                QString::number(pairs), platform, QString::number(SampleAfterMs / 1000), loadAverage(),
                quick ? u", short mode"_s : QString(),
                rendererAsked == u"both"_s ? u"OpenGL and the software scene graph"_s : rendererAsked));
        say(u"  application: "_s + application.program);

        // --late-discovery: a third start per round, with the application's tool discovery (its
        // shell commands: yt-dlp --version, ffmpeg -version, which) held back 2 s by a shell that
        // waits before running them, to show what those commands cost the first frame.
        QProcessEnvironment lateEnvironment = environment;
        if (lateDiscovery) {
            QString shell = u"/bin/sh"_s;
            for (const QString &candidate : { u"/bin/zsh"_s, u"/bin/bash"_s }) {
                if (QFileInfo::exists(candidate)) {
                    shell = candidate;
                    break;
                }
            }
            const QString lateShell = sandbox.path(u"late-shell"_s);
            if (!sandbox.writeFile(u"late-shell"_s, "#!/bin/sh\nsleep 2\nexec " + shell.toUtf8() + " \"$@\"\n")
                || !QFile::setPermissions(lateShell, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
                fail(u"cannot write "_s + lateShell);
            lateEnvironment.insert(u"QUILLBOX_SHELL"_s, lateShell);
        }

        // --stored-rows N (10000 unless 0): a start per round whose queue store holds a history of
        // N finished downloads, timed to its first frame and to its queue being filled.
        QProcessEnvironment storedEnvironment = environment;
        if (storedRows > 0) {
            QDir().mkpath(sandbox.path(u"stored-data"_s));
            storedEnvironment.insert(u"XDG_DATA_HOME"_s, sandbox.path(u"stored-data"_s));
            fillStore(sandbox.path(u"stored-data"_s), storedRows);
        }

        // Each kind of start is made under both of Qt Quick's ways of drawing, named in the
        // environment, which wins over the application's own choice: OpenGL (under Xvfb, Mesa's
        // llvmpipe) and the software scene graph.
        std::vector<std::unique_ptr<Renderer>> renderers;
        for (const QString &name : { u"opengl"_s, u"software"_s }) {
            if (rendererAsked != u"both"_s && rendererAsked != name)
                continue;
            auto renderer = std::make_unique<Renderer>();
            renderer->name = name;
            for (QProcessEnvironment *env : { &environment, &lateEnvironment, &storedEnvironment }) {
                QProcessEnvironment copy = *env;
                copy.remove(u"QT_QUICK_BACKEND"_s);
                copy.remove(u"QSG_RHI_BACKEND"_s);
                copy.insert(name == u"software"_s ? u"QT_QUICK_BACKEND"_s : u"QSG_RHI_BACKEND"_s, name);
                renderer->runners.push_back(
                    std::make_unique<Runner>(sandbox, copy, display ? display->pid() : 0, name + u'-'));
            }
            renderers.push_back(std::move(renderer));
        }
        if (renderers.empty())
            fail(u"--renderer is opengl, software or both, not "_s + rendererAsked);

        // One untimed run of each: the first start in a new home fills the shader and font caches.
        for (const auto &renderer : renderers) {
            renderer->runner().run(application, u"warm-up-application"_s);
            renderer->runner().run(bare, u"warm-up-bare"_s);
            renderer->runner().run(chinese, u"warm-up-chinese"_s);
            if (storedRows > 0)
                renderer->storedRunner().run(application, u"warm-up-stored"_s, storedRows);
        }

        const MachineTimes machineBefore = MachineTimes::now();
        QStringList leftBehind;
        const std::array<const Contender *, 3> contenders { &application, &bare, &chinese };
        for (int i = 1; i <= pairs; ++i) {
            // The renderers take turns at going first.
            for (size_t r = 0; r < renderers.size(); ++r) {
                Renderer &renderer = *renderers.at((size_t(i) + r) % renderers.size());
                Series &series = renderer.series;
                const std::array<QList<Sample> *, 3> samplesOf { &series.real, &series.yardstick,
                    &series.chineseYardstick };
                // Each round starts one further along the three than the round before, so none of
                // them always goes first or always follows the same one.
                for (int k = 0; k < 3; ++k) {
                    const int which = (i - 1 + k) % 3;
                    samplesOf.at(which)->append(
                        renderer.runner().run(*contenders.at(which), contenders.at(which)->name));
                    leftBehind << samplesOf.at(which)->constLast().leftBehind;
                }
                const Sample &a = series.real.constLast();
                const Sample &b = series.yardstick.constLast();
                const Sample &c = series.chineseYardstick.constLast();
                QString late;
                if (lateDiscovery) {
                    // What it leaves behind is its held-back shells, still waiting: not counted.
                    series.held << renderer.lateRunner().run(application, u"late-discovery"_s);
                    late = u"; discovery held back: %1 ms"_s.arg(number(series.held.constLast().firstFrameMs));
                }
                if (storedRows > 0) {
                    series.stored << renderer.storedRunner().run(application, u"stored"_s, storedRows);
                    late += u"; %1 stored rows: first frame %2 ms, queue filled at %3 ms, RSS %4 MiB"_s.arg(
                        QString::number(storedRows), number(series.stored.constLast().firstFrameMs),
                        number(series.stored.constLast().restoredMs), number(mib(series.stored.constLast().rssKiB)));
                }
                say(u"  round %1, %16: application / bare / Chinese bare: first frame %2 / %3 / %4 ms, ratios %5 / "
                    "%6; RSS %7 / %8 / %9 MiB, ratios %10 / %11; CPU at the first frame %12 / %13 / %14 ms%15"_s
                        .arg(QString::number(i), number(a.firstFrameMs), number(b.firstFrameMs), number(c.firstFrameMs),
                            number(a.firstFrameMs / b.firstFrameMs, 2), number(a.firstFrameMs / c.firstFrameMs, 2),
                            number(mib(a.rssKiB)), number(mib(b.rssKiB)), number(mib(c.rssKiB)))
                        .arg(number(double(a.rssKiB) / double(b.rssKiB), 2),
                            number(double(a.rssKiB) / double(c.rssKiB), 2), number(a.cpuAtFrameMs, 0),
                            number(b.cpuAtFrameMs, 0), number(c.cpuAtFrameMs, 0), late, renderer.name));
            }
        }

        const MachineTimes machineAfter = MachineTimes::now();
        say(u"  each as median (min–max)"_s);
        QList<std::pair<QString, QString>> fields {
            { u"pairs"_s, QString::number(pairs) },
            { u"display"_s, display ? u"xvfb"_s : u"offscreen"_s },
        };
        for (const auto &renderer : renderers)
            fields << summarise(renderer->name, renderer->series, storedRows, lateDiscovery);
        say(u"  the machine's CPUs during the timed runs: %1"_s.arg(machineAfter.describeSince(machineBefore)));
        leftBehind.removeAll(QString());
        say(u"  processes left running at SIGTERM and ended here: %1"_s.arg(
            leftBehind.isEmpty() ? u"none"_s : leftBehind.join(u", "_s)));
        if (storedRows > 0)
            fields.append({ u"stored_rows"_s, QString::number(storedRows) });
        fields.append({ u"left_behind"_s, QString::number(leftBehind.size()) });
        fields.append({ u"stolen_pct"_s, number(machineAfter.stolenPercentSince(machineBefore), 0) });
        writeResult("bench_startup", fields);
        return 0;
    });
}
