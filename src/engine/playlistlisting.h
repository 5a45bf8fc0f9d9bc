#pragma once

#include "engine/linesplitter.h"
#include "engine/shellcommand.h"
#include "model/playlist.h"
#include "model/videoinfo.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <optional>

class GroupProcess;
class LogSink;

// One flat listing of a link (`yt-dlp --flat-playlist --print …`): what it lists arrives item by
// item as yt-dlp prints it, so that the first items can be shown long before the last is read.
// The link turns out to be a playlist (its items), one video (not listed further), or nothing
// that can be listed (empty, or a failure and why). Deletes nothing by itself; its owner does.
class PlaylistListing : public QObject
{
    Q_OBJECT

public:
    enum class Outcome { Running, Playlist, SingleVideo, Empty, Failed, Cancelled };

    // The fields a listing prints per item, one JSON object per line.
    static QString printTemplate();

    PlaylistListing(QString url, LogSink *log, QObject *parent = nullptr);
    ~PlaylistListing() override;

    // Runs `command`, which the caller builds once the tool is known.
    void run(const ShellCommand &command);
    // Stops the listing; it ends as cancelled, keeping what it had read.
    void cancel();
    // Stops the listing where it is: a playlist of the items read so far.
    void stopHere();

    QString url() const { return m_url; }
    Outcome outcome() const { return m_outcome; }
    bool isRunning() const { return m_outcome == Outcome::Running; }
    // The playlist's title and its number of items as yt-dlp gives them (count 0: not said).
    QString title() const { return m_title; }
    int expectedCount() const { return m_expected; }
    const QList<PlaylistEntry> &entries() const { return m_entries; }
    // For a link that is one video: what the listing said of it.
    const std::optional<VideoInfo> &video() const { return m_video; }
    // Why the listing failed or stopped short: yt-dlp's error lines, else its exit status.
    QString failure() const { return m_failure; }

    // Reads printed lines into the listing; public for the tests of what yt-dlp prints.
    void readLines(const QStringList &lines);

Q_SIGNALS:
    // The link is a playlist: its title and count are known (the first item has arrived).
    void playlistFound();
    // Items [first, first + count) of entries() have arrived.
    void entriesAdded(int first, int count);
    // Exactly once: outcome() says how it ended.
    void finished();

private:
    void finish(int exitCode, bool crashed);
    // Ends the child and the listing with `outcome`, saying `message` in the log.
    void end(Outcome outcome, const QString &message);
    void info(const QString &message) const;

    QString m_url;
    QPointer<LogSink> m_log;
    QPointer<GroupProcess> m_process;
    LineSplitter m_stdout;
    LineSplitter m_stderr;
    QStringList m_errorLines;
    Outcome m_outcome = Outcome::Running;
    QString m_title;
    int m_expected = 0;
    QList<PlaylistEntry> m_entries;
    std::optional<VideoInfo> m_video;
    QString m_failure;
};
