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

QStringList wordsOf(const QString &line)
{
    QStringList words;
    qsizetype begin = -1;
    for (qsizetype i = 0; i <= line.size(); ++i) {
        const bool blank = i == line.size() || isBlank(line.at(i));
        if (!blank && begin < 0)
            begin = i;
        else if (blank && begin >= 0) {
            words << line.mid(begin, i - begin);
            begin = -1;
        }
    }
    return words;
}
} // namespace

bool isLink(const QString &word)
{
    if (word.isEmpty() || word.startsWith(u'-'))
        return false;
    // A scheme: "https://…", "ytsearch:…".
    static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]*:\\S"));
    // A host of dot-separated labels ending in a top-level name or an IPv4 address, then an
    // optional port and path: "youtu.be/x", "www.example.com", "127.0.0.1:8000/v".
    static const QRegularExpression host(
        QStringLiteral("^(?:[^\\s/?#@]+@)?(?:(?:[\\w-]+\\.)+(?:[^\\W\\d_]{2,}|xn--[\\w-]+)|\\d{1,3}(?:\\.\\d{1,3}){3})"
                       "(?::\\d+)?(?:[/?#]\\S*)?$"),
        QRegularExpression::UseUnicodePropertiesOption);
    return scheme.match(word).hasMatch() || host.match(word).hasMatch();
}

LinkInput readLinkInput(const QString &input)
{
    LinkInput result;
    for (const QString &line : input.split(lineBreaks())) {
        if (line.size() > MaxLineLength) {
            ++result.tooLong;
            continue;
        }
        QStringList others;
        for (const QString &word : wordsOf(line)) {
            if (!isLink(word))
                others << word;
            else if (result.links.size() < MaxLinks)
                result.links << word;
            else
                ++result.overLimit;
        }
        if (!others.isEmpty())
            result.rejected << others.join(u' ');
    }
    return result;
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
