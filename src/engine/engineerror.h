#pragma once

#include "model/logentry.h"

#include <QString>

// A failure the engine reports: its own (domain "DownloadManager", code = exit status or -1) or
// a failure to start the shell.
struct EngineError
{
    QString domain;
    int code = 0;
    QString localizedDescription;
};
