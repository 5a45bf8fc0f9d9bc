#pragma once

#include <QByteArray>
#include <QStringList>

// Cuts one output stream into whole lines. Both "\n" and "\r" end a line (yt-dlp redraws its
// progress line with "\r"); a line split across two reads is joined first. Empty lines are
// dropped. Bytes that are not UTF-8 are shown with replacement characters rather than lost.
// Whatever a child prints, a line holds at most MaxLineBytes of it: the rest of a longer line
// is counted, not kept, and the line ends with a note of how much was left out.
class LineSplitter
{
public:
    // Leaves room for the note within the in-app log's bound on one entry (4096 characters).
    static constexpr qsizetype MaxLineBytes = 4000;

    // The whole lines completed by `bytes`.
    QStringList feed(const QByteArray &bytes);
    // Whatever is left once the stream has ended.
    QStringList finish();
    // The line still being written (yt-dlp's current progress redraw), not yet passed on.
    QString pending() const { return QString::fromUtf8(m_partial); }

    // The note that ends a line of which `dropped` bytes were left out.
    static QString elisionNote(qint64 dropped);

private:
    void keep(const char *data, qsizetype length);
    void endLine(QStringList &lines);

    QByteArray m_partial;
    qint64 m_dropped = 0;
};
