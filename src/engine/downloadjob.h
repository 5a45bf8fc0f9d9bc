#pragma once

#include "engine/downloadoutput.h"
#include "engine/linesplitter.h"
#include "engine/progressparser.h"
#include "engine/shellrunner.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

class QTimer;

// One yt-dlp run: a shell in a process group of its own, started in the download's folder. It
// reads both streams into whole lines, keeps their last lines for a failure message, follows what
// the output says (progress, the step under way, the file) and reports each change; it notices
// when the download goes silent, and it stops: the whole group, for good.
class DownloadJob : public QObject
{
    Q_OBJECT

public:
    static constexpr int CancelGraceMs = 3000;
    // How many of the last lines of each stream are kept for the failure message.
    static constexpr qsizetype TailLines = 200;

    struct End
    {
        int exitCode = -1;
        bool crashed = false;
        bool cancelled = false;
        QStringList stdoutTail;
        QStringList stderrTail;
    };

    DownloadJob(QString command, QString folder, int stallNoticeMs, QObject *parent = nullptr);
    ~DownloadJob() override;

    void start();
    // SIGTERM to the group, SIGKILL to whatever is left after CancelGraceMs. The job ends as
    // cancelled whatever its exit status.
    void stop();
    bool isCancelled() const { return m_cancelled; }
    bool isStalled() const { return m_stalled; }
    QString folder() const { return m_folder; }
    QString outputPath() const { return m_output.outputPath(); }
    bool skippedByArchive() const { return m_output.skippedByArchive(); }
    QString phase() const { return m_output.phase(); }
    // For quitting: the process, while it lives.
    GroupProcess *process() const { return m_process; }
    // Removes what a step cut off by stop() was writing.
    void removePartialFiles();

Q_SIGNALS:
    void started(qint64 pid);
    void failedToStart(const QString &message);
    // Whole lines as they arrive, for the log.
    void linesRead(const QStringList &lines, bool standardError);
    void progressed(const ProgressUpdate &update);
    void phaseChanged(const QString &phase);
    void outputPathChanged(const QString &path);
    // The download has printed nothing for the stall notice's time (true), or speaks again.
    void stalledChanged(bool stalled);
    void removedPartialFile(const QString &path);
    // Exactly once, after everything printed has been reported.
    void ended(const DownloadJob::End &end);

private:
    void readOutput(bool standardError);
    void handleLines(const QStringList &lines, bool standardError);
    void checkStall();
    void finish(int exitCode, bool crashed);

    QString m_command;
    QString m_folder;
    int m_stallNoticeMs;
    QPointer<GroupProcess> m_process;
    LineSplitter m_stdoutLines;
    LineSplitter m_stderrLines;
    QStringList m_stdoutTail;
    QStringList m_stderrTail;
    DownloadOutput m_output;
    bool m_cancelled = false;
    bool m_ended = false;
    bool m_stalled = false;
    QElapsedTimer m_sinceOutput; // started with the process, restarted by every read
    QTimer *m_stallTimer = nullptr;
};
