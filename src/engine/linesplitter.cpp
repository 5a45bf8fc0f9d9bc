#include "engine/linesplitter.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstring>
#include <limits>

using namespace Qt::StringLiterals;

QString LineSplitter::elisionNote(qint64 dropped)
{
    // The count chooses the plural form; the text shows it in full, beyond an int's range too.
    const int count = static_cast<int>(std::min<qint64>(dropped, std::numeric_limits<int>::max()));
    return QCoreApplication::translate("LineSplitter", "…（此行过长，已省略 %1 字节）", nullptr, count).arg(dropped);
}

void LineSplitter::keep(const char *data, qsizetype length)
{
    if (m_dropped == 0) {
        qsizetype room = std::min(length, MaxLineBytes - m_partial.size());
        // Cut before a character's first byte, never inside it.
        if (room < length) {
            while (room > 0 && (static_cast<unsigned char>(data[room]) & 0xC0) == 0x80)
                --room;
        }
        m_partial.append(data, room);
        data += room;
        length -= room;
    }
    m_dropped += length;
}

void LineSplitter::endLine(QStringList &lines)
{
    if (!m_partial.isEmpty() || m_dropped > 0) {
        QString line = QString::fromUtf8(m_partial);
        if (m_dropped > 0)
            line += elisionNote(m_dropped);
        lines.append(line);
    }
    m_partial.clear();
    m_dropped = 0;
}

QStringList LineSplitter::feed(const QByteArray &bytes)
{
    QStringList lines;
    const char *data = bytes.constData();
    const char *const end = data + bytes.size();
    // The next "\n" and the next "\r", each searched for again only once it has been passed.
    const auto next = [end](const char *from, char c) {
        const char *found = static_cast<const char *>(std::memchr(from, c, size_t(end - from)));
        return found ? found : end;
    };
    const char *newline = next(data, '\n');
    const char *carriage = next(data, '\r');
    while (data < end) {
        if (newline < data)
            newline = next(data, '\n');
        if (carriage < data)
            carriage = next(data, '\r');
        const char *stop = std::min(newline, carriage);
        keep(data, stop - data);
        if (stop == end)
            break;
        endLine(lines);
        data = stop + 1;
    }
    return lines;
}

QStringList LineSplitter::finish()
{
    QStringList lines;
    endLine(lines);
    return lines;
}
