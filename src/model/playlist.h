#pragma once

#include <QJsonObject>
#include <QString>
#include <QUuid>

#include <optional>

// Where a task stands in the playlist it was picked from. Every item picked from one listing
// shares its group; a task that is no playlist's item has none.
struct PlaylistPlace
{
    QUuid group;
    QString title;
    // The item's number in the playlist (from 1), and how many the playlist has (0: unknown).
    int index = 0;
    int count = 0;
    // The item's title as the listing gave it (empty: not given), which names its file, so that
    // the files are called what the sheet showed.
    QString itemTitle;

    bool isSet() const { return !group.isNull(); }
    // The folder below the output folder that the playlist's items go to: its title, made a
    // safe file name ("播放列表" when nothing of it is left).
    QString folderName() const;
    // The `-o` value for the item: "<folder>/<playlist>/<number> - <item title>.%(ext)s", the
    // number padded to the width of the count; yt-dlp's %(title)s when the listing gave none; an
    // item that is a list itself numbers its own videos after the title.
    QString outputTemplate(const QString &outputDir) const;

    // For the store: "" for no place.
    QString toJsonText() const;
    static PlaylistPlace fromJsonText(const QString &text);

    bool operator==(const PlaylistPlace &) const = default;
};

// One item of a playlist as its flat listing gives it.
struct PlaylistEntry
{
    int index = 0;
    // What a download of this item alone is given.
    QString url;
    // Empty when the listing does not say.
    QString title;
    qint64 duration = 0;
    // "extractor id", the line the download archive keeps for it; empty when either is unknown.
    QString archiveKey;

    // The length as a row shows it ("3:25"), or empty when unknown.
    QString durationText() const;

    // One line of `yt-dlp --flat-playlist -j`: an item of a playlist (it has a playlist_index),
    // else nothing.
    static std::optional<PlaylistEntry> fromListing(const QJsonObject &object);

    bool operator==(const PlaylistEntry &) const = default;
};

// Reads "1-20, 25" (also "，", "、", spaces and "–"): the numbers it names, each within 1..last.
// Nothing when the text is not such a list (`error` then says why).
std::optional<QList<int>> parseItemRanges(const QString &text, int last, QString *error = nullptr);

// A link to one video that also names a playlist: "watch?v=…&list=…".
bool isVideoInPlaylist(const QString &link);
// The same link without its playlist ("list", "index" and "start_radio" dropped).
QString withoutPlaylist(const QString &link);
// A link that can only be one video, so that listing it would only extract it twice: YouTube's
// "watch?v=…" without a list, "youtu.be/…", "/shorts/…" and "/live/…".
bool isSingleVideoLink(const QString &link);
