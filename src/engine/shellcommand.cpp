#include "engine/shellcommand.h"

#include <algorithm>

using namespace Qt::StringLiterals;

ShellCommand::ShellCommand(const QString &program, const QStringList &arguments)
{
    *this << program << arguments;
}

ShellCommand &ShellCommand::operator<<(const QString &word)
{
    m_parts.append({ Kind::Word, word });
    return *this;
}

ShellCommand &ShellCommand::operator<<(const QStringList &words)
{
    for (const QString &word : words)
        *this << word;
    return *this;
}

ShellCommand &ShellCommand::link(const QString &link)
{
    *this << u"--"_s;
    return quoted(link);
}

ShellCommand &ShellCommand::quoted(const QString &word)
{
    m_parts.append({ Kind::Quoted, word });
    return *this;
}

ShellCommand &ShellCommand::syntax(const QString &text)
{
    m_parts.append({ Kind::Syntax, text });
    return *this;
}

QString ShellCommand::text() const
{
    // Ordinary paths and options stay readable; a space, quote, "$" or glob character (zsh refuses
    // an unmatched "bv*+ba/b") cannot change what the child receives.
    static const QString safePunctuation = u"/._-+:@%"_s;
    const auto plain = [](const QString &word) {
        return !word.isEmpty() && std::all_of(word.cbegin(), word.cend(), [](QChar c) {
            return (c.unicode() < 128 && c.isLetterOrNumber()) || safePunctuation.contains(c);
        });
    };
    QStringList rendered;
    rendered.reserve(m_parts.size());
    for (const Part &part : m_parts) {
        if (part.kind == Kind::Syntax || (part.kind == Kind::Word && plain(part.text))) {
            rendered << part.text;
        } else {
            QString escaped = part.text;
            rendered << u'\'' + escaped.replace(u'\'', u"'\\''"_s) + u'\'';
        }
    }
    return rendered.join(u' ');
}
