#include "engine/shellrunner.h"

#include <QFileInfo>
#include <QProcess>
#include <QStringDecoder>
#include <QThread>
#include <QTimer>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/types.h>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <dirent.h>
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

QString shellQuote(const QString &word)
{
    QString escaped = word;
    escaped.replace(u'\'', u"'\\''"_s);
    return u'\'' + escaped + u'\'';
}

QString quoteIfNeeded(const QString &word)
{
    static const QString safePunctuation = u"/._-+:@%"_s;
    const bool plain = !word.isEmpty() && std::all_of(word.cbegin(), word.cend(), [](QChar c) {
        return (c.unicode() < 128 && c.isLetterOrNumber()) || safePunctuation.contains(c);
    });
    return plain ? word : shellQuote(word);
}

GroupProcess::GroupProcess(QObject *parent)
    : QProcess(parent)
{
    setChildProcessModifier([] { ::setpgid(0, 0); });
    // The group id is the shell's pid; keep it, since processId() is 0 once the shell is gone.
    connect(this, &QProcess::started, this, [this] { m_groupId = processId(); });
}

GroupProcess::~GroupProcess()
{
    if (state() == QProcess::NotRunning)
        return;
    signalGroup(SIGKILL);
    waitForFinished(2000);
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

QString decodeUtf8OrEmpty(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    return decoder.hasError() ? QString() : text;
}

void runShellCommand(const QString &command, PipeMode mode, QObject *context,
    std::function<void(const ShellResult &)> done, int timeoutMs)
{
    auto *process = new GroupProcess(context);
    process->setProgram(shellProgram());
    process->setArguments({ u"-c"_s, command });
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
        result.errorString = u"无法启动 %1：%2"_s.arg(process->program(), process->errorString());
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
            result.errorString = u"命令在 %1 秒内没有结束，已停止"_s.arg(timeoutMs / 1000);
            finish(result);
        });
        timer->start(timeoutMs);
    }
    process->start();
}
