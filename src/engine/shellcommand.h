#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// A command for `SHELL -c`: a program and its words, kept raw until text() renders them. text()
// is the only place that quotes, so a word is never quoted twice nor left bare by a producer,
// and the log shows exactly what runs.
class ShellCommand
{
public:
    ShellCommand() = default;
    explicit ShellCommand(const QString &program, const QStringList &arguments = {});

    // Raw words, quoted by text() where they need it.
    ShellCommand &operator<<(const QString &word);
    ShellCommand &operator<<(const QStringList &words);
    // "--" and then `link`, always quoted: whatever it starts with, it is never an option.
    ShellCommand &link(const QString &link);
    // A word quoted whatever it holds (a path the command prints back, say).
    ShellCommand &quoted(const QString &word);
    // Shell syntax written as it is: a redirection, a pipe, "&&", "||", "; ". Never a word from
    // outside.
    ShellCommand &syntax(const QString &text);

    // The command text: the parts joined by single spaces, a word single-quoted (each ' as '\'')
    // when it holds anything but ASCII letters, digits and /._-+:@% (an empty word too).
    QString text() const;

private:
    enum class Kind { Word, Quoted, Syntax };
    struct Part
    {
        Kind kind;
        QString text;
    };
    QList<Part> m_parts;
};
