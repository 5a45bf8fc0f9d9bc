#pragma once

#include <QString>
#include <QStringList>

#include <optional>

struct VideoFormat;

// Turns what a failed yt-dlp run printed into a short explanation in plain Chinese: what went
// wrong and what to do about it. The tool's own lines stay as they are; this is said beside them.

struct FailedRun
{
    QStringList lines; // the run's last lines, standard error and standard output
    int exitCode = 0;
    bool crashed = false; // ended by a signal rather than an exit status
    QString ytDlpPath; // named when the tool itself is missing
    QString proxy; // the download's proxy ("下载选项"), or empty
};

struct Explanation
{
    QString text;
    // The fix is in the tools rather than the link or the machine: a JavaScript runtime that is
    // missing or unsupported, a yt-dlp too old for the site, or cookies and a runtime for YouTube's bot check.
    bool toolchainFix = false;
};

// The explanation of a failed run, or nothing when its output says nothing this table knows.
std::optional<Explanation> describeFailure(const FailedRun &run);
// describeFailure()'s text alone.
std::optional<QString> explainFailure(const FailedRun &run);

// The output says the format asked for is not offered.
bool isMissingFormat(const QStringList &lines);
// What a link offers nearest to what a download usually wants, for an explanation of a missing
// format: the best format with both streams, the best video alone and the best audio alone
// ("这个链接提供的格式有：22（mp4 · 1280x720 · avc1.64001F+mp4a.40.2）…"); empty when none is known.
QString offeredFormatsNote(const QList<VideoFormat> &formats);

// The explanation for a shell that could not be started at all.
QString explainLaunchFailure(const QString &shell, const QString &reason);

// The explanation for an output folder that could not be created.
QString explainFolderFailure(const QString &folder);
