#pragma once

#include "model/downloadchoices.h"
#include "model/enums.h"
#include "model/playlist.h"

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
    // An item picked from a playlist, downloaded alone into the playlist's folder.
    PlaylistPlace playlist;

    bool operator==(const DownloadRequest &) const = default;
};
