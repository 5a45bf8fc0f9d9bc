#include "engine/releaselocations.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {
QString ytDlpAsset()
{
#if defined(Q_OS_MACOS)
    return u"yt-dlp_macos"_s;
#elif defined(Q_OS_LINUX) && defined(Q_PROCESSOR_X86_64)
    return u"yt-dlp_linux"_s;
#elif defined(Q_OS_LINUX) && defined(Q_PROCESSOR_ARM_64)
    return u"yt-dlp_linux_aarch64"_s;
#else
    return {};
#endif
}

QString denoAsset()
{
#if defined(Q_OS_MACOS) && defined(Q_PROCESSOR_ARM_64)
    return u"deno-aarch64-apple-darwin.zip"_s;
#elif defined(Q_OS_MACOS) && defined(Q_PROCESSOR_X86_64)
    return u"deno-x86_64-apple-darwin.zip"_s;
#elif defined(Q_OS_LINUX) && defined(Q_PROCESSOR_X86_64)
    return u"deno-x86_64-unknown-linux-gnu.zip"_s;
#elif defined(Q_OS_LINUX) && defined(Q_PROCESSOR_ARM_64)
    return u"deno-aarch64-unknown-linux-gnu.zip"_s;
#else
    return {};
#endif
}

bool isHex64(QByteArrayView word)
{
    if (word.size() != 64)
        return false;
    return std::all_of(word.begin(), word.end(), [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); });
}
} // namespace

QUrl ReleaseLocations::Release::fileUrl(const QString &tag, const QString &name) const
{
    return QUrl(downloadBase + tag + u'/' + name);
}

ReleaseLocations ReleaseLocations::standard()
{
    QString api = u"https://api.github.com"_s;
    QString site = u"https://github.com"_s;
    const QString replacement = qEnvironmentVariable("QUILLBOX_RELEASES_URL");
    if (!replacement.isEmpty()) {
        QString base = replacement;
        while (base.endsWith(u'/'))
            base.chop(1);
        api = site = base;
    }

    ReleaseLocations locations;
    locations.ytDlp.latestApi = QUrl(api + u"/repos/yt-dlp/yt-dlp/releases/latest"_s);
    locations.ytDlp.downloadBase = site + u"/yt-dlp/yt-dlp/releases/download/"_s;
    locations.ytDlp.assetName = ytDlpAsset();
    locations.ytDlp.checksumName = u"SHA2-256SUMS"_s;
    locations.ytDlp.checksumFormat = ChecksumFormat::NamedLines;

    locations.deno.latestApi = QUrl(api + u"/repos/denoland/deno/releases/latest"_s);
    locations.deno.downloadBase = site + u"/denoland/deno/releases/download/"_s;
    locations.deno.assetName = denoAsset();
    locations.deno.checksumName
        = locations.deno.assetName.isEmpty() ? QString() : locations.deno.assetName + u".sha256sum"_s;
    locations.deno.checksumFormat = ChecksumFormat::FirstDigest;
    return locations;
}

bool ReleaseLocations::isAllowed(const QUrl &url)
{
    if (!url.isValid() || url.host().isEmpty())
        return false;
    const QString scheme = url.scheme().toLower();
    if (scheme == u"https"_s)
        return true;
    if (scheme != u"http"_s)
        return false;
    const QString host = url.host().toLower();
    return host == u"127.0.0.1"_s || host == u"localhost"_s || host == u"::1"_s;
}

QByteArray ReleaseLocations::expectedDigest(
    ChecksumFormat format, const QByteArray &checksumFile, const QString &assetName)
{
    if (format == ChecksumFormat::FirstDigest) {
        static const QRegularExpression words(u"\\S+"_s);
        const QString text = QString::fromUtf8(checksumFile);
        for (const QRegularExpressionMatch &word : words.globalMatch(text)) {
            const QByteArray candidate = word.captured().toLatin1();
            if (isHex64(candidate))
                return candidate.toLower();
        }
        return {};
    }

    // "HEX  NAME", or "HEX *NAME" as sha256sum writes for binary mode.
    const QByteArray name = assetName.toUtf8();
    for (QByteArray line : checksumFile.split('\n')) {
        line = line.trimmed();
        const qsizetype space = line.indexOf(' ');
        if (space < 0)
            continue;
        const QByteArray digest = line.left(space);
        QByteArray lineName = line.mid(space).trimmed();
        if (lineName.startsWith('*'))
            lineName.remove(0, 1);
        if (lineName == name && isHex64(digest))
            return digest.toLower();
    }
    return {};
}
