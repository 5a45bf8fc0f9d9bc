#pragma once

#include "engine/progressparser.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// What a download's output has said so far, read line by line in the order yt-dlp printed it:
// one progress for the whole task (streams and playlist items combined, never going back), the
// step after the download ("合并中", …), the file it ends in and the files a step is writing.
class DownloadOutput
{
public:
    // `folder` is where the download runs: relative paths in the output are read against it.
    explicit DownloadOutput(QString folder = {});

    // Reads whole lines; returns what changed on the task's row (progress, speed, size, ETA).
    ProgressUpdate read(const QStringList &lines);
    // A progress line still being redrawn, read early so the row is not one redraw behind; it
    // is read again, finished, by read().
    ProgressUpdate peek(const QString &drawing);

    // "" while downloading; else what yt-dlp is doing with the downloaded file.
    QString phase() const { return m_phase; }
    // The file the download ends in so far (absolute), or empty.
    QString outputPath() const { return m_outputPath; }
    // yt-dlp found the video in the download archive and skipped it.
    bool skippedByArchive() const { return m_skippedByArchive; }
    // The whole task's progress, 0–1, never lower than before.
    double progress() const { return m_shown; }
    // What the step under way writes (absolute): removed if the download is stopped before the
    // step has ended, so no cut-off file looks finished. Never the downloaded file itself.
    QStringList partialFiles() const { return m_partialFiles; }
    QDateTime partialSince() const { return m_partialSince; }

    // The line is a progress redraw ("[download]  42.3% of …"): the log keeps one of them.
    static bool isProgressLine(const QString &line);
    // "12.5MiB" -> bytes; nullopt for anything else.
    static std::optional<double> bytesOf(QStringView size);
    // Bytes as yt-dlp writes sizes: "1.50MiB", "512.00KiB", "900B".
    static QString formatBytes(qint64 bytes);

private:
    struct Stream
    {
        std::optional<double> bytes;
        double fraction = 0.0;
    };

    void readLine(const QString &line, ProgressUpdate &update);
    void readProgress(const QString &line, ProgressUpdate &update);
    void startStream();
    double combined() const;
    QString absolute(const QString &path) const;

    QString m_folder;
    QString m_phase;
    QString m_outputPath;
    QString m_source;
    QStringList m_partialFiles;
    QDateTime m_partialSince;
    bool m_skippedByArchive = false;
    // The subtitle file yt-dlp said it writes next, and whether it is being fetched now: its
    // download lines are not the video's, so they neither fill the bar nor name the file.
    QString m_subtitleFile;
    bool m_fetchingSubtitle = false;

    int m_item = 1; // the playlist item being downloaded, from 1
    int m_items = 1;
    int m_expectedStreams = 1;
    QList<Stream> m_streams;
    double m_shown = 0.0;
};
