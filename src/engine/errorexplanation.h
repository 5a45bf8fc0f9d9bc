#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// Turns what a failed yt-dlp run printed into a short explanation in plain Chinese: what went
// wrong and what to do about it. The tool's own lines stay as they are; this is said beside them.

struct FailedRun
{
    QStringList lines; // the run's last lines, standard error and standard output
    int exitCode = 0;
    bool crashed = false; // ended by a signal rather than an exit status
    QString ytDlpPath; // named when the tool itself is missing
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

// The explanation for a shell that could not be started at all.
QString explainLaunchFailure(const QString &shell, const QString &reason);

// The explanation for an output folder that could not be created.
QString explainFolderFailure(const QString &folder);
