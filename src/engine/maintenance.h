#pragma once

#include "engine/engineerror.h"

#include <QObject>
#include <QString>

#include <functional>

class LogSink;
class ToolDiscovery;
class VideoInfoFetch;
class PlaylistListing;
struct VideoInfoResult;

struct UpdateResult
{
    QString text; // "✅ …" or "❌ …", as the user is told
    QString advice; // for a failure: what happened and what to do, in plain words; may be empty
    // The newest yt-dlp is in place: the update ran, or yt-dlp said it already was the newest.
    bool upToDate = false;
};

struct FormatListResult
{
    bool ok = false;
    QString text; // the format table as yt-dlp printed it
    EngineError error;
};

// The work on yt-dlp itself rather than on a download: updating it and listing a link's formats,
// each one shell command with a time limit, run with the tools discovery found.
class Maintenance : public QObject
{
    Q_OBJECT

public:
    static constexpr int ListFormatsTimeoutMs = 180000;
    static constexpr int UpdateTimeoutMs = 600000;

    Maintenance(LogSink *log, ToolDiscovery *tools, QObject *parent = nullptr);

    // Homebrew's upgrade when brew is there, else "yt-dlp -U"; `completion` gets the text for
    // the user ("✅ …" or "❌ …") and, for a failure, advice on it; the version is probed again
    // after a success.
    void updateYtDlp(std::function<void(const UpdateResult &)> completion);
    // `networkWords` (a proxy's) go with the cookie words, as in a download.
    void listFormats(const QString &url, bool useCookies, std::function<void(const FormatListResult &)> completion,
        const QStringList &networkWords = {});
    // A flat listing of `url` with the words a download would use (see PlaylistListing), owned
    // by `owner`. It runs once the yt-dlp path is known.
    PlaylistListing *listPlaylist(const QString &url, bool useCookies, const QStringList &networkWords, QObject *owner);
    // "-J" for one video (the first of a playlist) with the words a download would use; see
    // VideoInfoFetch. The fetch can be cancelled until it answers, and is gone after. Unless
    // `logged`, it says nothing in the in-app log (a download's own request is a detail).
    VideoInfoFetch *fetchVideoInfo(const QString &url, bool useCookies,
        std::function<void(const VideoInfoResult &)> completion, bool logged = true,
        const QStringList &networkWords = {});

private:
    void addLog(const QString &message, LogEntry::LogType type) const;
    void info(const QString &message) const { addLog(message, LogEntry::LogType::Info); }

    LogSink *m_log;
    ToolDiscovery *m_tools;
};
