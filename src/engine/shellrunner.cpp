#include "engine/shellrunner.h"

#include "engine/tooltext.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <QTimer>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/types.h>
#include <unistd.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>

#ifdef Q_OS_LINUX
#include <dirent.h>
#endif
#ifdef Q_OS_MACOS
#include <libproc.h>
#endif

using namespace Qt::StringLiterals;

QString shellProgram()
{
    const QString configured = qEnvironmentVariable("QUILLBOX_SHELL");
    if (!configured.isEmpty())
        return configured;
    for (const QString &candidate : { u"/bin/zsh"_s, u"/bin/bash"_s }) {
        if (QFileInfo::exists(candidate))
            return candidate;
    }
    return u"/bin/sh"_s;
}

namespace {
// What the guardian runs: it keeps the list of groups it is told ("+ID" adds, "-ID" removes) and,
// when its input ends, stops those still there. Terminal signals do not reach it (own session,
// ignored), so it outlives whatever ends us.
const char guardianScript[] = R"(trap '' INT TERM HUP QUIT PIPE
groups=''
while IFS= read -r line; do
  case "$line" in
    +*) groups="$groups ${line#+}" ;;
    -*) kept=''; for g in $groups; do [ "$g" = "${line#-}" ] || kept="$kept $g"; done; groups=$kept ;;
  esac
done
left=''
for g in $groups; do kill -s TERM -- "-$g" 2>/dev/null && left="$left $g"; done
[ -n "$left" ] || exit 0
sleep 1
for g in $left; do kill -s KILL -- "-$g" 2>/dev/null; done
)";

class Guardian
{
public:
    static Guardian &instance()
    {
        static Guardian guardian;
        return guardian;
    }

    qint64 pid() const { return m_pid; }

    void tell(char what, qint64 group)
    {
        if (group <= 0 || !ensureStarted())
            return;
        char line[32];
        const int length = std::snprintf(line, sizeof line, "%c%lld\n", what, static_cast<long long>(group));
        // MSG_NOSIGNAL: a guardian that is gone must not take this process with it (SIGPIPE).
        if (::send(m_socket, line, size_t(length), MSG_NOSIGNAL) != length)
            qWarning("the process-group guardian is gone: %s", std::strerror(errno));
    }

private:
    bool ensureStarted()
    {
        if (m_socket >= 0 || m_failed)
            return m_socket >= 0;
        int ends[2];
        // Close-on-exec: no other child may hold our end, or the guardian would never see it close.
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
            m_failed = true;
            return false;
        }
        // Forked twice so that it belongs to init (or a subreaper) from the start, never our zombie.
        const pid_t child = ::fork();
        if (child == 0) {
            const pid_t guardian = ::fork();
            if (guardian == 0) {
                ::setsid();
                ::dup2(ends[1], STDIN_FILENO);
                const int null = ::open("/dev/null", O_WRONLY);
                if (null >= 0) {
                    ::dup2(null, STDOUT_FILENO);
                    ::dup2(null, STDERR_FILENO);
                }
                ::execl("/bin/sh", "sh", "-c", guardianScript, static_cast<char *>(nullptr));
                ::_exit(127);
            }
            // The pid goes back on the socket before this middle process leaves.
            const long long pid = guardian;
            [[maybe_unused]] const auto written = ::write(ends[1], &pid, sizeof pid);
            ::_exit(guardian > 0 ? 0 : 1);
        }
        ::close(ends[1]);
        long long pid = 0;
        // The middle process always writes before it leaves; the guardian keeps the socket open.
        const bool told = child > 0 && ::read(ends[0], &pid, sizeof pid) == sizeof pid && pid > 0;
        if (child > 0)
            ::waitpid(child, nullptr, 0); // Qt's own child handling may have collected it already
        if (!told) {
            ::close(ends[0]);
            m_failed = true;
            qWarning("could not start the process-group guardian");
            return false;
        }
        m_socket = ends[0];
        m_pid = pid;
        return true;
    }

    int m_socket = -1;
    bool m_failed = false;
    qint64 m_pid = 0;
};
} // namespace

qint64 GroupGuard::guardianPid()
{
    return Guardian::instance().pid();
}

GroupProcess::GroupProcess(QObject *parent)
    : QProcess(parent)
{
    setChildProcessModifier([] { ::setpgid(0, 0); });
    // The group id is the shell's pid; keep it, since processId() is 0 once the shell is gone.
    connect(this, &QProcess::started, this, [this] {
        m_groupId = processId();
        if (m_guarded)
            Guardian::instance().tell('+', m_groupId);
    });
}

GroupProcess::~GroupProcess()
{
    if (state() != QProcess::NotRunning) {
        signalGroup(SIGKILL);
        waitForFinished(2000);
    }
    // A group that is gone leaves the guardian's list; one whose children live on stays on it,
    // to be ended with us.
    if (m_guarded && m_groupId > 0 && ::kill(-pid_t(m_groupId), 0) != 0 && errno == ESRCH)
        Guardian::instance().tell('-', m_groupId);
}

bool GroupProcess::signalGroup(int signal) const
{
    return m_groupId > 0 && ::kill(-pid_t(m_groupId), signal) == 0;
}

namespace {
#ifdef Q_OS_LINUX
// Whether a process of `group` other than an exited one awaiting collection is left. A zombie
// answers kill(2) but runs nothing, and whoever adopted it may take its time to collect it.
bool groupHasLiveMember(pid_t group)
{
    DIR *proc = ::opendir("/proc");
    if (!proc)
        return true;
    bool live = false;
    while (const dirent *entry = ::readdir(proc)) {
        if (entry->d_name[0] < '1' || entry->d_name[0] > '9')
            continue;
        char path[sizeof entry->d_name + 16];
        std::snprintf(path, sizeof path, "/proc/%s/stat", entry->d_name);
        FILE *file = std::fopen(path, "re");
        if (!file)
            continue;
        char text[512];
        const size_t size = std::fread(text, 1, sizeof text - 1, file);
        std::fclose(file);
        text[size] = '\0';
        // "pid (name) state ppid pgrp ..."; the name may itself hold ") ".
        const char *close = std::strrchr(text, ')');
        char state = 0;
        long ppid = 0;
        long pgrp = 0;
        if (close && std::sscanf(close + 1, " %c %ld %ld", &state, &ppid, &pgrp) == 3 && pgrp == group && state != 'Z'
            && state != 'X') {
            live = true;
            break;
        }
    }
    ::closedir(proc);
    return live;
}
#endif

bool groupRuns(qint64 group)
{
    if (group <= 0)
        return false;
    if (::kill(-pid_t(group), 0) != 0 && errno == ESRCH)
        return false;
#ifdef Q_OS_LINUX
    return groupHasLiveMember(pid_t(group));
#else
    return true;
#endif
}
} // namespace

bool waitForGroupsGone(const QList<qint64> &groups, QDeadlineTimer deadline)
{
    for (qint64 group : groups) {
        while (groupRuns(group)) {
            if (deadline.hasExpired())
                return false;
            QThread::msleep(2);
        }
    }
    return true;
}

qint64 processStartTime(qint64 pid)
{
    if (pid <= 0)
        return 0;
#if defined(Q_OS_LINUX)
    QFile stat(u"/proc/%1/stat"_s.arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = stat.readAll();
    // "pid (name) state ppid …": the start time is the 22nd field, the 20th after the name.
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    return fields.size() > 19 ? fields.at(19).toLongLong() : 0;
#elif defined(Q_OS_MACOS)
    proc_bsdinfo info {};
    if (::proc_pidinfo(pid_t(pid), PROC_PIDTBSDINFO, 0, &info, sizeof info) != int(sizeof info))
        return 0;
    return qint64(info.pbi_start_tvsec) * 1000000 + qint64(info.pbi_start_tvusec);
#else
    return 0;
#endif
}

int endLeftoverGroups(const QList<std::pair<qint64, qint64>> &groupsAndStartTimes)
{
    QList<qint64> running;
    for (const auto &[group, started] : groupsAndStartTimes) {
        // A group's number cannot be given again while any member of it lives, so a group that
        // still runs is the recorded one unless a new leader took the number (then its start
        // time differs). The leader itself may be gone (a shell whose yt-dlp died) while its
        // ffmpeg writes on. Unknown start times end nothing.
        const qint64 leader = processStartTime(group);
        if (group > 0 && started != 0 && (leader == started || leader == 0) && groupRuns(group)
            && ::kill(-pid_t(group), SIGTERM) == 0)
            running.append(group);
    }
    if (!running.isEmpty() && !waitForGroupsGone(running, QDeadlineTimer(1000))) {
        for (const qint64 group : std::as_const(running))
            ::kill(-pid_t(group), SIGKILL);
        waitForGroupsGone(running, QDeadlineTimer(1000));
    }
    return int(running.size());
}

void runShellCommand(const ShellCommand &command, PipeMode mode, QObject *context,
    std::function<void(const ShellResult &)> done, int timeoutMs, bool guarded)
{
    auto *process = new GroupProcess(context);
    process->setGuarded(guarded);
    process->setProgram(shellProgram());
    process->setArguments({ u"-c"_s, command.text() });
    process->setProcessChannelMode(mode == PipeMode::Shared ? QProcess::MergedChannels : QProcess::SeparateChannels);
    process->setStandardInputFile(QProcess::nullDevice());

    auto finished = std::make_shared<bool>(false);
    auto finish = [process, finished, done = std::move(done)](ShellResult result) {
        if (*finished)
            return;
        *finished = true;
        process->deleteLater();
        done(result);
    };

    QObject::connect(process, &QProcess::errorOccurred, context, [process, finish](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        ShellResult result;
        result.errorString = QCoreApplication::translate("ShellRunner", "无法启动 %1：%2")
                                 .arg(process->program(), process->errorString());
        finish(result);
    });
    QObject::connect(
        process, &QProcess::finished, context, [process, finish, mode](int exitCode, QProcess::ExitStatus status) {
            ShellResult result;
            result.launched = true;
            result.exitCode = exitCode;
            result.crashed = status == QProcess::CrashExit;
            result.standardOutput = decodeUtf8OrEmpty(process->readAllStandardOutput());
            if (mode == PipeMode::Split)
                result.standardError = decodeUtf8OrEmpty(process->readAllStandardError());
            finish(result);
        });

    if (timeoutMs > 0) {
        auto *timer = new QTimer(process);
        timer->setSingleShot(true);
        QObject::connect(timer, &QTimer::timeout, process, [process, finish, timeoutMs] {
            process->signalGroup(SIGKILL);
            ShellResult result;
            const int seconds = timeoutMs / 1000;
            result.errorString
                = QCoreApplication::translate("ShellRunner", "命令在 %n 秒内没有结束，已停止", nullptr, seconds);
            finish(result);
        });
        timer->start(timeoutMs);
    }
    process->start();
}
