#pragma once

#include <QString>
#include <QUrl>

// Where the official builds of the tools Quillbox installs itself are published, and the one
// rule for which addresses may be fetched. standard() is the real release pages; a test builds
// its own or points QUILLBOX_RELEASES_URL at a server on 127.0.0.1.
struct ReleaseLocations
{
    enum class ChecksumFormat {
        NamedLines, // one "HEX  NAME" line per asset (yt-dlp's SHA2-256SUMS)
        FirstDigest, // the first 64-hex-digit word in the file (Deno's NAME.sha256sum)
    };

    struct Release
    {
        QUrl latestApi; // JSON whose "tag_name" is the latest version
        QString downloadBase; // an asset is downloadBase + TAG + "/" + NAME
        QString assetName; // the build for this system; empty where there is none
        QString checksumName; // beside the asset, under the same tag
        ChecksumFormat checksumFormat = ChecksumFormat::NamedLines;

        QUrl assetUrl(const QString &tag) const { return fileUrl(tag, assetName); }
        QUrl checksumUrl(const QString &tag) const { return fileUrl(tag, checksumName); }
        QUrl fileUrl(const QString &tag, const QString &name) const;
    };

    Release ytDlp;
    Release deno;

    // The real release pages, with https://api.github.com and https://github.com both replaced
    // by $QUILLBOX_RELEASES_URL when it is set (e.g. "http://127.0.0.1:8123").
    static ReleaseLocations standard();

    // https anywhere; plain http only to this machine (127.0.0.1, localhost, ::1).
    static bool isAllowed(const QUrl &url);

    // The SHA-256 (64 lower-case hex digits) that `checksumFile` gives for `assetName`, or empty.
    static QByteArray expectedDigest(ChecksumFormat format, const QByteArray &checksumFile, const QString &assetName);
};
