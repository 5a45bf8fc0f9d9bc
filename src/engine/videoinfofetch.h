#pragma once

#include "engine/engineerror.h"
#include "engine/shellcommand.h"
#include "model/videoinfo.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

class LogSink;
struct ShellResult;

// The answer to one request for a video's information.
struct VideoInfoResult
{
    bool ok = false;
    VideoInfo info;
    // The link was a playlist of this many videos and `info` is its first; 0 for a single video.
    int playlistEntries = 0;
    // Stopped by cancel() before yt-dlp answered; `error` then says so.
    bool cancelled = false;
    EngineError error;
};

// One `yt-dlp -J` run for one link: runs the command it is given through the shell with a time
// limit, reads the JSON into a VideoInfo, logs the outcome and answers exactly once, on this
// thread. It deletes itself after answering.
class VideoInfoFetch : public QObject
{
    Q_OBJECT

public:
    static constexpr int TimeoutMs = 180000;
    using Completion = std::function<void(const VideoInfoResult &)>;

    VideoInfoFetch(const QString &url, LogSink *log, Completion completion, QObject *parent = nullptr);

    QString url() const { return m_url; }

    // Runs `command` (the caller builds it once the tool is known; until then the fetch waits).
    void run(const ShellCommand &command, int timeoutMs = TimeoutMs);
    // Stops the child, if one runs, and answers at once with `cancelled`.
    void cancel();

    // What a run that failed has to say: yt-dlp's "ERROR:" lines when it printed any, else all it
    // printed on standard error, else standard output, else its exit status.
    static QString failureMessage(const ShellResult &result);

private:
    void handle(const ShellResult &result);
    void fail(const EngineError &error);
    void finish(const VideoInfoResult &result);
    void info(const QString &message) const;

    QString m_url;
    QPointer<LogSink> m_log;
    Completion m_completion;
    bool m_started = false;
    bool m_answered = false;
};
