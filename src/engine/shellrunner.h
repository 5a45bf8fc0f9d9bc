#pragma once

#include "engine/shellcommand.h"

#include <QDeadlineTimer>
#include <QList>
#include <QObject>
#include <QProcess>
#include <QString>

#include <functional>

// Every outside program runs through the user's shell as `SHELL -c COMMAND`. The shell is
// $QUILLBOX_SHELL when set, else /bin/zsh, /bin/bash or /bin/sh, whichever exists first.
QString shellProgram();

// A child in a process group of its own, so the shell and everything it starts (yt-dlp, ffmpeg)
// are signalled together. Destroying it while the group runs kills the whole group.
class GroupProcess : public QProcess
{
    Q_OBJECT

public:
    explicit GroupProcess(QObject *parent = nullptr);
    ~GroupProcess() override;

    // Sends `signal` to every process of the group (the group outlives the shell if children
    // are left). Returns false when there is no such group any more.
    bool signalGroup(int signal) const;

    // The group's id (the shell's pid), kept after the shell has gone; 0 before it started.
    qint64 groupId() const { return m_groupId; }

    // A guarded group is ended when this application ends, however it ends (see GroupGuard).
    // Set before start().
    void setGuarded(bool guarded) { m_guarded = guarded; }

private:
    qint64 m_groupId = 0;
    bool m_guarded = false;
};

// Ends the guarded process groups when this application ends, even when it is killed: a small
// /bin/sh of its own session, started with the first guarded group, is told each group on a
// socket; when the socket closes (the kernel closes it however this process ends) it sends
// SIGTERM to every group still listed, then SIGKILL a second later.
namespace GroupGuard {
// The guardian's process id, or 0 while none has been started (or it could not be).
qint64 guardianPid();
} // namespace GroupGuard

// Waits until no process of any of `groups` runs any more, or `deadline` expires; returns
// whether they all went. A killed process still takes a moment to go, and the children a shell
// leaves behind are not ours to wait for, so quitting polls their groups instead.
bool waitForGroupsGone(const QList<qint64> &groups, QDeadlineTimer deadline);

// When process `pid` started, in the system's own units (on Linux the clock ticks since boot,
// on macOS the microseconds since the epoch), or 0 where it cannot be told. A group id recorded
// with its leader's start time names that group and no later one that reuses the number.
qint64 processStartTime(qint64 pid);

// Ends the groups a run that died left behind: each one that still runs and was not taken over
// by a new leader gets SIGTERM, and SIGKILL a second later if it is still there. Returns how
// many were running. Blocks for at most two seconds.
int endLeftoverGroups(const QList<std::pair<qint64, qint64>> &groupsAndStartTimes);

struct ShellResult
{
    bool launched = false;
    // Why the shell could not be started (or was stopped for taking too long).
    QString errorString;
    int exitCode = -1;
    bool crashed = false;
    // Decoded but untrimmed; with PipeMode::Shared everything is in standardOutput.
    QString standardOutput;
    QString standardError;

    QString trimmedOutput() const { return standardOutput.trimmed(); }
};

enum class PipeMode {
    Shared, // stdout and stderr on one pipe
    Split, // each on its own pipe
};

// Runs `command` asynchronously and calls `done` once, on `context`'s thread, with the result.
// Nothing is called if `context` is destroyed first (the child is then killed). A positive
// `timeoutMs` stops the whole process group after that long and reports a launch failure.
// A `guarded` group does not outlive this application (GroupGuard): a probe or a listing left
// running when it quits, however it quits, is ended with it. Only an installation that should
// finish on its own (an update, Homebrew) runs unguarded.
void runShellCommand(const ShellCommand &command, PipeMode mode, QObject *context,
    std::function<void(const ShellResult &)> done, int timeoutMs = 0, bool guarded = true);
