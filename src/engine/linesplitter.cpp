#include "engine/linesplitter.h"

namespace {
void appendLine(QStringList &lines, const char *begin, qsizetype length)
{
    if (length > 0)
        lines.append(QString::fromUtf8(begin, length));
}
} // namespace

QStringList LineSplitter::feed(const QByteArray &bytes)
{
    QStringList lines;
    const char *data = bytes.constData();
    const qsizetype size = bytes.size();
    qsizetype start = 0;
    for (qsizetype i = 0; i < size; ++i) {
        if (data[i] != '\n' && data[i] != '\r')
            continue;
        if (m_partial.isEmpty()) {
            appendLine(lines, data + start, i - start);
        } else {
            m_partial.append(data + start, i - start);
            appendLine(lines, m_partial.constData(), m_partial.size());
            m_partial.clear();
        }
        start = i + 1;
    }
    m_partial.append(data + start, size - start);
    if (m_partial.size() >= MaxLineBytes) {
        appendLine(lines, m_partial.constData(), m_partial.size());
        m_partial.clear();
    }
    return lines;
}

QStringList LineSplitter::finish()
{
    QStringList lines;
    appendLine(lines, m_partial.constData(), m_partial.size());
    m_partial.clear();
    return lines;
}
