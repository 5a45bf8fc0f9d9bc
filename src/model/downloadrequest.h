#pragma once

#include "model/downloadchoices.h"
#include "model/enums.h"

#include <QString>

// How the user asked for a download: the form's choices, shared by every link started together.
struct DownloadOptions
{
    DownloadPreset preset = DownloadPreset::Default;
    QString customArgs;
    QString outputDir;
    bool downloadPlaylist = true;
    bool useCookies = true;
    // What "下载选项" adds.
    DownloadChoices choices;

    bool operator==(const DownloadOptions &) const = default;
};

// One user request to download one link.
struct DownloadRequest : DownloadOptions
{
    QString url;

    bool operator==(const DownloadRequest &) const = default;
};
