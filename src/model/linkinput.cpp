#include "model/linkinput.h"

#include <QRegularExpression>

namespace {
const QRegularExpression &lineBreaks()
{
    // Every character a text system counts as a new line.
    static const QRegularExpression breaks(QStringLiteral("[\\n\\r\\x{000B}\\x{000C}\\x{0085}\\x{2028}\\x{2029}]"));
    return breaks;
}

bool isBlank(QChar c)
{
    return c == u'\t' || c.category() == QChar::Separator_Space;
}
} // namespace

QStringList linksFromInput(const QString &input)
{
    QStringList links;
    for (const QString &line : input.split(lineBreaks())) {
        qsizetype begin = 0;
        qsizetype end = line.size();
        while (begin < end && isBlank(line.at(begin)))
            ++begin;
        while (end > begin && isBlank(line.at(end - 1)))
            --end;
        if (end > begin)
            links << line.mid(begin, end - begin);
    }
    return links;
}

QString firstLineOf(const QString &input)
{
    const QStringList lines = input.split(lineBreaks());
    return lines.isEmpty() ? input : lines.constFirst();
}

QString withAddedText(const QString &current, const QString &added)
{
    return current.isEmpty() ? added : current + u'\n' + added;
}
