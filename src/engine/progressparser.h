#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// What one batch of yt-dlp output says about its download. Fields the batch does not mention
// stay empty, and the task keeps its previous value for them.
struct ProgressUpdate
{
    std::optional<double> progress; // fraction 0–1
    std::optional<QString> speed;
    std::optional<QString> size;
    std::optional<QString> eta; // "00:31"; empty once the stream is done or the time unknown
    std::optional<QString> errorMessage;

    bool isEmpty() const { return !progress && !speed && !size && !eta && !errorMessage; }
};

// Reads progress lines such as "[download]  42.3% of 120.50MiB at 2.35MiB/s ETA 00:31".
// Progress fields are read only when the batch holds "[download]" somewhere, from every line
// that has a "%", the last such line winning. Two known failures map to friendly texts.
ProgressUpdate parseProgress(const QStringList &lines);
// The friendly text of the two known failures among `lines`, if they hold one.
std::optional<QString> knownFailure(const QStringList &lines);
