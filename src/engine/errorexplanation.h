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

// The explanation of a failed run, or nothing when its output says nothing this table knows.
std::optional<QString> explainFailure(const FailedRun &run);

// The explanation for a shell that could not be started at all.
QString explainLaunchFailure(const QString &shell, const QString &reason);

// The explanation for an output folder that could not be created.
QString explainFolderFailure(const QString &folder);
