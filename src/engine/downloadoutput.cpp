#include "engine/downloadoutput.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {
// The steps after the download, named in the language of the moment they start.
const char *const merging = QT_TRANSLATE_NOOP("DownloadOutput", "合并中");
const char *const extractingAudio = QT_TRANSLATE_NOOP("DownloadOutput", "转换音频中");
const char *const postProcessing = QT_TRANSLATE_NOOP("DownloadOutput", "后处理中");

QString phaseText(const char *phase)
{
    return QCoreApplication::translate("DownloadOutput", phase);
}

// yt-dlp's file name with "temp" before its extension: where a post-processing step writes
// before it renames the result into place.
QString tempNameOf(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    const qsizetype dot = path.lastIndexOf(u'.');
    if (dot <= slash + 1)
        return path + u".temp"_s;
    return path.left(dot) + u".temp"_s + path.mid(dot);
}

struct Expressions
{
    // The file a download writes, or already has.
    QRegularExpression destination { u"^\\[download\\] Destination: (.+)$"_s };
    QRegularExpression already { u"^\\[download\\] (.+) has already been downloaded$"_s };
    // Said before a subtitle file is fetched, which then has a destination and progress of its own.
    QRegularExpression subtitleFile { u"^\\[info\\] Writing video subtitles to: (.+)$"_s };
    // "[download] TITLE has already …" or, when the id is known before extraction, "[site] ID: has …".
    QRegularExpression archived { u"^\\[[\\w:]+\\] .+ has already been recorded in the archive$"_s };
    // Steps that write their target directly, naming it.
    QRegularExpression converts { u"^\\[(ExtractAudio|VideoConvertor|VideoRemuxer)\\] (?:.*; )?Destination: (.+)$"_s };
    // Steps that write a ".temp." file beside the one they name in quotes, then rename it.
    QRegularExpression viaTemp { u"^\\[(Merger|Metadata|Embed\\w*|Fixup\\w*)\\] [^\"]*\"(.+)\"$"_s };
    // Any other step after the download.
    QRegularExpression postStep {
        u"^\\[(?:ThumbnailsConvertor|SponsorBlock|ModifyChapters|SplitChapters|FFmpeg\\w*|Exec)\\]"_s
    };
    QRegularExpression formats { u"^\\[info\\] .*: Downloading \\d+ format\\(s\\): (\\S+)"_s };
    QRegularExpression item { u"^\\[download\\] Downloading (?:item|video) (\\d+) of (\\d+)"_s };
    QRegularExpression progress { u"^\\[download\\]\\s+[0-9.]+%"_s };
    // "of 10.00MiB"; a fragmented stream's "of ~ 10.00MiB" is a guess that grows as it goes.
    QRegularExpression total { u"of\\s+(~?)\\s*([0-9.]+[KMGT]?i?B)\\b"_s };
    QRegularExpression eta { u"ETA\\s+(\\d[0-9:]*)"_s };
    QRegularExpression bytes { u"^([0-9]+(?:\\.[0-9]+)?)\\s*([KMGT]?)i?B$"_s };
};

const Expressions &re()
{
    static const Expressions compiled;
    return compiled;
}
} // namespace

DownloadOutput::DownloadOutput(QString folder)
    : m_folder(std::move(folder))
{
}

bool DownloadOutput::isProgressLine(const QString &line)
{
    return re().progress.match(line).hasMatch();
}

std::optional<double> DownloadOutput::bytesOf(QStringView size)
{
    const QRegularExpressionMatch match = re().bytes.match(size.toString());
    if (!match.hasMatch())
        return std::nullopt;
    const QStringView unit = match.capturedView(2);
    const int power = unit.isEmpty() ? 0 : int(QStringView(u"KMGT").indexOf(unit.at(0))) + 1;
    return match.capturedView(1).toDouble() * std::pow(1024.0, power);
}

QString DownloadOutput::formatBytes(qint64 bytes)
{
    if (bytes < 1024)
        return QString::number(bytes) + u'B';
    static const char16_t *const units[] = { u"KiB", u"MiB", u"GiB", u"TiB" };
    double value = double(bytes);
    int unit = -1;
    while (value >= 1024.0 && unit < 3) {
        value /= 1024.0;
        ++unit;
    }
    return QString::number(value, 'f', 2) + QString::fromUtf16(units[unit]);
}

QString DownloadOutput::absolute(const QString &path) const
{
    return m_folder.isEmpty() ? path : QDir(m_folder).absoluteFilePath(path);
}

void DownloadOutput::startStream()
{
    // A playlist item can be downloaded in more streams than it announced (subtitles, a
    // second attempt); those count as the last one again.
    if (m_streams.size() < std::max(m_expectedStreams, 1))
        m_streams.append(Stream {});
    else
        m_streams.last().fraction = 0.0;
    m_phase.clear();
}

double DownloadOutput::combined() const
{
    // Each stream's share is its size once every stream's size is known, else an equal part.
    const int count = std::max(m_expectedStreams, 1);
    const bool sized = m_streams.size() == count
        && std::all_of(m_streams.cbegin(), m_streams.cend(), [](const Stream &stream) { return stream.bytes; });
    double total = 0.0;
    if (sized) {
        for (const Stream &stream : m_streams)
            total += *stream.bytes;
    }
    double done = 0.0;
    for (const Stream &stream : m_streams) {
        const double share = sized && total > 0.0 ? *stream.bytes / total : 1.0 / count;
        done += share * stream.fraction;
    }
    return std::clamp((m_item - 1 + std::min(done, 1.0)) / std::max(m_items, 1), 0.0, 1.0);
}

void DownloadOutput::readProgress(const QString &line, ProgressUpdate &update)
{
    if (m_fetchingSubtitle)
        return;
    const ProgressUpdate parsed = parseProgress({ line });
    if (m_streams.isEmpty())
        startStream();
    Stream &stream = m_streams.last();
    if (parsed.progress)
        stream.fraction = *parsed.progress;
    if (const QRegularExpressionMatch total = re().total.match(line); total.hasMatch())
        stream.bytes = total.capturedView(1).isEmpty() ? bytesOf(total.capturedView(2)) : std::nullopt;
    m_phase.clear();
    m_shown = std::max(m_shown, combined());
    update.progress = m_shown;
    if (parsed.speed)
        update.speed = parsed.speed;
    if (parsed.size)
        update.size = parsed.size;
    const QRegularExpressionMatch eta = re().eta.match(line);
    update.eta = eta.hasMatch() && stream.fraction < 1.0 ? eta.captured(1) : QString();
}

void DownloadOutput::readLine(const QString &line, ProgressUpdate &update)
{
    const Expressions &e = re();
    if (!line.startsWith(u'['))
        return;
    if (isProgressLine(line)) {
        readProgress(line, update);
        return;
    }
    // yt-dlp waits for ffmpeg in silence, so any later line means the step announced before
    // it has ended, one way or the other.
    m_partialFiles.clear();
    m_fetchingSubtitle = false;

    if (const QRegularExpressionMatch match = e.item.match(line); match.hasMatch()) {
        m_item = std::max(1, match.capturedView(1).toInt());
        m_items = std::max(m_item, match.capturedView(2).toInt());
        m_streams.clear();
        m_expectedStreams = 1;
        m_phase.clear();
        m_shown = std::max(m_shown, combined());
        update.progress = m_shown;
    } else if (const QRegularExpressionMatch match = e.formats.match(line); match.hasMatch()) {
        m_expectedStreams = int(match.capturedView(1).count(u'+')) + 1;
        m_streams.clear();
    } else if (const QRegularExpressionMatch match = e.subtitleFile.match(line); match.hasMatch()) {
        m_subtitleFile = absolute(match.captured(1));
    } else if (const QRegularExpressionMatch match = e.destination.match(line); match.hasMatch()) {
        const QString file = absolute(match.captured(1));
        m_fetchingSubtitle = file == m_subtitleFile;
        if (!m_fetchingSubtitle) {
            startStream();
            m_source = file;
            m_outputPath = file;
        }
    } else if (const QRegularExpressionMatch match = e.already.match(line); match.hasMatch()) {
        startStream();
        m_streams.last().fraction = 1.0;
        m_source = absolute(match.captured(1));
        m_outputPath = m_source;
        m_shown = std::max(m_shown, combined());
        update.progress = m_shown;
    } else if (e.archived.match(line).hasMatch()) {
        m_skippedByArchive = true;
    } else if (const QRegularExpressionMatch match = e.converts.match(line); match.hasMatch()) {
        const QString target = absolute(match.captured(2));
        m_phase = phaseText(match.capturedView(1) == u"ExtractAudio" ? extractingAudio : postProcessing);
        m_outputPath = target;
        m_partialFiles = { target, tempNameOf(target) };
    } else if (const QRegularExpressionMatch match = e.viaTemp.match(line); match.hasMatch()) {
        const QString target = absolute(match.captured(2));
        const bool merger = match.capturedView(1) == u"Merger";
        m_phase = phaseText(merger ? merging : postProcessing);
        if (merger)
            m_outputPath = target;
        m_partialFiles = { tempNameOf(target) };
    } else if (e.postStep.match(line).hasMatch()) {
        m_phase = phaseText(postProcessing);
    } else {
        return;
    }
    m_partialFiles.removeAll(m_source);
    if (!m_partialFiles.isEmpty())
        m_partialSince = QDateTime::currentDateTime();
}

ProgressUpdate DownloadOutput::read(const QStringList &lines)
{
    ProgressUpdate update;
    for (const QString &line : lines)
        readLine(line, update);
    // Known failures in friendly words, as the whole batch says them.
    update.errorMessage = knownFailure(lines);
    return update;
}

ProgressUpdate DownloadOutput::peek(const QString &drawing)
{
    ProgressUpdate update;
    if (isProgressLine(drawing))
        readProgress(drawing, update);
    return update;
}
