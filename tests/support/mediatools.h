#pragma once

#include "engine/enginefixture.h"

#include <QProcess>
#include <QString>
#include <QStringList>

// Debian's ffmpeg and ffprobe, for the tests that make media and look into what was downloaded,
// and an engine that uses them with a real yt-dlp.
namespace MediaTools {
inline const QString ffmpeg = QStringLiteral("/usr/bin/ffmpeg");
inline const QString ffprobe = QStringLiteral("/usr/bin/ffprobe");
constexpr int Patience = 60000;

// Runs `program` to its end: what it printed, or nothing with `failed` set to what went wrong.
inline QString run(const QString &program, const QStringList &arguments, QString *failed = nullptr)
{
    QProcess process;
    process.start(program, arguments);
    if (process.waitForFinished(Patience) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return QString::fromUtf8(process.readAllStandardOutput());
    if (failed)
        *failed = program + QStringLiteral(": ") + QString::fromLocal8Bit(process.readAllStandardError())
            + process.errorString();
    return {};
}

// Makes `file` from an ffmpeg lavfi `source` with the given encoder words; empty, or what went wrong.
inline QString encode(const QString &source, const QStringList &codec, const QString &file)
{
    QString failed;
    run(ffmpeg,
        QStringList { QStringLiteral("-hide_banner"), QStringLiteral("-nostdin"), QStringLiteral("-y"),
            QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), source }
            + codec + QStringList { file },
        &failed);
    return failed;
}

// The file's streams as ffprobe sees them, sorted: "audio", "subtitle", "video", and "picture"
// for a video stream that is an attached picture (a cover); empty if ffprobe cannot read it.
inline QStringList streamsOf(const QString &file)
{
    QStringList streams;
    const QString listed = run(ffprobe,
        { QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
            QStringLiteral("stream=codec_type:stream_disposition=attached_pic"), QStringLiteral("-of"),
            QStringLiteral("csv=p=0"), file });
    for (const QString &line : listed.split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList fields = line.trimmed().split(u',');
        streams << (fields.value(1) == u"1" ? QStringLiteral("picture") : fields.value(0));
    }
    streams.sort();
    return streams;
}

// An engine in a sandbox with the real `ytDlp` and Debian's ffmpeg, once it has found both.
inline std::unique_ptr<SandboxEngine> startWithRealTools(const QString &ytDlp)
{
    return SandboxEngine::start(
        [ytDlp](SandboxEngine &, ToolLocations &locations) {
            locations.ytDlp = { ytDlp };
            locations.ffmpeg << ffmpeg;
        },
        [](const DownloadManager &manager) {
            return manager.tools()->isReady() && !manager.ytDlpVersion().isEmpty()
                && manager.detectedFfmpeg() == ffmpeg;
        },
        Patience);
}
} // namespace MediaTools
