#pragma once

#include <QByteArray>
#include <QStringList>

// Cuts one output stream into whole lines. Both "\n" and "\r" end a line (yt-dlp redraws its
// progress line with "\r"); a line split across two reads is joined first. Empty lines are
// dropped. Bytes that are not UTF-8 are shown with replacement characters rather than lost.
class LineSplitter
{
public:
    // A line longer than this without an end is passed on in pieces rather than held forever.
    static constexpr qsizetype MaxLineBytes = 1 << 20;

    // The whole lines completed by `bytes`.
    QStringList feed(const QByteArray &bytes);
    // Whatever is left once the stream has ended.
    QStringList finish();
    // The line still being written (yt-dlp's current progress redraw), not yet passed on.
    QString pending() const { return QString::fromUtf8(m_partial); }

private:
    QByteArray m_partial;
};
