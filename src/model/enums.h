#pragma once

#include <QObject>

// The enumerations views and the engine share, in one namespace so QML sees them together.
namespace quillbox {
Q_NAMESPACE

// Where a queued download stands. The raw values are the labels the interface shows.
enum class DownloadStatus { Pending, Preparing, Downloading, Completed, Failed, Cancelled, Paused };
Q_ENUM_NS(DownloadStatus)

// The download presets the user picks from, in the order the preset grid shows them.
enum class DownloadPreset { Default, BestQuality, BestAudio, BestVideoAudio, AudioOnly, Custom };
Q_ENUM_NS(DownloadPreset)

// The colour a status, a log entry or a message is drawn in; the theme says which shade each is.
enum class Tint { Gray, Orange, Blue, Green, Red, Yellow, Purple };
Q_ENUM_NS(Tint)

// The one thing that repairs a tool the toolchain check found wanting.
enum class ToolAction {
    None,
    InstallYtDlp, // fetch the official build into Quillbox's own folder and use it
    UpdateYtDlp, // the yt-dlp in use updates itself (or Homebrew does)
    InstallDeno,
    CopyFfmpegCommand, // the package manager's command, for the user to run
    OpenSettings, // the settings sheet, where the check and its repairs are
};
Q_ENUM_NS(ToolAction)

} // namespace quillbox

using quillbox::DownloadPreset;
using quillbox::DownloadStatus;
using quillbox::Tint;
