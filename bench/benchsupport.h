#pragma once

// Shared helpers for the benchmarks: a sandbox (temporary home, settings store and PATH), a
// short-mode switch, summary statistics, memory and CPU readings, waiting on the event loop
// without blocking it, and the one-line machine-readable result.

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QSettings>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <utility>

#include <sys/resource.h>

namespace bench {

using namespace Qt::StringLiterals;

// --short on the command line or QUILLBOX_BENCH_SHORT=1: the quick run CI does once.
inline bool shortMode(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        if (qstrcmp(argv[i], "--short") == 0)
            return true;
    }
    return qEnvironmentVariableIntValue("QUILLBOX_BENCH_SHORT") == 1;
}

// The value of "--name=VALUE" or "--name VALUE", or `fallback`.
inline QString stringOption(int argc, char **argv, const char *name, const QString &fallback = QString())
{
    const QByteArray flag = QByteArray("--") + name;
    const QByteArray withValue = flag + '=';
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg == flag && i + 1 < argc)
            return QString::fromLocal8Bit(argv[i + 1]);
        if (arg.startsWith(withValue))
            return QString::fromLocal8Bit(arg.mid(withValue.size()));
    }
    return fallback;
}

// The value of "--name=VALUE" or "--name VALUE" as a number, or `fallback`.
inline int intOption(int argc, char **argv, const char *name, int fallback)
{
    const QString value = stringOption(argc, argv, name);
    return value.isEmpty() ? fallback : value.toInt();
}

// The source tree: $QUILLBOX_SOURCE_DIR, else where the benchmark was built from.
inline QString sourceDir()
{
    const QString configured = qEnvironmentVariable("QUILLBOX_SOURCE_DIR");
    if (!configured.isEmpty())
        return configured;
    return QStringLiteral(QUILLBOX_SOURCE_DIR);
}

// A temporary home and settings store, and a PATH that holds only a few system utilities (the
// engine's tool discovery then finds nothing by name that the benchmark did not hand it).
// Create it before anything reads QSettings; everything is restored and removed at the end.
class Sandbox
{
public:
    Sandbox()
    {
        if (!m_dir.isValid())
            qFatal("cannot create a temporary directory");
        QCoreApplication::setOrganizationName(u"QuillboxBench"_s);
        QCoreApplication::setApplicationName(u"QuillboxBench"_s);
        const QString settings = m_dir.filePath(u"settings"_s);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings);
        QSettings().clear();
        QDir().mkpath(home());
        QDir().mkpath(bin());
        for (const char *tool : { "env", "python3", "sh", "sleep", "head", "cat", "printf", "mkdir", "ls" }) {
            // The system's own copies: a version manager's shim would need the PATH we take away.
            QString found = QStandardPaths::findExecutable(QString::fromLatin1(tool), { u"/usr/bin"_s, u"/bin"_s });
            if (found.isEmpty())
                found = QStandardPaths::findExecutable(QString::fromLatin1(tool));
            if (!found.isEmpty())
                QFile::link(found, bin() + u'/' + QString::fromLatin1(tool));
        }
        m_savedHome = qgetenv("HOME");
        m_savedPath = qgetenv("PATH");
        qputenv("HOME", home().toUtf8());
        qputenv("PATH", bin().toUtf8());
    }

    ~Sandbox()
    {
        qputenv("HOME", m_savedHome);
        qputenv("PATH", m_savedPath);
    }

    Sandbox(const Sandbox &) = delete;
    Sandbox &operator=(const Sandbox &) = delete;

    QString root() const { return m_dir.path(); }
    QString home() const { return m_dir.filePath(u"home"_s); }
    QString bin() const { return m_dir.filePath(u"bin"_s); }
    QString path(const QString &relative) const { return m_dir.filePath(relative); }

    bool writeFile(const QString &relative, const QByteArray &content) const
    {
        QFile out(path(relative));
        QDir().mkpath(QFileInfo(out).absolutePath());
        return out.open(QIODevice::WriteOnly | QIODevice::Truncate) && out.write(content) == content.size();
    }

private:
    QTemporaryDir m_dir;
    QByteArray m_savedHome;
    QByteArray m_savedPath;
};

// The engine narrates every step on the "quillbox.engine" category. The benchmarks count those
// messages and drop them (QUILLBOX_BENCH_VERBOSE=1 prints them), so the figures are not about the
// terminal; the cost of composing each message is still paid, as in the application.
class QuietEngineLog
{
public:
    QuietEngineLog()
    {
        s_verbose = qEnvironmentVariableIntValue("QUILLBOX_BENCH_VERBOSE") == 1;
        m_previous = qInstallMessageHandler(&QuietEngineLog::handle);
    }
    ~QuietEngineLog() { qInstallMessageHandler(m_previous); }

    QuietEngineLog(const QuietEngineLog &) = delete;
    QuietEngineLog &operator=(const QuietEngineLog &) = delete;

    static qint64 dropped() { return s_dropped; }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        const bool ours = context.category && qstrncmp(context.category, "quillbox.", 9) == 0;
        if (ours && type != QtWarningMsg && type != QtCriticalMsg && type != QtFatalMsg && !s_verbose) {
            ++s_dropped;
            return;
        }
        std::fprintf(stderr, "%s\n", qPrintable(message));
    }

    QtMessageHandler m_previous = nullptr;
    static inline qint64 s_dropped = 0;
    static inline bool s_verbose = false;
};

// --- Statistics

// The machine's load averages over 1, 5 and 15 minutes, as /proc/loadavg gives them.
inline QString loadAverage()
{
    QFile in(u"/proc/loadavg"_s);
    return in.open(QIODevice::ReadOnly) ? QString::fromLatin1(in.readAll()).section(u' ', 0, 2) : u"?"_s;
}

inline double median(QList<double> values)
{
    if (values.isEmpty())
        return 0;
    std::sort(values.begin(), values.end());
    const qsizetype mid = values.size() / 2;
    return values.size() % 2 ? values.at(mid) : (values.at(mid - 1) + values.at(mid)) / 2;
}

inline double minimum(const QList<double> &values)
{
    return values.isEmpty() ? 0 : *std::min_element(values.cbegin(), values.cend());
}

inline double maximum(const QList<double> &values)
{
    return values.isEmpty() ? 0 : *std::max_element(values.cbegin(), values.cend());
}

// The value below which `fraction` of `values` lie (0.99: the 99th percentile).
inline double percentile(QList<double> values, double fraction)
{
    if (values.isEmpty())
        return 0;
    std::sort(values.begin(), values.end());
    return values.at(std::min<qsizetype>(values.size() - 1, qsizetype(fraction * double(values.size()))));
}

// "12.3" with `decimals` places.
inline QString number(double value, int decimals = 1)
{
    return QString::number(value, 'f', decimals);
}

// "median (min–max)" for the human-readable lines.
inline QString spread(const QList<double> &values, int decimals = 1, const QString &unit = QString())
{
    return number(median(values), decimals) + unit + u" (" + number(minimum(values), decimals) + u"–"
        + number(maximum(values), decimals) + unit + u')';
}

// --- Memory and CPU

// A "VmXXX:   1234 kB" field of /proc/self/status, in KiB; -1 where there is none.
inline qint64 procStatusKiB(const char *field)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray wanted = QByteArray(field).append(':');
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(wanted))
            return line.mid(wanted.size()).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

inline qint64 rssKiB()
{
    return procStatusKiB("VmRSS");
}
inline qint64 peakRssKiB()
{
    return procStatusKiB("VmHWM");
}
inline double mib(qint64 kib)
{
    return double(kib) / 1024.0;
}

// User + system CPU time this process has used, without its children, in milliseconds.
inline double selfCpuMs()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval &t) { return double(t.tv_sec) * 1000.0 + double(t.tv_usec) / 1000.0; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

// The same for the children this process has waited for (finished child processes).
inline double childrenCpuMs()
{
    rusage usage {};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto ms = [](const timeval &t) { return double(t.tv_sec) * 1000.0 + double(t.tv_usec) / 1000.0; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

// The machine's CPU time as /proc/stat counts it, all CPUs together, in clock ticks. On a virtual
// machine "stolen" is time the hypervisor gave to others while this machine wanted to run: then
// even an idle event loop wakes late. Two readings around a run say what the run competed with.
struct MachineTimes
{
    qint64 busy = 0; // user, nice, system, irq, softirq
    qint64 idle = 0; // idle, iowait
    qint64 stolen = 0;

    static MachineTimes now()
    {
        QFile stat(u"/proc/stat"_s);
        MachineTimes times;
        if (!stat.open(QIODevice::ReadOnly))
            return times;
        const QList<QByteArray> fields = stat.readLine().simplified().split(' ');
        const auto field = [&fields](int index) { return fields.value(index).toLongLong(); };
        if (fields.value(0) != "cpu")
            return times;
        times.busy = field(1) + field(2) + field(3) + field(6) + field(7);
        times.idle = field(4) + field(5);
        times.stolen = field(8);
        return times;
    }

    // The share of the CPUs' time since `before` that was stolen, in per cent.
    double stolenPercentSince(const MachineTimes &before) const
    {
        const qint64 total = (busy - before.busy) + (idle - before.idle) + (stolen - before.stolen);
        return total > 0 ? 100.0 * double(stolen - before.stolen) / double(total) : 0.0;
    }

    // "busy 41 %, idle 27 %, stolen 32 %" since `before`.
    QString describeSince(const MachineTimes &before) const
    {
        const double total = double((busy - before.busy) + (idle - before.idle) + (stolen - before.stolen));
        if (total <= 0)
            return u"no reading"_s;
        return u"busy %1 %, idle %2 %, stolen %3 %"_s.arg(number(100.0 * double(busy - before.busy) / total, 0),
            number(100.0 * double(idle - before.idle) / total, 0), number(stolenPercentSince(before), 0));
    }
};

// --- Waiting

// Runs the event loop until `done()` holds (checked every `pollMs` and whenever the loop is
// woken) or `timeoutMs` passes. Unlike a sleep-and-poll wait, the loop never blocks, so timers
// measuring the loop's latency are not disturbed. Returns whether `done()` held.
inline bool waitUntil(const std::function<bool()> &done, int timeoutMs, int pollMs = 5)
{
    if (done())
        return true;
    QEventLoop loop;
    QTimer poll;
    poll.setTimerType(Qt::PreciseTimer);
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (done())
            loop.quit();
    });
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    poll.start(pollMs);
    deadline.start(timeoutMs);
    loop.exec();
    return done();
}

// Runs the event loop for `ms` milliseconds.
inline void spin(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

// --- Results

// One "RESULT name key=value ..." line on standard output, the line scripts look for.
inline void writeResult(const char *name, const QList<std::pair<QString, QString>> &fields)
{
    QString line = u"RESULT "_s + QString::fromLatin1(name);
    for (const auto &[key, value] : fields)
        line += u' ' + key + u'=' + value;
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

// A human-readable line on standard output.
inline void say(const QString &text)
{
    std::printf("%s\n", qPrintable(text));
    std::fflush(stdout);
}

// Something is broken (a download that did not complete, a tool that did not start). Thrown
// from the benchmark's own code, never from inside a slot, and turned into exit status 1 by
// run(), after the stack (temporary folders, child processes) has been unwound.
struct Failure
{
    QString message;
};

[[noreturn]] inline void fail(const QString &message)
{
    throw Failure { message };
}

// Calls `body` and maps its outcome to the process's exit status: 0, 1 on a Failure, or
// whatever `body` returns (77 for "skipped").
inline int run(const char *name, const std::function<int()> &body)
{
    try {
        return body();
    } catch (const Failure &failure) {
        std::fflush(stdout);
        std::fprintf(stderr, "%s: FAILED: %s\n", name, qPrintable(failure.message));
        return 1;
    }
}

} // namespace bench
